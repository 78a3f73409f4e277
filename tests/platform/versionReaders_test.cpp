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
    const std::tuple<const char*, int, const char*> cases[] = {
        {"HARDWARE LINUX_X86\nRELEASE_LEVEL=7.6.1\nBUILD 42\n", ZOR_SUCCESS, "7.6.1"},
        {"RELEASE_LEVEL= 7.6\n", ZOR_SUCCESS, ""}, // the blank is no part of a version
        {"RELEASE_LEVEL=EVAL7.5Beta2\n", ZOR_SUCCESS, "7.5"},
        {"VERSION 7.6\n", ZOR_FAIL, "kept"}};
    for (const auto& [content, code, expected] : cases) {
        std::string version = "kept";
        EXPECT_EQ(GetKvnClientOrServerVersion(host.write("/it's a file; exit 9", content), version), code);
        EXPECT_EQ(version, expected) << content;
    }
}

TEST(VersionReaders, SuiteFitsImage) {
    const HostFiles host;
    const std::tuple<const char*, const char*, int> cases[] = {
        {"7.0", "64", 1}, {"6.5", "64", 0},       {"10.1", "64", 1},     {"7.0", "32", 0},
        {"6.9.9", "", 1}, {"7.0.0.0.1", "64", 0}, {"6.0.0.0.1", "32", 0}};
    std::string version;
    for (const auto& [level, osArchType, compatible] : cases) {
        host.write("/suite/bin/version", std::string("RELEASE_LEVEL=") + level + "\n");
        EXPECT_EQ(validateKvnVsOsArchType(host.root() + "/suite", osArchType, version), compatible) << level;
        EXPECT_EQ(version, level);
    }
    EXPECT_EQ(validateKvnVsOsArchType(host.root() + "/absent/", "32", version), 0);
    EXPECT_EQ(version, "");
}

TEST(VersionReaders, ServerVersionInTheWorkingDirectory) {
    const HostFiles host;
    const auto before = std::filesystem::current_path();
    host.write("/other", "");
    std::filesystem::current_path(host.root());
    std::string version = "kept";
    EXPECT_EQ(ServerVersion(version), ZOR_ERROR);
    host.write("/binversion.info", "");
    EXPECT_EQ(ServerVersion(version), ZOR_FAIL);
    EXPECT_EQ(version, "kept");
    host.write("/binversion.info", "2.1 build 7\nmore\n");
    EXPECT_EQ(ServerVersion(version), ZOR_SUCCESS);
    EXPECT_EQ(version, "2.1 build 7");
    std::filesystem::current_path(before);
}

TEST(VersionReaders, ProductVersion) {
    const HostFiles host;
    const std::string own = "/usr/tarnv/kelvarion/bin/version", fixed = "/top" + own;
    const std::tuple<std::string, const char*, const char*> steps[] = {
        {"/other", "", ""}, // neither file
        {fixed, "VERSION x\nKelvarion-LinuxR_x86_64  6.5.0  today\n", "6.5.0"},
        {own, "The Kelvarion 1.0\nKelvarion 7.0.2\n", "7.0.2"}, // comes first
        {own, "Kelvarion\n", ""},
        {own, "kelvarion 7.0.2\n", ""}};
    for (const auto& [file, content, version] : steps) {
        host.write(file, content);
        EXPECT_EQ(GetZorVersionCommon(host.root() + "/top"), version) << content;
    }
}

TEST(CommandPaths, InstallPathIsResolved) {
    const HostFiles host;
    const std::string root = host.root();
    EXPECT_EQ(GetZorClientDataPath(), root + "/usr/tarnv/kelvarion/zorvane/client/data/") << "not installed";
    host.write("/data/suite/bin/version", "");
    std::filesystem::create_directories(root + "/usr/tarnv");
    std::filesystem::create_symlink(root + "/data/suite", root + "/usr/tarnv/kelvarion");
    EXPECT_EQ(GetKvnBinPath(), root + "/data/suite/bin/");
    EXPECT_EQ(GetSharePath(), root + "/data/suite/../share/");
    EXPECT_EQ(GetGlobalVarPath(), "/usr/tarnv/var/global/");
}

} // namespace
} // namespace Zorvane
