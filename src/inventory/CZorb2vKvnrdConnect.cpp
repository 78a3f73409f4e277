// SPDX-License-Identifier: Apache-2.0
// CZorb2vKvnrdConnect: the listings, all fetched and read in one way.
#include "inventory/CZorb2vKvnrdConnect.h"

#include "logging/Trace.h"
#include "model/XmlParser.h"

#include <string_view>

namespace Zorvane {

/// What a listing asks of the daemon, and what its reply has to be.
struct KvnrdListing {
    const char* label;
    int command;
    const char* root; ///< the reply's document element
    /// Told when the document can't be read. The daemon that it names is not the one that was asked, and this
    /// stays so: support searches for the words.
    const char* parseFailure = "Failed to parse zord output";
};

/// The texts of a request, in their order, and who is asked.
struct KvnrdArguments {
    std::string proxy;
    std::string esxMount;
    std::string vmServer;
    std::string master;
};

namespace {

constexpr KvnrdListing VM_SERVERS{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getVmServerList()", 10,
                                  "VirtualMachineServerList"};
constexpr KvnrdListing VM_PROXIES{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getVmProxyList()", 9,
                                  "ProxyServerList"};
constexpr KvnrdListing DATA_STORES{
    "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getDsList()", 22, "HostMachinesProxyView",
    "Failed to parse kvnrd output of vCenter hierarchy for datastores/storagepods."};
constexpr KvnrdListing NETWORKS{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getVmNetworksList()", 17,
                                "NetworkList"};
constexpr KvnrdListing RESOURCE_POOLS{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getRpoolList()", 11,
                                      "ResourcePoolList"};
constexpr KvnrdListing VM_FOLDERS{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getVmFoldersList()", 19,
                                  "VmFolderView"};
// A vCenter sends its whole tree for each of these; the parser picks the nodes of one type.
constexpr KvnrdListing ESX_SERVERS{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getEsxServerList()", 7,
                                   "VirtualCenterViewNode"};
constexpr KvnrdListing DATA_CENTERS{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getDcList()", 7,
                                    "VirtualCenterViewNode"};
constexpr KvnrdListing CLUSTERS{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getClusterList()", 7,
                                "VirtualCenterViewNode"};
constexpr KvnrdListing MACHINES{"CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getVmList()", 7,
                                "VirtualCenterViewNode"};

} // namespace

CZorb2vKvnrdConnect::CZorb2vKvnrdConnect() = default;
CZorb2vKvnrdConnect::~CZorb2vKvnrdConnect() = default;

int CZorb2vKvnrdConnect::list(const KvnrdListing& listing, const KvnrdArguments& arguments,
                              const std::function<int(XmlParser&)>& parseReply) {
    ClassTrace trace(g_appLog, listing.label);
    try {
        std::stringstream reply;
        const int verbose = g_appLog ? g_appLog->getDebugLevel() : 0;
        if (const int rc = send_kvnrdrequest(arguments.proxy, listing.command, 0, arguments.esxMount,
                                             arguments.vmServer, reply, verbose, arguments.master)) {
            trace.write(LEVEL_FAILURE, "send_kvnrdrequest() failed. rc=", rc);
            return trace.leave(rc, ", return rc=", rc);
        }
        const std::string_view text = reply.view(); // the request bounds it far below what an int counts
        m_pXmlParser = std::make_unique<XmlParser>(reinterpret_cast<const unsigned char*>(text.data()),
                                                   static_cast<int>(text.size()));
        int rc = 1;
        if (m_pXmlParser->getRootName() != listing.root)
            trace.write(LEVEL_FAILURE, "invalid kvnrd output");
        else if (parseReply(*m_pXmlParser) != 0)
            trace.write(LEVEL_FAILURE, listing.parseFailure);
        else
            rc = 0;
        m_pXmlParser.reset();
        return trace.leave(rc, ", return rc=", rc);
    } catch (...) {
        m_pXmlParser.reset();
        trace.write(LEVEL_FAILURE, "Exiting, Caught unexpected error on line= ", __LINE__);
        return trace.leave(1, ", return rc=", 1);
    }
}

int CZorb2vKvnrdConnect::getVmServerList(std::map<std::string, int>& servers, const std::string& master) {
    return list(VM_SERVERS, {KVNRD_NO_ARGUMENT, KVNRD_NO_ARGUMENT, KVNRD_NO_ARGUMENT, master},
                [&](XmlParser& document) { return parseVmServersList(document, servers); });
}

int CZorb2vKvnrdConnect::getVmProxyList(std::vector<std::string>& proxies, const std::string& master) {
    return list(VM_PROXIES, {KVNRD_NO_ARGUMENT, KVNRD_NO_ARGUMENT, KVNRD_NO_ARGUMENT, master},
                [&](XmlParser& document) { return parseVmProxyList(document, proxies); });
}

int CZorb2vKvnrdConnect::getDsList(std::map<std::string, long long>& stores, const std::string& proxy,
                                   const std::string& esxHost, const std::string& vmServer,
                                   const std::string& master) {
    return list(DATA_STORES, {proxy, esxHost, vmServer, master},
                [&](XmlParser& document) { return parseDatastoreTree(document, stores); });
}

int CZorb2vKvnrdConnect::getEsxServerList(std::vector<std::string>& hosts, const std::string& proxy,
                                          const std::string& vmServer, const std::string& master) {
    return list(ESX_SERVERS, {proxy, KVNRD_NO_ARGUMENT, vmServer, master}, [&](XmlParser& document) {
        return parseVcentersBrowse(document, hosts, VcenterNode::EsxServer);
    });
}

int CZorb2vKvnrdConnect::getDcList(std::vector<std::string>& dataCenters, const std::string& proxy,
                                   const std::string& vmServer, const std::string& master) {
    return list(DATA_CENTERS, {proxy, KVNRD_NO_ARGUMENT, vmServer, master}, [&](XmlParser& document) {
        return parseVcentersBrowse(document, dataCenters, VcenterNode::DataCenter);
    });
}

int CZorb2vKvnrdConnect::getClusterList(std::vector<std::string>& clusters, const std::string& proxy,
                                        const std::string& vmServer, const std::string& master) {
    return list(CLUSTERS, {proxy, KVNRD_NO_ARGUMENT, vmServer, master}, [&](XmlParser& document) {
        return parseVcentersBrowse(document, clusters, VcenterNode::Cluster);
    });
}

int CZorb2vKvnrdConnect::getVmList(std::vector<std::string>& machines, const std::string& proxy,
                                   const std::string& esxHost, const std::string& vmServer,
                                   const std::string& master) {
    const std::string esxMount = esxHost == vmServer ? esxHost : KVNRD_NO_ARGUMENT;
    return list(MACHINES, {proxy, esxMount, vmServer, master}, [&](XmlParser& document) {
        return parseVcentersBrowse(document, machines, VcenterNode::VirtualMachine);
    });
}

int CZorb2vKvnrdConnect::getVmNetworksList(std::vector<std::string>& networks, const std::string& proxy,
                                           const std::string& esxHost, const std::string& vmServer,
                                           const std::string& master) {
    return list(NETWORKS, {proxy, esxHost, vmServer, master},
                [&](XmlParser& document) { return parseNetworksList(document, networks); });
}

int CZorb2vKvnrdConnect::getRpoolList(std::vector<std::string>& names, std::vector<std::string>& paths,
                                      const std::string& proxy, const std::string& esxHost,
                                      const std::string& vmServer, const std::string& master) {
    return list(RESOURCE_POOLS, {proxy, esxHost, vmServer, master},
                [&](XmlParser& document) { return parseRpoolList(document, names, paths); });
}

int CZorb2vKvnrdConnect::getVmFoldersList(std::vector<std::string>& paths, const std::string& proxy,
                                          const std::string& esxHost, const std::string& vmServer,
                                          const std::string& master) {
    return list(VM_FOLDERS, {proxy, esxHost, vmServer, master},
                [&](XmlParser& document) { return parseVmFoldersList(document, paths); });
}

} // namespace Zorvane
