// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace Zorvane::Suite {

/// A character beyond ASCII that shows nothing and changes how the rest is read: controls, direction marks,
/// separators of lines and paragraphs, and what no text may have.
[[nodiscard]] bool isInvisible(char32_t code);

/// The text with its control and other invisible characters spelled out ("\n", "\x1b", "\u2028"), so that a
/// name from elsewhere stays on its line and drives no terminal. Other characters stay, those of non-ASCII
/// alphabets and backslashes included.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace Zorvane::Suite
