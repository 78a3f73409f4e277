// SPDX-License-Identifier: Apache-2.0
#include "model/linux_records.h"
#include "storage/Rows.h"
#include "storage/linuxStorage.h"

namespace Zorvane {
namespace {

const std::string EFI = "LinuxMountPoint Name=/boot/efi LinuxFileSystemId=1; LinuxFileSystem Id=1;"
                        "LinuxFileSystemToPartition LinuxFileSystemId=1 LinuxPartitionId=1;"
                        "LinuxPartition Id=1 Name=efi;";
const std::string BOOT = "LinuxMountPoint Name=/boot LinuxFileSystemId=2; LinuxFileSystem Id=2;";
const std::string ROOT = "LinuxMountPoint Name=/ LinuxFileSystemId=3; LinuxFileSystem Id=3;";
const std::string BOOT_PARTITION =
    "LinuxFileSystemToPartition LinuxFileSystemId=2 LinuxPartitionId=2; LinuxPartition Id=2 Name=boot;";
const std::string ROOT_PARTITION =
    "LinuxFileSystemToPartition LinuxFileSystemId=3 LinuxPartitionId=3; LinuxPartition Id=3 Name=root;";
const std::string BOOT_DEVICE = "LinuxFileSystemToMultiDevice LinuxFileSystemId=2 LinuxMultiDeviceId=1;"
                                "LinuxPartitionToMultiDevice LinuxMultiDeviceId=1 LinuxPartitionId=4;"
                                "LinuxPartitionToMultiDevice LinuxMultiDeviceId=1 LinuxPartitionId=5;"
                                "LinuxPartition Id=4 Name=a; LinuxPartition Id=5 Name=b;";
const std::string ROOT_DEVICE = "LinuxFileSystemToMultiDevice LinuxFileSystemId=3 LinuxMultiDeviceId=2;"
                                "LinuxPartitionToMultiDevice LinuxMultiDeviceId=2 LinuxPartitionId=6;"
                                "LinuxPartition Id=6 Name=c;";

TEST(LinuxStorage, bootPartitions) {
    check(FindLinuxBootPartitions, {{EFI, "efi"},
                                    {ROOT, ""},
                                    {EFI + ROOT + ROOT_PARTITION + BOOT + BOOT_PARTITION, "efi boot"},
                                    {EFI + ROOT + ROOT_PARTITION + BOOT + BOOT_DEVICE, "efi root"},
                                    {EFI + ROOT + ROOT_DEVICE + BOOT + BOOT_DEVICE, "efi a b"},
                                    {EFI + ROOT + ROOT_DEVICE, "efi c"},
                                    {ROOT + ROOT_DEVICE + BOOT, ""}});
}

TEST(LinuxStorage, uefiClientsNeedTheirPartition) {
    const std::string line =
        "debug 1 linuxStorage:VerifyESPisMapped() EFI client should contain /boot/efi filesystem.";
    EXPECT_EQ(logOf(4,
                    [] {
                        check(VerifyESPisMapped,
                              {{"LinuxDisk", "1"},
                               {"System Firmware=BIOS", "1"},
                               {"System Firmware=UEFI;" + EFI, "1"},
                               {"System Firmware=UEFI", "0"},
                               {"System Firmware=UEFI;" + EFI.substr(0, EFI.rfind("LinuxPart")), "0"}});
                    }),
              (Lines{line, line}));
}

TEST(LinuxStorage, logicalVolumesByEitherPath) {
    CZor zor;
    addRows(zor, "LinuxLogicalVolume Name=/dev/vg-a/lv; LinuxLogicalVolume Name=/dev/vg/lv-b-c;"
                 "LinuxLogicalVolume Name=/dev/a--/b; LinuxLogicalVolume Name=/dev/mapper/as--is");
    const struct {
        const char *asked, *found, *traced;
    } cases[] = {
        {"/dev/vg-a/lv", "/dev/vg-a/lv", "Exiting, object found, first try, name=/dev/vg-a/lv"},
        {"/dev/mapper/as--is", "/dev/mapper/as--is", "first try"},
        {"/dev/mapper/vg--a-lv", "/dev/vg-a/lv", "Exiting, object found, second try, name=/dev/vg-a/lv"},
        {"/dev/mapper/vg-lv--b-c", "/dev/vg/lv-b-c", "Second try with generated name=/dev/vg/lv-b-c"},
        {"/dev/mapper/a-----b", "/dev/a--/b", "second try"},
        {"/dev/vg--a-lv", "-", "Exiting, No object found, name=/dev/vg--a-lv"},
        {"/dev/mapper/", "-", "Second try with generated name=/dev/"},
    };
    for (const auto& c : cases) {
        const Lines lines = logOf(
            5, [&] { EXPECT_EQ(asText(Find(zor.m_vLinuxLogicalVolume, c.asked)), c.found) << c.asked; });
        EXPECT_NE(testing::PrintToString(lines).find(c.traced), std::string::npos) << c.traced;
    }
}

} // namespace
} // namespace Zorvane
