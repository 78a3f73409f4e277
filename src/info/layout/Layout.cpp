// SPDX-License-Identifier: Apache-2.0
#include "info/layout/Layout.h"

#include "resources/B2VInput.h"

#include <algorithm>

#include <strings.h>

namespace Zorvane {

const char* nameOf(LayoutKind kind) {
    static constexpr std::array names = {"hardware", "disk", "partition", "array",
                                         "piece",    "plex", "volume",    "filesystem"};
    return names[static_cast<std::size_t>(kind)];
}

const char* nameOf(LayoutFlag flag) {
    static constexpr std::array names = {"boots",     "system",     "swap",   "dump",
                                         "read-only", "restricted", "shared", "free"};
    static_assert(names.size() == LAYOUT_FLAGS);
    return names[static_cast<std::size_t>(flag)];
}

bool isTransparent(const Layout& layout, std::size_t at) {
    const LayoutNode& node = layout.nodes[at];
    if (node.upper.size() != 1)
        return false;
    if (node.kind == LayoutKind::Piece)
        return node.name.empty() && node.lower.size() == 1;
    if (node.kind != LayoutKind::Plex)
        return false;
    const auto& siblings = layout.nodes[node.upper.front().node].lower;
    return std::none_of(siblings.begin(), siblings.end(), [&](const LayoutEdge& edge) {
        return edge.node != at && layout.nodes[edge.node].kind == LayoutKind::Plex;
    });
}

std::vector<LayoutEdge> shownUppers(const Layout& layout, std::size_t at) {
    std::vector<LayoutEdge> shown = layout.nodes[at].upper;
    for (LayoutEdge& edge : shown)
        for (unsigned steps = 0; steps < MAX_LAYOUT_DEPTH && isTransparent(layout, edge.node); ++steps) {
            const LayoutNode& passed = layout.nodes[edge.node];
            if (!edge.extent && passed.kind == LayoutKind::Piece)
                edge.extent = passed.size;
            edge.node = passed.upper.front().node;
        }
    return shown;
}

std::vector<std::size_t> rootsOf(const Layout& layout) {
    std::vector<std::size_t> roots;
    for (std::size_t node = 0; node < layout.nodes.size(); ++node)
        if (layout.nodes[node].lower.empty())
            roots.push_back(node);
    return roots;
}

std::vector<bool> carriersOf(const Layout& layout, LayoutFlag flag) {
    std::vector<bool> carriers(layout.nodes.size());
    std::vector<std::size_t> open;
    for (std::size_t node = 0; node < layout.nodes.size(); ++node)
        if (layout.nodes[node].has(flag))
            open.push_back(node);
    while (!open.empty()) {
        const std::size_t at = open.back();
        open.pop_back();
        if (carriers[at])
            continue;
        carriers[at] = true;
        for (const LayoutEdge& edge : layout.nodes[at].lower)
            open.push_back(edge.node);
    }
    return carriers;
}

std::vector<std::size_t> bootDisks(const Layout& layout) {
    const std::vector<bool> boots = carriersOf(layout, LayoutFlag::Boots);
    std::vector<std::size_t> disks;
    for (std::size_t node = 0; node < layout.nodes.size(); ++node)
        if (boots[node] && layout.nodes[node].kind == LayoutKind::Disk)
            disks.push_back(node);
    return disks;
}

void addTarget(Layout& layout, const B2VInput& input) {
    // "Harddisk0" of the file is "\Device\Harddisk0" of the client.
    const auto isNamed = [](const LayoutNode& node, const std::string& name) {
        const std::size_t slash = node.name.rfind('\\');
        const std::string own = slash == std::string::npos ? node.name : node.name.substr(slash + 1);
        return node.kind == LayoutKind::Disk && ::strcasecmp(own.c_str(), name.c_str()) == 0;
    };
    LayoutTarget target{input.vmDisplayName, input.vmNetwork, {}};
    for (LayoutNode& node : layout.nodes)
        if (node.kind == LayoutKind::Disk) {
            node.dataStore = input.dataStore;
            node.isDefaultStore = true;
        }
    for (const DiskDataStoreEntry& entry : input.diskMap) {
        bool isKnown = false;
        for (LayoutNode& node : layout.nodes)
            if (isNamed(node, entry.diskName)) {
                node.dataStore = entry.dataStoreName;
                node.isDefaultStore = false;
                isKnown = true;
            }
        if (!isKnown)
            target.unknownDisks.push_back(entry.diskName);
    }
    layout.target = std::move(target);
}

} // namespace Zorvane
