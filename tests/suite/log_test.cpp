// SPDX-License-Identifier: Apache-2.0
#include "suite/Scratch.h"
#include "suite/printable.h"
#include "suite/quul.h"

#include <cerrno>
#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

struct Channel {
    mrthLogHandle_t handle{};
    mrthLogResult_t status;

    explicit Channel(std::uint64_t originator) : status(mrthLogOpen(51216, originator, &handle)) {}
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    ~Channel() { mrthLogCloseFile(&handle); }

    // Writes a message with one argument; `level` is the severity of an application message.
    mrthLogResult_t write(mrthLogKind_t kind, int level, const char* label, std::uint64_t id,
                          const char* value) {
        mrthLogMsg_t message;
        mrthLogInitMsg(&message, &handle, kind, 0);
        mrthLogSetDebugAttr(&message, label, level);
        mrthLogSetAppAttr(&message, level);
        message.messageId = id;
        mrthLisArgs_t arguments{};
        EXPECT_EQ(mrthLis(&arguments, id, "%s", value), 0);
        message.arguments = &arguments;
        const mrthLogResult_t result = mrthLogMsg(&handle, 0, &message);
        mrthLisFree(&arguments);
        return result;
    }
};

} // namespace

TEST(Printable, controlCharactersAreSpelledOut) {
    const std::pair<std::string, std::string> cases[] = {
        {"a\\b\n\r\tc", "a\\b\\n\\r\\tc"}, // backslashes stay: paths are full of them
        {"\x1b[2J\x07\x7f", "\\x1b[2J\\x07\\x7f"},
        {std::string("a\0b", 3), "a\\x00b"},
        {"\xc3\x9f\xe2\x82\xac\xf0\x9f\x98\x80", "\xc3\x9f\xe2\x82\xac\xf0\x9f\x98\x80"}, // UTF-8
        {"\xc2\x9b[", "\\x9b["},            // an escape sequence of one character, in UTF-8 ...
        {"\x9b[", "\\x9b["},                // ... and of one byte
        {"\xe4\xf6", "\xe4\xf6"},           // letters of an 8-bit code
        {"\xe0\x80\x9b", "\xe0\\x80\\x9b"}, // an overlong form hides nothing
        {"\xe2\x82", "\xe2\\x82"},          // a character cut short
        {"\xed\xa0\x80\xf4\x90\x80\x80", "\xed\xa0\\x80\xf4\\x90\\x80\\x80"}, // no such codes
        {"a\xe2\x80\xa8" "b\xe2\x80\xae\xef\xbb\xbf", "a\\u2028b\\u202e\\ufeff"}, // lines and directions
        {"\xf0\x9f\xbf\xbe", "\\U0001fffe"}
    };
    for (const auto& [text, shown] : cases)
        EXPECT_EQ(Zorvane::Suite::printable(text), shown);
}

TEST(Log, linesHaveTheirForm) {
    const Scratch scratch(5);
    Channel channel(128);
    EXPECT_EQ(channel.write(MRTH_LOG_DEBUG, 5, "volfind:Foo()", 0, "Entering, line=7\nforged"), 0);
    EXPECT_EQ(channel.write(MRTH_LOG_DEBUG, 1, nullptr, 0, "x"), 0);
    EXPECT_EQ(channel.write(MRTH_LOG_DIAG, 1, "host:Bar()", 312, "Linux \x1b[0m"), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(channel.write(MRTH_LOG_APP, 2, nullptr, 926, "zorb2v\n"), 0);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), MatchesRegex("zorb2v\\\\n ended .*\n"))
        << "the text alone";

    std::istringstream lines(scratch.read("51216-128.log")); // the channel is open: every line is flushed
    std::string line;
    for (const char* rest : {"debug 5 volfind:Foo\\(\\) Entering, line=7\\\\nforged", "debug 1 - x",
                             "diag 1 host:Bar\\(\\) \\[128:312\\] .*Linux \\\\x1b\\[0m.*",
                             "app 2 - \\[128:926\\] zorb2v\\\\n ended .*"}) {
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_THAT(line, MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z " +
                                       std::to_string(::getpid()) + " 51216 128 " + rest));
    }
    EXPECT_FALSE(std::getline(lines, line));
}

TEST(Log, withoutADirectoryOnlyTheTerminalIsLeft) {
    const Scratch scratch("[logging]\ndebug = 6\n");
    Channel channel(433);
    EXPECT_EQ(channel.status, 0) << "no failure";
    mrthDynaLoadConfig(&channel.handle);
    EXPECT_EQ(channel.handle.debugLevel, -1) << "no statement is worth building";
    EXPECT_EQ(channel.handle.diagLevel, -1);
    mrthLogCfg_t cfg;
    EXPECT_EQ(mrthLogReadCfg(51216, 433, &cfg), 0);
    EXPECT_EQ(cfg.debugLevel, 6) << "as configured";
    mrthLogFreeCfg(&cfg);

    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(channel.write(MRTH_LOG_APP, 0, nullptr, 7, ""), 0);
    EXPECT_EQ(channel.write(MRTH_LOG_APP, 2, nullptr, 2999, "be\nta"), 0);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), MatchesRegex("message 433:2999 .*: be\\\\nta\n"));
    EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("Usage: zorb2v -C <client>"));
}

TEST(Log, levelsFollowTheFile) {
    const Scratch scratch(1);
    Channel channel(433);
    EXPECT_EQ(channel.handle.debugLevel, 1);
    scratch.configureLog(5, 3);
    mrthDynaLoadConfig(&channel.handle);
    EXPECT_EQ(channel.handle.debugLevel, 5) << "rewritten in place";
    EXPECT_EQ(channel.handle.diagLevel, 3);
    scratch.write("new.toml", "[logging.originator.433]\ndebug = 6\n");
    std::filesystem::rename(scratch.path("new.toml"), scratch.path("kvn.toml"));
    mrthDynaLoadConfig(&channel.handle);
    EXPECT_EQ(channel.handle.debugLevel, 6) << "replaced";
}

TEST(Log, unwritableDirectoryFailsTheOpen) {
    const Scratch scratch;
    std::filesystem::create_directories(scratch.path("taken/51216-433.log"));
    std::filesystem::create_directories(scratch.path("linked"));
    std::filesystem::create_symlink(scratch.path("kvn.toml"), scratch.path("linked/51216-433.log"));
    std::filesystem::create_directories(scratch.path("piped"));
    ::mkfifo(scratch.path("piped/51216-433.log").c_str(), 0600);
    const int reader = ::open(scratch.path("piped/51216-433.log").c_str(), O_RDONLY | O_NONBLOCK);
    for (const auto& [directory, status] :
         std::initializer_list<std::pair<const char*, int>>{{"kvn.toml", ENOTDIR},
                                                            {"no/where", ENOENT},
                                                            {"taken", EISDIR},
                                                            {"linked", ELOOP},
                                                            {"piped", EINVAL},
                                                            {"made", 0}}) {
        scratch.configure("[logging]\ndirectory = \"" + scratch.path(directory) + "\"\n");
        EXPECT_EQ(Channel(433).status, status) << directory;
    }
    ::close(reader);
}

TEST(Log, rotatesAndKeepsAsManyFilesAsTold) {
    const Scratch scratch;
    const std::string logs = scratch.path("logs");
    scratch.configure("[logging]\ndirectory = \"" + logs + "\"\nmax_bytes = 1024\nmax_files = 2\n");
    Channel channel(433);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(channel.write(MRTH_LOG_DEBUG, 1, "a:b()", 0, std::string(300, 'x').c_str()), 0);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(logs)) {
        EXPECT_LE(entry.file_size(), 1024U) << entry.path();
        ++files;
    }
    EXPECT_EQ(files, 3) << "the file and two old ones";
}

TEST(Log, noLineIsLostAmongManyWriters) {
    const Scratch scratch;
    const std::string logs = scratch.path("logs");
    scratch.configure("[logging]\ndirectory = \"" + logs + "\"\nmax_bytes = 2000\nmax_files = 1000\n");
    constexpr int WRITERS = 4, LINES = 200;
    for (int writer = 0; writer < WRITERS; ++writer)
        if (::fork() == 0) {
            Channel channel(433);
            for (int i = 0; i < LINES; ++i)
                channel.write(MRTH_LOG_DEBUG, 1, "a:b()", 0, "all of them");
            ::_exit(0);
        }
    while (::wait(nullptr) > 0) {
    }
    int lines = 0;
    for (const auto& entry : std::filesystem::directory_iterator(logs)) {
        std::istringstream text(scratch.read("logs/" + entry.path().filename().string()));
        for (std::string line; std::getline(text, line); ++lines)
            EXPECT_THAT(line, EndsWith("a:b() all of them"));
    }
    EXPECT_EQ(lines, WRITERS * LINES);
}

TEST(Log, whatStandsInTheWayOfATurnIsLeftAlone) {
    const Scratch scratch;
    const std::string logs = scratch.path("logs");
    const std::string log = logs + "/51216-433.log";
    scratch.configure("[logging]\ndirectory = \"" + logs + "\"\nmax_bytes = 1024\nmax_files = 2\n");
    scratch.write("victim", "not a log");
    std::filesystem::create_directories(logs + "/51216-433.2.log/full");
    const auto fill = [](Channel& channel) {
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(channel.write(MRTH_LOG_DEBUG, 1, "a:b()", 0, std::string(300, 'x').c_str()), 0);
    };
    Channel channel(433);
    fill(channel);
    EXPECT_GT(std::filesystem::file_size(log), 1024U) << "no place for the second old one: the log grows";
    std::filesystem::remove(log);
    std::filesystem::create_symlink(scratch.path("victim"), log);
    fill(channel);
    EXPECT_EQ(scratch.read("victim"), "not a log");
    std::filesystem::remove_all(logs);
    fill(channel);
}

TEST(Log, fullDiskIsAResultAndNoNoise) {
    const Scratch scratch(1);
    Channel channel(433);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit none{0, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    testing::internal::CaptureStderr();
    setrlimit(RLIMIT_FSIZE, &none);
    EXPECT_EQ(channel.write(MRTH_LOG_DEBUG, 1, "a:b()", 0, "x"), EIO);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
