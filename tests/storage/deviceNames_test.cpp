// SPDX-License-Identifier: Apache-2.0
#include "model/CZor.h"
#include "model/core_records.h"
#include "model/linux_records.h"
#include "storage/deviceNames.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace Zorvane {

namespace {

TEST(DeviceNames, DiskAndPartition) {
    const struct {
        const char* name;
        const char* disk;
        const char* partition;
    } cases[] = {
        {"/dev/sda1", "/dev/sda", "1"},
        {"/dev/sdaa15", "/dev/sdaa", "15"},
        {"/dev/xvdb2", "/dev/xvdb", "2"},
        {"/dev/hdc3", "/dev/hdc", "3"},
        {"/dev/cciss/c0d0p1", "/dev/cciss/c0d0", "p1"},
        {"/dev/cciss/c1d12p10", "/dev/cciss/c1d12", "p10"},
        {"/dev/vda1", "", ""},
        {"sda1", "", ""},
        {"", "", ""},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(GetDiskPartOfDeviceName(row.name), row.disk);
        EXPECT_EQ(GetPartitionPartOfDeviceName(row.name), row.partition);
    }
    for (const char* disk :
         {"/dev/sda", "/dev/xvdb", "/dev/hda", "/dev/cciss/c0d0", "/dev/cciss/c0", "/dev/cciss", "/dev/sd"}) {
        EXPECT_EQ(GetDiskPartOfDeviceName(disk), disk);
        EXPECT_THROW(GetPartitionPartOfDeviceName(disk), std::out_of_range) << disk;
    }
}

TEST(DeviceNames, SizeTexts) {
    const struct {
        const char* text;
        std::uint64_t number;
    } cases[] = {
        {"0", 0},           {"512", 512},       {"2m", 2097152},
        {"3K", 3072},       {"1g", 1ull << 30}, {"1T", 1ull << 40},
        {"1p", 1ull << 50}, {"1E", 1ull << 60}, {"1e", 1ull << 60},
        {"1.5k", 1536},     {"0.1K", 102},      {"2.9E", (2ull << 60) + 9 * (1ull << 60) / 10},
        {"4k5", 4096},      {"16E", 0},
    };
    for (const auto& row : cases) {
        std::uint64_t number = 77;
        EXPECT_EQ(ParseSizeString(row.text, number), 0) << row.text;
        EXPECT_EQ(number, row.number) << row.text;
    }
    for (const char* bad :
         {"", "k", ".5k", "-1", " 1", "1 k", "1kb", "1.5", "1.k", "1.55k", "1..k", "1k.5", "1k.5m", "0x1"}) {
        std::uint64_t number = 77;
        EXPECT_EQ(ParseSizeString(bad, number), 1) << bad;
        EXPECT_EQ(number, 77u) << bad;
    }
}

TEST(DeviceNames, MultipathNames) {
    const struct {
        const char* qualifier;
        const char* level;
        const char* name;
        const char* expected;
    } cases[] = {
        {"RHEL", "8.4", "/dev/mapper/mpatha1", "/dev/sdb1"},
        {"RHEL", "8.4", "/dev/mapper/mpatha", "/dev/sdb"},
        {"RHEL", "8.4", "/dev/mapper/mpathap2", "/dev/sdb2"}, // no disk "mpathap"
        {"RHEL", "8.4", "/dev/mapper/3600508b4p3", "/dev/sdc3"},
        {"RHEL", "8.4", "/dev/mapper/3600508b4", "/dev/sdc"},
        {"RHEL", "6.9", "/dev/mpath/mpathap2", "/dev/sdb2"},
        {"RHEL", "6.9", "/dev/mapper/mpatha1", "/dev/mapper/mpatha1"}, // cut at the disk's own "p"
        {"RHEL", "?", "/dev/mapper/mpathap2", "/dev/sdb2"},
        {"SLES", "12", "/dev/mapper/mpatha_part5", "/dev/sdb5"},
        {"SLES", "12", "/dev/mapper/mpatha-part6", "/dev/sdb6"},
        {"SLES", "12", "/dev/mapper/mpatha", "/dev/sdb"},
        {"SLES", "12", "/dev/mapper/mpathdir", "/dev/sde"}, // recorded with its directory
        {"SLES", "12", "/dev/mapper/mpathz_part1", "/dev/mapper/mpathz_part1"},
        {"UBUNTU", "22", "/dev/mapper/mpatha", "/dev/sdb"},
        {"RHEL", "8", "/dev/emcpowera7", "/dev/sdd7"},
        {"RHEL", "8", "emcpowera", "/dev/sdd"},
        {"SLES", "12", "/dev/sdq4", "/dev/sdf4"},
        {"SLES", "12", "/dev/sdq", "/dev/sdf"},
        {"SLES", "12", "/dev/sdx1", "/dev/sdx1"},
        {"SLES", "12", "/dev/dm-3", "/dev/dm-3"},
        {"SLES", "12", "", ""},
    };
    CZor container;
    auto* system = new CSystem;
    container.m_vSystem.push_back(system);
    container.m_vLinuxDisk.push_back(nullptr);
    std::string deviceName = "/dev/sda";
    for (const char* multipath : {"", "mpatha", "3600508b4", "emcpowera", "/dev/mapper/mpathdir", "sdq"}) {
        auto* disk = new CLinuxDisk;
        disk->setName(deviceName);
        disk->setDMPName(multipath);
        container.m_vLinuxDisk.push_back(disk);
        ++deviceName.back();
    }
    for (const auto& row : cases) {
        system->setOsQualifier(row.qualifier);
        system->setOsLevel(row.level);
        EXPECT_EQ(GenerateLinuxDeviceNameByDMPName(container, row.name), row.expected)
            << row.qualifier << " " << row.level << " " << row.name;
    }
    EXPECT_EQ(GenerateLinuxDeviceNameByDMPName(CZor(), "/dev/mapper/mpatha1"), "/dev/mapper/mpatha1");
}

} // namespace

} // namespace Zorvane
