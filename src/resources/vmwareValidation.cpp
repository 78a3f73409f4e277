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
#include <utility>

namespace Zorvane {

namespace {

constexpr int VCENTER_SERVER = 1; // the inventory's server type
constexpr const char* STANDALONE_DATA_CENTER = "ha-datacenter";

/// Statuses from here on are the operations client's own, not the daemon's.
constexpr int FIRST_CLIENT_STATUS = 200;

bool isSameName(const std::string& first, const std::string& second) {
    return StrCaseCmp(first.c_str(), second.c_str()) == 0;
}

bool hasName(const std::vector<std::string>& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const auto& other) { return isSameName(other, name); });
}

// Asks one listing of names; a failure is logged in the predicate's words.
template <class Listing>
bool listsName(Trace& trace, const char* failure, const std::string& name, ListedNames* listed,
               Listing listing) {
    CZorb2vKvnrdConnect connect;
    std::vector<std::string> names;
    if (listing(connect, names) != 0) {
        trace.write(LEVEL_FAILURE, failure);
        return false;
    }
    const bool isThere = hasName(names, name);
    if (listed)
        *listed = {std::move(names), true};
    return trace.leave(isThere, ", name=", name);
}

// The same of a listing with a number for each name, which `number` receives.
template <class Number, class Map>
bool findsName(const Map& map, const std::string& name, Number& number, ListedNames* listed) {
    const auto found = std::find_if(map.begin(), map.end(),
                                    [&](const auto& entry) { return isSameName(entry.first, name); });
    if (found != map.end())
        number = found->second;
    if (listed) {
        *listed = {{}, true};
        for (const auto& entry : map)
            listed->names.push_back(entry.first);
    }
    return found != map.end();
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

bool CVmwareB2VResource::isValidVmProxy(const std::string& proxy, const std::string& master,
                                        ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmProxy()");
    return listsName(trace, "Failed to retrieve vmproxy list", proxy, listed,
                     [&](auto& connect, auto& names) { return connect.getVmProxyList(names, master); });
}

bool CVmwareB2VResource::isValidVmServer(const std::string& server, const std::string& master, int& type,
                                         ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmServer()");
    CZorb2vKvnrdConnect connect;
    std::map<std::string, int> servers;
    if (connect.getVmServerList(servers, master) != 0) {
        trace.write(LEVEL_FAILURE, "Failed to retrieve vmServers list");
        return false;
    }
    if (!findsName(servers, server, type, listed))
        return false;
    return trace.leave(true, ", type=", type);
}

bool CVmwareB2VResource::isValidEsxhost(const std::string& esx, const std::string& proxy,
                                        const std::string& vmServer, const std::string& master,
                                        ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidEsxhost()");
    return listsName(
        trace, "Failed to retrieve esx servers list", esx, listed,
        [&](auto& connect, auto& names) { return connect.getEsxServerList(names, proxy, vmServer, master); });
}

bool CVmwareB2VResource::isValidDatacenter(const std::string& dataCenter, const std::string& proxy,
                                           const std::string& vmServer, const std::string& master,
                                           ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidDatacenter()");
    return listsName(
        trace, "Failed to retrieve data centers list", dataCenterComponent(dataCenter), listed,
        [&](auto& connect, auto& names) { return connect.getDcList(names, proxy, vmServer, master); });
}

bool CVmwareB2VResource::isValidVmFolder(const std::string& folder, const std::string& proxy,
                                         const std::string& vmServer, const std::string& dataCenter,
                                         const std::string& master, ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmFolder()");
    return listsName(
        trace, "Failed to retrieve VM Folders list", folder, listed, [&](auto& connect, auto& names) {
            return connect.getVmFoldersList(names, proxy, dataCenterComponent(dataCenter), vmServer, master);
        });
}

bool CVmwareB2VResource::isValidCluster(const std::string& cluster, const std::string& proxy,
                                        const std::string& vmServer, const std::string& master,
                                        ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidCluster()");
    return listsName(
        trace, "Failed to retrieve cluster list", cluster, listed,
        [&](auto& connect, auto& names) { return connect.getClusterList(names, proxy, vmServer, master); });
}

bool CVmwareB2VResource::isValidRpool(const std::string& pool, const std::string& proxy,
                                      const std::string& esx, const std::string& vmServer,
                                      const std::string& master, ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidRpool()");
    // The defaults fill in a path, users write a name: both are taken.
    return listsName(trace, "Failed to retrieve resource pool list", pool, listed,
                     [&](auto& connect, auto& names) {
                         std::vector<std::string> paths;
                         const int rc = connect.getRpoolList(names, paths, proxy, esx, vmServer, master);
                         names.insert(names.end(), paths.begin(), paths.end());
                         return rc;
                     });
}

bool CVmwareB2VResource::isValidVmDisplayName(const std::string& name, const std::string& proxy,
                                              const std::string& esx, const std::string& vmServer,
                                              const std::string& master, ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidVmDisplayName()");
    return !listsName(trace, "Failed to retrieve VMs list", name, listed, [&](auto& connect, auto& names) {
        return connect.getVmList(names, proxy, esx, vmServer, master);
    });
}

bool CVmwareB2VResource::isValidDataStore(const std::string& store, const std::string& proxy,
                                          const std::string& esx, const std::string& vmServer,
                                          const std::string& master, std::int64_t& size,
                                          ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidDataStore()");
    CZorb2vKvnrdConnect connect;
    std::map<std::string, long long> stores;
    if (connect.getDsList(stores, proxy, esx, vmServer, master) != 0) {
        trace.write(LEVEL_FAILURE, "Failed to retrieve data stores list");
        return false;
    }
    if (!findsName(stores, store, size, listed))
        return false;
    return trace.leave(true, ", size=", size);
}

bool CVmwareB2VResource::isValidNetwork(const std::string& network, const std::string& proxy,
                                        const std::string& esx, const std::string& vmServer,
                                        const std::string& master, ListedNames* listed) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isValidNetwork()");
    return listsName(trace, "Failed to retrieve VM Network list", network, listed,
                     [&](auto& connect, auto& names) {
                         return connect.getVmNetworksList(names, proxy, esx, vmServer, master);
                     });
}

std::uint32_t CVmwareB2VResource::initializeVeDefaults(B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::initializeVeDefaults()");
    const std::string& proxy = input.vmProxy;
    const std::string& server = input.vmServer;
    const std::string& master = input.masterServer;
    CZorb2vKvnrdConnect connect;
    std::vector<std::string> proxies;
    connect.getVmProxyList(proxies, master);
    std::map<std::string, int> servers;
    if (connect.getVmServerList(servers, master) != 0) {
        report({.kind = FindingKind::SERVERS_NOT_LISTED, .isUnanswered = true});
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
        if (!input.cluster.empty())
            report({.kind = FindingKind::CLUSTER_DROPPED, .value = input.cluster});
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
    // The names by which the rules go on where the user's are not known, and what to say of it then. What the
    // user left open had no defaults with those, and is not held against anything.
    std::string esx = input.esxHost, dataCenter = input.dataCenter, meant, assumption;
    std::uint32_t rc = ZOR_SUCCESS;
    const auto leave = [&] {
        return trace.leave(rc, rc == ZOR_SUCCESS ? ", return ZOR_SUCCESS" : ", return ZOR_ERROR");
    };
    const auto skip = [&](const char* what, const char* why) { report(notChecked(what, why)); };
    ListedNames listed;
    // Takes the result of a check, which has filled `listed`. Whether the next one is made.
    const auto goesOn = [&](bool holds, FindingKind rule, const std::string& name, const auto&... debugText) {
        ListedNames known = std::exchange(listed, {});
        if (holds)
            return noteDoubts(rule, name, known, assumption), true;
        rc = ZOR_ERROR;
        const Finding unknown{.kind = rule,
                              .value = name,
                              .text = rule == FindingKind::MACHINE_EXISTS ? "" : assumption,
                              .candidates = std::move(known.names),
                              .isUnanswered = !known.isAnswered};
        meant = meantBy(unknown);
        const bool isNext = refuse(unknown);
        trace.write(LEVEL_TRACE, debugText...);
        return isNext;
    };
    const auto assuming = [](FindingKind rule, const std::string& name) {
        return std::string("Assuming the ") + describe(rule).object + " \"" + name + "\".";
    };

    // The order of these checks is a contract: the first that fails is the one that the user is told of.
    if (!goesOn(isValidVmProxy(proxy, master, &listed), FindingKind::PROXY_UNKNOWN, proxy,
                "Invalid Virtual Image Conversion client selected for restore:", proxy))
        return leave();
    int serverType = 0;
    const bool hasServer = isValidVmServer(server, master, serverType, &listed);
    if (!goesOn(hasServer, FindingKind::SERVER_UNKNOWN, server,
                "Invalid Virtual Machine Server selected for restore:", server))
        return leave();
    if (!hasServer) {
        // What the user left open depends on the server: who knows which one was meant starts from there.
        if (meant.empty())
            skip("objects of the target", "the virtual machine server is not known");
        return leave();
    }
    bool hasHost = true;
    if (serverType == VCENTER_SERVER) {
        hasHost = esx.empty() || isValidEsxhost(esx, proxy, server, master, &listed);
        if (!goesOn(hasHost, FindingKind::HOST_UNKNOWN, esx, "Invalid Esx server:", esx,
                    " of vCenter:", server))
            return leave();
        if (!hasHost)
            esx = meant;
        const bool hasDataCenter = dataCenterComponent(input.dataCenter).empty() ||
                                   isValidDatacenter(input.dataCenter, proxy, server, master, &listed);
        if (!goesOn(hasDataCenter, FindingKind::DATA_CENTER_UNKNOWN, input.dataCenter,
                    "Invalid Virtual Machine Server selected for restore:", input.dataCenter))
            return leave();
        if (!hasDataCenter) {
            dataCenter = meant;
            assumption = assuming(FindingKind::DATA_CENTER_UNKNOWN, meant);
        }
        if (!hasDataCenter && dataCenter.empty())
            skip("folder", "the data center is not known");
        else if ((hasDataCenter || !input.vmFolder.empty()) &&
                 !goesOn(isValidVmFolder(input.vmFolder, proxy, server, dataCenter, master, &listed),
                         FindingKind::FOLDER_UNKNOWN, input.vmFolder,
                         "Invalid Virtual Environment folder selected for restore:", input.vmFolder))
            return leave();
        assumption.clear();
        if (!input.cluster.empty() && !goesOn(isValidCluster(input.cluster, proxy, server, master, &listed),
                                              FindingKind::CLUSTER_UNKNOWN, input.cluster,
                                              "Invalid ESX cluster selected for restore:", input.cluster))
            return leave();
    }
    const bool hasPlace = hasHost || !esx.empty();
    if (!hasHost)
        assumption = assuming(FindingKind::HOST_UNKNOWN, esx);
    if (!hasPlace)
        skip("resource pool, data stores and network", "the ESX host is not known");
    else if ((hasHost || !input.resourcePool.empty()) &&
             !goesOn(isValidRpool(input.resourcePool, proxy, esx, server, master, &listed),
                     FindingKind::POOL_UNKNOWN, input.resourcePool,
                     "Invalid Resource Pool selected for restore:", input.resourcePool))
        return leave();
    if (!input.overwriteVm &&
        !goesOn(isValidVmDisplayName(input.vmDisplayName, proxy, esx, server, master, &listed),
                FindingKind::MACHINE_EXISTS, input.vmDisplayName,
                "Another Virtual Machine already exists with same name"))
        return leave();
    if (!hasPlace)
        return leave();
    if (!input.dataStore.empty() &&
        !goesOn(isValidDataStore(input.dataStore, proxy, esx, server, master, input.dataStoreSize, &listed),
                FindingKind::STORE_UNKNOWN, input.dataStore,
                "Invalid Datastore selected for restore:", input.dataStore))
        return leave();
    for (DiskDataStoreEntry& entry : input.diskMap)
        if (!goesOn(isValidDataStore(entry.dataStoreName, proxy, esx, server, master, entry.availableSize,
                                     &listed),
                    FindingKind::DISK_STORE_UNKNOWN, entry.dataStoreName,
                    "Invalid Datastore selected for restore:", entry.dataStoreName))
            return leave();
    if (!input.vmNetwork.empty())
        (void)goesOn(isValidNetwork(input.vmNetwork, proxy, esx, server, master, &listed),
                     FindingKind::NETWORK_UNKNOWN, input.vmNetwork,
                     "Invalid Network Adaptor selected:", input.vmNetwork);
    return leave();
}

// What a check that holds leaves open: which of several objects is meant, or whether it was a check at all.
void CVmwareB2VResource::noteDoubts(FindingKind rule, const std::string& name, const ListedNames& known,
                                    const std::string& assumption) {
    if (rule == FindingKind::MACHINE_EXISTS) {
        if (!known.isAnswered)
            report(notChecked("name of the virtual machine",
                              "the inventory did not list the machines, and the name counts as free"));
        return;
    }
    const auto matches = std::count_if(known.names.begin(), known.names.end(),
                                       [&](const auto& other) { return isSameName(other, name); });
    if (matches < 2)
        return;
    Finding ambiguous{.kind = FindingKind::NAME_AMBIGUOUS, .value = name, .key = describe(rule).key};
    for (const std::string& other : known.names)
        if (other.find('/') != std::string::npos && isSameName(dataCenterComponent(other), name))
            ambiguous.candidates.push_back(other);
    ambiguous.text = "The target has " + std::to_string(matches) + " of the kind \"" + describe(rule).object +
                     "\" by this name.";
    if (!assumption.empty())
        ambiguous.text += " " + assumption;
    report(ambiguous);
}

std::uint32_t CVmwareB2VResource::validateSetup(B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::validateSetup()");
    if (!input.guiJob)
        if (const std::uint32_t rc = validateVMwareVEsetup(input))
            return trace.leave(rc, ", return rc=", rc);
    return verifyVeProfile(trace, input);
}

std::uint32_t CVmwareB2VResource::verifyVeProfile(const B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::verifyVeProfile()");
    return verifyVeProfile(trace, input);
}

std::uint32_t CVmwareB2VResource::verifyVeProfile(Trace& trace, const B2VInput& input) {
    CZor profiles;
    if (const int rc = queryVmwareProfileByName(profiles, input.profileName)) {
        refuse({.kind = FindingKind::PROFILE_NOT_READ, .value = input.profileName, .isUnanswered = true});
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
        refuse({.kind = FindingKind::PROFILE_NOT_VERIFIED, .value = input.profileName, .text = output});
        trace.write(LEVEL_TRACE, "verifyb2v failed, retval=", rc, " output=", output);
    } else {
        setErrorFromCatalogue(describe(FindingKind::MASTER_NOT_REACHED).message,
                              static_cast<std::uint32_t>(rc));
        report(
            {.kind = FindingKind::MASTER_NOT_REACHED, .value = FormatInteger(rc, 10), .isUnanswered = true});
        trace.write(LEVEL_TRACE, "Could not contact Master Server", " retval=", rc);
    }
    return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
}

} // namespace Zorvane
