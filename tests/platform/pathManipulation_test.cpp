// SPDX-License-Identifier: Apache-2.0
#include "platform/pathManipulation.h"
#include "platform/returnCodes.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

TEST(PathManipulation, Cutting) {
    struct {
        const char* path;
        char separator;
        const char *normalized, *directory, *file, *stem, *extension;
    } const cases[] = {{"//", 0, "/", "/", "", "", ""},
                       {"///", 0, "", ".", "", "", ""},
                       {"", 0, "", ".", "", "", ""},
                       {"/name", 0, "/name", "/", "name", "name", ""},
                       {"name", 0, "name", ".", "name", "name", ""},
                       {"/a.d/b", 0, "/a.d/b", "/a.d", "b", "b", ""},
                       {"/a/c.tar.gz", '/', "/a/c.tar.gz", "/a", "c.tar.gz", "c.tar", "gz"},
                       {".x", 0, ".x", ".", ".x", "", "x"},
                       {"C:\\dir\\f.sys", '\\', "C:\\dir\\f.sys", "C:\\dir", "f.sys", "f", "sys"},
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
    const struct {
        const char* path;
        std::string canonical;
    } cases[] = {{"/", ""},
                 {"/a/../b/.", "/b"},
                 {"/../..//a", "/a"},
                 {"C:", "C:/"},
                 {"gone/..", ""},
                 {"gone/../x", "x/"},
                 {"./link/../here/", here + "/here"}, // links are not followed
                 {".hidden", here + "/.hidden"},
                 {"../x", "/tmp/x"}};
    for (const auto& c : cases) {
        std::string path = c.path;
        EXPECT_EQ(canonicalizePath(path, path), ZOR_SUCCESS) << c.path;
        EXPECT_EQ(path, c.canonical) << c.path;
    }
    EXPECT_EQ(comparePaths("here", "./here/"), 1);
    EXPECT_EQ(comparePaths("/a", "/A"), 0);
    EXPECT_EQ(comparePaths("", ""), 1);
    EXPECT_EQ(comparePaths("", "/a"), 0);

    std::filesystem::remove_all(folder);
    std::string path;
    EXPECT_EQ(canonicalizePath("./x", path), ZOR_FAIL) << "no working directory";
    EXPECT_EQ(path, "./x");
    EXPECT_EQ(comparePaths("./x", "./x"), 1);
    std::filesystem::current_path(before);
}

} // namespace
} // namespace Zorvane
