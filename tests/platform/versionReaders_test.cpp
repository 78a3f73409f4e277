// SPDX-License-Identifier: Apache-2.0
#include "platform/HostFiles.h"
#include "platform/commandPaths.h"
#include "platform/returnCodes.h"
#include "platform/versionReaders.h"

#include <gtest/gtest.h>

namespace Zorvane {

namespace {

TEST(VersionReaders, ReleaseLevelOfAVersionFile) {
    const HostFiles host;
    const struct {
        const char* content;
        int code;
        const char* version;
    } cases[] = {
        {"HARDWARE LINUX_X86\nRELEASE_LEVEL=7.6.1\nBUILD 42\n", ZOR_SUCCESS, "7.6.1"},
        {"RELEASE_LEVEL= 7.6\n", ZOR_SUCCESS, ""}, // the blank is no part of a version
        {"RELEASE_LEVEL=EVAL7.5Beta2\n", ZOR_SUCCESS, "7.5"},
        {"VERSION 7.6\n", ZOR_FAIL, "kept"},
    };
    for (const auto& row : cases) {
        std::string version = "kept";
        EXPECT_EQ(GetKvnClientOrServerVersion(host.write("/it's a file; exit 9", row.content), version),
                  row.code);
        EXPECT_EQ(version, row.version) << row.content;
    }
}

TEST(VersionReaders, SuiteFitsImage) {
    const HostFiles host;
    const struct {
        const char* level;
        const char* osArchType;
        int compatible;
    } cases[] = {
        {"7.0", "64", 1}, {"6.5", "64", 0},       {"10.1", "64", 1},      {"7.0", "32", 0},
        {"6.9.9", "", 1}, {"7.0.0.0.1", "64", 0}, {"6.0.0.0.1", "32", 0},
    };
    for (const auto& row : cases) {
        host.write("/suite/bin/version", std::string("RELEASE_LEVEL=") + row.level + "\n");
        std::string version;
        EXPECT_EQ(validateKvnVsOsArchType(host.root() + "/suite", row.osArchType, version), row.compatible)
            << row.level;
        EXPECT_EQ(version, row.level);
    }
    std::string version = "stale";
    EXPECT_EQ(validateKvnVsOsArchType(host.root() + "/absent/", "32", version), 0);
    EXPECT_EQ(version, "");
}

TEST(VersionReaders, ServerVersionInTheWorkingDirectory) {
    const HostFiles host;
    const auto before = std::filesystem::current_path();
    host.write("/other", "");
    std::filesystem::current_path(host.root());
    std::string version = "kept";
    EXPECT_NE(ServerVersion(version), 0);
    host.write("/binversion.info", "");
    EXPECT_NE(ServerVersion(version), 0);
    EXPECT_EQ(version, "kept");
    host.write("/binversion.info", "2.1 build 7\nmore\n");
    EXPECT_EQ(ServerVersion(version), 0);
    EXPECT_EQ(version, "2.1 build 7");
    std::filesystem::current_path(before);
}

TEST(VersionReaders, ProductVersion) {
    const HostFiles host;
    EXPECT_EQ(GetZorVersionCommon(host.root() + "/top"), "");
    host.write("/top/usr/tarnv/kelvarion/bin/version", "VERSION x\nKelvarion-LinuxR_x86_64  6.5.0  today\n");
    EXPECT_EQ(GetZorVersionCommon(host.root() + "/top"), "6.5.0");
    host.write("/usr/tarnv/kelvarion/bin/version", "The Kelvarion 1.0\nKelvarion 7.0.2\n");
    EXPECT_EQ(GetZorVersionCommon(host.root() + "/top"), "7.0.2") << "the suite's own folder comes first";
    host.write("/usr/tarnv/kelvarion/bin/version", "Kelvarion\n");
    EXPECT_EQ(GetZorVersionCommon(host.root() + "/top"), "");
    host.write("/usr/tarnv/kelvarion/bin/version", "kelvarion 7.0.2\n");
    EXPECT_EQ(GetZorVersionCommon(host.root() + "/top"), "");
}

TEST(CommandPaths, InstallPathIsResolved) {
    const HostFiles host;
    EXPECT_EQ(GetZorClientDataPath(), host.root() + "/usr/tarnv/kelvarion/zorvane/client/data/")
        << "not installed";
    host.write("/data/suite/bin/version", "");
    std::filesystem::create_directories(host.root() + "/usr/tarnv");
    std::filesystem::create_symlink(host.root() + "/data/suite", host.root() + "/usr/tarnv/kelvarion");
    EXPECT_EQ(GetKvnInstallPath(), host.root() + "/data/suite/");
    EXPECT_EQ(GetKvnBinPath(), host.root() + "/data/suite/bin/");
    EXPECT_EQ(GetSharePath(), host.root() + "/data/suite/../share/");
    EXPECT_EQ(GetGlobalVarPath(), "/usr/tarnv/var/global/");
}

} // namespace

} // namespace Zorvane
