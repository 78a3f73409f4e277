// SPDX-License-Identifier: Apache-2.0
#include "ops/FakeZord.h"
#include "ops/client_utils.h"

#include <filesystem>

#include <fcntl.h>
#include <gmock/gmock.h>

using testing::HasSubstr;

namespace Zorvane {

TEST(SendPullRequest, makesTheFile) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{512}, std::size_t{70'001}}) {
        const std::string content(size, 'f');
        FakeZord zord(packet(15, c(0) + i(0600) + i(static_cast<long>(size))) + content + "behind it");
        zord.scratch().write("target", "what was there before");
        const std::string target = zord.scratch().path("new");
        EXPECT_EQ(SendPullRequest(target.c_str(), "source", "alpha", PULL_REQUEST), 0);
        EXPECT_EQ(zord.scratch().read("new"), content);
        EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms{0600});
        EXPECT_EQ(SendPullRequest(zord.scratch().path("target").c_str(), "source", "alpha", PULL_REQUEST), 0);
        EXPECT_EQ(zord.scratch().read("target"), content);
    }
}

TEST(SendPullRequest, failsCleanly) {
    const struct {
        std::string reply;
        const char* target;
        int expected;
        const char* log;
    } cases[] = {
        {packet(15, c(0) + i(0600) + i(5)), "no/such/folder", -1, "unable to open "},
        {packet(15, c(0) + i(0600) + i(5)) + "half", "file", 200, "failure receiving data - bad length"},
        {packet(15, c(0) + i(0600) + i(-5)) + "12345", "file", 200, "failure receiving data - bad length"},
        {packet(15, c(0) + i(0600) + i(5)) + "12345", "/dev/full", 200, "failure writing data - bad length"},
        {packet(15, c(3) + i(0600) + i(5)) + "12345", "file", 3, "received non-zero reply from server"},
    };
    for (const auto& test : cases) {
        FakeZord zord(test.reply);
        const std::string target = *test.target == '/' ? test.target : zord.scratch().path(test.target);
        EXPECT_EQ(SendPullRequest(target.c_str(), "source", "alpha", PULL_REQUEST), test.expected);
        EXPECT_THAT(zord.log(), HasSubstr(test.log));
    }
}

TEST(SendPullRequest, withoutANameGoesToStandardOutputAndClosesIt) {
    FakeZord zord(packet(15, c(0) + i(0) + i(7)) + "content");
    const int file = open(zord.scratch().path("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    // In a process of its own: a closed standard output is whatever another thread opens next.
    const auto pull = [file] {
        dup2(file, STDOUT_FILENO);
        const int rc = SendPullRequest(nullptr, "source", "alpha", PULL_REQUEST);
        return rc == 0 && fcntl(STDOUT_FILENO, F_GETFD) == -1 ? 0 : 1;
    };
    EXPECT_EXIT(_exit(pull()), testing::ExitedWithCode(0), "");
    close(file);
    EXPECT_EQ(zord.scratch().read("out"), "content");
}

TEST(SendImportRequest, checksTheVersionOfTheDaemonThatStartedIt) {
    const auto* bytes = reinterpret_cast<const unsigned char*>("123");
    const std::string request = packet(17, i(3) + S("config") + S("alpha") + i(4)) + "123";
    const std::string version = packet(10, S("6.5.0") + S("KVN"));
    const struct {
        std::string says;
        int expected;
        std::string hears;
    } cases[] = {
        {COMPATIBLE + packet(18, c(0)), 0, version + request},
        {COMPATIBLE + packet(18, c(8)), 8, version + request},
        {COMPATIBLE, 200, version + request},
        {versionReply(2, "7.0", "KVN"), 204, version},
    };
    for (const auto& test : cases) {
        const SocketPair peers;
        peers.says(test.says);
        int rc = -1;
        {
            const Redirect redirect(STDOUT_FILENO, peers.near());
            rc = SendImportRequest(4, "alpha", "config", bytes, 3, false);
        }
        EXPECT_EQ(rc, test.expected);
        EXPECT_EQ(peers.hears(), test.hears);
    }
    int closed = 0;
    {
        const Redirect redirect(STDOUT_FILENO, STDERR_FILENO);
        close(STDOUT_FILENO);
        closed = SendImportRequest(4, "alpha", "config", bytes, 3, false);
    }
    EXPECT_EQ(closed, 200);
}

} // namespace Zorvane
