// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "inventory/CZorb2vKvnrdConnect.h"
#include "lab/Inventory.h"
#include "lab/LabError.h"
#include "lab/defaultInventory.h"
#include "lab/inventoryDocuments.h"
#include "lab/profileCheck.h"
#include "model/XmlParser.h"

#include <fstream>

namespace Zorvane {

namespace {

using Client = CZorb2vKvnrdConnect;
using Names = std::vector<std::string>;

class InventoryTest : public testing::Test {
  protected:
    Inventory read(std::string_view text) {
        std::ofstream(m_scratch.file("inventory.toml")) << text;
        return readInventory(m_scratch.file("inventory.toml"));
    }

    // The listing as its client reads it.
    template <class Result, class... More>
    Result listing(long number, const std::string& place, const std::string& server,
                   int (*parse)(XmlParser&, Result&, More...), More... more) {
        const ListingReply reply = makeListing(m_inventory, {"proxy", number, 0, place, server});
        EXPECT_EQ(reply.status, 0);
        XmlParser document(reinterpret_cast<const unsigned char*>(reply.document.data()),
                           static_cast<int>(reply.document.size()));
        Result result;
        EXPECT_EQ(parse(document, result, more...), 0) << reply.document;
        return result;
    }

    ScratchDirectory m_scratch;
    Inventory m_inventory = read(DEFAULT_INVENTORY);
};

constexpr const char* VCENTER = "vcenter01.lab.example";
constexpr const char* ESX = "esx90.lab.example";
constexpr const char* NONE = "_NONE_";

} // namespace

TEST_F(InventoryTest, ClientsReadEveryListing) {
    EXPECT_EQ(listing(10, NONE, NONE, &Client::parseVmServersList),
              (std::map<std::string, int>{{VCENTER, 1}, {ESX, 2}}));
    EXPECT_EQ(listing(9, NONE, NONE, &Client::parseVmProxyList), m_inventory.proxies);
    EXPECT_EQ(listing(17, "ESX11.lab.example", VCENTER, &Client::parseNetworksList),
              (Names{"VM Network", "Southbank 210"}));

    const auto browse = [&](const char* server, VcenterNode type) {
        return listing(7, NONE, server, &Client::parseVcentersBrowse, type);
    };
    EXPECT_EQ(browse(VCENTER, VcenterNode::DataCenter), (Names{"Northgate", "Southbank"}));
    EXPECT_EQ(browse(VCENTER, VcenterNode::Cluster), (Names{"ng-cluster1"}));
    EXPECT_EQ(browse(VCENTER, VcenterNode::EsxServer),
              (Names{"esx01.lab.example", "esx02.lab.example", "esx11.lab.example", "esx12.lab.example"}));
    EXPECT_EQ(browse(ESX, VcenterNode::VirtualMachine), Names{"branch-dc01"});

    // A pod is a store as well, as large as its parts.
    const auto stores = listing(22, "esx01.lab.example", VCENTER, &Client::parseDatastoreTree);
    EXPECT_EQ(stores, (std::map<std::string, long long>{{"ng-san-01", 2457600},
                                                        {"ng-san-02", 1310720},
                                                        {"ng-pod1", 1740800},
                                                        {"ng-pod1-a", 819200},
                                                        {"ng-pod1-b", 921600}}));

    EXPECT_EQ(listing(19, "Southbank", VCENTER, &Client::parseVmFoldersList),
              (Names{"/Southbank/vm", "/Southbank/vm/Production", "/Southbank/vm/Retired"}));
}

// Readers give up on a level at a childless pool: none may be lost by that.
TEST_F(InventoryTest, NoResourcePoolIsLost) {
    const ListingReply reply = makeListing(m_inventory, {"p", 11, 0, "esx01.lab.example", VCENTER});
    XmlParser document(reinterpret_cast<const unsigned char*>(reply.document.data()),
                       static_cast<int>(reply.document.size()));
    Names names;
    Names paths;
    ASSERT_EQ(Client::parseRpoolList(document, names, paths), 0);
    EXPECT_EQ(names, (Names{"Resources", "Gold", "Databases", "Web", "Silver", "Test"}));
    EXPECT_EQ(paths[2], "/Northgate/host/ng-cluster1/Resources/Gold/Databases");
}

TEST_F(InventoryTest, NamesOfAnyKindSurviveTheDocument) {
    m_inventory = read("proxies = [\"a&b <\\\"c'> \\n d\", \"s\xC3\xB6\xC3\xBC\"]");
    setlocale(LC_ALL, "C.UTF-8");
    EXPECT_EQ(listing(9, NONE, NONE, &Client::parseVmProxyList), m_inventory.proxies);
    setlocale(LC_ALL, "C");
}

TEST_F(InventoryTest, WhatIsNotThereIsAStatus) {
    const struct {
        ListingRequest request;
        int status;
    } cases[] = {
        {{"p", 8, 0, NONE, VCENTER}, LISTING_UNKNOWN},
        {{"p", 7, 0, NONE, "nobody"}, LISTING_NO_SERVER},
        {{"p", 22, 0, "nobody", VCENTER}, LISTING_NO_PLACE},
        {{"p", 22, 0, ESX, VCENTER}, LISTING_NO_PLACE}, // a host of another server
        {{"p", 19, 0, "esx01.lab.example", VCENTER}, LISTING_NO_PLACE},
    };
    for (const auto& row : cases)
        EXPECT_EQ(makeListing(m_inventory, row.request).status, row.status) << row.request.listing;
}

TEST_F(InventoryTest, FilesThatMakeNoSenseAreToldWithTheirPlace) {
    std::string parts = "a";
    for (int i = 0; i < 300'000; ++i)
        parts += ".a";
    std::string nested = "[1]"; // in each of which a key has as many parts as a line takes
    for (int i = 0; i < 20; ++i)
        nested = "[\n{" + parts.substr(0, 4001) + "=" + nested + "}]";
    const struct {
        std::string text;
        const char* complaint;
    } cases[] = {
        {parts + " = 1", "inventory.toml:1:4097: the line is too long"},
        {"x = " + nested, "nested"},
        {"proxies = 1", ":1:11: proxies must be a list of texts"},
        {"[[server]]\nname = \"s\"\ntype = \"xen\"\n", "type must be \"vcenter\" or \"esx\""},
        {"[[server]]\nname = \"s\"\ntype = \"esx\"\n[[server.datacenter]]\nname = "
         "\"d\"\n[[server.datacenter.host]]\n"
         "name = \"h\"\ndatastores = [{ name = \"x\", free_mib = -1 }]",
         "free_mib must be a whole number from 0"},
        {"servers = []", "\"servers\" is no key of this table, which knows proxies, server"},
    };
    for (const auto& row : cases)
        try {
            read(row.text);
            ADD_FAILURE() << row.text;
        } catch (const LabError& failure) {
            EXPECT_NE(std::string(failure.what()).find(row.complaint), std::string::npos) << failure.what();
        }
}

TEST_F(InventoryTest, AProfileIsCheckedObjectByObject) {
    CVmwareProfileOptions good;
    good.setVICName("convhost01.lab.example");
    good.setVCenterServer("VCENTER01.lab.example");
    good.setEsxServer("esx01.lab.example");
    good.setDataCenter("/Northgate");
    good.setESXCluster("ng-cluster1");
    good.setDataStore("ng-pod1");
    good.setResourcePool("/Northgate/host/ng-cluster1/Resources/Gold");
    good.setFolder("/Northgate/vm/Test");
    good.setNetwork("VM Network");
    EXPECT_FALSE(findMissing(m_inventory, good));

    const struct {
        void (CVmwareProfileOptions::*set)(const std::string&);
        const char* value;
        const char* missing; ///< null: nothing
    } cases[] = {
        {&CVmwareProfileOptions::setVICName, "other", "-vmproxy"},
        {&CVmwareProfileOptions::setVCenterServer, "other", "-vmserver"},
        {&CVmwareProfileOptions::setEsxServer, "esx90.lab.example", "esxhost"},
        {&CVmwareProfileOptions::setDataCenter, "Southbank", "datacenter"},
        {&CVmwareProfileOptions::setESXCluster, "other", "cluster"},
        {&CVmwareProfileOptions::setDataStore, "sb-nfs-01", "datastore"},
        {&CVmwareProfileOptions::setResourcePool, "Bronze", "resourcepool"},
        {&CVmwareProfileOptions::setResourcePool, "databases", nullptr}, // by its name
        {&CVmwareProfileOptions::setFolder, "/Northgate/vm/None", "folder"},
        {&CVmwareProfileOptions::setNetwork, "other", "network"},
        {&CVmwareProfileOptions::setNetwork, "", nullptr}, // stripped
    };
    for (const auto& row : cases) {
        CVmwareProfileOptions profile = good;
        (profile.*row.set)(row.value);
        const auto missing = findMissing(m_inventory, profile);
        EXPECT_STREQ(missing ? missing->kind : nullptr, row.missing) << row.value;
    }
}

} // namespace Zorvane
