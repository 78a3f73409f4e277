// SPDX-License-Identifier: Apache-2.0
#include "info/layout/palette.h"

#include <array>

namespace Zorvane {

const LayoutPaint& paintOf(LayoutUse use) {
    // Orange, sky blue, bluish green and reddish purple of the palette that all kinds of colour vision tell
    // apart, toned down so that black text is read on them.
    static constexpr std::array<LayoutPaint, LAYOUT_USES> paints = {{
        {"holds others", "#e9ecef", "#868e96"},
        {"data", "#bfe0f2", "#2f7fae"},
        {"boots or holds the system", "#f6d49b", "#a66d00"},
        {"swap or dump", "#e6c6d8", "#9c4f7d"},
        {"no file system", "#b9e3d4", "#00795a"},
        {"free", "#ffffff", "#868e96"},
    }};
    return paints[static_cast<std::size_t>(use)];
}

LayoutUse useOf(const LayoutNode& node) {
    if (node.has(LayoutFlag::Free))
        return LayoutUse::Free;
    if (node.has(LayoutFlag::Boots) || node.has(LayoutFlag::System))
        return LayoutUse::System;
    if (node.has(LayoutFlag::Swap) || node.has(LayoutFlag::Dump))
        return LayoutUse::Swap;
    if (node.kind == LayoutKind::FileSystem || !node.mountedAt.empty())
        return LayoutUse::Data;
    return node.upper.empty() ? LayoutUse::Raw : LayoutUse::Holder;
}

LayoutUse useOf(const Layout& layout, std::size_t at) {
    const LayoutNode& node = layout.nodes[at];
    if (node.kind != LayoutKind::FileSystem || node.lower.size() != 1)
        return useOf(node);
    const std::array<std::size_t, 2> chain = {node.lower.front().node, at};
    return useOf(layout, chain, false);
}

LayoutUse useOf(const Layout& layout, std::span<const std::size_t> chain, bool isHolder) {
    LayoutUse use = isHolder ? LayoutUse::Holder : LayoutUse::Raw;
    for (const std::size_t node : chain) {
        const LayoutUse own = useOf(layout.nodes[node]);
        if (own == LayoutUse::Free || own == LayoutUse::System)
            return own;
        if (own == LayoutUse::Swap || (own == LayoutUse::Data && use != LayoutUse::Swap))
            use = own;
    }
    return use;
}

} // namespace Zorvane
