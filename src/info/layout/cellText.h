// SPDX-License-Identifier: Apache-2.0
// What a drawing's cell says.
#pragma once

#include "info/layout/BarPlan.h"

#include <string>
#include <vector>

namespace Zorvane {

struct CellText {
    std::string title;              ///< where it is mounted, or its name
    std::vector<std::string> names; ///< the other names of what covers these bytes, the uppermost first
    std::vector<std::string> facts; ///< its kind and size, its marks, where it goes on
    std::string note;               ///< title and facts, for beside or under a bar whose cell has no room
    std::string hint;               ///< all that there is
};

CellText textOf(const Layout& layout, const BarCell& cell);

/// The texts that are not empty, with a dot between them.
std::string dotted(const std::vector<std::string>& texts);

} // namespace Zorvane
