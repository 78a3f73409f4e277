// SPDX-License-Identifier: Apache-2.0
#include "platform/returnCodes.h"
#include "platform/sVersion.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

TEST(Version, Comparing) {
    struct {
        int (*compare)(const std::string&, const std::string&);
        const char *first, *second;
        int result;
    } const cases[] = {{CompareLevels, "7.6.0", "7.6", 1},
                       {CompareLevels, "7.10", "7.9", 1}, // numbers, not text
                       {CompareLevels, "6.9.9.9", "7", 0},
                       {CompareLevels, "7.5b", "7.5", 1},
                       {CompareLevels, "1", "1.2.3.4.5", -1},
                       {CompareLevels, "", "1", -1},
                       {CompareLinuxKernelVersion, "2.6.18-194.el5.x.y", "2.6.18", 1},
                       {CompareLinuxKernelVersion, "2.6.18-194", "2.6.19", 0},
                       {CompareLinuxKernelVersion, "2.6.18", "2.6.18.0.el5", -1}, // the second is not cleaned
                       {CompareSolarisKernelVersion, "Generic_137137-08", "Generic_137137-09", 1},
                       {CompareSolarisKernelVersion, "Generic_137137-09", "Generic_137138-01", 0},
                       {CompareSolarisKernelVersion, "Generic_", "Generic", 0},
                       {CompareSolarisKernelVersion, "5.10", "5.9", 1},
                       {CompareSolarisKernelVersion, "", "", 1},
                       {CompareSolarisKernelVersion, "Generic_1-1", "", 0},
                       {CompareArchitectures, "x86", "", 1},
                       {CompareArchitectures, "", "X64", 0},
                       {CompareArchitectures, "X64", "x64", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(c.compare(c.first, c.second), c.result) << c.first << " and " << c.second;
}

TEST(Version, PackedAndNormalized) {
    EXPECT_EQ(IntVersionToString(0x0007'0006'0000'ffff), "7.6.0.65535");
    EXPECT_EQ(StringVersionToInt("7.6.0.65535.9"), 0x0007'0006'0000'ffffU);
    EXPECT_EQ(StringVersionToInt("7.010"), 0x0007'0008'0000'0000U) << "a leading 0 is octal";
    EXPECT_EQ(StringVersionToInt(""), 0U);
    EXPECT_EQ(getReleaseUpdate("7..6."), "7.6");
    EXPECT_EQ(getReleaseUpdate("1.2.3.4.5"), "");
}

constexpr const char* CLIENT = "VER@10.0#RID@1703#TYP@WORKSTATION#SPL@0#ARC@X64#";
constexpr const char* SUPPORTED = "VER@10.0#RID@1607#TYP@WORKSTATION#SPL@0#ARC@X64#";

TEST(OsLevel, Values) {
    struct {
        const char *level, *tag;
        int rc;
        const char *value, *replaced; // replaced with "1607"
    } const cases[] = {{CLIENT, "RID@", ZOR_SUCCESS, "1703", SUPPORTED},
                       {CLIENT, "BLD@", ZOR_FAIL, "old", CLIENT},
                       {"VER@6.3", "VER@", ZOR_FAIL, "old", "VER@6.3"},
                       {"V@1#", "V@", ZOR_SUCCESS, "V@1#", "V@1#"}, // four characters: no tags
                       {"V@10#", "V@", ZOR_SUCCESS, "10", "V@1607#"}};
    for (const auto& c : cases) {
        std::string value = "old";
        EXPECT_EQ(GetInfoFromOSLevel(c.level, c.tag, value), c.rc) << c.level;
        EXPECT_EQ(value, c.value) << c.level;
        EXPECT_EQ(ReplaceInfoInOSLevel(c.level, c.tag, "1607", value), c.rc) << c.level;
        EXPECT_EQ(value, c.replaced) << c.level;
    }
    EXPECT_EQ(GetVersionFromOSLevel(CLIENT) + GetVersionFromOSLevel("5.2") + GetVersionFromOSLevel("RID@1#"),
              "10.05.2");
    int releaseId = -7;
    EXPECT_NE(GetReleaseIdFromOSLevel("10.0", releaseId), ZOR_SUCCESS);
    EXPECT_EQ(releaseId, -7);
}

TEST(OsLevel, SupportedRelease) {
    struct {
        int release, rc, supported;
    } const cases[] = {{1607, 0, 1607}, {1809, 0, 1809}, {1511, 0, 1607}, {1709, 0, 1607},
                       {1803, 0, 1607}, {1608, 0, 1607}, {1903, 0, 1809}, {1500, 1, -1}};
    for (const auto& c : cases) {
        int supported = -1;
        EXPECT_EQ(GetSupportedReleaseId(c.release, supported), c.rc) << c.release;
        EXPECT_EQ(supported, c.supported) << c.release;
    }
    std::string level = CLIENT;
    EXPECT_EQ(GetSupportedOSLevel(level, level), ZOR_SUCCESS);
    EXPECT_EQ(level, SUPPORTED);
    EXPECT_NE(GetSupportedOSLevel("VER@10.0#RID@1500#", level), ZOR_SUCCESS);
    EXPECT_EQ(level, "");
}

TEST(OsLevel, Matching) {
    struct {
        const char* level; // held against CLIENT
        std::set<std::string> fields;
        int newFormat; // CompareNewFormatOSLevels, which maps nothing
        bool match;
    } const cases[] = {{CLIENT, {"BLD@"}, 1, true},
                       {"VER@10.0#RID@1703#TYP@WORKSTATION#SPL@1#ARC@X86#", {}, 1, true},
                       {"VER@10.0#RID@1703#TYP@WORKSTATION#SPL@0#ARC@X86#", {"ARC@"}, 1, false},
                       {"TYP@WORKSTATION#VER@10.0#RID@1703#", {}, 1, true}, // another order and length
                       {"VER@10.0#RID@1703#", {}, 1, false},                // a part of it
                       {SUPPORTED, {}, 0, true},
                       {"VER@10.0#RID@1809#TYP@WORKSTATION#SPL@0#ARC@X64#", {}, 0, false},
                       {"VER@10.0#RID@1703#TYP@SERVER#SPL@0#ARC@X64#", {}, 0, false},
                       {"VER@10.0#RID@1703#TYP@SERVER#SPL@0#ARC@X64#", {"VER@", "ARC@"}, 0, true},
                       {"VER@10.0#RID@1500#TYP@WORKSTATION#SPL@0#ARC@X64#", {}, 0, false},
                       {"10.0", {}, 1, true},
                       {"6.3", {}, 0, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(CompareNewFormatOSLevels(c.level, CLIENT), c.newFormat) << c.level;
        bool match = !c.match;
        EXPECT_EQ(CompareOSLevels(CLIENT, c.level, match, c.fields) == ZOR_SUCCESS, c.match) << c.level;
        EXPECT_EQ(match, c.match);
    }
    bool match = true;
    EXPECT_NE(CompareOSLevels("10.0", "VER@10.0#TYP@SERVER#", match), ZOR_SUCCESS) << "no release";
    EXPECT_NE(CompareOSLevels("6.1", "6.3", match), ZOR_SUCCESS);
    EXPECT_FALSE(match);
}

TEST(WindowsVersion, OfALevel) {
    struct {
        const char *version, *pack, *architecture;
        int code;
        const char* friendly;
    } const cases[] = {
        {"5.2", "sp1", "", 11, "Windows 2003"}, // never 13
        {"5.2", "SP1", "x64", 14, "Windows 2003"},
        {"6.1", "SP0", "X64", 18, "Windows 2008 R2"}, // never 20
        {"10.0", "SP0", "X64", 28, "Windows Server 2016"},
        {"", "", "", 0, ""},
        {CLIENT, "any", "any", 31, "Windows 10 Version 1607"},
        {"VER@10.0#RID@1903#TYP@WORKSTATION#SPL@0#ARC@X64#", "", "", 32, "Windows 10 Version 1809"},
        {"VER@10.0#RID@1511#TYP@SERVER#SPL@0#ARC@X64#", "", "", 33, "Windows Server 2016"},
        {"VER@10.0#RID@1809#TYP@SERVER#SPL@2#ARC@X64#", "", "", 34, "Windows Server 2019"},
        {"VER@10.0#RID@2004#TYP@SERVERCORE#SPL@0#ARC@X64#", "", "", 36, "Windows Server 2019 Core"},
        {"VER@10.0#RID@1500#TYP@SERVER#SPL@0#ARC@X64#", "", "", 0, ""},
        {"VER@11.0#RID@1903#TYP@SERVER#SPL@0#ARC@X64#", "", "", 0, ""}};
    for (const auto& c : cases) {
        EXPECT_EQ(GetDbWindowsVersion(c.version, c.pack, c.architecture), c.code) << c.version << c.pack;
        EXPECT_EQ(GetFriendlyWindowsVersionString(c.version), c.friendly) << c.version;
    }
}

TEST(WindowsVersion, OfACode) {
    for (int code = 0; code <= 37; ++code) {
        std::string name;
        const bool known = code >= 1 && code <= 36;
        EXPECT_EQ(GetFriendlyWindowsVersionString(code, name), !known) << "true is failure";
        // The level of a code is one that users know by the same name.
        EXPECT_EQ(GetFriendlyWindowsVersionString(GetStringWindowsVersion(code)), name) << code;
    }
    EXPECT_EQ(GetStringWindowsVersion(13), "5.2");
    EXPECT_EQ(GetStringWindowsVersion(31), SUPPORTED);
}

} // namespace
} // namespace Zorvane
