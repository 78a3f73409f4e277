// SPDX-License-Identifier: Apache-2.0
#include "info/layout/cellText.h"

#include "info/layout/labels.h"

#include <algorithm>

namespace Zorvane {

namespace {

void addNew(std::vector<std::string>& texts, const std::string& text) {
    if (!text.empty() && std::find(texts.begin(), texts.end(), text) == texts.end())
        texts.push_back(text);
}

// The size here, and of the whole if it lies elsewhere too. A mirror is as large as each of its parts.
std::string sizeOf(const Layout& layout, const BarCell& cell) {
    std::optional<std::int64_t> here = cell.bytes, whole;
    for (const std::size_t at : cell.chain) {
        const LayoutNode& node = layout.nodes[at];
        if (!here && node.lower.size() <= 1)
            here = node.size;
        if (node.kind == LayoutKind::Volume || node.kind == LayoutKind::Array)
            whole = node.size;
    }
    return here && whole && *whole > *here ? sizeText(here) + " of " + sizeText(whole)
                                           : sizeText(here ? here : whole);
}

} // namespace

std::string dotted(const std::vector<std::string>& texts) {
    std::string made;
    for (const std::string& text : texts)
        if (!text.empty())
            made += (made.empty() ? "" : " \xC2\xB7 ") + text;
    return made;
}

CellText textOf(const Layout& layout, const BarCell& cell) {
    CellText made;
    if (cell.hidden > 0) {
        made.title = "+" + std::to_string(cell.hidden);
        made.note = made.hint = std::to_string(cell.hidden) + " more parts";
        return made;
    }
    const std::string size = sizeOf(layout, cell);
    if (cell.chain.empty()) {
        made.title = "free";
        made.facts = {size};
        made.note = made.hint = "free, " + size;
        return made;
    }
    std::vector<std::string> places, kinds, marks;
    std::vector<std::string>& names = made.names;
    std::string fileSystem;
    for (auto at = cell.chain.rbegin(); at != cell.chain.rend(); ++at) {
        const LayoutNode& node = layout.nodes[*at];
        for (const std::string& place : node.mountedAt)
            addNew(places, shown(place));
        addNew(names, shown(node.name));
        addNew(kinds, sortOf(node));
        for (std::size_t i = 0; i < LAYOUT_FLAGS; ++i)
            if (const auto flag = static_cast<LayoutFlag>(i); node.has(flag))
                addNew(marks, nameOf(flag));
        if (node.kind == LayoutKind::FileSystem && fileSystem.empty())
            fileSystem = sortOf(node);
    }
    made.title = !places.empty() ? joined(places) : !names.empty() ? names.front() : kinds.front();
    std::erase(names, made.title);
    std::string where;
    if (cell.goesOn)
        where = layout.nodes[cell.chain.back()].kind == LayoutKind::Disk ? "drawn above" : "drawn below";
    const std::string kind = fileSystem.empty() ? kinds.front() : fileSystem;
    made.facts = {dotted({kind == made.title ? "" : kind, size}), joined(marks), where};
    marks.insert(marks.begin(), {kind, size});
    std::erase_if(marks, [&](const std::string& mark) { return mark.empty() || mark == made.title; });
    made.note = made.title + ", " + joined(marks);
    made.hint = dotted({made.title, dotted(names), dotted(kinds), size, made.facts[1]});
    return made;
}

} // namespace Zorvane
