// SPDX-License-Identifier: Apache-2.0
// Text for a terminal of 80 columns.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Zorvane {

inline constexpr std::size_t TERMINAL_WIDTH = 80;

/// The text cut at blanks into lines of that indent, the last line's end included. Quoted names are never
/// cut, nor are blanks within a line changed; control characters are spelled out. `hanging` is the indent of
/// the lines behind the first.
std::string paragraph(std::string_view text, std::size_t indent, std::size_t hanging);
std::string paragraph(std::string_view text, std::size_t indent);
/// Filled up with blanks on the right, or on the left for numbers.
std::string leftAligned(const std::string& text, std::size_t width);
std::string rightAligned(const std::string& text, std::size_t width);

} // namespace Zorvane
