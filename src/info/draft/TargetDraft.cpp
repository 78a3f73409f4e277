// SPDX-License-Identifier: Apache-2.0
#include "info/draft/TargetDraft.h"

#include "info/Session.h"
#include "platform/stringManipulation.h"
#include "suite/printable.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace Zorvane {

namespace {

using Names = std::vector<std::string>;

constexpr std::size_t MOST_OTHERS = 6;

bool contains(const Names& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(), [&](const std::string& other) {
        return StrCaseCmp(other.c_str(), name.c_str()) == 0;
    });
}

// A harddisk line has a separator more.
bool isWritableStore(const std::string& store) {
    return isWritable(store) && store.find(':') == std::string::npos && !store.ends_with('"');
}

/// A host with what stands above it.
struct Place {
    TargetDataCenter* dataCenter = nullptr;
    TargetCluster* cluster = nullptr;
    TargetHost* host = nullptr;
};

// The hosts that a file can name. Of a data center's path zorb2v takes what stands behind the last slash.
std::vector<Place> placesIn(TargetTree& target) {
    std::vector<Place> places;
    for (TargetDataCenter& dataCenter : target.dataCenters) {
        if (!isWritable(dataCenter.name) || dataCenter.name.find('/') != std::string::npos)
            continue;
        eachHost(dataCenter, [&](TargetHost& host, TargetCluster* cluster) {
            if (isWritable(host.name) && (!cluster || isWritable(cluster->name)))
                places.push_back({&dataCenter, cluster, &host});
        });
    }
    return places;
}

Names machinesIn(const TargetTree& target) {
    Names machines;
    const auto add = [&](const Names& some) { machines.insert(machines.end(), some.begin(), some.end()); };
    for (const TargetDataCenter& dataCenter : target.dataCenters) {
        add(dataCenter.machines);
        eachHost(dataCenter, [&](const TargetHost& host, const TargetCluster*) { add(host.machines); });
    }
    return machines;
}

[[noreturn]] void failUnanswered(const TargetTree& target) {
    const std::size_t more = target.unanswered.size() - 1;
    throw InfoFailure(InfoExit::NOT_ASKED,
                      "the inventory of " + target.server +
                          " did not answer: " + textOf(target.unanswered.front()) +
                          (more == 0 ? "" : ", and " + std::to_string(more) + " more listings"));
}

/// The first host that has room and tells all that a target needs.
class HostSearch {
  public:
    HostSearch(TargetTree& target, const B2VInput& input)
        : m_target(target), m_input(input), m_listings(target, input.masterServer) {}

    // Throws InfoFailure if there is none.
    void run() {
        const std::vector<ClientDisk> disks = convertedDisks(m_input);
        for (const Place& place : placesIn(m_target)) {
            if (m_place.host && !isAlike(place))
                continue;
            if (m_others.size() == MOST_OTHERS)
                break;
            if (!m_listings.fillStores(*place.host))
                continue;
            std::erase_if(place.host->stores,
                          [](const auto& store) { return !isWritableStore(store.first); });
            DiskPlacement placement = placeDisks(disks, place.host->stores);
            if (placement.homeless)
                noteFailure(place, placement);
            else if (m_place.host)
                m_others.push_back(place.host->name);
            else if (tellsAll(place)) {
                m_place = place;
                m_disks = std::move(placement.placed);
            }
        }
        if (!m_place.host)
            fail();
    }

    [[nodiscard]] const Place& place() const { return m_place; }
    [[nodiscard]] const std::vector<PlacedDisk>& disks() const { return m_disks; }
    /// Those with room that can stand in its place under the same cluster and data center.
    [[nodiscard]] const Names& others() const { return m_others; }

  private:
    [[nodiscard]] bool isAlike(const Place& place) const {
        return place.dataCenter == m_place.dataCenter && place.cluster == m_place.cluster;
    }

    bool tellsAll(const Place& place) {
        return m_listings.fillPools(*place.host) &&
               (m_input.stripNetwork || m_listings.fillNetworks(*place.host)) &&
               (!place.dataCenter->folders.empty() || m_listings.fillFolders(*place.dataCenter));
    }

    // The host that comes nearest is told of.
    void noteFailure(const Place& place, const DiskPlacement& placement) {
        const auto rank = [](const DiskPlacement& each) {
            return std::make_pair(each.placed.size(), each.most);
        };
        if (m_nearest && rank(m_best) >= rank(placement))
            return;
        m_nearest = place.host;
        m_best = placement;
    }

    [[noreturn]] void fail() const {
        if (!m_target.unanswered.empty())
            failUnanswered(m_target);
        const std::string none = "no ESX host of " + m_target.server + " has room: ";
        if (!m_nearest)
            throw InfoFailure(InfoExit::BLOCKED, none + "it has none that a configuration file can name");
        if (m_best.roomiest.empty())
            throw InfoFailure(InfoExit::BLOCKED, none + "none reaches a data store that the file can name");
        const std::size_t placed = m_best.placed.size();
        throw InfoFailure(InfoExit::BLOCKED,
                          none + "the disk " + m_best.homeless->name + " takes " +
                              megabytesText(m_best.homeless->size) + ", and the roomiest data store, \"" +
                              m_best.roomiest + "\" of " + m_nearest->name + ", has " +
                              megabytesText(m_best.most) +
                              (placed == 0   ? " free"
                               : placed == 1 ? " left beside a larger disk"
                                             : " left beside " + std::to_string(placed) + " larger disks"));
    }

    TargetTree& m_target;
    const B2VInput& m_input;
    TargetListings m_listings;
    Place m_place;
    std::vector<PlacedDisk> m_disks;
    Names m_others;
    const TargetHost* m_nearest = nullptr;
    DiskPlacement m_best;
};

// The first that can be written, with the others.
DraftValue choose(const char* key, const char* note, Names names) {
    std::erase_if(names, [](const std::string& name) { return !isWritable(name); });
    if (names.empty())
        return {key, "", note};
    const std::string first = names.front();
    names.erase(names.begin());
    return {key, first, note, names};
}

std::string noted(const std::string& text) {
    return "#= " + Suite::printable(text) + "\n"; // a name must not begin a line of its own
}

} // namespace

std::string freeName(const std::string& client, const std::vector<std::string>& taken) {
    const std::string stem = client.substr(0, client.find('.')) + "-vm";
    std::string name = stem;
    for (int number = 2; contains(taken, name); ++number)
        name = stem + std::to_string(number);
    return isWritable(name) ? name : "converted-vm";
}

bool isWritable(const std::string& value) {
    return !value.empty() && !value.starts_with('"') && value.find('=') == std::string::npos &&
           Suite::printable(value) == value;
}

DiskPlacement placeDisks(std::vector<ClientDisk> disks,
                         const std::map<std::string, long long>& freeMegabytes) {
    std::vector<std::pair<std::string, long long>> stores(freeMegabytes.begin(), freeMegabytes.end());
    std::stable_sort(disks.begin(), disks.end(),
                     [](const auto& first, const auto& second) { return first.size > second.size; });
    std::stable_sort(stores.begin(), stores.end(),
                     [](const auto& first, const auto& second) { return first.second > second.second; });
    DiskPlacement placement;
    for (const ClientDisk& disk : disks) {
        const auto store = std::find_if(stores.begin(), stores.end(),
                                        [&](const auto& each) { return each.second >= disk.size; });
        if (store == stores.end()) {
            placement.homeless = disk;
            break;
        }
        store->second -= disk.size;
        placement.placed.push_back({disk, store->first});
    }
    const auto roomiest =
        std::max_element(stores.begin(), stores.end(),
                         [](const auto& first, const auto& second) { return first.second < second.second; });
    if (roomiest != stores.end())
        std::tie(placement.roomiest, placement.most) = *roomiest;
    return placement;
}

TargetDraft draftTarget(const B2VInput& input) {
    TargetTree target = askTarget(input.vmServer, input.vmProxy, input.masterServer);
    if (!target.unanswered.empty())
        failUnanswered(target);
    HostSearch search(target, input);
    search.run();
    const auto& [dataCenter, cluster, host] = search.place();

    TargetDraft draft;
    draft.values.push_back({"name", freeName(input.clientName, machinesIn(target)),
                            "The machine's name; no other machine has it."});
    draft.values.push_back(
        {"toolsIsoPath", "/images/windows-tools.iso",
         "The image with the guest tools. SET THIS: the inventory does not tell where it is."});
    draft.values.push_back(
        {"esxhost", host->name,
         search.others().empty()
             ? "The first ESX host that has room for the disks."
             : "The first ESX host that has room for the disks; zorinfo inventory shows what others have.",
         search.others()});
    if (target.isVCenter) {
        draft.values.push_back({"datacenter", dataCenter->name, "The data center of the host."});
        if (cluster)
            draft.values.push_back({"cluster", cluster->name, "The cluster of the host."});
        draft.values.push_back(
            choose("folder", "The folder for the machine, by its full path.", dataCenter->folders));
    }
    draft.values.push_back(choose("resourcepool", "The resource pool.", host->pools));
    if (!input.stripNetwork)
        draft.values.push_back(choose("network", "The network of all interfaces.", host->networks));
    draft.values.push_back(
        {"diskformat", "ThinVdisk", "How disks take their room.", {"ThickVdisk", "ThickLazy"}});
    draft.disks = search.disks();
    std::sort(draft.disks.begin(), draft.disks.end(), [](const auto& first, const auto& second) {
        return first.disk.name.size() != second.disk.name.size()
                   ? first.disk.name.size() < second.disk.name.size()
                   : first.disk.name < second.disk.name;
    });
    draft.unanswered = target.unanswered;
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
        text += "\n" + noted("The disks, each with its data store.");
    for (const PlacedDisk& placed : draft.disks) {
        text += noted(placed.disk.name + ", " + megabytesText(placed.disk.size));
        if (placed.disk.name.starts_with("Harddisk"))
            text += "harddisk=" + placed.disk.name.substr(8) + ":" + placed.store + "\n";
    }
    return text;
}

} // namespace Zorvane
