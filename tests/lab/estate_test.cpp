// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/Catalogue.h"
#include "lab/Estate.h"
#include "lab/Inventory.h"
#include "lab/LabDirectory.h"
#include "storage/windowsDisks.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

namespace Zorvane {

namespace {

std::string textOf(const std::filesystem::path& file) {
    return (std::ostringstream() << std::ifstream(file).rdbuf()).str();
}

class EstateTest : public testing::Test {
  protected:
    [[nodiscard]] LabDirectory make(const char* name, EstateSize size, std::uint64_t seed = 1) const {
        const LabDirectory lab(m_scratch.file(name));
        initLab(lab, {.basePort = 20000, .estate = {size, seed, 1'800'000'000}, .quiet = true});
        return lab;
    }
    // The first client is the one with the most disks.
    static std::string documentOfTheFirst(const LabDirectory& lab) {
        const Store store(lab.database());
        for (const CConfig& config : store.configurations())
            if (config.getClientName().starts_with("bigdata")) {
                CZor rows;
                EXPECT_TRUE(store.exportTree(config.getClientName(), "", rows).ok());
                const auto bytes = writeDocument(rows);
                return {bytes.begin(), bytes.end()};
            }
        return {};
    }

    ScratchDirectory m_scratch;
};

bool isAscii(const std::string& text) {
    return std::ranges::all_of(text, [](unsigned char c) { return c < 0x80; });
}

bool anyHas(const std::set<std::string>& names, const char* part) {
    return std::ranges::any_of(names, [&](const auto& name) { return name.find(part) != std::string::npos; });
}

} // namespace

TEST_F(EstateTest, IsTheSameForASeedAndAClock) {
    const LabDirectory one = make("one", EstateSize::Small);
    const LabDirectory two = make("two", EstateSize::Small);
    const LabDirectory other = make("other", EstateSize::Small, 2);
    EXPECT_EQ(textOf(one.catalogue()), textOf(two.catalogue()));
    EXPECT_EQ(textOf(one.inventory()), textOf(two.inventory()));
    EXPECT_EQ(documentOfTheFirst(one), documentOfTheFirst(two));
    EXPECT_NE(documentOfTheFirst(one), "");
    EXPECT_NE(textOf(one.inventory()), textOf(other.inventory()));
    EXPECT_NE(textOf(one.catalogue()), textOf(other.catalogue()));
}

TEST_F(EstateTest, HoldsWhatItsSizeSays) {
    const LabDirectory lab = make("lab", EstateSize::Medium);
    const EstateExtent extent = extentOf(EstateSize::Medium);
    const Store store(lab.database());
    std::set<std::string> clients;
    for (const CConfig& config : store.configurations()) {
        clients.insert(config.getClientName());
        EXPECT_LE(config.getRetrievalTime(), 1'800'000'000);
    }
    EXPECT_EQ(clients.size(), extent.clients);
    EXPECT_TRUE(anyHas(clients, " ") && anyHas(clients, "/") && !std::ranges::all_of(clients, isAscii));

    const Inventory inventory = readInventory(lab.inventory());
    std::multiset<std::string> machines;
    for (const InventoryServer& server : inventory.servers)
        for (const InventoryDataCenter& dataCenter : server.dataCenters)
            for (const InventoryHost& host : dataCenter.hosts)
                machines.insert(host.machines.begin(), host.machines.end());
    EXPECT_EQ(machines.size(), extent.machines);
    const std::set<std::string> names(machines.begin(), machines.end());
    EXPECT_LT(names.size(), machines.size()) << "a name stands in two places";
    EXPECT_TRUE(anyHas(names, " ") && anyHas(names, "/") && !std::ranges::all_of(names, isAscii));
    EXPECT_GE(readCatalogue(lab.catalogue()).clients.size(), extent.clients * 9 / 10);
}

// Volumes lie on the disks, and regions neither overlap nor reach beyond them.
TEST_F(EstateTest, HasDisksThatMakeSense) {
    std::string document = documentOfTheFirst(make("lab", EstateSize::Small));
    CZor rows;
    ASSERT_EQ(
        rows.readXml(reinterpret_cast<unsigned char*>(document.data()), static_cast<int>(document.size())),
        0);
    ASSERT_EQ(rows.m_vWindowsDisk.size(), extentOf(EstateSize::Small).disks);
    for (const CWindowsDisk* disk : rows.m_vWindowsDisk) {
        std::int64_t end = 0;
        for (const CWindowsRegion* region : rows.m_vWindowsRegion) {
            if (region->getWindowsDiskId() != disk->getId())
                continue;
            EXPECT_GE(region->getOffset(), end) << disk->getName();
            EXPECT_GT(region->getLength(), 0);
            end = region->getOffset() + region->getLength();
        }
        EXPECT_GT(end, 0) << disk->getName();
        EXPECT_LE(end, disk->getUnAlignedLength()) << disk->getName();
    }
    for (const CWindowsVolume* volume : rows.m_vWindowsVolume)
        EXPECT_EQ(FindWindowsDisksOfVolume(rows, *volume).size(), 1U) << volume->getName();
}

} // namespace Zorvane
