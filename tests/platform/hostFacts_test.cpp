// SPDX-License-Identifier: Apache-2.0
// Facts about the host, and its place in the suite.
#include "platform/HostFiles.h"
#include "platform/hostFacts.h"
#include "platform/returnCodes.h"
#include "platform/suiteHosts.h"
#include "suite/kvnclient.h"

#include <iterator>

#include <gtest/gtest.h>

namespace Zorvane {

namespace {

using Names = std::vector<std::string>;

TEST(HostFacts, KernelAndMachine) {
    std::ifstream release("/proc/sys/kernel/osrelease");
    std::string expected;
    std::getline(release, expected);
    EXPECT_EQ(GetKernelVersion(), expected);
    EXPECT_FALSE(GetArchitecture().empty());
}

TEST(HostFacts, Firmware) {
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
}

TEST(HostFacts, InterfaceCommandFindsNothing) {
    Names addresses;
    EXPECT_EQ(GetAllInterfaceAddr(addresses), ZOR_FAIL);
    EXPECT_EQ(addresses, Names{});
}

std::string thisHost() {
    char name[KVN_HOSTNAME_SIZE];
    return kvn_gethostname(name, sizeof name) == 0 ? name : "";
}

TEST(SuiteHosts, FromTheConfiguration) {
    const Scratch scratch(
        "[master]\nservers = ['alpha', 'beta']\nmedia_servers = ['gamma', 'alpha']\nclient_name = 'me'\n"
        "required_interface = 'backup-net'\n");
    std::string name;
    EXPECT_EQ(GetClientName(name), ZOR_SUCCESS);
    EXPECT_EQ(name, "me");
    EXPECT_EQ(GetKVNRequiredInterface(name), ZOR_SUCCESS);
    EXPECT_EQ(name, "backup-net");
    Names servers{"kept"};
    EXPECT_EQ(GetMediaServers(servers), ZOR_SUCCESS);
    EXPECT_EQ(servers, (Names{"kept", "alpha", "beta", "gamma", "alpha"}));
}

TEST(SuiteHosts, WithoutConfiguration) {
    const Scratch scratch;
    std::filesystem::remove(scratch.path("kvn.toml"));
    std::string name;
    Names servers;
    EXPECT_EQ(GetClientName(name), ZOR_SUCCESS);
    EXPECT_EQ(name, thisHost());
    EXPECT_EQ(GetKVNRequiredInterface(name), ZOR_FAIL);
    EXPECT_EQ(GetMediaServers(servers), ZOR_FAIL);
    EXPECT_EQ(OnMasterServer(), 0);
}

TEST(SuiteHosts, MasterIsTheFirstServerOnly) {
    const Scratch scratch("[master]\nservers = ['" + thisHost() + "', '203.0.113.9']\n");
    EXPECT_EQ(OnMasterServer(), 1);
    scratch.configure("[master]\nservers = ['203.0.113.9', '" + thisHost() + "']\nclient_name = ''\n");
    EXPECT_EQ(OnMasterServer(), 0);
}

} // namespace

} // namespace Zorvane
