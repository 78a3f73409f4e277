// SPDX-License-Identifier: Apache-2.0
#include "model/linux_records.h"
#include "model/solaris_records.h"
#include "model/windows_records.h"
#include "storage/Rows.h"
#include "storage/linuxStorage.h"
#include "storage/volfind.h"
#include "storage/windowsDisks.h"

namespace Zorvane {
namespace {

/// The tables whose rows lose their mapping, when every row that has one is mapped.
std::string clearedTables(CZor& zor) {
    for (const VectorDescriptor& vector : allVectors())
        if (vector.table().find("MappedFromId"))
            addRows(zor, std::string(vector.name) + " MappedFromId=9");
    EXPECT_EQ(ClearAllMappedFromId(zor), 0);
    std::string names;
    for (const VectorDescriptor& vector : allVectors())
        if (const Field* field = vector.table().find("MappedFromId"))
            if (vector.rows(zor).records().front()->*field->uint32 == 0)
                names += (names.empty() ? "" : " ") + std::string(vector.name);
    return names;
}

TEST(Volfind, clearsTheMappingOfTheManagersTables) {
    const std::pair<const char*, std::string> cases[] = {
        {"1 512 1023", "WindowsDiskGroup WindowsVolume WindowsRegion"}, // of several, the first
        {"2", "QuswDiskGroup QuswVolume QuswSubDisk"},
        {"4", "AixVolumeGroup AixLogicalVolume AixSubDisk"},
        {"8", "HpuxVolumeGroup HpuxLogicalVolume HpuxSubDisk"},
        {"16", "SolarisDiskGroup SolarisVolume SolarisSlice"},
        {"32", "QuvmDiskGroup QuvmVolume QuvmSubDisk"},
        {"64 448", "SvmDiskSet SvmVolume SvmSubDisk"},
        {"128 256", "LinuxVolumeGroup LinuxLogicalVolume LinuxPartition LinuxMultiDevice"}};
    for (const auto& [masks, tables] : cases) {
        std::istringstream words(masks);
        for (std::string mask; words >> mask;)
            check(clearedTables, {{"VolumeInfo Managers=" + mask + "; System Architecture=x64", tables}});
    }
    check(clearedTables, {{"VolumeInfo Managers=1024 | Managers=1", ""},
                          {"System Architecture=i86pc", "SolarisNativePartition"},
                          {"System Architecture=i86pc; VolumeInfo Managers=4",
                           cases[2].second + " SolarisNativePartition"}});
}

TEST(Volfind, rulesOverAContainer) {
    const std::string linux = "; System Os=LINUX Firmware=UEFI";
    check(IsBootAndSystemMapped,
          {{"VolumeInfo Managers=1; WindowsVolume IsBoot=1 | IsSystem=1", "1"},
           {"VolumeInfo Managers=1; WindowsVolume IsBoot=1; QuswVolume IsSystem=1", "0"},
           {"VolumeInfo Managers=2; QuswVolume IsBoot=1 IsSystem=1", "1"},
           {"VolumeInfo Managers=2; QuswVolume IsSystem=1" + linux, "0"},
           {"VolumeInfo Managers=128" + linux, "0"},
           {"VolumeInfo Managers=16; System Os=SOL Firmware=UEFI", "1"},
           {"VolumeInfo", "1"}});
    check(isQuvmVersion3, {{"VolumeInfo QuvmVersion=3.5", "1"}, {"VolumeInfo QuvmVersion=35.0", "0"}});
    check(isQuvmVersion5, {{"VolumeInfo QuvmVersion=5.0", "1"}, {"VolumeInfo QuvmVersion=4.5.", "0"}});

    // Partitions are counted disk by disk.
    const std::string partitions = "HpuxPhysicalVolume Id=1 | Id=2; HpuxPhysicalVolumePartition ";
    const std::string on1 = "HpuxPhysicalVolumeId=1 Type=HPUX | ", on2 = "HpuxPhysicalVolumeId=2 Type=HPUX";
    check(MultipleHpuxPartitionsExist, {{partitions + on1 + "HpuxPhysicalVolumeId=1 Type=EFI | " + on2, "0"},
                                        {partitions + on1 + on2 + " | " + on2, "1"}});

    const std::string disks =
        "LinuxDisk Name=sda DiskType=IDE | Label=x DiskType=CCISS | Name=sd DiskType=SCSI";
    const std::string unnamed = " | Id=1 DiskType=SCSI | Id=2 DiskType=SCSI";
    const auto idOfNextFree = [](const CZor& zor) {
        const CLinuxDisk* disk = FindNextFreeScsiDisk("sda", zor.m_vLinuxDisk);
        return disk ? disk->getId() : 0;
    };
    check(idOfNextFree,
          {{disks, "0"}, {disks + unnamed, "1"}, {disks + unnamed + " | Id=3 Name=sda DiskType=SCSI", "3"}});
}

TEST(Volfind, numbers) {
    const std::tuple<const char*, int, unsigned int> cases[] = {
        {"\\Device\\Harddisk010\\DR1", 0, 10},
        {"\\Device\\Harddisk", 0, 0},
        {"\\Device\\Harddisk9999999999", 0, 4294967295U},
        {"x\\Device\\Harddisk1", 1, 0}};
    for (const auto& [name, rc, expected] : cases) {
        CDisk disk;
        disk.setName(name);
        unsigned int number = 77;
        EXPECT_EQ(GetDiskNumber(disk, number), rc) << name;
        EXPECT_EQ(number, expected) << name;
    }
    for (int type = 0; type < 256; ++type)
        EXPECT_EQ(IsVendor(type), type == 18 || type == 99 || type == 222 || type == 238 || type == 254)
            << type;
    EXPECT_EQ(IsCdromName("\\Device\\CdRom0"), 1);
}

TEST(Volfind, messages) {
    const auto calls = [] {
        CZor zor;
        unsigned int number = 0;
        isQuvmVersion5(zor);
        FindFirstBootableDisk(zor.m_vWindowsDisk);
        addRows(zor, "WindowsDisk Name=c ArcName=rdisk(0); System Firmware=UEFI");
        FindFirstBootableDisk(zor.m_vWindowsDisk);
        GetDiskNumber(*zor.m_vWindowsDisk.front(), number);
        VerifyESPisMapped(zor);
    };
    const Lines lines = {
        "debug 1 volfind:isQuvmVersion5() QuVM version information missing in the configuration.",
        "debug 1 windowsDisks:FindFirstBootableDisk() Couldn't find boot disk using arcpath.",
        "debug 4 windowsDisks:FindFirstBootableDisk() First Boot disk is c, with arcName=rdisk(0)",
        "debug 2 volfind:GetDiskNumber() Malformed disk path c.",
        "debug 1 linuxStorage:VerifyESPisMapped() EFI client should contain /boot/efi filesystem."};
    EXPECT_EQ(logOf(4, calls), lines);
}

} // namespace
} // namespace Zorvane
