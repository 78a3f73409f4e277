// SPDX-License-Identifier: Apache-2.0
// What a virtual machine server has, one in the other, by the names under which zorb2v takes it.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace Zorvane {

// Deques: while a tree is read, what is in one thing is added with others standing open around it.

struct TargetHost {
    std::string name;
    std::vector<std::string> pools; ///< paths
    std::vector<std::string> networks;
    std::map<std::string, long long> stores; ///< with their free space in MB
    std::vector<std::string> machines;
};

struct TargetCluster {
    std::string name;
    std::deque<TargetHost> hosts;
};

struct TargetDataCenter {
    std::string name;
    std::vector<std::string> folders; ///< paths
    std::deque<TargetCluster> clusters;
    std::deque<TargetHost> hosts;      ///< those that stand alone
    std::vector<std::string> machines; ///< those that belong to no host
};

/// A listing that failed, and what is missing for it.
struct UnansweredListing {
    std::string what; ///< "networks"
    std::string place;
    int status = 0;
};

/// "networks of esx01 not told (status 37)"
std::string textOf(const UnansweredListing& listing);

struct TargetTree {
    std::string server;
    bool isVCenter = false;
    std::string proxy;
    std::deque<TargetDataCenter> dataCenters;
    std::vector<UnansweredListing> unanswered;
};

/// The names to choose a target from.
struct TargetServers {
    std::map<std::string, int> servers; ///< with their types: VM_SERVER_VCENTER or a stand-alone host
    std::vector<std::string> proxies;
};

// `master` is the master server that is asked, empty for the one of the suite's configuration. Both throw
// InfoFailure: for a daemon that does not answer, and for a server or a proxy that nobody knows.

TargetServers askServers(const std::string& master);
/// The server and the backup host in their listed spelling, whatever the case of the names given. Of folders,
/// pools, networks and data stores nothing is asked yet.
TargetTree askTarget(const std::string& server, const std::string& proxy, const std::string& master);

/// Calls `see` with each host of a data center and the cluster that it is in, which is null for one in none.
template <class DataCenter, class See>
void eachHost(DataCenter& dataCenter, See see) {
    for (auto& cluster : dataCenter.clusters)
        for (auto& host : cluster.hosts)
            see(host, &cluster);
    for (auto& host : dataCenter.hosts)
        see(host, static_cast<decltype(&dataCenter.clusters.front())>(nullptr));
}

/// Asks for the rest of a tree, place by place. A listing that fails leaves its part empty and is noted
/// there.
class TargetListings {
  public:
    TargetListings(TargetTree& target, const std::string& master) : m_target(target), m_master(master) {}

    void fillAll();
    // False if the listing failed.
    bool fillFolders(TargetDataCenter& dataCenter);
    bool fillPools(TargetHost& host);
    bool fillNetworks(TargetHost& host);
    bool fillStores(TargetHost& host);

  private:
    bool note(const char* what, const std::string& where, int status);

    TargetTree& m_target;
    const std::string& m_master;
};

} // namespace Zorvane
