// SPDX-License-Identifier: Apache-2.0
// The message catalogues: set = originator, number = message, "%s" for each argument.
#pragma once

#include "suite/quul.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Zorvane::Suite {

/// An argument as text; numbers are written as decimals.
[[nodiscard]] std::string argumentText(const mrthLisAny_t& argument);

/// A message in the language of the process's locale, else in English, its arguments filled in with their
/// control characters spelled out; nothing if no catalogue has it. `arguments` may be null.
[[nodiscard]] std::optional<std::string> catalogText(std::uint64_t originator, std::uint64_t number,
                                                     const mrthLisArgs_t* arguments);

} // namespace Zorvane::Suite
