// SPDX-License-Identifier: Apache-2.0
#include "storage/Rows.h"
#include "storage/deviceNames.h"

#include <stdexcept>

namespace Zorvane {
namespace {

std::string partsOf(const std::string& name) {
    const std::string disk = GetDiskPartOfDeviceName(name) + ' ';
    try {
        return disk + GetPartitionPartOfDeviceName(name);
    } catch (const std::out_of_range&) {
        return disk + "throws";
    }
}

TEST(DeviceNames, diskAndPartition) {
    const std::pair<const char*, const char*> cases[] = {{"/dev/sdaa15", "/dev/sdaa 15"},
                                                         {"/dev/xvdb2", "/dev/xvdb 2"},
                                                         {"/dev/hdc3", "/dev/hdc 3"},
                                                         {"/dev/cciss/c1d12p10", "/dev/cciss/c1d12 p10"},
                                                         {"/dev/vda1", " "},
                                                         {"/dev/sda", "/dev/sda throws"},
                                                         {"/dev/cciss/c0d0", "/dev/cciss/c0d0 throws"},
                                                         {"/dev/cciss/c0", "/dev/cciss/c0 throws"},
                                                         {"/dev/cciss", "/dev/cciss throws"}};
    for (const auto& [name, parts] : cases)
        EXPECT_EQ(partsOf(name), parts);
}

TEST(DeviceNames, sizeTexts) {
    constexpr std::uint64_t REFUSED = 77;
    const std::pair<const char*, std::uint64_t> cases[] = {
        {"512", 512},       {"2m", 2097152},    {"3K", 3072},
        {"1g", 1ull << 30}, {"1T", 1ull << 40}, {"1p", 1ull << 50},
        {"1E", 1ull << 60}, {"1e", 1ull << 60}, {"1.5k", 1536},
        {"0.1K", 102},      {"4k5", 4096},      {"16E", 0},
        {"", REFUSED},      {".5k", REFUSED},   {"1kb", REFUSED},
        {"1.5", REFUSED},   {"1.k", REFUSED},   {"1.55k", REFUSED},
        {"1..k", REFUSED},  {"1k.5", REFUSED},  {" 1", REFUSED},
        {"1k.5m", REFUSED}, {"k", REFUSED},     {"2.9E", (2ull << 60) + 9 * (1ull << 60) / 10}};
    for (const auto& [text, expected] : cases) {
        std::uint64_t number = REFUSED;
        EXPECT_EQ(ParseSizeString(text, number), expected == REFUSED ? 1 : 0) << text;
        EXPECT_EQ(number, expected) << text;
    }
}

TEST(DeviceNames, multipathNames) {
    const std::string disks =
        "LinuxDisk Name=sda | Name=sdb DMPName=mpatha | Name=sdc DMPName=3600b4 | Name=sdd "
        "DMPName=emcpowera | Name=sde DMPName=/dev/mapper/mpathdir | Name=sdf DMPName=sdq;";
    const struct {
        const char *qualifier, *level, *name, *expected;
    } cases[] = {{"RHEL", "8.4", "/dev/mapper/mpatha1", "sdb1"},
                 {"RHEL", "8.4", "/dev/mapper/mpatha", "sdb"},
                 {"RHEL", "7", "/dev/mapper/mpathap2", "sdb2"}, // no disk "mpathap"
                 {"RHEL", "8.4", "/dev/mapper/3600b4p3", "sdc3"},
                 {"RHEL", "8.4", "/dev/mapper/3600b4", "sdc"},
                 {"RHEL", "6.9", "/dev/mpath/mpathap2", "sdb2"},
                 {"RHEL", "6.9", "/dev/mapper/mpatha1", "/dev/mapper/mpatha1"}, // cut at the disk's own "p"
                 {"RHEL", "?", "/dev/mapper/mpathap2", "sdb2"},
                 {"SLES", "12", "/dev/mapper/mpatha_part5", "sdb5"},
                 {"SLES", "12", "/dev/mapper/mpatha-part6", "sdb6"},
                 {"SLES", "12", "/dev/mapper/mpathdir", "sde"}, // recorded with its directory
                 {"SLES", "12", "/dev/mapper/mpathz_part1", "/dev/mapper/mpathz_part1"},
                 {"UBUNTU", "22", "/dev/mapper/mpatha", "sdb"},
                 {"RHEL", "8", "/dev/emcpowera7", "sdd7"},
                 {"RHEL", "8", "emcpowera", "sdd"},
                 {"SLES", "12", "/dev/sdq4", "sdf4"},
                 {"SLES", "12", "/dev/sdx1", "/dev/sdx1"},
                 {"SLES", "12", "", ""}};
    for (const auto& c : cases)
        check([&](const CZor& zor) { return GenerateLinuxDeviceNameByDMPName(zor, c.name); },
              {{disks + "System OsQualifier=" + c.qualifier + " OsLevel=" + c.level, c.expected}});
    EXPECT_EQ(GenerateLinuxDeviceNameByDMPName(CZor(), "/dev/mapper/mpatha1"), "/dev/mapper/mpatha1");
}

} // namespace
} // namespace Zorvane
