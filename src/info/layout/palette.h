// SPDX-License-Identifier: Apache-2.0
// What an object is used for, and how that is painted.
#pragma once

#include "info/layout/Layout.h"

#include <cstddef>
#include <span>

namespace Zorvane {

enum class LayoutUse : std::uint8_t { Holder, Data, System, Swap, Raw, Free };

/// Paint that differs in lightness too, and is told apart without colour by its pattern or line.
struct LayoutPaint {
    const char* name; ///< in the legend
    const char* fill;
    const char* line;
};
inline constexpr std::size_t LAYOUT_USES = 6;

const LayoutPaint& paintOf(LayoutUse use);
/// The use of one object as it stands: what it is marked with, or what its kind is for.
LayoutUse useOf(const LayoutNode& node);
/// In a graph: a file system is the system's if the volume under it is marked so.
LayoutUse useOf(const Layout& layout, std::size_t node);
/// Of objects that cover the same bytes, from the lowest up: a system's before a swap's before data's.
LayoutUse useOf(const Layout& layout, std::span<const std::size_t> chain, bool isHolder);

} // namespace Zorvane
