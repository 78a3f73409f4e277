// SPDX-License-Identifier: Apache-2.0
#include "lab/Inventory.h"

#include "lab/tomlFile.h"
#include "platform/stringManipulation.h"

#include <algorithm>

namespace Zorvane {

namespace {

// The sizes stay within what clients keep in 64 signed bits of bytes.
constexpr std::int64_t MAX_MIB = std::int64_t{1} << 42;

InventoryHost readHost(TomlTable table) {
    InventoryHost host;
    host.name = table.text("name");
    host.cluster = table.text("cluster", "");
    host.networks = table.texts("networks");
    host.pools = table.texts("pools");
    host.machines = table.texts("machines");
    for (TomlTable& row : table.tables("datastores")) {
        InventoryStore& store = host.stores.emplace_back();
        store.name = row.text("name");
        store.freeBytes = static_cast<std::uint64_t>(row.integer("free_mib", 0, MAX_MIB)) << 20;
        store.pod = row.text("pod", "");
        row.finish();
    }
    table.finish();
    return host;
}

InventoryServer readServer(TomlTable table) {
    InventoryServer server;
    server.name = table.text("name");
    const std::string type = table.text("type");
    if (type != "vcenter" && type != "esx")
        table.refuse("type must be \"vcenter\" or \"esx\"");
    server.type = type == "vcenter" ? InventoryServer::Type::VCenter : InventoryServer::Type::Esx;
    for (TomlTable& row : table.tables("datacenter")) {
        InventoryDataCenter& dataCenter = server.dataCenters.emplace_back();
        dataCenter.name = row.text("name");
        dataCenter.folders = row.texts("folders");
        for (TomlTable& host : row.tables("host"))
            dataCenter.hosts.push_back(readHost(std::move(host)));
        row.finish();
    }
    table.finish();
    return server;
}

template <class Rows>
auto findNamed(const Rows& rows, const std::string& name) -> decltype(rows.data()) {
    const auto row = std::ranges::find_if(
        rows, [&](const auto& each) { return StrCaseCmp(each.name.c_str(), name.c_str()) == 0; });
    return row == rows.end() ? nullptr : &*row;
}

std::string joinPath(std::string parent, std::string_view child) {
    return child.empty() ? parent : std::move(parent) + "/" + std::string(child);
}

} // namespace

const InventoryServer* Inventory::findServer(const std::string& name) const {
    return findNamed(servers, name);
}

InventoryPlace findHost(const InventoryServer& server, const std::string& name) {
    for (const InventoryDataCenter& dataCenter : server.dataCenters)
        if (const InventoryHost* host = findNamed(dataCenter.hosts, name))
            return {&dataCenter, host};
    return {};
}

const InventoryDataCenter* findDataCenter(const InventoryServer& server, const std::string& name) {
    return findNamed(server.dataCenters, name);
}

std::string folderPath(const InventoryDataCenter& dataCenter, std::string_view folder) {
    return joinPath("/" + dataCenter.name + "/vm", folder);
}

std::string poolPath(const InventoryDataCenter& dataCenter, const InventoryHost& host,
                     std::string_view pool) {
    return joinPath("/" + dataCenter.name + "/host/" + (host.cluster.empty() ? host.name : host.cluster) +
                        "/Resources",
                    pool);
}

Inventory readInventory(const std::filesystem::path& file) {
    TomlTable root = readToml(file);
    Inventory inventory;
    inventory.proxies = root.texts("proxies");
    for (TomlTable& table : root.tables("server"))
        inventory.servers.push_back(readServer(std::move(table)));
    root.finish();
    return inventory;
}

} // namespace Zorvane
