// SPDX-License-Identifier: Apache-2.0
// What a database request is about, in words: for the request log and for failures on demand.
#pragma once

#include "lab/FailRules.h"
#include "lab/Store.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane {

struct RequestSummary {
    const char* operation = "unknown"; ///< a word of the request log
    std::optional<FailPoint> point;
    std::vector<std::string> tables; ///< names without prefix
    std::string subject;             ///< the tables as the request has them
    std::string arguments;           ///< condition, or the number of the tree's row
};

/// Of a DB_REQUEST's command and document. A document that can't be read gives the operation alone, and one
/// of too many rows what was read of it.
RequestSummary summarize(int command, std::string_view document, const LargeTurn& turn);

} // namespace Zorvane
