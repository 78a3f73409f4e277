// SPDX-License-Identifier: Apache-2.0
#include "lab/inventoryDocuments.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <utility>

namespace Zorvane {

namespace {

// The document as text, an element a line.
class Xml {
  public:
    using Attributes = std::initializer_list<std::pair<const char*, std::string>>;

    // The element is open while the content is written.
    template <class Content>
    void element(const char* name, Attributes attributes, Content content) {
        line("<" + std::string(name) + text(attributes) + ">");
        ++m_depth;
        content();
        --m_depth;
        line("</" + std::string(name) + ">");
    }
    void element(const char* name, Attributes attributes) {
        line("<" + std::string(name) + text(attributes) + "/>");
    }
    void value(const char* name, const std::string& value) {
        line("<" + std::string(name) + ">" + escaped(value) + "</" + name + ">");
    }

    [[nodiscard]] std::string take() {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + std::move(m_text);
    }

  private:
    void line(const std::string& content) { m_text += std::string(m_depth, ' ') + content + "\n"; }

    static std::string text(Attributes attributes) {
        std::string joined;
        for (const auto& [name, value] : attributes)
            joined += " " + std::string(name) + "=\"" + escaped(value) + "\"";
        return joined;
    }

    static std::string escaped(const std::string& value) {
        std::string safe;
        for (const char c : value) {
            if (c == '<' || c == '>' || c == '&' || c == '"' || c == '\n' || c == '\r' || c == '\t')
                safe += "&#" + std::to_string(c) + ";";
            else if (static_cast<unsigned char>(c) >= 0x20) // the others have no place in a document
                safe += c;
        }
        return safe;
    }

    std::string m_text;
    std::size_t m_depth = 0;
};

enum class NodeType : int { Server = 0, DataCenter = 1, Host = 3, Machine = 4, Cluster = 5 };

template <class Content>
void node(Xml& xml, NodeType type, const std::string& name, Content children) {
    xml.element("VirtualCenterViewNode", {{"Type", std::to_string(static_cast<int>(type))}}, [&] {
        xml.value("Name", name);
        xml.element("Children", {}, children);
    });
}

void hostNode(Xml& xml, const InventoryHost& host) {
    node(xml, NodeType::Host, host.name, [&] {
        for (const std::string& machine : host.machines)
            node(xml, NodeType::Machine, machine, [] {});
    });
}

void dataCenterNode(Xml& xml, const InventoryDataCenter& dataCenter) {
    node(xml, NodeType::DataCenter, dataCenter.name, [&] {
        std::map<std::string, std::vector<const InventoryHost*>> clusters;
        for (const InventoryHost& host : dataCenter.hosts) {
            if (host.cluster.empty())
                hostNode(xml, host);
            else
                clusters[host.cluster].push_back(&host);
        }
        for (const auto& cluster : clusters)
            node(xml, NodeType::Cluster, cluster.first, [&] {
                for (const InventoryHost* host : cluster.second)
                    hostNode(xml, *host);
            });
    });
}

void serverTree(Xml& xml, const InventoryServer& server) {
    node(xml, NodeType::Server, server.name, [&] {
        for (const InventoryDataCenter& dataCenter : server.dataCenters)
            dataCenterNode(xml, dataCenter);
    });
}

void store(Xml& xml, const InventoryStore& store) {
    xml.element("Datastore", {}, [&] {
        xml.value("Name", store.name);
        xml.value("Freespace", std::to_string(store.freeBytes));
    });
}

void storeTree(Xml& xml, const InventoryDataCenter& dataCenter, const InventoryHost& host) {
    std::map<std::string, std::vector<const InventoryStore*>> pods;
    for (const InventoryStore& each : host.stores)
        if (!each.pod.empty())
            pods[each.pod].push_back(&each);
    xml.element("HostMachinesProxyView", {}, [&] {
        xml.value("Name", host.name);
        xml.element("Datacenter", {}, [&] {
            xml.value("Name", dataCenter.name);
            xml.element("Folder", {}, [&] {
                xml.value("Name", "datastore");
                for (const InventoryStore& each : host.stores)
                    if (each.pod.empty())
                        store(xml, each);
                // A pod is a target of its own, as large as its parts together.
                for (const auto& pod : pods)
                    xml.element("StoragePod", {}, [&] {
                        std::uint64_t freeBytes = 0;
                        for (const InventoryStore* each : pod.second)
                            freeBytes += each->freeBytes;
                        xml.value("Name", pod.first);
                        xml.value("Freespace", std::to_string(freeBytes));
                        for (const InventoryStore* each : pod.second)
                            store(xml, *each);
                    });
            });
        });
    });
}

// The paths that stand directly below the parent ("" is the root), by their last names.
std::vector<std::pair<std::string, std::string>> childrenOf(const std::vector<std::string>& paths,
                                                            const std::string& parent) {
    const std::string above = parent.empty() ? "" : parent + "/";
    std::vector<std::pair<std::string, std::string>> children;
    for (const std::string& path : paths) {
        if (!path.starts_with(above) || path.size() == above.size())
            continue;
        const std::string name = path.substr(above.size(), path.find('/', above.size()) - above.size());
        // A path may leave out the rows of its parents.
        if (std::ranges::find(children, name, [](const auto& child) { return child.first; }) ==
            children.end())
            children.emplace_back(name, above + name);
    }
    return children;
}

void poolTree(Xml& xml, const InventoryDataCenter& dataCenter, const InventoryHost& host,
              const std::string& name, const std::string& pool) {
    xml.element("ResourcePool", {{"Name", name}, {"Path", poolPath(dataCenter, host, pool)}, {"Type", "1"}},
                [&] {
                    for (const auto& [child, path] : childrenOf(host.pools, pool))
                        poolTree(xml, dataCenter, host, child, path);
                    // Readers stop at a childless element and leave its siblings unread. So no pool is
                    // childless, and what is stands last in its pool.
                    xml.element("Reservation", {});
                });
}

void folderTree(Xml& xml, const InventoryDataCenter& dataCenter, const std::string& name,
                const std::string& folder) {
    xml.element("Folder", {}, [&] {
        xml.value("Name", name);
        xml.value("Path", folderPath(dataCenter, folder));
        for (const auto& [child, path] : childrenOf(dataCenter.folders, folder))
            folderTree(xml, dataCenter, child, path);
    });
}

// --- The listings

int listServers(Xml& xml, const Inventory& inventory, const ListingRequest&) {
    xml.element("VirtualMachineServerList", {}, [&] {
        for (const InventoryServer& server : inventory.servers)
            xml.element("VirtualMachineServer",
                        {{"Name", server.name}, {"Type", std::to_string(static_cast<int>(server.type))}});
    });
    return LISTING_DONE;
}

int listProxies(Xml& xml, const Inventory& inventory, const ListingRequest&) {
    xml.element("ProxyServerList", {}, [&] {
        for (const std::string& proxy : inventory.proxies)
            xml.element("ProxyServer", {{"Name", proxy}});
    });
    return LISTING_DONE;
}

int browseServer(Xml& xml, const Inventory& inventory, const ListingRequest& request) {
    const InventoryServer* server = inventory.findServer(request.server);
    if (!server)
        return LISTING_NO_SERVER;
    serverTree(xml, *server);
    return LISTING_DONE;
}

// A listing of one ESX host.
template <class Write>
int listHost(const Inventory& inventory, const ListingRequest& request, Write write) {
    const InventoryServer* server = inventory.findServer(request.server);
    if (!server)
        return LISTING_NO_SERVER;
    const InventoryPlace place = findHost(*server, request.place);
    if (!place.host)
        return LISTING_NO_PLACE;
    write(*place.dataCenter, *place.host);
    return LISTING_DONE;
}

int listPools(Xml& xml, const Inventory& inventory, const ListingRequest& request) {
    return listHost(inventory, request, [&](const auto& dataCenter, const auto& host) {
        xml.element("ResourcePoolList", {}, [&] { poolTree(xml, dataCenter, host, "Resources", ""); });
    });
}

int listNetworks(Xml& xml, const Inventory& inventory, const ListingRequest& request) {
    return listHost(inventory, request, [&](const auto&, const auto& host) {
        xml.element("NetworkList", {}, [&] {
            for (const std::string& network : host.networks)
                xml.element("Network", {{"Name", network}});
        });
    });
}

int listStores(Xml& xml, const Inventory& inventory, const ListingRequest& request) {
    return listHost(inventory, request,
                    [&](const auto& dataCenter, const auto& host) { storeTree(xml, dataCenter, host); });
}

int listFolders(Xml& xml, const Inventory& inventory, const ListingRequest& request) {
    const InventoryServer* server = inventory.findServer(request.server);
    if (!server)
        return LISTING_NO_SERVER;
    const InventoryDataCenter* dataCenter = findDataCenter(*server, request.place);
    if (!dataCenter)
        return LISTING_NO_PLACE;
    xml.element("VmFolderView", {}, [&] { folderTree(xml, *dataCenter, "vm", ""); });
    return LISTING_DONE;
}

struct Listing {
    long number;
    int (*write)(Xml&, const Inventory&, const ListingRequest&);
};

constexpr std::array LISTINGS = {
    Listing{7, browseServer},  Listing{9, listProxies},  Listing{10, listServers}, Listing{11, listPools},
    Listing{17, listNetworks}, Listing{19, listFolders}, Listing{22, listStores},
};

} // namespace

ListingReply makeListing(const Inventory& inventory, const ListingRequest& request) {
    const auto listing = std::ranges::find(LISTINGS, request.listing, &Listing::number);
    if (listing == LISTINGS.end())
        return {LISTING_UNKNOWN, {}};
    Xml xml;
    const int status = listing->write(xml, inventory, request);
    return {status, status == LISTING_DONE ? xml.take() : std::string()};
}

} // namespace Zorvane
