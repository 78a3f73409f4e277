// SPDX-License-Identifier: Apache-2.0
#include "platform/pathManipulation.h"
#include "platform/returnCodes.h"

#include <filesystem>

#include <gtest/gtest.h>

using namespace Zorvane;

TEST(PathManipulation, Cutting) {
    struct {
        const char* path;
        char separator;
        const char *normalized, *directory, *file, *stem, *extension;
    } const cases[] = {{"//", 0, "/", "/", "", "", ""},
                       {"///", 0, "", ".", "", "", ""},
                       {"/name", 0, "/name", "/", "name", "name", ""},
                       {".x", 0, ".x", ".", ".x", "", "x"},
                       {"/a.d//b", 0, "/a.d/b", "/a.d", "b", "b", ""},
                       {"/a/c.tar.gz", '/', "/a/c.tar.gz", "/a", "c.tar.gz", "c.tar", "gz"},
                       {"\\f", '\\', "\\f", "/", "f", "f", ""}}; // "/" whatever the separator
    for (const auto& c : cases) {
        EXPECT_EQ(NormalizePathSeparators(c.path, c.separator), c.normalized) << c.path;
        EXPECT_EQ(GetDirNameFromPath(c.path, c.separator), c.directory) << c.path;
        EXPECT_EQ(GetFileNameFromPath(c.path, c.separator), c.file) << c.path;
        EXPECT_EQ(GetFileNameWithoutExtFromPath(c.path, c.separator), c.stem) << c.path;
        EXPECT_EQ(GetExtensionFromPath(c.path, c.separator), c.extension) << c.path;
    }
}

TEST(PathManipulation, Canonical) {
    const std::filesystem::path before = std::filesystem::current_path();
    char folder[] = "/tmp/zor_pathXXXXXX";
    ASSERT_TRUE(mkdtemp(folder));
    std::filesystem::current_path(folder);
    std::filesystem::create_directory("here");
    std::filesystem::create_symlink("/usr", "link");
    const std::string here = folder;
    const std::pair<const char*, std::string> cases[] = {
        {"/", ""},
        {"/../a/../b/.//c", "/b/c"},
        {"C:", "C:/"},
        {"gone/..", ""},
        {"gone/../x/y", "x/y"},
        {"./link/../here/", here + "/here"}, // links are not followed
        {".hidden", here + "/.hidden"}};
    for (const auto& [given, canonical] : cases) {
        std::string path = given;
        EXPECT_EQ(canonicalizePath(path, path), ZOR_SUCCESS) << given;
        EXPECT_EQ(path, canonical) << given;
    }
    EXPECT_EQ(comparePaths("here", "./here/"), 1);
    EXPECT_EQ(comparePaths("/a", "/A"), 0);
    EXPECT_EQ(comparePaths("", ""), 1);
    EXPECT_EQ(comparePaths("", "/"), 0);

    std::filesystem::remove_all(folder);
    std::string path;
    EXPECT_EQ(canonicalizePath("./x", path), ZOR_FAIL) << "no working directory";
    EXPECT_EQ(path, "./x");
    EXPECT_EQ(comparePaths("./x", "./x"), 1);
    std::filesystem::current_path(before);
}
