// SPDX-License-Identifier: Apache-2.0
#include "info/layout/renderers.h"

#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

Json numberOrNull(const std::optional<std::int64_t>& number) {
    return number ? Json(*number) : Json(nullptr);
}

Json flagsOf(const LayoutNode& node) {
    Json flags = Json::array();
    for (std::size_t i = 0; i < LAYOUT_FLAGS; ++i)
        if (const auto flag = static_cast<LayoutFlag>(i); node.has(flag))
            flags.push_back(nameOf(flag));
    return flags;
}

Json objectOf(const Layout& layout, const LayoutNode& node) {
    Json on = Json::array();
    for (const LayoutEdge& edge : node.lower)
        on.push_back({{"id", layout.nodes[edge.node].key}, {"extent", numberOrNull(edge.extent)}});
    Json made = {{"id", node.key},
                 {"kind", nameOf(node.kind)},
                 {"sort", node.sort},
                 {"name", node.name},
                 {"detail", node.detail},
                 {"size", numberOrNull(node.size)},
                 {"offset", numberOrNull(node.offset)},
                 {"group", node.group},
                 {"cluster", node.cluster},
                 {"flags", flagsOf(node)},
                 {"mountedAt", node.mountedAt},
                 {"on", on}};
    if (layout.target && node.kind == LayoutKind::Disk)
        made["dataStore"] = {{"name", node.dataStore}, {"isDefault", node.isDefaultStore}};
    return made;
}

} // namespace

Json layoutDocument(const Layout& layout) {
    Json made = {{"client", layout.client},  {"configuration", layout.configuration},
                 {"system", layout.system},  {"bootDisks", Json::array()},
                 {"objects", Json::array()}, {"interfaces", Json::array()},
                 {"target", nullptr},        {"danglingReferences", layout.dangling},
                 {"leftOut", layout.leftOut}};
    for (const std::size_t disk : bootDisks(layout))
        made["bootDisks"].push_back(layout.nodes[disk].key);
    for (const LayoutNode& node : layout.nodes)
        made["objects"].push_back(objectOf(layout, node));
    for (const LayoutInterface& interface : layout.interfaces)
        made["interfaces"].push_back(
            {{"name", interface.name}, {"mac", interface.mac}, {"addresses", interface.addresses}});
    if (layout.target)
        made["target"] = {{"machine", layout.target->machine},
                          {"network", layout.target->network},
                          {"unknownDisks", layout.target->unknownDisks}};
    return made;
}

} // namespace Zorvane
