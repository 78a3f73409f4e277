// SPDX-License-Identifier: Apache-2.0
// Where a drawing puts what: bars for disks and for what spans several, cells for their parts.
#pragma once

#include "info/layout/Layout.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zorvane {

/// A rectangle of a bar. Lengths are in units of the drawing.
struct BarCell {
    std::vector<std::size_t> chain; ///< objects that cover the same bytes, the lowest first; none: free space
    double x = 0;                   ///< from the left end of the bar
    double width = 0;
    unsigned row = 0; ///< 0 is the uppermost
    std::optional<std::int64_t> bytes;
    bool isHolder = false;  ///< its parts are cells of their own, below it
    bool goesOn = false;    ///< what lies on it has a bar of its own
    std::size_t hidden = 0; ///< stands for so many parts that have no room
};

struct Bar {
    std::size_t node = 0;
    double width = 0;
    bool isToScale = true;
    unsigned rows = 1;
    std::vector<BarCell> cells;
};

struct BarSection {
    std::string title;
    std::vector<Bar> bars;
};

struct BarPlan {
    std::vector<BarSection> sections; ///< none of them empty
    std::int64_t longest = 0;         ///< bytes of the longest bar
    std::size_t missing = 0;          ///< cells beyond MAX_BAR_CELLS
};

/// A shorter bar is not seen.
inline constexpr double MIN_BAR = 4;
/// Room for a letter. The cells of a bar that is short get less.
inline constexpr double MIN_CELL = 14;
/// A picture of more cells is read by nobody, and shown by no viewer.
inline constexpr std::size_t MAX_BAR_CELLS = 20'000;

/// The plan of a layout in which the longest bar has the given width.
BarPlan planBars(const Layout& layout, double width);

} // namespace Zorvane
