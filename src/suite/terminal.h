// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>
#include <string_view>

namespace Zorvane::Suite {

/// Writes a text for the user to standard output or standard error, behind what its stream holds. False if it
/// can't be written; a reader that has gone away is no more than that, and ends no program.
bool writeTerminal(std::FILE* stream, std::string_view text);

} // namespace Zorvane::Suite
