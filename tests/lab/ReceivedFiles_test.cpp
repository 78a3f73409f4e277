// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/ReceivedFiles.h"
#include "lab/RequestLog.h"

#include <csignal>
#include <fstream>
#include <iterator>
#include <map>

#include <sys/resource.h>

namespace Zorvane {
namespace {

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A file cannot grow beyond that, as on a full disk, for the length of a scope.
class FullDisk {
  public:
    explicit FullDisk(rlim_t size) {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{size, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &m_before); }

  private:
    rlimit m_before{};
};

TEST(ReceivedFiles, NoTwoNamesMeanTheSameFile) {
    const ScratchDirectory scratch;
    ReceivedFiles files(scratch.file("received"));
    const std::string longName(80, 'n');
    const std::pair<std::string, std::string> names[] = {
        {"a-b", "c"},          {"a", "b-c"},          {"a/b", "c"},
        {"a_b", "c"},          {"a", "log"},          {"", ""},
        {"..", "..x"},         {"a", ".."},           {"a", "%2E"},
        {"a", longName + "1"}, {"a", longName + "2"}, {"A", "log"}};
    std::map<std::filesystem::path, std::string> kept;
    for (const auto& [client, file] : names) {
        kept[files.fileOf(client, file)] = client + "|" + file;
        EXPECT_TRUE(files.keep(files.fileOf(client, file), client + "|" + file)) << client << "|" << file;
    }
    EXPECT_TRUE(files.keep(files.logOf("a"), "a log"));
    for (const char* client : {"a", "another"})
        EXPECT_FALSE(files.keep(files.fileOf(client, std::string(300, 'n')), ""))
            << "no file system takes it";
    EXPECT_FALSE(std::filesystem::exists(files.fileOf("another", "").parent_path()))
        << "a refusal leaves nothing";
    EXPECT_EQ(kept.size(), std::size(names));
    for (const auto& [file, content] : kept)
        EXPECT_EQ(contentOf(file), content);
}

TEST(ReceivedFiles, AFileIsReplacedAsAWholeOrStays) {
    const ScratchDirectory scratch;
    ReceivedFiles files(scratch.file("received"));
    const auto file = files.fileOf("client", "file");
    EXPECT_TRUE(files.keep(file, "old"));
    {
        const FullDisk full(1000);
        EXPECT_FALSE(files.keep(file, std::string(2000, 'n')));
    }
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_TRUE(files.keep(file, "new"));
    EXPECT_EQ(contentOf(file), "new");
}

TEST(ReceivedFiles, TheirNumberHasAnEnd) {
    const ScratchDirectory scratch;
    ReceivedFiles files(scratch.file("received"));
    int count = 0;
    while (count < 100'000 && files.keep(files.fileOf(std::to_string(count), "file"), ""))
        ++count;
    EXPECT_EQ(count, 2500) << "each in a folder of its own";
    std::filesystem::remove_all(files.fileOf("7", "file").parent_path());
    EXPECT_TRUE(files.keep(files.fileOf("8", "more"), "")) << "somebody has made room";
}

TEST(RequestLog, GoesOnWhenThereIsRoomAgain) {
    const ScratchDirectory scratch;
    RequestLog log(scratch.file("requests.log"));
    log.write({"one", std::string(100'000, 'x')}); // a long column is cut
    {
        const FullDisk full(5000);
        log.write({"two", std::string(2000, 'y')});
    }
    log.write({"three", ""});
    const std::string text = contentOf(scratch.file("requests.log"));
    EXPECT_LT(text.size(), 6000U);
    EXPECT_TRUE(text.ends_with("\nthree\t-\n")) << text;
}

} // namespace
} // namespace Zorvane
