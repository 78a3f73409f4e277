// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace Zorvane {

/// A text that ValidateInput refuses.
inline constexpr int ZOR_ILLEGAL_TEXT = -2;

/// Guards the daemon, which hands method parameters to commands: ZOR_ILLEGAL_TEXT for a text with a backtick,
/// a dollar and an opening parenthesis, or a backslash and a double quote, with or without blanks between the
/// two; else 0.
int ValidateInput(const char* text);
int ValidateInput(std::string_view text);

} // namespace Zorvane
