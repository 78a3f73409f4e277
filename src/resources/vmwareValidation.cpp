// SPDX-License-Identifier: Apache-2.0
// CVmwareB2VResource: the target held against the inventory.
#include "inventory/CZorb2vKvnrdConnect.h"
#include "logging/Trace.h"
#include "model/task_records.h"
#include "ops/zorop.h"
#include "platform/returnCodes.h"
#include "platform/stringManipulation.h"
#include "platform/valueConversion.h"
#include "resources/CVmwareB2VResource.h"
#include "resources/vmwareProfiles.h"

#include <algorithm>

namespace Zorvane {

namespace {

constexpr int VCENTER_SERVER = 1; // the inventory's server type
constexpr const char* STANDALONE_DATA_CENTER = "ha-datacenter";

enum : std::uint64_t {
    MSG_SERVER_NOT_REACHED = 11,
    MSG_QUERY_FAILED = 15,
    MSG_VERIFY_FAILED = 20,
    MSG_BAD_PROXY = 21,
    MSG_BAD_SERVER = 22,
    MSG_BAD_DATA_CENTER = 23,
    MSG_BAD_FOLDER = 24,
    MSG_BAD_POOL = 25,
    MSG_NAME_TAKEN = 26,
    MSG_BAD_NETWORK = 27,
    MSG_BAD_DATA_STORE = 28,
    MSG_BAD_CLUSTER = 29,
    MSG_BAD_ESX_HOST = 30,
};

/// Statuses from here on are the operations client's own, not the daemon's.
constexpr int FIRST_CLIENT_STATUS = 200;

bool isSameName(const std::string& first, const std::string& second) {
    return StrCaseCmp(first.c_str(), second.c_str()) == 0;
}

bool hasName(const std::vector<std::string>& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const auto& other) { return isSameName(other, name); });
}

template <class Map>
auto findName(const Map& map, const std::string& name) {
    return std::find_if(map.begin(), map.end(),
                        [&](const auto& entry) { return isSameName(entry.first, name); });
}

// Asks one listing of names; a failure is logged in the predicate's words.
template <class Listing>
bool listsName(Trace& trace, const char* failure, const std::string& name, Listing listing) {
    CZorb2vKvnrdConnect connect;
    std::vector<std::string> names;
    if (listing(connect, names) != 0) {
        trace.write(LEVEL_FAILURE, failure);
        return false;
    }
    return trace.leave(hasName(names, name), ", name=", name);
}

// The first name of a listing into a field that the user left empty; a failed listing leaves it empty.
template <class Listing>
void fillFromListing(std::string& field, Listing listing) {
    if (!field.empty())
        return;
    CZorb2vKvnrdConnect connect;
    std::vector<std::string> names;
    if (listing(connect, names) == 0 && !names.empty())
        field = names.front();
}

} // namespace

std::string dataCenterComponent(const std::string& dataCenter) {
    std::string path = dataCenter;
    StrReplace(path, "//", "/", true);
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool CVmwareB2VResource::isValidVmProxy(const std::string& proxy, const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmProxy()");
    return listsName(trace, "Failed to retrieve vmproxy list", proxy,
                     [&](auto& connect, auto& names) { return connect.getVmProxyList(names, master); });
}

bool CVmwareB2VResource::isValidVmServer(const std::string& server, const std::string& master, int& type) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmServer()");
    CZorb2vKvnrdConnect connect;
    std::map<std::string, int> servers;
    if (connect.getVmServerList(servers, master) != 0) {
        trace.write(LEVEL_FAILURE, "Failed to retrieve vmServers list");
        return false;
    }
    const auto found = findName(servers, server);
    if (found == servers.end())
        return false;
    type = found->second;
    return trace.leave(true, ", type=", type);
}

bool CVmwareB2VResource::isValidEsxhost(const std::string& esx, const std::string& proxy,
                                        const std::string& vmServer, const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidEsxhost()");
    return listsName(trace, "Failed to retrieve esx servers list", esx, [&](auto& connect, auto& names) {
        return connect.getEsxServerList(names, proxy, vmServer, master);
    });
}

bool CVmwareB2VResource::isValidDatacenter(const std::string& dataCenter, const std::string& proxy,
                                           const std::string& vmServer, const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidDatacenter()");
    return listsName(
        trace, "Failed to retrieve data centers list", dataCenterComponent(dataCenter),
        [&](auto& connect, auto& names) { return connect.getDcList(names, proxy, vmServer, master); });
}

bool CVmwareB2VResource::isValidVmFolder(const std::string& folder, const std::string& proxy,
                                         const std::string& vmServer, const std::string& dataCenter,
                                         const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmFolder()");
    return listsName(trace, "Failed to retrieve VM Folders list", folder, [&](auto& connect, auto& names) {
        return connect.getVmFoldersList(names, proxy, dataCenterComponent(dataCenter), vmServer, master);
    });
}

bool CVmwareB2VResource::isValidCluster(const std::string& cluster, const std::string& proxy,
                                        const std::string& vmServer, const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidCluster()");
    return listsName(trace, "Failed to retrieve cluster list", cluster, [&](auto& connect, auto& names) {
        return connect.getClusterList(names, proxy, vmServer, master);
    });
}

bool CVmwareB2VResource::isValidRpool(const std::string& pool, const std::string& proxy,
                                      const std::string& esx, const std::string& vmServer,
                                      const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidRpool()");
    // The defaults fill in a path, users write a name: both are taken.
    return listsName(trace, "Failed to retrieve resource pool list", pool, [&](auto& connect, auto& names) {
        std::vector<std::string> paths;
        const int rc = connect.getRpoolList(names, paths, proxy, esx, vmServer, master);
        names.insert(names.end(), paths.begin(), paths.end());
        return rc;
    });
}

bool CVmwareB2VResource::isValidVmDisplayName(const std::string& name, const std::string& proxy,
                                              const std::string& esx, const std::string& vmServer,
                                              const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmDisplayName()");
    return !listsName(trace, "Failed to retrieve VMs list", name, [&](auto& connect, auto& names) {
        return connect.getVmList(names, proxy, esx, vmServer, master);
    });
}

bool CVmwareB2VResource::isValidDataStore(const std::string& store, const std::string& proxy,
                                          const std::string& esx, const std::string& vmServer,
                                          const std::string& master, std::int64_t& size) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidDataStore()");
    CZorb2vKvnrdConnect connect;
    std::map<std::string, long long> stores;
    if (connect.getDsList(stores, proxy, esx, vmServer, master) != 0) {
        trace.write(LEVEL_FAILURE, "Failed to retrieve data stores list");
        return false;
    }
    const auto found = findName(stores, store);
    if (found == stores.end())
        return false;
    size = found->second;
    return trace.leave(true, ", size=", size);
}

bool CVmwareB2VResource::isValidNetwork(const std::string& network, const std::string& proxy,
                                        const std::string& esx, const std::string& vmServer,
                                        const std::string& master) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidNetwork()");
    return listsName(trace, "Failed to retrieve VM Network list", network, [&](auto& connect, auto& names) {
        return connect.getVmNetworksList(names, proxy, esx, vmServer, master);
    });
}

std::uint32_t CVmwareB2VResource::initializeVeDefaults(B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::initializeVeDefaults()");
    const auto& [proxy, server, master] = std::tie(input.vmProxy, input.vmServer, input.masterServer);
    CZorb2vKvnrdConnect connect;
    std::vector<std::string> proxies;
    connect.getVmProxyList(proxies, master);
    std::map<std::string, int> servers;
    if (connect.getVmServerList(servers, master) != 0) {
        trace.write(LEVEL_FAILURE, "Failed to retrieve vmServers list");
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    const bool isVCenter = std::any_of(servers.begin(), servers.end(), [&](const auto& entry) {
        return isSameName(entry.first, server) && entry.second == VCENTER_SERVER;
    });

    if (isVCenter)
        fillFromListing(input.esxHost, [&](auto& listing, auto& names) {
            return listing.getEsxServerList(names, proxy, server, master);
        });
    else if (input.esxHost.empty())
        input.esxHost = server;

    if (input.dataStore.empty() && input.diskMap.empty()) {
        std::map<std::string, long long> stores;
        if (connect.getDsList(stores, proxy, input.esxHost, server, master) == 0 && !stores.empty()) {
            input.dataStore = stores.begin()->first;
            input.dataStoreSize = stores.begin()->second;
        }
    }
    fillFromListing(input.resourcePool, [&](auto& listing, auto& paths) {
        std::vector<std::string> names;
        return listing.getRpoolList(names, paths, proxy, input.esxHost, server, master);
    });
    if (isVCenter) {
        fillFromListing(input.dataCenter, [&](auto& listing, auto& names) {
            return listing.getDcList(names, proxy, server, master);
        });
        fillFromListing(input.vmFolder, [&](auto& listing, auto& names) {
            return listing.getVmFoldersList(names, proxy, dataCenterComponent(input.dataCenter), server,
                                            master);
        });
    } else {
        if (input.dataCenter.empty())
            input.dataCenter = STANDALONE_DATA_CENTER;
        input.cluster.clear();
    }
    if (!input.stripNetwork)
        fillFromListing(input.vmNetwork, [&](auto& listing, auto& names) {
            return listing.getVmNetworksList(names, proxy, input.esxHost, server, master);
        });
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

std::uint32_t CVmwareB2VResource::validateVMwareVEsetup(B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::validateVMwareVEsetup()");
    const auto& [proxy, server, master] = std::tie(input.vmProxy, input.vmServer, input.masterServer);
    const std::string& esx = input.esxHost;
    const auto refuse = [&](std::uint64_t message, const std::string& name, const auto&... debugText) {
        setErrorFromCatalogue(message, name);
        trace.write(LEVEL_TRACE, debugText...);
        return trace.leave(static_cast<std::uint32_t>(ZOR_ERROR), ", return ZOR_ERROR");
    };
    // The order of these checks is a contract: the first that fails is the one that the user is told of.
    if (!isValidVmProxy(proxy, master))
        return refuse(MSG_BAD_PROXY, proxy,
                      "Invalid Virtual Image Conversion client selected for restore:", proxy);
    int serverType = 0;
    if (!isValidVmServer(server, master, serverType))
        return refuse(MSG_BAD_SERVER, server, "Invalid Virtual Machine Server selected for restore:", server);
    if (serverType == VCENTER_SERVER) {
        if (!esx.empty() && !isValidEsxhost(esx, proxy, server, master))
            return refuse(MSG_BAD_ESX_HOST, esx, "Invalid Esx server:", esx, " of vCenter:", server);
        if (!dataCenterComponent(input.dataCenter).empty() &&
            !isValidDatacenter(input.dataCenter, proxy, server, master))
            return refuse(MSG_BAD_DATA_CENTER, input.dataCenter,
                          "Invalid Virtual Machine Server selected for restore:", input.dataCenter);
        if (!isValidVmFolder(input.vmFolder, proxy, server, input.dataCenter, master))
            return refuse(MSG_BAD_FOLDER, input.vmFolder,
                          "Invalid Virtual Environment folder selected for restore:", input.vmFolder);
        if (!input.cluster.empty() && !isValidCluster(input.cluster, proxy, server, master))
            return refuse(MSG_BAD_CLUSTER, input.cluster,
                          "Invalid ESX cluster selected for restore:", input.cluster);
    }
    if (!isValidRpool(input.resourcePool, proxy, esx, server, master))
        return refuse(MSG_BAD_POOL, input.resourcePool,
                      "Invalid Resource Pool selected for restore:", input.resourcePool);
    if (!input.overwriteVm && !isValidVmDisplayName(input.vmDisplayName, proxy, esx, server, master)) {
        setErrorFromCatalogue(MSG_NAME_TAKEN);
        trace.write(LEVEL_TRACE, "Another Virtual Machine already exists with same name");
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    if (!input.dataStore.empty() &&
        !isValidDataStore(input.dataStore, proxy, esx, server, master, input.dataStoreSize))
        return refuse(MSG_BAD_DATA_STORE, input.dataStore,
                      "Invalid Datastore selected for restore:", input.dataStore);
    for (DiskDataStoreEntry& entry : input.diskMap)
        if (!isValidDataStore(entry.dataStoreName, proxy, esx, server, master, entry.availableSize))
            return refuse(MSG_BAD_DATA_STORE, entry.dataStoreName,
                          "Invalid Datastore selected for restore:", entry.dataStoreName);
    if (!input.vmNetwork.empty() && !isValidNetwork(input.vmNetwork, proxy, esx, server, master))
        return refuse(MSG_BAD_NETWORK, input.vmNetwork, "Invalid Network Adaptor selected:", input.vmNetwork);
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

std::uint32_t CVmwareB2VResource::validateSetup(B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::validateSetup()");
    if (!input.guiJob)
        if (const std::uint32_t rc = validateVMwareVEsetup(input))
            return trace.leave(rc, ", return rc=", rc);

    CZor profiles;
    if (const int rc = queryVmwareProfileByName(profiles, input.profileName)) {
        setErrorFromCatalogue(MSG_QUERY_FAILED);
        return trace.leave(static_cast<std::uint32_t>(rc), ", return rc=", rc);
    }
    // Without a profile the number is 0 and the daemon's answer decides.
    const CVmwareProfileOptions* profile = profiles.m_vVmwareProfileOptions.first();
    std::string output;
    const int rc = ZorOps(ZOROP_VERIFYB2V, ZOROP_VEPROFILE, "1",
                          FormatInteger(profile ? profile->getId() : 0, 10), &output);
    if (rc == 0)
        return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
    if (rc < FIRST_CLIENT_STATUS) {
        setErrorFromCatalogue(MSG_VERIFY_FAILED);
        trace.write(LEVEL_TRACE, "verifyb2v failed, retval=", rc, " output=", output);
    } else {
        setErrorFromCatalogue(MSG_SERVER_NOT_REACHED, static_cast<std::uint32_t>(rc));
        trace.write(LEVEL_TRACE, "Could not contact Master Server", " retval=", rc);
    }
    return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
}

} // namespace Zorvane
