// SPDX-License-Identifier: Apache-2.0
#include "model/linux_records.h"
#include "storage/Rows.h"
#include "storage/linuxStorage.h"

namespace Zorvane {
namespace {

/// The rows of mount points: "/boot=2 /=3+4" for one on partition 2 and one on a multi-device of 3 and 4.
std::string mounted(const std::string& mounts) {
    std::string rows;
    std::istringstream words(mounts + ' ');
    for (std::string directory, word;
         std::getline(words, directory, '=') && std::getline(words, word, ' ');) {
        const std::string id = std::to_string(directory.size());
        const std::string fileSystem = " LinuxFileSystemId=" + id, device = " LinuxMultiDeviceId=" + id;
        const bool onDevice = word.find('+') != std::string::npos;
        rows += "LinuxMountPoint Name=" + directory + fileSystem + "; LinuxFileSystem Id=" + id + ';';
        if (onDevice)
            rows += "LinuxFileSystemToMultiDevice" + fileSystem + device + ';';
        std::istringstream partitions(word);
        for (std::string name; std::getline(partitions, name, '+');)
            rows += (onDevice ? "LinuxPartitionToMultiDevice" + device
                              : "LinuxFileSystemToPartition" + fileSystem) +
                    " LinuxPartitionId=" + name + "; LinuxPartition Id=" + name + " Name=" + name + ';';
    }
    return rows;
}

TEST(LinuxStorage, bootPartitions) {
    const std::pair<const char*, const char*> cases[] = {{"/boot/efi=1", "1"},
                                                         {"/= /boot=", ""},
                                                         {"/boot/efi=1 /=3 /boot=2", "1 2"},
                                                         {"/boot/efi=1 /=3 /boot=4+5", "1 3"},
                                                         {"/boot/efi=1 /=6+ /boot=4+5", "1 4 5"},
                                                         {"/=6+", "6"},
                                                         {"/=6+ /boot=", ""}};
    for (const auto& [mounts, partitions] : cases)
        check(FindLinuxBootPartitions, {{mounted(mounts), partitions}});
}

TEST(LinuxStorage, uefiClientsNeedTheirPartition) {
    const std::string efi = mounted("/boot/efi=1");
    check(VerifyESPisMapped, {{"LinuxDisk", "1"},
                              {"System Firmware=BIOS", "1"},
                              {"System Firmware=UEFI;" + efi, "1"},
                              {"System Firmware=UEFI", "0"},
                              {"System Firmware=UEFI;" + efi.substr(0, efi.rfind("LinuxPartition ")), "0"}});
}

TEST(LinuxStorage, logicalVolumesByEitherPath) {
    CZor zor;
    addRows(zor, "LinuxLogicalVolume Name=/dev/vg-a/lv | Name=/dev/vg/lv-b-c | Name=/dev/a--/b | "
                 "Name=/dev/mapper/as--is");
    const struct {
        const char *asked, *found, *traced;
    } cases[] = {
        {"/dev/mapper/as--is", "/dev/mapper/as--is", "object found, first try, name=/dev/mapper/as--is"},
        {"/dev/mapper/vg--a-lv", "/dev/vg-a/lv", "object found, second try, name=/dev/vg-a/lv"},
        {"/dev/mapper/vg-lv--b-c", "/dev/vg/lv-b-c", "Second try with generated name=/dev/vg/lv-b-c"},
        {"/dev/mapper/a-----b", "/dev/a--/b", "second try"},
        {"/dev/vg--a-lv", "-", "Exiting, No object found, name=/dev/vg--a-lv"},
        {"/dev/mapper/", "-", "Second try with generated name=/dev/"}};
    for (const auto& c : cases) {
        const auto find = [&] { EXPECT_EQ(asText(Find(zor.m_vLinuxLogicalVolume, c.asked)), c.found); };
        EXPECT_NE(testing::PrintToString(logOf(5, find)).find(c.traced), std::string::npos) << c.traced;
    }
}

} // namespace
} // namespace Zorvane
