// SPDX-License-Identifier: Apache-2.0
// The message catalogues, in UTF-8: set = originator, number = message, "%s" for each argument.
#pragma once

#include "suite/quul.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Zorvane::Suite {

/// An argument as text; numbers are written as decimals.
[[nodiscard]] std::string argumentText(const mrthLisAny_t& argument);

/// A message in the language and the code set of the process's locale, its arguments filled in with their
/// control characters spelled out. In English where the language has no catalogue, not the message, or
/// letters that the code set can't write; nothing if no catalogue has the message. `arguments` may be null.
[[nodiscard]] std::optional<std::string> catalogText(std::uint64_t originator, std::uint64_t number,
                                                     const mrthLisArgs_t* arguments);

} // namespace Zorvane::Suite
