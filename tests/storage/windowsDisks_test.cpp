// SPDX-License-Identifier: Apache-2.0
#include "model/windows_records.h"
#include "platform/stringManipulation.h"
#include "storage/Rows.h"
#include "storage/windowsDisks.h"

namespace Zorvane {
namespace {

/// A volume of two plexes on disks 1, 2 and so on with these arc names.
std::string volume(const std::string& flags, const std::vector<std::string>& arcNames) {
    std::string rows = "WindowsVolume Id=50 " + flags +
                       "; WindowsPlex Id=1 WindowsVolumeId=50; WindowsPlex Id=2 WindowsVolumeId=50";
    for (std::size_t n = 1; n <= arcNames.size(); ++n) {
        const std::string id = std::to_string(n);
        rows += "; WindowsDisk Id=" + id + " Name=" + id + " ArcName=" + arcNames[n - 1] +
                "; WindowsRegion WindowsDiskId=" + id + " WindowsPlexId=" + (n < 3 ? "1" : "2");
    }
    return rows;
}
std::string withManagers(const char* mask, const std::string& rows) {
    return rows + "; VolumeInfo Managers=" + mask;
}
std::string replaced(std::string rows, const char* search, const char* replacement) {
    StrReplace(rows, search, replacement, true);
    return rows;
}
std::string quswOf(const std::string& rows) {
    return replaced(replaced(rows, "Region", "SubDisk"), "Windows", "Qusw");
}

TEST(WindowsDisks, systemAndBootDiskGoByArcName) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"rdisk(1)", "rdisk(2)"}, "1"},
        {{"rdisk(2)", "rdisk(1)"}, "2"},
        {{"rdisk(9)", "rdisk(10)"}, "2"},
        {{"", "rdisk(0)"}, "1"},
        {{"b", "", "a", "c"}, "3"},
        {{"a", "a"}, "1"},
        {{}, ""},
    };
    for (const auto& [arcNames, disk] : cases) {
        const std::string system = "WindowsVolume; " + volume("IsSystem=1", arcNames);
        const std::string boot = "WindowsVolume; " + volume("IsBoot=1", arcNames);
        check(FindSystemDiskName, {{withManagers("1", system), disk},
                                   {withManagers("2", quswOf(system)), disk},
                                   {withManagers("1", boot), ""}});
        check(FindBootDiskName, {{withManagers("1", boot), disk},
                                 {withManagers("2", quswOf(boot)), disk},
                                 {withManagers("1", system), ""}});
    }
    const std::string system = volume("IsSystem=1", {"a"});
    check(FindSystemDiskName,
          {{system, ""}, {withManagers("4", system), ""}, {withManagers("515", system), "1"}});
}

TEST(WindowsDisks, bootOrderGoesByTheLastNumberOfArcNames) {
    check(
        [](const CZor& zor) { return FindFirstBootableDisk(zor.m_vWindowsDisk); },
        {{"WindowsDisk Name=a ArcName=m(0)rdisk(10); WindowsDisk Name=b ArcName=m(0)rdisk(9)", "b"},
         {"WindowsDisk Name=a ArcName=m(1)rdisk(0); WindowsDisk Name=b ArcName=m(0)rdisk(0)", "b"},
         {"WindowsDisk Name=a ArcName=rdisk(0)partition(3); WindowsDisk Name=b ArcName=rdisk(1)partition(2)",
          "b"},
         {"WindowsDisk Name=a ArcName=rdisk(0); WindowsDisk Name=b ArcName=rdisk(0)", "a"},
         {"WindowsDisk Name=a ArcName=rdisk(1)\\X(; WindowsDisk Name=b ArcName=rdisk", "b"}, // no number is 0
         {"WindowsDisk Name=a ArcName=rdisk(9999999999); WindowsDisk Name=b ArcName=rdisk(1", "b"},
         {"WindowsDisk Name=a ArcName=cdrom(0); WindowsDisk Name=b ArcName=rdisk(1)", "b"},
         {"WindowsDisk ArcName=rdisk(0) DeviceType=5; WindowsDisk ArcName=rdisk(0) DeviceType=3;"
          "WindowsDisk ArcName=rdisk(0) DeviceType=2; WindowsDisk Name=b ArcName=rdisk(1) DeviceType=7",
          "b"},
         {"WindowsDisk ArcName=rdisk(0) DeviceType=5", "-"}});
    const std::string layout = volume("IsSystem=1", {"rdisk(1)"});
    const std::string other = "WindowsDisk ArcName=rdisk(0); " + layout;
    check(IsSystemDiskInBootOrder, {{withManagers("512", layout), "1"},
                                    {withManagers("1", other), "0"},
                                    {withManagers("2", other), "1"},
                                    {"VolumeInfo Managers=1", "1"}}); // neither disk is there
}

TEST(WindowsDisks, reFsOnUnrestrictedDisks) {
    const std::string layout = "WindowsVolume Id=9; " + volume("", {"", ""});
    const std::string onAnother = "; WindowsDisk Id=7; WindowsRegion WindowsDiskId=7 WindowsPlexId=1";
    const std::string fileSystem = "; WindowsFileSystem WindowsVolumeId=50 Type=";
    const std::string restricted = replaced(layout, "WindowsDisk Id", "WindowsDisk Restricted=1 Id");
    check(IsReFsPresent, {{layout, "0"},
                          {layout + fileSystem + "REFS", "1"},
                          {layout + fileSystem + "NTFS" + fileSystem + "REFS", "0"},
                          {layout + "; WindowsFileSystem WindowsVolumeId=9 Type=REFS", "0"}, // on no disk
                          {restricted + fileSystem + "REFS", "0"},
                          {restricted + onAnother + fileSystem + "REFS", "1"}});
    check(HasUnrestrictedDiskOnBus7, {{"WindowsDisk BusType=7 Restricted=1; WindowsDisk BusType=6", "0"},
                                      {"WindowsDisk BusType=7", "1"}});
}

TEST(WindowsDisks, bootDiskMessages) {
    CZor zor;
    const auto find = [&] { FindFirstBootableDisk(zor.m_vWindowsDisk); };
    const std::string label = " windowsDisks:FindFirstBootableDisk() ";
    EXPECT_EQ(logOf(4, find), Lines{"debug 1" + label + "Couldn't find boot disk using arcpath."});
    addRows(zor, "WindowsDisk Name=c ArcName=rdisk(0)");
    EXPECT_EQ(logOf(4, find), Lines{"debug 4" + label + "First Boot disk is c, with arcName=rdisk(0)"});
}

} // namespace
} // namespace Zorvane
