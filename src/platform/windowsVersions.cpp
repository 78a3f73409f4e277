// SPDX-License-Identifier: Apache-2.0
// The Windows versions that the product knows, and the lookups over them.
#include "logging/Trace.h"
#include "platform/returnCodes.h"
#include "platform/sVersion.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace Zorvane {

namespace {

struct WindowsVersion {
    std::string_view key;          // a level, in the old or the tagged form
    std::string_view shortVersion; // the version alone
    std::string_view servicePack;
    std::string_view architecture;
    int code; // as stored in the database
    std::string_view friendlyName;

    [[nodiscard]] bool isTagged() const { return key != shortVersion; }
};

// A lookup takes the first row that fits, so the order matters, and the second of two alike rows (codes 13,
// 19, 20, 25, 26, 29, 30) is found by its code only: stored data has it.
// clang-format off
constexpr WindowsVersion winVerData[] = {
    {"5.0", "5.0", "SP0", "", 1, "Windows 2000"},
    {"5.0", "5.0", "SP1", "", 2, "Windows 2000"},
    {"5.0", "5.0", "SP2", "", 3, "Windows 2000"},
    {"5.0", "5.0", "SP3", "", 4, "Windows 2000"},
    {"5.0", "5.0", "SP4", "", 5, "Windows 2000"},
    {"5.1", "5.1", "SP0", "", 6, "Windows XP"},
    {"5.1", "5.1", "SP1", "", 7, "Windows XP"},
    {"5.1", "5.1", "SP2", "", 8, "Windows XP"},
    {"5.1", "5.1", "SP3", "", 9, "Windows XP"},
    {"5.2", "5.2", "SP0", "", 10, "Windows 2003"},
    {"5.2", "5.2", "SP1", "", 11, "Windows 2003"},
    {"5.2", "5.2", "SP2", "", 12, "Windows 2003"},
    {"5.2", "5.2", "SP1", "", 13, "Windows 2003"},
    {"5.2", "5.2", "SP1", "X64", 14, "Windows 2003"},
    {"6.0", "6.0", "", "", 15, "Windows 2008"},
    {"6.0", "6.0", "", "X64", 16, "Windows 2008"},
    {"6.1", "6.1", "SP0", "", 17, "Windows 2008 R2"},
    {"6.1", "6.1", "SP0", "X64", 18, "Windows 2008 R2"},
    {"6.1", "6.1", "SP0", "", 19, "Windows 2008 R2"},
    {"6.1", "6.1", "SP0", "X64", 20, "Windows 2008 R2"},
    {"6.2", "6.2", "", "", 21, "Windows Server 2012"},
    {"6.2", "6.2", "", "X64", 22, "Windows Server 2012"},
    {"6.3", "6.3", "SP0", "", 23, "Windows Server 2012 R2"},
    {"6.3", "6.3", "SP0", "X64", 24, "Windows Server 2012 R2"},
    {"6.3", "6.3", "SP0", "", 25, "Windows Server 2012 R2"},
    {"6.3", "6.3", "SP0", "X64", 26, "Windows Server 2012 R2"},
    {"10.0", "10.0", "SP0", "", 27, "Windows Server 2016"},
    {"10.0", "10.0", "SP0", "X64", 28, "Windows Server 2016"},
    {"10.0", "10.0", "SP0", "", 29, "Windows Server 2016"},
    {"10.0", "10.0", "SP0", "X64", 30, "Windows Server 2016"},
    {"VER@10.0#RID@1607#TYP@WORKSTATION#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 31, "Windows 10 Version 1607"},
    {"VER@10.0#RID@1703#TYP@WORKSTATION#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 31, "Windows 10 Version 1607"},
    {"VER@10.0#RID@1709#TYP@WORKSTATION#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 31, "Windows 10 Version 1607"},
    {"VER@10.0#RID@1803#TYP@WORKSTATION#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 31, "Windows 10 Version 1607"},
    {"VER@10.0#RID@1809#TYP@WORKSTATION#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 32, "Windows 10 Version 1809"},
    {"VER@10.0#RID@1607#TYP@SERVER#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 33, "Windows Server 2016"},
    {"VER@10.0#RID@1703#TYP@SERVER#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 33, "Windows Server 2016"},
    {"VER@10.0#RID@1709#TYP@SERVER#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 33, "Windows Server 2016"},
    {"VER@10.0#RID@1803#TYP@SERVER#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 33, "Windows Server 2016"},
    {"VER@10.0#RID@1809#TYP@SERVER#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 34, "Windows Server 2019"},
    {"VER@10.0#RID@1607#TYP@SERVERCORE#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 35, "Windows Server 2016 Core"},
    {"VER@10.0#RID@1703#TYP@SERVERCORE#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 35, "Windows Server 2016 Core"},
    {"VER@10.0#RID@1709#TYP@SERVERCORE#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 35, "Windows Server 2016 Core"},
    {"VER@10.0#RID@1803#TYP@SERVERCORE#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 35, "Windows Server 2016 Core"},
    {"VER@10.0#RID@1809#TYP@SERVERCORE#SPL@0#ARC@X64#", "10.0", "SP0", "X64", 36, "Windows Server 2019 Core"},
};
// clang-format on

template <class Test>
const WindowsVersion* findRow(Test test) {
    const auto* const row = std::find_if(std::begin(winVerData), std::end(winVerData), test);
    return row == std::end(winVerData) ? nullptr : row;
}

const WindowsVersion* findTagged(const std::string& version) {
    return findRow([&](const WindowsVersion& row) {
        return row.isTagged() && CompareNewFormatOSLevels(version, std::string(row.key)) == 1;
    });
}

// By the level, and if it is none of the table's, by the supported release that it counts as.
const WindowsVersion* findTaggedOrSupported(const std::string& version) {
    if (const auto* const row = findTagged(version))
        return row;
    std::string supported;
    if (GetSupportedOSLevel(version, supported) != ZOR_SUCCESS || supported == version)
        return nullptr;
    return findTagged(supported);
}

} // namespace

int GetDbWindowsVersion(const std::string& version, const std::string& servicePack,
                        const std::string& architecture) {
    Trace trace(g_libLog, "windowsVersions:GetDbWindowsVersion()", ", version=", version,
                ", servicePack=", servicePack, ", architecture=", architecture);
    const WindowsVersion* found = nullptr;
    if (version.size() > OSLEVEL_OLD_FORM_MAX) {
        found = findTaggedOrSupported(version);
    } else {
        const std::string pack = StrToUpper(servicePack);
        const std::string machine = StrToUpper(architecture);
        found = findRow([&](const WindowsVersion& row) {
            return row.key == version && row.servicePack == pack && row.architecture == machine;
        });
    }
    const int code = found ? found->code : 0;
    return trace.leave(code, ", return code=", code);
}

std::string GetStringWindowsVersion(int code) {
    Trace trace(g_libLog, "windowsVersions:GetStringWindowsVersion()", ", code=", code);
    const auto* const found = findRow([code](const WindowsVersion& row) { return row.code == code; });
    return std::string(found ? found->key : "");
}

std::string GetFriendlyWindowsVersionString(const std::string& version) {
    Trace trace(g_libLog, "windowsVersions:GetFriendlyWindowsVersionString()", ", version=", version);
    const auto* const found = version.size() > OSLEVEL_OLD_FORM_MAX
                                  ? findTaggedOrSupported(version)
                                  : findRow([&](const WindowsVersion& row) { return row.key == version; });
    return std::string(found ? found->friendlyName : "");
}

bool GetFriendlyWindowsVersionString(int code, std::string& name) {
    Trace trace(g_libLog, "windowsVersions:GetFriendlyWindowsVersionString()", ", code=", code);
    const auto* const found = findRow([code](const WindowsVersion& row) { return row.code == code; });
    if (found)
        name = found->friendlyName;
    return !found; // callers test for failure
}

} // namespace Zorvane
