// SPDX-License-Identifier: Apache-2.0
// Texts of a layout as they are shown. Names come from elsewhere: they stay on their line, drive no terminal
// and are valid UTF-8.
#pragma once

#include "info/layout/Layout.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Zorvane {

/// No name is shown longer, in a tooltip neither.
inline constexpr std::size_t MAX_SHOWN_NAME = 200;

/// The text without control characters, marks that turn the direction of writing, and broken UTF-8; of more
/// than `limit` letters the last one shown is an ellipsis.
std::string shown(std::string_view text, std::size_t limit = MAX_SHOWN_NAME);
/// Letters, and the columns of a terminal that they take.
std::size_t lettersIn(std::string_view shownText);
std::size_t terminalColumns(std::string_view shownText);
/// The text with its middle left out for an ellipsis, if it takes more columns than that.
std::string shortened(std::string_view shownText, std::size_t columns);

/// "500 MiB", "1.5 TiB": three digits are enough to tell sizes apart.
std::string sizeText(std::int64_t bytes);
/// Empty for an unknown size.
std::string sizeText(const std::optional<std::int64_t>& bytes);
/// The sum, or the largest number if it has no place.
std::int64_t addSizes(std::int64_t a, std::int64_t b);

/// The node's name, or what it is if it has none: "mirror", "NTFS".
std::string titleOf(const LayoutNode& node);
/// What it is, in the words of its platform: "region, gpt basic data", "volume, mirror", "NTFS".
std::string sortOf(const LayoutNode& node);
/// "boots, swap, shared with storage_grp"; what has a mark of its own where it is drawn.
std::string flagsOf(const LayoutNode& node);
/// The texts joined by ", ".
std::string joined(const std::vector<std::string>& texts);

/// "ledger01, configuration current (Windows 10.0)".
std::string headingOf(const Layout& layout);
/// "2 disks, 620 GiB; boots from \Device\Harddisk0".
std::string summaryOf(const Layout& layout);
/// What the reader should know of what is not drawn: a line each.
std::vector<std::string> remarksOf(const Layout& layout);

} // namespace Zorvane
