// SPDX-License-Identifier: Apache-2.0
// The inventory of a virtualisation target, as the suite's request daemon reports it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Zorvane {

class XmlParser;
struct KvnrdListing;
struct KvnrdArguments;

/// What getVmServerList gives for a vCenter; any other type is a stand-alone ESX host.
inline constexpr int VM_SERVER_VCENTER = 1;

/// The types of the nodes in a vCenter's tree.
enum class VcenterNode : int { DataCenter = 1, EsxServer = 3, VirtualMachine = 4, Cluster = 5 };

/// Stands in a request for an argument that the listing does not need.
inline constexpr const char* KVNRD_NO_ARGUMENT = "_NONE_";

/// Asks the request daemon `kvnrd` for listings of the inventory. Each call is a conversation of its own;
/// nothing is kept between calls, and nothing is cached.
///
/// In all calls `proxy` is the backup host that does the work, and `master` the master server whose daemon is
/// asked: an empty text is the one of the suite's configuration.
class CZorb2vKvnrdConnect {
  public:
    CZorb2vKvnrdConnect();
    CZorb2vKvnrdConnect(const CZorb2vKvnrdConnect&) = delete;
    CZorb2vKvnrdConnect& operator=(const CZorb2vKvnrdConnect&) = delete;
    ~CZorb2vKvnrdConnect();

    // --- Listings. They add to the caller's container: 0 on success; else a status of the suite if the
    // request failed, or 1 if its reply was bad, and the container is not to be read.

    /// The virtual machine servers with their types (see VM_SERVER_VCENTER).
    int getVmServerList(std::map<std::string, int>& servers, const std::string& master);
    int getVmProxyList(std::vector<std::string>& proxies, const std::string& master);
    /// The data stores that an ESX host reaches, with their free space in MB.
    int getDsList(std::map<std::string, long long>& stores, const std::string& proxy,
                  const std::string& esxHost, const std::string& vmServer, const std::string& master);
    int getEsxServerList(std::vector<std::string>& hosts, const std::string& proxy,
                         const std::string& vmServer, const std::string& master);
    int getDcList(std::vector<std::string>& dataCenters, const std::string& proxy,
                  const std::string& vmServer, const std::string& master);
    int getClusterList(std::vector<std::string>& clusters, const std::string& proxy,
                       const std::string& vmServer, const std::string& master);
    /// The virtual machines of a server. The host counts only if it is the server itself (a stand-alone one).
    int getVmList(std::vector<std::string>& machines, const std::string& proxy, const std::string& esxHost,
                  const std::string& vmServer, const std::string& master);
    int getVmNetworksList(std::vector<std::string>& networks, const std::string& proxy,
                          const std::string& esxHost, const std::string& vmServer, const std::string& master);
    /// The resource pools: entry i of both vectors is the same pool.
    int getRpoolList(std::vector<std::string>& names, std::vector<std::string>& paths,
                     const std::string& proxy, const std::string& esxHost, const std::string& vmServer,
                     const std::string& master);
    /// The paths of the folders for virtual machines. On a vCenter `esxHost` is the data center's name.
    int getVmFoldersList(std::vector<std::string>& paths, const std::string& proxy,
                         const std::string& esxHost, const std::string& vmServer, const std::string& master);

    // --- Parsers of the replies. They read from the document's root on and add to the caller's container;
    // elements and attributes that they don't know are passed over. 0, or 1 if there is no document to read.

    static int parseVmServersList(XmlParser& document, std::map<std::string, int>& servers);
    static int parseVmProxyList(XmlParser& document, std::vector<std::string>& proxies);
    static int parseNetworksList(XmlParser& document, std::vector<std::string>& networks);
    /// The flat form of a data store listing, which tells MB.
    static int parseDatastoresList(XmlParser& document, std::map<std::string, long long>& stores);
    /// The tree form, which tells bytes: MB are rounded down to whole ones.
    static int parseDatastoreTree(XmlParser& document, std::map<std::string, long long>& stores);
    /// The names of the nodes of one type.
    static int parseVcentersBrowse(XmlParser& document, std::vector<std::string>& names, VcenterNode wanted);
    static int parseRpoolList(XmlParser& document, std::vector<std::string>& names,
                              std::vector<std::string>& paths);
    static int parseVmFoldersList(XmlParser& document, std::vector<std::string>& paths);

    /// One request, listing `cmd`, in a conversation of its own; the reply's text goes to `output`.
    /// `reserved` is 0 and `verbose` the debug level of the caller's log. Texts that a listing does not need
    /// are KVNRD_NO_ARGUMENT. 0, or a status of the suite: 24 the request could not be sent, 23 the reply
    /// could not be read, 37 a refusal, 100 anything unknown, others as the daemon gave them.
    static int send_kvnrdrequest(const std::string& proxy, int cmd, int reserved, const std::string& esxMount,
                                 const std::string& vmServer, std::stringstream& output, int verbose,
                                 const std::string& master);

  private:
    int list(const KvnrdListing& listing, const KvnrdArguments& arguments,
             const std::function<int(XmlParser&)>& parseReply);

    std::unique_ptr<XmlParser> m_pXmlParser; ///< the reply being read; null between calls
};

} // namespace Zorvane
