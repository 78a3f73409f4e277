// SPDX-License-Identifier: Apache-2.0
#include "model/windows_records.h"
#include "platform/stringManipulation.h"
#include "storage/Rows.h"
#include "storage/windowsDisks.h"

namespace Zorvane {
namespace {

std::string replaced(std::string rows, const char* search, const char* replacement) {
    StrReplace(rows, search, replacement, true);
    return rows;
}

/// A volume of two plexes on disks 1, 2 and so on with these arc names, behind a volume without flags.
std::string volume(const std::string& flags, const std::vector<std::string>& arcNames) {
    std::string rows = "WindowsVolume Id=9 | Id=50 " + flags +
                       "; WindowsPlex Id=1 WindowsVolumeId=50 | Id=2 WindowsVolumeId=50";
    for (std::size_t n = 1; n <= arcNames.size(); ++n) {
        const std::string id = std::to_string(n);
        rows += "; WindowsDisk Id=" + id + " Name=" + id + " ArcName=" + arcNames[n - 1] +
                "; WindowsRegion WindowsDiskId=" + id + " WindowsPlexId=" + (n < 3 ? "1" : "2");
    }
    return rows;
}

TEST(WindowsDisks, systemAndBootDiskGoByArcName) {
    const std::string windows = "VolumeInfo Managers=1; ", qusw = "VolumeInfo Managers=2; ";
    const std::pair<std::vector<std::string>, const char*> cases[] = {{{"rdisk(2)", "rdisk(1)"}, "2"},
                                                                      {{"rdisk(9)", "rdisk(10)"}, "2"},
                                                                      {{"", "rdisk(0)"}, "1"},
                                                                      {{"b", "", "a", "c"}, "3"},
                                                                      {{"a", "a"}, "1"},
                                                                      {{}, ""}};
    for (const auto& [arcNames, disk] : cases)
        for (const bool boot : {false, true}) {
            const std::string rows = volume(boot ? "IsBoot=1" : "IsSystem=1", arcNames);
            const std::string quswRows = replaced(replaced(rows, "Region", "SubDisk"), "Windows", "Qusw");
            check(boot ? FindBootDiskName : FindSystemDiskName,
                  {{windows + rows, disk}, {qusw + quswRows, disk}});
            check(boot ? FindSystemDiskName : FindBootDiskName,
                  {{windows + rows, ""}, {qusw + quswRows, ""}});
        }
    const std::string rows = volume("IsSystem=1", {"a"});
    check(FindSystemDiskName,
          {{rows, ""}, {"VolumeInfo Managers=4; " + rows, ""}, {"VolumeInfo Managers=515; " + rows, "1"}});
}

TEST(WindowsDisks, bootOrderGoesByTheLastNumberOfArcNames) {
    check([](const CZor& zor) { return FindFirstBootableDisk(zor.m_vWindowsDisk); },
          {{"WindowsDisk Name=a ArcName=m(0)rdisk(10) | Name=b ArcName=m(0)rdisk(9)", "b"},
           {"WindowsDisk Name=a ArcName=m(1)rdisk(0) | Name=b ArcName=m(0)rdisk(0)", "b"},
           {"WindowsDisk Name=a ArcName=rdisk(0)partition(3) | Name=b ArcName=rdisk(1)partition(2)", "b"},
           {"WindowsDisk Name=a ArcName=rdisk(0) | Name=b ArcName=rdisk(0)", "a"},
           {"WindowsDisk Name=a ArcName=rdisk(1)\\X( | Name=b ArcName=rdisk", "b"}, // no number is 0
           {"WindowsDisk Name=a ArcName=rdisk(9999999999) | Name=b ArcName=rdisk(1", "b"},
           {"WindowsDisk Name=a ArcName=cdrom(0) | ArcName=rdisk(0) DeviceType=5 | ArcName=rdisk(0) "
            "DeviceType=3"
            " | ArcName=rdisk(0) DeviceType=2 | Name=b ArcName=rdisk(1) DeviceType=7",
            "b"},
           {"WindowsDisk ArcName=rdisk(0) DeviceType=5", "-"}});
    const std::string layout = volume("IsSystem=1", {"rdisk(1)"}), other = "; WindowsDisk ArcName=rdisk(0)";
    check(IsSystemDiskInBootOrder, {{"VolumeInfo Managers=512; " + layout, "1"},
                                    {"VolumeInfo Managers=1; " + layout + other, "0"},
                                    {"VolumeInfo Managers=2; " + layout + other, "1"},
                                    {"VolumeInfo Managers=1", "1"}}); // neither disk is there
}

TEST(WindowsDisks, whatCannotBeConverted) {
    const std::string layout = volume("", {"", ""});
    const std::string reFs = "; WindowsFileSystem WindowsVolumeId=50 Type=REFS";
    const std::string restricted = replaced(layout, "WindowsDisk Id", "WindowsDisk Restricted=1 Id");
    check(IsReFsPresent,
          {{layout + reFs, "1"},
           {layout + "; WindowsFileSystem WindowsVolumeId=50 Type=NTFS" + reFs, "0"},
           {layout + "; WindowsFileSystem WindowsVolumeId=9 Type=REFS", "0"}, // on no disk
           {restricted + reFs, "0"},
           {restricted + "; WindowsDisk Id=7; WindowsRegion WindowsDiskId=7 WindowsPlexId=1" + reFs, "1"}});
    check([](const CZor& zor) { return !FindUnrestrictedDisksOnBus7(zor).empty(); },
          {{"WindowsDisk BusType=7 Restricted=1 | BusType=6", "0"}, {"WindowsDisk BusType=7", "1"}});
}

} // namespace
} // namespace Zorvane
