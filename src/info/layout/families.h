// SPDX-License-Identifier: Apache-2.0
// Which tables of the model are storage, and what lies on what, platform by platform.
#pragma once

#include "info/layout/Layout.h"

#include <span>

namespace Zorvane {

/// A table whose rows are objects of the layout.
struct LayoutTable {
    const char* table;
    LayoutKind kind;
    const char* sort;
    const char* detail = nullptr; ///< its field that tells more
};

/// Rows of one table lie on rows of another. Where a table of pairs tells so, it is named; else one of the
/// two refers to the other.
struct LayoutRelation {
    const char* upper;
    const char* lower;
    const char* pairs = nullptr;
    const char* onlyIf = nullptr; ///< a flag of the row that holds the reference
};

/// A table that tells where something is mounted.
struct LayoutMounts {
    const char* table;
    const char* place; ///< the field of the path
};

std::span<const LayoutTable> layoutTables();
std::span<const LayoutRelation> layoutRelations();
std::span<const LayoutMounts> layoutMounts();
/// Disk and volume groups.
std::span<const char* const> layoutGroups();

} // namespace Zorvane
