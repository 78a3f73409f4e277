// SPDX-License-Identifier: Apache-2.0
// From a command text to an argument vector, with the shell's quotes but none of its expansions.
#pragma once

#include <cstddef>
#include <string>

namespace Zorvane {

/// Stores the arguments of a command in a vector that ends with null. Outside quotes a backslash takes the
/// next character literally; quotes of either kind keep everything up to the same quote, backslashes too.
/// `arguments` begins as null (or an empty vector from realloc) and is the caller's to free, after a failure
/// too. 1 on success, 0 on failure (the opposite of the return codes).
int ParseCommand(const std::string& command, char**& arguments);

/// Stores one raw argument, its quotes and backslashes resolved, and counts it; or, for null, the end of the
/// list. Grows the vector as needed, and leaves it ended with null at any time. 1 on success, 0 on failure.
int AddArgument(const char* raw, std::size_t length, std::size_t& count, std::size_t& capacity,
                char**& arguments);

/// Frees a vector of ParseCommand; null is allowed.
void FreeArguments(char** arguments) noexcept;

} // namespace Zorvane
