// SPDX-License-Identifier: Apache-2.0
// Pieces of where clauses, as the recovery daemon's parser takes them.
#pragma once

#include <string>
#include <string_view>

namespace Zorvane {

/// `lower(column) = lower('value')`: equal but for case. Any value is safe: it becomes a literal.
std::string equalsIgnoringCase(std::string_view column, const std::string& value);

} // namespace Zorvane
