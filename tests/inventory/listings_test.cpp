// SPDX-License-Identifier: Apache-2.0
#include "inventory/FakeKvnrd.h"

#include <functional>

namespace Zorvane {
namespace {

using Connect = CZorb2vKvnrdConnect;

std::string result(int rc, const auto&... collected) {
    return rc == 0 ? (joined(collected) + ...) : std::to_string(rc);
}

// Calls a listing that fills one container.
template <class Container, class... Arguments>
auto list(int (Connect::*listing)(Container&, Arguments...), auto... given) {
    return [=](Connect& connect) {
        Container entries;
        const int rc = (connect.*listing)(entries, given...);
        return result(rc, entries);
    };
}

std::string listPools(Connect& connect) {
    std::vector<std::string> names, paths;
    const int rc = connect.getRpoolList(names, paths, "P", "E", "S", "");
    return result(rc, names, paths);
}

// A node of each type, below a root that counts for none.
constexpr const char* TREE = "<VirtualCenterViewNode Type='1'><Name>root</Name><Children>"
                             "<VirtualCenterViewNode Type='1'><Name>dc</Name><Children>"
                             "<VirtualCenterViewNode Type='3'><Name>esx</Name></VirtualCenterViewNode>"
                             "<VirtualCenterViewNode Type='4'><Name>vm</Name></VirtualCenterViewNode>"
                             "<VirtualCenterViewNode Type='5'><Name>cl</Name></VirtualCenterViewNode>"
                             "</Children></VirtualCenterViewNode></Children></VirtualCenterViewNode>";

TEST(Listings, sendTheirArgumentsAndReadTheirReplies) {
    const struct {
        std::function<std::string(Connect&)> list;
        std::string sent; // proxy, listing, reserved, esxMount, vmServer
        std::string reply, collected;
    } cases[] = {
        {list(&Connect::getVmServerList, ""), "_NONE_\n10\n0\n_NONE_\n_NONE_\n",
         "<VirtualMachineServerList><S Name='v' Type='1'/></VirtualMachineServerList>", "v=1;"},
        {list(&Connect::getVmProxyList, ""), "_NONE_\n9\n0\n_NONE_\n_NONE_\n",
         "<ProxyServerList><P Name='p'/></ProxyServerList>", "p;"},
        {list(&Connect::getDsList, "P", "E", "S", ""), "P\n22\n0\nE\nS\n",
         "<HostMachinesProxyView><Datastore><Name>d</Name><Freespace>2097152</Freespace></Datastore>"
         "</HostMachinesProxyView>",
         "d=2;"},
        {list(&Connect::getEsxServerList, "P", "S", ""), "P\n7\n0\n_NONE_\nS\n", TREE, "esx;"},
        {list(&Connect::getDcList, "P", "S", ""), "P\n7\n0\n_NONE_\nS\n", TREE, "dc;"},
        {list(&Connect::getClusterList, "P", "S", ""), "P\n7\n0\n_NONE_\nS\n", TREE, "cl;"},
        {list(&Connect::getVmList, "P", "E", "S", ""), "P\n7\n0\n_NONE_\nS\n", TREE, "vm;"},
        {list(&Connect::getVmList, "P", "S", "S", ""), "P\n7\n0\nS\nS\n", TREE, "vm;"},
        {list(&Connect::getVmNetworksList, "P", "E", "S", ""), "P\n17\n0\nE\nS\n",
         "<NetworkList><N Name='n'/></NetworkList>", "n;"},
        {listPools, "P\n11\n0\nE\nS\n",
         "<ResourcePoolList><ResourcePool Name='r' Path='/r'/></ResourcePoolList>", "r;/r;"},
        {list(&Connect::getVmFoldersList, "P", "E", "S", ""), "P\n19\n0\nE\nS\n",
         "<VmFolderView><Folder><Path>/f</Path></Folder></VmFolderView>", "/f;"},
    };
    for (const auto& [call, sent, reply, collected] : cases) {
        Connect connect;
        FakeKvnrd daemon(WELCOME + ("<?xml version='1.0'?>\n" + reply) + "\nEXIT STATUS 0\n");
        EXPECT_EQ(call(connect), collected);
        EXPECT_EQ(daemon.sent(), "labhost root\n136\n" + sent);
        FakeKvnrd other("0\n0\n1\n<Other/>\nEXIT STATUS 0\n");
        EXPECT_EQ(call(connect), "1") << "no listing takes another's reply for its own";
    }
}

TEST(Listings, tellAFailedRequestAndABadReply) {
    const struct {
        std::string reply, result, logged;
    } cases[] = {
        {"EXIT STATUS 41\n", "41", "send_kvnrdrequest() failed. rc=41"},
        {"EXIT STATUS 0\n", "1", "invalid kvnrd output"},
        {"no document\n", "1", "invalid kvnrd output"},
        {"<NetworkList><N Name='n'/>\n", "1", "invalid kvnrd output"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM '/etc/passwd'>]><NetworkList/>", "1", "invalid kvnrd output"},
    };
    Connect connect;
    for (const auto& [reply, expected, logged] : cases) {
        FakeKvnrd daemon(WELCOME + reply);
        EXPECT_EQ(list(&Connect::getVmNetworksList, "P", "E", "S", "")(connect), expected) << reply;
        const std::string line =
            "debug 1 CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::getVmNetworksList() " + logged;
        EXPECT_NE(daemon.log().find(line), std::string::npos) << daemon.log();
    }
}

} // namespace
} // namespace Zorvane
