// SPDX-License-Identifier: Apache-2.0
#include "info/asks/TargetTree.h"

#include "info/Session.h"
#include "info/asks/recoveryQueries.h"
#include "info/check/similarNames.h"
#include "inventory/CZorb2vKvnrdConnect.h"
#include "logging/Trace.h"
#include "model/XmlParser.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace Zorvane {

namespace {

using Names = std::vector<std::string>;

constexpr int BROWSE_LISTING = 7; // the whole tree of a server
constexpr int BAD_REPLY = 1;
constexpr std::string_view BROWSE_NODE = "VirtualCenterViewNode";
constexpr const char* STANDALONE_DATA_CENTER = "ha-datacenter"; // as zorb2v has it for such a host

[[noreturn]] void giveUp(const std::string& what, int status, const std::string& master) {
    const std::string host = master.empty() ? masterServerName() : master;
    if (host.empty())
        throw InfoFailure(InfoExit::NOT_ASKED,
                          "there is no master server to ask for " + what + "; see servers in kvn.toml");
    throw InfoFailure(InfoExit::NOT_ASKED,
                      "the request daemon on " + host + " did not list " + what + " (status " +
                          std::to_string(status) +
                          "); check that kvnrd runs there, and kvnrd in [services] of kvn.toml");
}

// The name in its listed spelling. A name that zorb2v would refuse ends the run.
std::string listedName(const std::string& name, const Names& known, const char* kind) {
    const auto found = std::find_if(known.begin(), known.end(), [&](const std::string& other) {
        return StrCaseCmp(other.c_str(), name.c_str()) == 0;
    });
    if (found == known.end())
        throw InfoFailure(InfoExit::NOT_ASKED, "the " + std::string(kind) + " \"" + name +
                                                   "\" is not known. " + suggestionFor(name, known));
    return *found;
}

// --- The server's tree

struct BrowseNode {
    int type = 0;
    std::string name;
    std::vector<BrowseNode> children;
};

// What stands below the object cursor; it stands there again afterwards. The parser bounds the depth.
void readNode(XmlParser& document, BrowseNode& node) {
    static const std::string typeAttribute = "Type";
    for (const std::string* tag = document.firstObjectTag(); tag; tag = document.nextObjectTag()) {
        XmlNode* const here = document.getCurrentNode();
        if (*tag == BROWSE_NODE) {
            std::string type;
            document.CopyNodeAttribute(&type, &typeAttribute);
            BrowseNode& child = node.children.emplace_back();
            child.type = static_cast<int>(std::strtol(type.c_str(), nullptr, 10));
            readNode(document, child);
        } else if (*tag == "Children") {
            readNode(document, node);
        } else if (*tag == "Name" && node.name.empty()) {
            document.CopyNode(&node.name);
        }
        document.setCurrentNode(here);
    }
}

/// What a node's contents go into; null as long as the walk is not in such a thing.
struct Surroundings {
    TargetDataCenter* dataCenter = nullptr;
    TargetCluster* cluster = nullptr;
    TargetHost* host = nullptr;
};

template <class Thing>
Thing* addNamed(std::deque<Thing>& things, const std::string& name) {
    things.emplace_back().name = name;
    return &things.back();
}

// zorb2v takes the nodes of a kind wherever they stand, so none may be lost here for standing elsewhere.
void place(const BrowseNode& node, Surroundings around, std::deque<TargetDataCenter>& dataCenters) {
    const auto dataCenter = [&]() -> TargetDataCenter& {
        if (around.dataCenter)
            return *around.dataCenter;
        if (dataCenters.empty() || !dataCenters.back().name.empty())
            dataCenters.emplace_back();
        return *(around.dataCenter = &dataCenters.back());
    };
    switch (static_cast<VcenterNode>(node.type)) {
    case VcenterNode::DataCenter:
        around = Surroundings{addNamed(dataCenters, node.name), nullptr, nullptr};
        break;
    case VcenterNode::Cluster:
        around.cluster = addNamed(dataCenter().clusters, node.name);
        break;
    case VcenterNode::EsxServer: {
        std::deque<TargetHost>& hosts = around.cluster ? around.cluster->hosts : dataCenter().hosts;
        around.host = addNamed(hosts, node.name);
        break;
    }
    case VcenterNode::VirtualMachine:
        (around.host ? around.host->machines : dataCenter().machines).push_back(node.name);
        break;
    }
    for (const BrowseNode& child : node.children)
        place(child, around, dataCenters);
}

// 0, or a status of the request.
int browse(TargetTree& target, const std::string& master) {
    std::stringstream reply;
    const int verbose = g_appLog ? g_appLog->getDebugLevel() : 0;
    if (const int status = CZorb2vKvnrdConnect::send_kvnrdrequest(
            target.proxy, BROWSE_LISTING, 0, KVNRD_NO_ARGUMENT, target.server, reply, verbose, master))
        return status;
    const std::string_view text = reply.view(); // the request bounds it far below what an int counts
    XmlParser document(reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    if (document.getRootName() != BROWSE_NODE || document.initChildren() != 0)
        return BAD_REPLY;
    BrowseNode root;
    readNode(document, root);
    place(root, {}, target.dataCenters);
    return 0;
}

} // namespace

TargetServers askServers(const std::string& master) {
    CZorb2vKvnrdConnect connect;
    TargetServers known;
    if (const int status = connect.getVmServerList(known.servers, master))
        giveUp("the virtual machine servers", status, master);
    if (const int status = connect.getVmProxyList(known.proxies, master))
        giveUp("the backup hosts", status, master);
    return known;
}

TargetTree askTarget(const std::string& server, const std::string& proxy, const std::string& master) {
    ClassTrace trace(g_appLog, "TargetTree:askTarget()", ", server=", server, ", proxy=", proxy);
    const TargetServers known = askServers(master);
    Names names;
    for (const auto& each : known.servers)
        names.push_back(each.first);
    TargetTree target;
    target.server = listedName(server, names, "virtual machine server");
    target.proxy = listedName(proxy, known.proxies, "backup host");
    target.isVCenter = known.servers.at(target.server) == VM_SERVER_VCENTER;
    if (target.isVCenter) {
        if (const int status = browse(target, master))
            giveUp("the objects of " + target.server, status, master);
    } else {
        TargetDataCenter& only = target.dataCenters.emplace_back();
        only.name = STANDALONE_DATA_CENTER;
        TargetHost& host = *addNamed(only.hosts, target.server);
        if (const int status = CZorb2vKvnrdConnect().getVmList(host.machines, target.proxy, host.name,
                                                               target.server, master))
            target.unanswered.push_back({"machines", host.name, status});
    }
    return target;
}

std::string textOf(const UnansweredListing& listing) {
    return listing.what + " of " + listing.place + " not told (status " + std::to_string(listing.status) +
           ")";
}

void TargetListings::fillAll() {
    for (TargetDataCenter& dataCenter : m_target.dataCenters) {
        fillFolders(dataCenter);
        eachHost(dataCenter, [&](TargetHost& host, const TargetCluster*) {
            fillPools(host);
            fillNetworks(host);
            fillStores(host);
        });
    }
}

bool TargetListings::fillFolders(TargetDataCenter& dataCenter) {
    if (!m_target.isVCenter || dataCenter.name.empty())
        return true;
    return note("folders", dataCenter.name,
                CZorb2vKvnrdConnect().getVmFoldersList(dataCenter.folders, m_target.proxy, dataCenter.name,
                                                       m_target.server, m_master));
}

bool TargetListings::fillPools(TargetHost& host) {
    Names names;
    return note("resource pools", host.name,
                CZorb2vKvnrdConnect().getRpoolList(names, host.pools, m_target.proxy, host.name,
                                                   m_target.server, m_master));
}

bool TargetListings::fillNetworks(TargetHost& host) {
    return note("networks", host.name,
                CZorb2vKvnrdConnect().getVmNetworksList(host.networks, m_target.proxy, host.name,
                                                        m_target.server, m_master));
}

bool TargetListings::fillStores(TargetHost& host) {
    return note(
        "data stores", host.name,
        CZorb2vKvnrdConnect().getDsList(host.stores, m_target.proxy, host.name, m_target.server, m_master));
}

bool TargetListings::note(const char* what, const std::string& where, int status) {
    if (status != 0)
        m_target.unanswered.push_back({what, where, status});
    return status == 0;
}

} // namespace Zorvane
