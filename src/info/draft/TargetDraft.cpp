// SPDX-License-Identifier: Apache-2.0
#include "info/draft/TargetDraft.h"

#include "info/Session.h"
#include "info/check/similarNames.h"
#include "inventory/CZorb2vKvnrdConnect.h"
#include "platform/fieldSplitting.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <numeric>

namespace Zorvane {

namespace {

using Names = std::vector<std::string>;

constexpr std::size_t MOST_OTHERS = 6;
constexpr const char* STANDALONE_DATA_CENTER = "ha-datacenter";

bool isSameName(const std::string& first, const std::string& second) {
    return StrCaseCmp(first.c_str(), second.c_str()) == 0;
}

bool contains(const Names& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& other) { return isSameName(other, name); });
}

// A harddisk line has a separator more.
bool isWritableStore(const std::string& store) {
    return isWritable(store) && store.find(':') == std::string::npos && !store.ends_with('"');
}

/// Listings of one server.
class Target {
  public:
    explicit Target(const B2VInput& input) : m_input(input) {
        std::map<std::string, int> servers;
        Names proxies;
        if (m_connect.getVmServerList(servers, input.masterServer) != 0 ||
            m_connect.getVmProxyList(proxies, input.masterServer) != 0)
            throw InfoFailure(InfoExit::NOT_ASKED,
                              "the inventory did not answer; see zorinfo explain server.listing");
        Names names;
        const int* type = nullptr;
        for (const auto& [name, itsType] : servers) {
            names.push_back(name);
            if (isSameName(name, input.vmServer))
                type = &itsType;
        }
        if (!type)
            throw InfoFailure(InfoExit::BLOCKED, "the server \"" + input.vmServer + "\" is not known. " +
                                                     suggestionFor(input.vmServer, names));
        if (!contains(proxies, input.vmProxy))
            throw InfoFailure(InfoExit::BLOCKED, "the backup host \"" + input.vmProxy + "\" is not known. " +
                                                     suggestionFor(input.vmProxy, proxies));
        m_isVCenter = *type == VM_SERVER_VCENTER;
    }

    [[nodiscard]] bool isVCenter() const { return m_isVCenter; }

    Names hosts() {
        return m_isVCenter ? list(&CZorb2vKvnrdConnect::getEsxServerList) : Names{m_input.vmServer};
    }
    Names dataCenters() {
        return m_isVCenter ? list(&CZorb2vKvnrdConnect::getDcList) : Names{STANDALONE_DATA_CENTER};
    }
    Names clusters() { return m_isVCenter ? list(&CZorb2vKvnrdConnect::getClusterList) : Names(); }
    Names folders(const std::string& dataCenter) {
        return m_isVCenter ? listAt(&CZorb2vKvnrdConnect::getVmFoldersList, dataCenter) : Names();
    }
    Names networks(const std::string& host) { return listAt(&CZorb2vKvnrdConnect::getVmNetworksList, host); }
    Names machines(const std::string& host) { return listAt(&CZorb2vKvnrdConnect::getVmList, host); }
    Names pools(const std::string& host) {
        Names names, paths;
        m_connect.getRpoolList(names, paths, m_input.vmProxy, host, m_input.vmServer, m_input.masterServer);
        return paths;
    }
    std::map<std::string, long long> stores(const std::string& host) {
        std::map<std::string, long long> stores;
        if (m_connect.getDsList(stores, m_input.vmProxy, host, m_input.vmServer, m_input.masterServer) != 0)
            return {};
        std::erase_if(stores, [](const auto& store) { return !isWritableStore(store.first); });
        return stores;
    }

  private:
    // A listing that fails offers nothing.
    Names list(int (CZorb2vKvnrdConnect::*listing)(Names&, const std::string&, const std::string&,
                                                   const std::string&)) {
        Names names;
        const int rc = (m_connect.*listing)(names, m_input.vmProxy, m_input.vmServer, m_input.masterServer);
        return rc == 0 ? names : Names();
    }
    Names listAt(int (CZorb2vKvnrdConnect::*listing)(Names&, const std::string&, const std::string&,
                                                     const std::string&, const std::string&),
                 const std::string& place) {
        Names names;
        const int rc =
            (m_connect.*listing)(names, m_input.vmProxy, place, m_input.vmServer, m_input.masterServer);
        return rc == 0 ? names : Names();
    }

    const B2VInput& m_input;
    CZorb2vKvnrdConnect m_connect;
    bool m_isVCenter = false;
};

struct HostChoice {
    std::string host;
    std::vector<PlacedDisk> disks;
};

HostChoice chooseHost(Target& target, const Names& hosts, const B2VInput& input) {
    const std::vector<ClientDisk> disks = convertedDisks(input);
    long long most = 0;
    for (const std::string& host : hosts) {
        const std::map<std::string, long long> stores = target.stores(host);
        if (stores.empty())
            continue;
        if (auto placed = placeDisks(disks, stores))
            return {host, std::move(*placed)};
        most = std::max(most,
                        std::accumulate(stores.begin(), stores.end(), 0LL,
                                        [](long long sum, const auto& store) { return sum + store.second; }));
    }
    const std::int64_t needed =
        std::accumulate(disks.begin(), disks.end(), std::int64_t{0},
                        [](std::int64_t sum, const ClientDisk& disk) { return sum + disk.size; });
    throw InfoFailure(InfoExit::BLOCKED, "no ESX host of " + input.vmServer + " has room: the disks take " +
                                             std::to_string(needed) +
                                             " MB, and the most that a host has is " + std::to_string(most) +
                                             " MB");
}

// The first that can be written, with the others.
DraftValue choose(const char* key, const char* note, Names names) {
    std::erase_if(names, [](const std::string& name) { return !isWritable(name); });
    if (names.empty())
        return {key, "", note};
    const std::string first = names.front();
    names.erase(names.begin());
    return {key, first, note, names};
}

// The objects of a pool's path that stand above it: "/Northgate/host/ng-cluster1/Resources". Its data center
// and its cluster are those of the host, while the listings of either tell names alone.
Names preferred(Names names, const Names& pools) {
    Names above;
    if (!pools.empty())
        Split(pools.front(), "/", above);
    std::stable_partition(names.begin(), names.end(),
                          [&](const std::string& name) { return contains(above, name); });
    return names;
}

std::string freeName(const std::string& client, const Names& taken) {
    const std::string stem = client.substr(0, client.find('.')) + "-vm";
    std::string name = stem;
    for (int number = 2; contains(taken, name); ++number)
        name = stem + std::to_string(number);
    return isWritable(name) ? name : "converted-vm";
}

std::string noted(const std::string& text) {
    return "#= " + text + "\n";
}

} // namespace

bool isWritable(const std::string& value) {
    return !value.empty() && !value.starts_with('"') && value.find_first_of("=\r\n") == std::string::npos;
}

std::optional<std::vector<PlacedDisk>> placeDisks(std::vector<ClientDisk> disks,
                                                  const std::map<std::string, long long>& freeMegabytes) {
    std::vector<std::pair<std::string, long long>> stores(freeMegabytes.begin(), freeMegabytes.end());
    std::stable_sort(stores.begin(), stores.end(),
                     [](const auto& first, const auto& second) { return first.second > second.second; });
    std::stable_sort(disks.begin(), disks.end(),
                     [](const auto& first, const auto& second) { return first.size > second.size; });
    std::vector<PlacedDisk> placed;
    for (const ClientDisk& disk : disks) {
        const auto store = std::find_if(stores.begin(), stores.end(),
                                        [&](const auto& each) { return each.second >= disk.size; });
        if (store == stores.end())
            return std::nullopt;
        store->second -= disk.size;
        placed.push_back({disk, store->first});
    }
    return placed;
}

TargetDraft draftTarget(const B2VInput& input) {
    Target target(input);
    const Names hosts = target.hosts();
    HostChoice choice = chooseHost(target, hosts, input);
    const Names pools = target.pools(choice.host);
    const Names dataCenters = preferred(target.dataCenters(), pools);

    TargetDraft draft;
    draft.values.push_back({"name", freeName(input.clientName, target.machines(choice.host)),
                            "The machine's name; no other machine has it."});
    draft.values.push_back(
        {"toolsIsoPath", "/images/windows-tools.iso",
         "The image with the guest tools. SET THIS: the inventory does not tell where it is."});
    DraftValue host{"esxhost", choice.host, "The first ESX host that has room for the disks."};
    std::copy_if(hosts.begin(), hosts.end(), std::back_inserter(host.others),
                 [&](const std::string& other) { return other != choice.host; });
    draft.values.push_back(std::move(host));
    const DraftValue dataCenter = choose("datacenter", "The data center.", dataCenters);
    if (target.isVCenter()) {
        draft.values.push_back(dataCenter);
        draft.values.push_back(choose("folder", "The folder for the machine, by its full path.",
                                      target.folders(dataCenter.value)));
    }
    draft.values.push_back(choose("resourcepool", "The resource pool.", pools));
    if (!input.stripNetwork)
        draft.values.push_back(
            choose("network", "The network of all interfaces.", target.networks(choice.host)));
    draft.values.push_back(
        {"diskformat", "ThinVdisk", "How disks take their room.", {"ThickVdisk", "ThickLazy"}});
    std::sort(choice.disks.begin(), choice.disks.end(), [](const auto& first, const auto& second) {
        return first.disk.name.size() != second.disk.name.size()
                   ? first.disk.name.size() < second.disk.name.size()
                   : first.disk.name < second.disk.name;
    });
    draft.disks = std::move(choice.disks);
    return draft;
}

std::string fileOf(const TargetDraft& draft, const B2VInput& input) {
    std::string text =
        noted("The target of " + input.clientName + ", configuration " + input.configName + ", on " +
              input.vmServer + ".") +
        noted("Lines that begin with #= are notes. There must be no blanks around the = of the others.");
    for (const DraftValue& value : draft.values) {
        text += "\n" + noted(value.note);
        for (std::size_t i = 0; i < std::min(MOST_OTHERS, value.others.size()); ++i)
            text += noted((i == 0 ? "  or: " : "      ") + value.others[i]);
        if (value.others.size() > MOST_OTHERS)
            text += noted("      and " + std::to_string(value.others.size() - MOST_OTHERS) + " more");
        text += value.value.empty() ? noted(value.key + ": left to the inventory's first")
                                    : value.key + "=" + value.value + "\n";
    }
    if (!draft.disks.empty())
        text += "\n" + noted("The disks, each with its data store; sizes in MB.");
    for (const PlacedDisk& placed : draft.disks) {
        text += noted(placed.disk.name + ", " + std::to_string(placed.disk.size));
        if (placed.disk.name.starts_with("Harddisk"))
            text += "harddisk=" + placed.disk.name.substr(8) + ":" + placed.store + "\n";
    }
    return text;
}

} // namespace Zorvane
