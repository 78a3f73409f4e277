// SPDX-License-Identifier: Apache-2.0
// The virtualisation targets that the request daemon of a lab reports, from inventory.toml.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane {

struct InventoryStore {
    std::string name;
    std::uint64_t freeBytes = 0;
    std::string pod; ///< the storage pod that it is part of, or empty
};

struct InventoryHost {
    std::string name;
    std::string cluster; ///< empty: a host of its own
    std::vector<InventoryStore> stores;
    std::vector<std::string> networks;
    std::vector<std::string> pools; ///< resource pools as paths below the host's root pool: "Gold/Databases"
    std::vector<std::string> machines;
};

struct InventoryDataCenter {
    std::string name;
    std::vector<std::string> folders; ///< folders for machines, as paths below the root folder: "Web/Test"
    std::vector<InventoryHost> hosts;
};

struct InventoryServer {
    enum class Type : int { VCenter = 1, Esx = 2 };

    std::string name;
    Type type = Type::VCenter;
    std::vector<InventoryDataCenter> dataCenters;
};

struct Inventory {
    std::vector<std::string> proxies;
    std::vector<InventoryServer> servers;

    // Names are compared without case, as clients do. Null for an unknown one.
    [[nodiscard]] const InventoryServer* findServer(const std::string& name) const;
};

/// What stands at the name of an ESX host; both null for an unknown one.
struct InventoryPlace {
    const InventoryDataCenter* dataCenter = nullptr;
    const InventoryHost* host = nullptr;
};
[[nodiscard]] InventoryPlace findHost(const InventoryServer& server, const std::string& name);
[[nodiscard]] const InventoryDataCenter* findDataCenter(const InventoryServer& server,
                                                        const std::string& name);

// The paths under which clients name the nested objects.
[[nodiscard]] std::string folderPath(const InventoryDataCenter& dataCenter, std::string_view folder);
[[nodiscard]] std::string poolPath(const InventoryDataCenter& dataCenter, const InventoryHost& host,
                                   std::string_view pool);

/// LabError for a file that can't be read or makes no inventory, with file, line and what is wanted.
Inventory readInventory(const std::filesystem::path& file);

} // namespace Zorvane
