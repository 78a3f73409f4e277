// SPDX-License-Identifier: Apache-2.0
// Layouts for tests: of sample documents and of rows as text, and what is asked of them as text.
#pragma once

#include "info/Session.h"
#include "info/layout/labels.h"
#include "info/layout/renderers.h"
#include "storage/Rows.h"

#include <nlohmann/json.hpp>

namespace Zorvane {

inline Layout layoutOfSample(const std::string& name) {
    CZor zor;
    std::string path = std::string(ZOR_SOURCE_DIR) + "/share/samples/" + name + ".xml";
    EXPECT_EQ(zor.readXml(path), 0) << path;
    return buildLayout(zor);
}

/// Rows as addRows() takes them.
inline Layout layoutOfRows(const std::string& rows) {
    CZor zor;
    addRows(zor, rows);
    return buildLayout(zor);
}

/// The first way down from where something is mounted, or from an object: "Logs < L < Region0-3 < ...".
inline std::string stack(const Layout& layout, const std::string& top) {
    for (std::size_t at = layout.nodes.size(); at-- > 0;) {
        const LayoutNode& node = layout.nodes[at];
        const auto& places = node.mountedAt;
        if (node.name != top && std::find(places.begin(), places.end(), top) == places.end())
            continue;
        std::string text;
        for (unsigned steps = 0; steps < 20; ++steps) {
            if (!isTransparent(layout, at))
                text += (text.empty() ? "" : " < ") + titleOf(layout.nodes[at]);
            if (layout.nodes[at].lower.empty())
                break;
            at = layout.nodes[at].lower.front().node;
        }
        return text;
    }
    return "nothing";
}

/// The names of the objects that have the flag.
inline std::string withFlag(const Layout& layout, LayoutFlag flag) {
    std::vector<std::string> names;
    for (const LayoutNode& node : layout.nodes)
        if (node.has(flag))
            names.push_back(titleOf(node));
    return joined(names);
}

enum class Form { Tree, Svg, Dot, Json };

inline std::string rendered(const Layout& layout, Form form) {
    std::ostringstream out, err;
    const Session session(out, err, false);
    if (form == Form::Tree)
        writeLayoutTree(layout, session);
    else if (form == Form::Svg)
        writeLayoutSvg(layout, out);
    else if (form == Form::Dot)
        writeLayoutDot(layout, out);
    else
        session.writeJson(layoutDocument(layout));
    return out.str();
}

} // namespace Zorvane
