// SPDX-License-Identifier: Apache-2.0
#include "info/layout/labels.h"
#include "info/layout/palette.h"
#include "info/layout/renderers.h"

#include <map>
#include <ostream>

namespace Zorvane {

namespace {

constexpr std::size_t MAX_LABEL = 40;

// A string of the language. Backslashes are doubled, so that none of a name begins an escape.
std::string quoted(std::string_view text) {
    std::string made = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\')
            made += '\\';
        made += letter;
    }
    return made + '"';
}

// A label: lines that stand under each other.
std::string label(const std::vector<std::string>& lines) {
    std::string made;
    for (const std::string& line : lines)
        if (!line.empty()) {
            const std::string text = quoted(shown(line, MAX_LABEL));
            made += (made.empty() ? "" : "\\n") + text.substr(1, text.size() - 2);
        }
    return '"' + made + '"';
}

const char* shapeOf(LayoutKind kind) {
    switch (kind) {
    case LayoutKind::Hardware:
    case LayoutKind::Disk:
        return "cylinder";
    case LayoutKind::Array:
        return "box3d";
    case LayoutKind::Volume:
        return "ellipse";
    case LayoutKind::FileSystem:
        return "folder";
    default:
        return "box";
    }
}

std::vector<std::string> linesOf(const LayoutNode& node) {
    const std::string sort = sortOf(node), title = titleOf(node), size = sizeText(node.size);
    std::vector<std::string> lines = {title, (title == sort ? "" : sort + (size.empty() ? "" : ", ")) + size};
    constexpr std::size_t most = 3;
    for (std::size_t i = 0; i < node.mountedAt.size() && i < most; ++i)
        lines.push_back("at " + node.mountedAt[i]);
    if (node.mountedAt.size() > most)
        lines.push_back("and " + std::to_string(node.mountedAt.size() - most) + " more places");
    lines.push_back(flagsOf(node));
    if (!node.group.empty() && node.kind != LayoutKind::Volume)
        lines.push_back("in " + node.group);
    return lines;
}

void writeNode(const Layout& layout, std::size_t at, std::ostream& out) {
    const LayoutNode& node = layout.nodes[at];
    const LayoutUse use = useOf(node);
    const LayoutPaint& paint = paintOf(use);
    out << "  n" << at << " [label=" << label(linesOf(node)) << ", shape=" << shapeOf(node.kind)
        << ", fillcolor=" << quoted(paint.fill) << ", color=" << quoted(paint.line);
    if (use == LayoutUse::Free)
        out << ", style=\"filled,dashed\"";
    if (node.has(LayoutFlag::Boots))
        out << ", penwidth=2.5";
    if (node.has(LayoutFlag::Shared))
        out << ", peripheries=2";
    out << "];\n";
}

void writeEdges(const Layout& layout, std::size_t at, std::ostream& out) {
    for (const LayoutEdge& edge : shownUppers(layout, at)) {
        out << "  n" << at << " -> n" << edge.node;
        if (edge.extent && layout.nodes[edge.node].lower.size() > 1)
            out << " [label=" << label({sizeText(edge.extent)}) << "]";
        out << ";\n";
    }
}

// The data stores to the left of their disks, the network to the left of its interfaces.
void writeTarget(const Layout& layout, std::ostream& out) {
    constexpr const char* arrow = " [dir=back, style=dashed";
    std::map<std::string, std::vector<std::size_t>> stores;
    for (std::size_t at = 0; at < layout.nodes.size(); ++at)
        if (!layout.nodes[at].dataStore.empty())
            stores[layout.nodes[at].dataStore].push_back(at);
    std::size_t number = 0;
    for (const auto& [name, disks] : stores) {
        out << "  s" << number << " [label=" << label({name, "data store"})
            << ", shape=tab, fillcolor=\"#f1f3f5\"];\n";
        for (const std::size_t disk : disks)
            out << "  s" << number << " -> n" << disk << arrow
                << (layout.nodes[disk].isDefaultStore ? ", label=default];\n" : "];\n");
        ++number;
    }
    out << "  network [label="
        << label({layout.target->network.empty() ? "no network" : layout.target->network, "network"})
        << ", shape=tab, fillcolor=\"#f1f3f5\"];\n";
    for (std::size_t i = 0; i < layout.interfaces.size(); ++i) {
        const LayoutInterface& interface = layout.interfaces[i];
        out << "  i" << i << " [label=" << label({interface.name, interface.mac, joined(interface.addresses)})
            << ", shape=component, fillcolor=\"#f1f3f5\"];\n  network -> i" << i << arrow << "];\n";
    }
}

} // namespace

void writeLayoutDot(const Layout& layout, std::ostream& out) {
    out << "digraph layout {\n"
           "  rankdir=LR;\n"
           "  labelloc=t;\n"
           "  fontname=\"sans-serif\";\n"
           "  label="
        << quoted(headingOf(layout) + ": " + summaryOf(layout))
        << ";\n"
           "  node [fontname=\"sans-serif\", fontsize=10, style=filled, margin=\"0.12,0.06\"];\n"
           "  edge [fontname=\"sans-serif\", fontsize=9, color=\"#495057\", arrowsize=0.6];\n";
    for (std::size_t at = 0; at < layout.nodes.size(); ++at)
        if (!isTransparent(layout, at)) {
            writeNode(layout, at, out);
            writeEdges(layout, at, out);
        }
    if (layout.target)
        writeTarget(layout, out);
    for (const std::string& remark : remarksOf(layout))
        out << "  // " << remark << '\n';
    out << "}\n";
}

} // namespace Zorvane
