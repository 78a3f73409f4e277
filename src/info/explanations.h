// SPDX-License-Identifier: Apache-2.0
// What messages and findings mean, why they come and what to do.
#pragma once

#include "logging/CZorLog.h"
#include "resources/Finding.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Zorvane {

/// A row of explanations.def, which tells the columns.
struct Explanation {
    std::string_view subject;
    std::string_view text;
    std::string_view meaning;
    std::string_view cause;
    std::string_view remedy;

    /// Whether it is about a message; else about findings.
    [[nodiscard]] bool isOfMessage() const { return subject.front() >= '0' && subject.front() <= '9'; }
    /// Whose message it is. Both sets of the catalogue may have one of a number.
    [[nodiscard]] std::uint64_t originator() const {
        return subject.starts_with(SHARED) ? ZOR_LIBRARY_ORIGINATOR : ZOR_COMMAND_ORIGINATOR;
    }

    static constexpr std::string_view SHARED = "128:"; ///< in front of a number of the shared code
};

/// All rows in the order of the declaration: messages first.
std::span<const Explanation> allExplanations();
/// The row of a message's number or a finding's identifier, or of the message of that finding; null if there
/// is none. A number alone is one of the command, if it has one; "433:14" and "128:926" tell the set.
const Explanation* findExplanation(std::string_view subject);
/// The row for a kind of finding. There is one for every kind.
const Explanation& explanationOf(FindingKind kind);

/// A message with its arguments filled in; "" if the catalogue has none.
std::string catalogueText(std::uint64_t number, const std::vector<std::string>& arguments,
                          std::uint64_t originator = ZOR_COMMAND_ORIGINATOR);
/// What is wrong, in a sentence.
std::string textOf(const Finding& finding);

} // namespace Zorvane
