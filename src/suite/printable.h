// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace Zorvane::Suite {

/// The text with its control characters spelled out ("\n", "\x1b"), so that a name from elsewhere stays on
/// its line and drives no terminal. Other characters stay, those of non-ASCII alphabets and backslashes
/// included.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace Zorvane::Suite
