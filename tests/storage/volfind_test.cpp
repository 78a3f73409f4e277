// SPDX-License-Identifier: Apache-2.0
#include "model/linux_records.h"
#include "model/solaris_records.h"
#include "storage/Rows.h"
#include "storage/volfind.h"

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
    const std::string windows = "WindowsDiskGroup WindowsVolume WindowsRegion";
    const std::string linux = "LinuxVolumeGroup LinuxLogicalVolume LinuxPartition LinuxMultiDevice";
    check(clearedTables,
          {{"VolumeInfo Managers=1", windows},
           {"VolumeInfo Managers=512", windows},
           {"VolumeInfo Managers=2", "QuswDiskGroup QuswVolume QuswSubDisk"},
           {"VolumeInfo Managers=4", "AixVolumeGroup AixLogicalVolume AixSubDisk"},
           {"VolumeInfo Managers=8", "HpuxVolumeGroup HpuxLogicalVolume HpuxSubDisk"},
           {"VolumeInfo Managers=16", "SolarisDiskGroup SolarisVolume SolarisSlice"},
           {"VolumeInfo Managers=32", "QuvmDiskGroup QuvmVolume QuvmSubDisk"},
           {"VolumeInfo Managers=64", "SvmDiskSet SvmVolume SvmSubDisk"},
           {"VolumeInfo Managers=128", linux},
           {"VolumeInfo Managers=256", linux},
           {"VolumeInfo Managers=1023", windows}, // of several, the first
           {"VolumeInfo Managers=448", "SvmDiskSet SvmVolume SvmSubDisk"},
           {"VolumeInfo Managers=1024; VolumeInfo Managers=1", ""},
           {"System Architecture=i86pc", "SolarisNativePartition"},
           {"System Architecture=i86pc; VolumeInfo Managers=1", windows + " SolarisNativePartition"}});
}

TEST(Volfind, bootAndSystemFlags) {
    const std::string linux = "; System Os=LINUX Firmware=UEFI";
    check(IsBootAndSystemMapped,
          {{"VolumeInfo Managers=1; WindowsVolume IsBoot=1; WindowsVolume IsSystem=1", "1"},
           {"VolumeInfo Managers=1; WindowsVolume IsBoot=1; QuswVolume IsSystem=1", "0"},
           {"VolumeInfo Managers=2; QuswVolume IsBoot=1 IsSystem=1", "1"},
           {"VolumeInfo Managers=2; QuswVolume IsSystem=1" + linux, "0"},
           {"VolumeInfo Managers=128" + linux, "0"},
           {"VolumeInfo Managers=16; System Os=SOL Firmware=UEFI", "1"},
           {"VolumeInfo", "1"}});
}

TEST(Volfind, quvmVersions) {
    check(isQuvmVersion3, {{"VolumeInfo QuvmVersion=3.5", "1"}, {"VolumeInfo QuvmVersion=35.0", "0"}});
    check(isQuvmVersion5, {{"VolumeInfo QuvmVersion=5.0", "1"}, {"VolumeInfo QuvmVersion=4.5.", "0"}});
    EXPECT_EQ(
        logOf(4,
              [] {
                  check(isQuvmVersion5, {{"System", "0"}});
              }),
        Lines{"debug 1 volfind:isQuvmVersion5() QuVM version information missing in the configuration."});
}

TEST(Volfind, hpuxPartitionsAreCountedByDisk) {
    const std::string disks = "HpuxPhysicalVolume Id=1; HpuxPhysicalVolume Id=2";
    const std::string on1 = "; HpuxPhysicalVolumePartition HpuxPhysicalVolumeId=1 Type=";
    const std::string on2 = "; HpuxPhysicalVolumePartition HpuxPhysicalVolumeId=2 Type=HPUX";
    check(MultipleHpuxPartitionsExist,
          {{disks + on1 + "HPUX" + on1 + "EFI" + on2, "0"}, {disks + on1 + "HPUX" + on2 + on2, "1"}});
}

TEST(Volfind, nextFreeScsiDisk) {
    const std::string others = "LinuxDisk Name=sda DiskType=IDE; LinuxDisk Label=x DiskType=CCISS;";
    const std::string unnamed = "LinuxDisk Id=1 DiskType=SCSI; LinuxDisk Id=2 DiskType=SCSI;";
    const auto idOf = [](const CZor& zor) {
        const CLinuxDisk* disk = FindNextFreeScsiDisk("sda", zor.m_vLinuxDisk);
        return disk ? disk->getId() : 0;
    };
    check(idOf, {{others, "0"},
                 {others + "LinuxDisk Name=sd DiskType=SCSI;" + unnamed, "1"},
                 {others + unnamed + "LinuxDisk Id=3 Name=sda DiskType=SCSI", "3"}});
}

TEST(Volfind, numbers) {
    const struct {
        const char* name;
        int rc;
        unsigned int number;
    } cases[] = {{"\\Device\\Harddisk12", 0, 12},
                 {"\\Device\\Harddisk010\\DR1", 0, 10},
                 {"\\Device\\Harddisk", 0, 0},
                 {"\\Device\\Harddisk9999999999", 0, 4294967295U},
                 {"x\\Device\\Harddisk1", 1, 0}};
    Lines lines;
    for (const auto& c : cases) {
        CDisk disk;
        disk.setName(c.name);
        unsigned int number = 77;
        lines = logOf(4, [&] { EXPECT_EQ(GetDiskNumber(disk, number), c.rc) << c.name; });
        EXPECT_EQ(number, c.number) << c.name;
    }
    EXPECT_EQ(lines, Lines{"debug 2 volfind:GetDiskNumber() Malformed disk path x\\Device\\Harddisk1."});
    for (int type = 0; type < 256; ++type)
        EXPECT_EQ(IsVendor(type), type == 18 || type == 99 || type == 222 || type == 238 || type == 254)
            << type;
    EXPECT_EQ(IsCdromName("\\Device\\CdRom0"), 1);
}

} // namespace
} // namespace Zorvane
