// SPDX-License-Identifier: Apache-2.0
// Release files as they stand on the distributions.
#include "platform/HostFiles.h"
#include "platform/returnCodes.h"
#include "platform/zorSystem.h"

#include <map>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

constexpr const char* OS = "os-release";
constexpr const char* CENTOS = "centos-release";
constexpr const char* REDHAT = "redhat-release";
constexpr const char* SUSE = "SuSE-release";
constexpr const char* UNITED = "UnitedLinux-release";

constexpr const char* CENTOS7_ID =
    "NAME=\"CentOS Linux\"\nID=\"centos\"\nID_LIKE=\"rhel\"\nVERSION_ID=\"7\"\n";
constexpr const char* CENTOS7_LINE = "CentOS Linux release 7.9.2009 (Core)\n";

TEST(ZorSystem, CodeQualifierAndLevel) {
    const std::pair<const char*, std::map<const char*, const char*>> cases[] = {
        // os-release decides where it tells enough
        {"0 RHEL 8.4",
         {{OS, "NAME=\"Red Hat Enterprise Linux\"\nID=\"rhel\"\nID_LIKE=\"fedora\"\nVERSION_ID=\"8.4\"\n"},
          {REDHAT, "Red Hat Enterprise Linux release 9.9 (not read)\n"}}},
        {"0 RHEL 7.9", {{OS, "VERSION=\"7.9\"\nID=\"ol\"\nVARIANT_ID=\"server\"\nVERSION_ID=\"7.9\"\n"}}},
        {"0 RHEL 7", {{OS, "ID=ol\nVERSION_ID=7\n"}}},
        {"0 SLES 15.4", {{OS, "VERSION=\"15-SP4\"\nVERSION_ID=\"15.4\"\nID=\"sles\"\n"}}},
        {"0 UBUNTU 22.04", {{OS, "VERSION_ID=\"22.04\"\nID=ubuntu\nID_LIKE=debian\n"}}},
        {"0 RHEL 7.9.2009", {{OS, CENTOS7_ID}, {CENTOS, CENTOS7_LINE}}},
        {"0 RHEL 8", {{OS, "ID=\"centos\"\nVERSION_ID=\"8\"\n"}, {CENTOS, CENTOS7_LINE}}},
        // and the release files where it doesn't
        {"0 RHEL 7.9.2009", {{OS, CENTOS7_ID}, {REDHAT, CENTOS7_LINE}}},
        {"0 RHEL 7", {{OS, CENTOS7_ID}, {REDHAT, "CentOS Linux release 8\n"}}}, // found before
        {"0 RHEL 7.9",
         {{OS, "ID=rhel\n"}, {REDHAT, "Red Hat Enterprise Linux Server release 7.9 (Maipo)\n"}}},
        {"0 RHEL 3.0", {{REDHAT, "Red Hat Enterprise Linux ES release 3 (Taroon Update 9)\n"}}},
        {"0 RHEL 4.0", {{REDHAT, "Red Hat Enterprise Linux AS release 4 (Nahant Update 8)\n"}}},
        {"0 RHEL 4.0", {{REDHAT, "Enterprise Linux Enterprise Linux AS release 4 (October Update 7)\n"}}},
        {"0 RHEL 5.8", {{REDHAT, "Enterprise Linux Enterprise Linux Server release 5.8 (Carthage)\n"}}},
        {"0 RHEL 5.11", {{REDHAT, "Red Hat Enterprise Linux Server release 5.11 (Tikanga)\n"}}},
        {"0 RHEL 6.10", {{REDHAT, "CentOS release 6.10 (Final)\n"}}},
        {"0 RHEL 6", {{REDHAT, "Red Hat Enterprise Linux Server release 6\n"}}},
        {"0 RHEL 8.6", {{REDHAT, "Red Hat Enterprise Linux release 8.6 (Ootpa)\n"}}},
        {"0 RHEL 9", {{REDHAT, "Red Hat Enterprise Linux release 9.2 (Plow)\n"}}},
        {"0 RHEL 5.1804", {{REDHAT, "CentOS Linux release 7.5.1804 (Core)\n"}}}, // the order of the search
        {"0 SLES 11.4", {{SUSE, "SUSE Linux Enterprise Server 11 (x86_64)\nVERSION = 11\nPATCHLEVEL = 4\n"}}},
        {"0 SLES 11", {{SUSE, "SUSE Linux Enterprise Server 11 (x86_64)\nVERSION = 11\n"}}},
        {"0 SLES 10.0", {{SUSE, "SUSE Linux Enterprise Server 10 (x86_64)\nVERSION = 10\nPATCHLEVEL = 4\n"}}},
        {"0 SLES 9.0", {{SUSE, "SUSE LINUX Enterprise Server 9 (x86_64)\nVERSION = 9\n"}}},
        {"0 SLES 8.0", {{SUSE, "SuSE SLES-8 (i386)\nVERSION = 8.1\n"}, {UNITED, "unread"}}},
        {"0 SLES 8.0", {{UNITED, "UnitedLinux 1.0 (i586)\nVERSION = 1.0\n"}}},
        // unknown systems
        {"1  ", {}},
        {"1 RHEL ", {{OS, CENTOS7_ID}, {CENTOS, "CentOS 7 Core\n"}}},
        {"1 RHEL ", {{REDHAT, ""}}},
        {"1 RHEL ", {{REDHAT, "Some Linux release 38\n"}, {SUSE, "SUSE Linux Enterprise Server 11\n"}}},
    };
    for (const auto& [expected, files] : cases) {
        const HostFiles host;
        for (const auto& [name, content] : files)
            host.write(std::string("/etc/") + name, content);
        const std::string code = std::to_string(SetOsInfo());
        EXPECT_EQ(code + " " + GetOsQualifier() + " " + GetOsLevel(), expected)
            << testing::PrintToString(files);
    }
}

TEST(ZorSystem, IsReadOnce) {
    const HostFiles host;
    host.write("/etc/os-release", "ID=sles\nVERSION_ID=12.5\n");
    ASSERT_EQ(SetOsInfo(), ZOR_SUCCESS);
    host.write("/etc/os-release", "ID=rhel\nVERSION_ID=9.1\n");
    EXPECT_EQ(GetOsQualifier() + GetOsLevel(), "SLES12.5");
}

TEST(ZorSystem, LevelFromACommand) {
    EXPECT_EQ(GetOsLevelCommon("printf '5.10\\nmore\\n'"), "5.10");
    EXPECT_EQ(GetOsLevelCommon("true"), "");
}

} // namespace
} // namespace Zorvane
