// SPDX-License-Identifier: Apache-2.0
#include "info/layout/labels.h"
#include "info/layout/palette.h"
#include "info/layout/renderers.h"
#include "info/layout/svgElements.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <ostream>

namespace Zorvane {

namespace {

constexpr std::size_t MAX_LABEL = 40;
constexpr std::size_t MOST_WITH_SHARED_STORES = 12;

// A string of the language. Backslashes are doubled, so that none of a name begins an escape.
std::string inQuotes(std::string_view text) {
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
            const std::string text = inQuotes(shown(line, MAX_LABEL));
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
    const LayoutUse use = useOf(layout, at);
    const LayoutPaint& paint = paintOf(use);
    out << "  n" << at << " [label=" << label(linesOf(node)) << ", shape=" << shapeOf(node.kind)
        << ", fillcolor=" << inQuotes(paint.fill) << ", color=" << inQuotes(paint.line);
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

std::size_t diskCount(const Layout& layout) {
    return static_cast<std::size_t>(
        std::count_if(layout.nodes.begin(), layout.nodes.end(),
                      [](const LayoutNode& node) { return node.kind == LayoutKind::Disk; }));
}

// The data stores to the left of their disks, the network to the left of its interfaces. A store that many
// disks share would hold them all in one column.
void writeTarget(const Layout& layout, std::ostream& out) {
    constexpr const char* arrow = " [dir=back, style=dashed";
    std::size_t number = 0;
    const auto addStore = [&](const std::string& name) {
        out << "  s" << number << " [label=" << label({name, "data store"})
            << ", shape=tab, fillcolor=\"#f1f3f5\"];\n";
        return number++;
    };
    const bool isShared = diskCount(layout) <= MOST_WITH_SHARED_STORES;
    std::map<std::string, std::size_t> stores;
    for (std::size_t at = 0; at < layout.nodes.size(); ++at) {
        const LayoutNode& node = layout.nodes[at];
        if (node.dataStore.empty())
            continue;
        auto store = stores.find(node.dataStore);
        if (store == stores.end() || !isShared)
            store = stores.insert_or_assign(node.dataStore, addStore(node.dataStore)).first;
        out << "  s" << store->second << " -> n" << at << arrow
            << (node.isDefaultStore ? ", label=default];\n" : "];\n");
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

// What hangs together, each with its lowest objects, in the order of the nodes.
std::vector<std::vector<std::size_t>> rootsByComponent(const Layout& layout) {
    std::vector<bool> isSeen(layout.nodes.size());
    std::vector<std::vector<std::size_t>> components;
    for (std::size_t start = 0; start < layout.nodes.size(); ++start) {
        std::vector<std::size_t> open = {start}, roots;
        bool isShown = false;
        while (!open.empty()) {
            const std::size_t at = open.back();
            open.pop_back();
            if (isSeen[at])
                continue;
            isSeen[at] = true;
            isShown = isShown || !isTransparent(layout, at);
            const LayoutNode& node = layout.nodes[at];
            if (node.lower.empty() && !isTransparent(layout, at))
                roots.push_back(at);
            for (const auto* edges : {&node.lower, &node.upper})
                for (const LayoutEdge& edge : *edges)
                    open.push_back(edge.node);
        }
        std::sort(roots.begin(), roots.end());
        if (isShown)
            components.push_back(std::move(roots));
    }
    return components;
}

// Components are laid out apart and stand in columns. Each column is filled from below, by who is named
// first: they are named so that reading down the columns gives the order of the disks.
void writeArrangement(const Layout& layout, std::ostream& out) {
    const auto components = rootsByComponent(layout);
    const std::size_t count = components.size() + (layout.target ? 1 : 0); // the network's is the last
    constexpr double highByWide = 0.25;                                    // a disk with its parts
    const auto columns = std::max(1.0, std::round(std::sqrt(static_cast<double>(count) * highByWide)));
    const auto rows =
        std::max<std::size_t>(1, static_cast<std::size_t>(std::ceil(static_cast<double>(count) / columns)));
    out << "  pack=24;\n  packmode=\"array_ti" << rows << "\";\n";
    for (std::size_t first = 0; first < count; first += rows)
        for (std::size_t at = std::min(first + rows, count); at-- > first;)
            if (at == components.size())
                out << "  network;\n";
            else if (const auto& roots = components[at]; !roots.empty()) {
                out << "  {rank=same;";
                for (std::size_t i = 0; i < roots.size(); ++i)
                    out << (i > 0 ? " -> n" : " n") << roots[i];
                out << (roots.size() > 1 ? " [style=invis]}\n" : "}\n");
            }
}

// The heading, and below it what the colours mean.
void writeTitle(const Layout& layout, std::ostream& out) {
    out << "  label=<<table border=\"0\" cellspacing=\"6\"><tr><td colspan=\"" << LAYOUT_USES
        << "\"><font point-size=\"14\">" << escaped(headingOf(layout) + ": " + summaryOf(layout))
        << "</font></td></tr>\n    <tr>";
    for (std::size_t i = 0; i < LAYOUT_USES; ++i) {
        const LayoutPaint& paint = paintOf(static_cast<LayoutUse>(i));
        out << "<td border=\"1\" cellpadding=\"4\""
            << (static_cast<LayoutUse>(i) == LayoutUse::Free ? " style=\"dashed\"" : "") << " color=\""
            << paint.line << "\" bgcolor=\"" << paint.fill << "\">" << paint.name << "</td>";
    }
    out << "</tr>\n    <tr><td colspan=\"" << LAYOUT_USES
        << "\">A thick line marks what boots, a double one what a cluster shares.</td></tr></table>>;\n";
}

} // namespace

void writeLayoutDot(const Layout& layout, std::ostream& out) {
    out << "digraph layout {\n"
           "  rankdir=LR;\n"
           "  labelloc=t;\n"
           "  fontname=\"sans-serif\";\n"
           "  fontsize=10;\n"
           "  node [fontname=\"sans-serif\", fontsize=10, style=filled, margin=\"0.12,0.06\"];\n"
           "  edge [fontname=\"sans-serif\", fontsize=9, color=\"#495057\", arrowsize=0.6];\n";
    writeTitle(layout, out);
    writeArrangement(layout, out);
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
