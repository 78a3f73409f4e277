// SPDX-License-Identifier: Apache-2.0
// What messages and findings mean, why they come and what to do.
#pragma once

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
};

/// All rows in the order of the declaration: messages first.
std::span<const Explanation> allExplanations();
/// The row of a message's number or a finding's identifier, or of the message of that finding; null if there
/// is none.
const Explanation* findExplanation(std::string_view subject);
/// The row for a kind of finding. There is one for every kind.
const Explanation& explanationOf(FindingKind kind);

/// A message of the command with its arguments filled in; "" if the catalogue has none.
std::string catalogueText(std::uint64_t number, const std::vector<std::string>& arguments);
/// What is wrong, in a sentence.
std::string textOf(const Finding& finding);

} // namespace Zorvane
