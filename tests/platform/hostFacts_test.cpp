// SPDX-License-Identifier: Apache-2.0
// Facts about the host, and its place in the suite.
#include "platform/HostFiles.h"
#include "platform/hostFacts.h"
#include "platform/returnCodes.h"
#include "platform/suiteHosts.h"
#include "suite/kvnclient.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

using Names = std::vector<std::string>;

TEST(HostFacts, OfThisHost) {
    std::ifstream release("/proc/sys/kernel/osrelease");
    std::string expected;
    std::getline(release, expected);
    EXPECT_EQ(GetKernelVersion(), expected);
    EXPECT_FALSE(GetArchitecture().empty());
    const HostFiles host;
    EXPECT_EQ(GetFirmware(), 3);
    host.write("/sys/firmware/efi/fw_platform_size", "64\n");
    EXPECT_EQ(GetFirmware(), 2);
}

TEST(HostFacts, NamesAndAddresses) {
    EXPECT_EQ(GetHostByNameCommon("localhost"), "127.0.0.1");
    EXPECT_EQ(GetHostByNameCommon("no such host"), "");
    EXPECT_FALSE(GetHostByAddrCommon(0x7F000001).empty());
    EXPECT_EQ(GetHostByAddrCommon("127.0.0.1"), GetHostByAddrCommon(0x7F000001));
    EXPECT_EQ(GetHostByAddrCommon("0.0.0.1"), "");
    Names addresses;
    EXPECT_EQ(GetAllInterfaceAddr(addresses), ZOR_FAIL) << "the command can't find any";
    EXPECT_EQ(addresses, Names{});
}

TEST(SuiteHosts, FromTheConfiguration) {
    const Scratch scratch(
        "[master]\nservers = ['alpha', 'beta']\nmedia_servers = ['gamma', 'alpha']\nclient_name = 'me'\n"
        "required_interface = 'backup-net'\n");
    std::string client;
    std::string interface;
    Names servers{"kept"};
    EXPECT_EQ(GetClientName(client) + GetKVNRequiredInterface(interface) + GetMediaServers(servers), 0);
    EXPECT_EQ(client + ' ' + interface, "me backup-net");
    EXPECT_EQ(servers, (Names{"kept", "alpha", "beta", "gamma", "alpha"}));
}

TEST(SuiteHosts, OfThisHost) {
    const Scratch scratch;
    char host[KVN_HOSTNAME_SIZE];
    ASSERT_EQ(kvn_gethostname(host, sizeof host), 0);
    const std::string thisHost = host;
    scratch.configure("[master]\nservers = ['" + thisHost + "', '203.0.113.9']\n");
    EXPECT_EQ(OnMasterServer(), 1);
    scratch.configure("[master]\nservers = ['203.0.113.9', '" + thisHost + "']\nclient_name = ''\n");
    EXPECT_EQ(OnMasterServer(), 0);

    std::filesystem::remove(scratch.path("kvn.toml")); // no configuration
    std::string name;
    Names servers;
    EXPECT_EQ(GetClientName(name), ZOR_SUCCESS);
    EXPECT_EQ(name, thisHost);
    EXPECT_EQ(GetKVNRequiredInterface(name), ZOR_FAIL);
    EXPECT_EQ(GetMediaServers(servers), ZOR_FAIL);
    EXPECT_EQ(OnMasterServer(), 0);
}

} // namespace
} // namespace Zorvane
