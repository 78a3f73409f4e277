// SPDX-License-Identifier: Apache-2.0
#include "suite/FileWatch.h"
#include "suite/Scratch.h"
#include "suite/quul.h"

#include <chrono>
#include <csignal>
#include <ctime>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using Zorvane::Suite::FileWatch;

namespace {

// A channel whose levels follow the file, as the log has it.
struct Channel {
    mrthLogHandle_t handle{};

    Channel() { EXPECT_EQ(mrthLogOpen(51216, 433, &handle), 0); }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    ~Channel() { mrthLogCloseFile(&handle); }

    [[nodiscard]] bool isWatched() const { return handle.configurationState != FileWatch::NotWatched; }
    int level() {
        mrthDynaLoadConfig(&handle);
        return handle.debugLevel;
    }
};

// The number of the inotify descriptor.
int queueOf() {
    for (int number = 3; number < 1024; ++number)
        if (::fcntl(number, F_GETSIG) == SIGURG)
            return number;
    return -1;
}

std::string levelText(const Scratch& scratch, int level) {
    return "[logging]\ndirectory = \"" + scratch.path("") + "\"\ndebug = " + std::to_string(level) + "\n";
}

// Changes the file again and again from another process until the scope ends.
class Changer {
  public:
    explicit Changer(const Scratch& scratch) : m_process(::fork()) {
        for (int i = 0; m_process == 0; ++i) {
            scratch.configureLog(1 + i % 2);
            ::usleep(500);
        }
    }
    Changer(const Changer&) = delete;
    Changer& operator=(const Changer&) = delete;
    ~Changer() {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }

  private:
    pid_t m_process;
};

} // namespace

TEST(FileWatch, everyWayToChangeAFileCountsAtTheNextStatement) {
    const Scratch scratch(1);
    fs::create_directories(scratch.path("real/deep"));
    scratch.write("real/deep/kvn.toml", levelText(scratch, 1));
    fs::create_directory_symlink("real", scratch.path("link"));
    const std::string file = scratch.path("link/deep/kvn.toml");
    ::setenv("KVN_CONF", file.c_str(), 1);
    Channel channel;
    ASSERT_TRUE(channel.isWatched());

    int level = 1;
    const std::pair<const char*, std::function<void(const std::string&)>> ways[] = {
        {"rewritten in place", [&](const std::string& text) { scratch.write("real/deep/kvn.toml", text); }},
        {"replaced by a rename",
         [&](const std::string& text) {
             scratch.write("new", text);
             fs::rename(scratch.path("new"), file);
         }},
        {"removed and made anew",
         [&](const std::string& text) {
             fs::remove(file);
             channel.level();
             scratch.write("real/deep/kvn.toml", text);
         }},
        {"its folder replaced",
         [&](const std::string& text) {
             fs::rename(scratch.path("real/deep"), scratch.path("old"));
             channel.level();
             fs::create_directory(scratch.path("real/deep"));
             channel.level();
             scratch.write("real/deep/kvn.toml", text);
             fs::remove_all(scratch.path("old"));
         }},
        {"a link on the way turned",
         [&](const std::string& text) {
             fs::create_directories(scratch.path("other/deep"));
             scratch.write("other/deep/kvn.toml", text);
             fs::create_directory_symlink("other", scratch.path("link.new"));
             fs::rename(scratch.path("link.new"), scratch.path("link"));
             fs::rename(scratch.path("real"), scratch.path("gone"));
             fs::rename(scratch.path("other"), scratch.path("real"));
             fs::create_directory_symlink("real", scratch.path("link.new"));
             fs::rename(scratch.path("link.new"), scratch.path("link"));
             fs::remove_all(scratch.path("gone"));
         }},
    };
    testing::internal::CaptureStderr(); // the file is missing for a while, which is told
    for (int round = 0; round < 3; ++round)
        for (const auto& [way, change] : ways) {
            level = level % 6 + 1;
            change(levelText(scratch, level));
            EXPECT_EQ(channel.level(), level) << way;
            EXPECT_TRUE(channel.isWatched()) << way;
        }
    testing::internal::GetCapturedStderr();
}

TEST(FileWatch, aClosedDescriptorIsNoticedAtTheNextLook) {
    const Scratch scratch(1);
    Channel channel;
    const int queue = queueOf();
    ASSERT_GE(queue, 100) << "far from the numbers that a program mixes up";
    ASSERT_TRUE(::fcntl(queue, F_GETFD) & FD_CLOEXEC);
    ::close(queue);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    ASSERT_EQ(::dup2(pipe[0], queue), queue);
    ASSERT_EQ(::write(pipe[1], "x", 1), 1);
    mrthLogCfg_t cfg;
    EXPECT_EQ(mrthLogReadCfg(51216, 433, &cfg), 0); // a look
    mrthLogFreeCfg(&cfg);
    for (const int level : {5, 2}) {
        scratch.configureLog(level);
        EXPECT_EQ(channel.level(), level);
    }
    char byte = 0;
    EXPECT_EQ(::read(queue, &byte, 1), 1) << "what came under the number is nobody else's to read or close";
    for (const int number : {pipe[0], pipe[1], queue})
        ::close(number);
}

TEST(FileWatch, callsOfTheProcessGoOn) {
    const Scratch scratch(1);
    Channel channel;
    ASSERT_TRUE(channel.isWatched());
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const std::uint32_t before = FileWatch::state();
    {
        const Changer changer(scratch);
        // A slow peer: the reader is signalled while it waits.
        const pid_t peer = ::fork();
        if (peer == 0) {
            ::usleep(100'000);
            ::_exit(::write(ends[1], "x", 1) == 1 ? 7 : 8);
        }
        char byte = 0;
        EXPECT_EQ(::recv(ends[0], &byte, 1, 0), 1);
        int status = 0;
        EXPECT_EQ(::waitpid(peer, &status, 0), peer);
        EXPECT_EQ(WEXITSTATUS(status), 7);
        const auto start = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    }
    EXPECT_GT(FileWatch::state(), before + 10) << "and signals did come";
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(FileWatch, childrenWatchOnTheirOwnAndProgramsInheritNothing) {
    const Scratch scratch(1);
    Channel channel;
    const pid_t child = ::fork();
    if (child == 0) {
        scratch.configureLog(5);
        const bool first = channel.level() == 5 && channel.isWatched();
        scratch.configureLog(6);
        ::_exit(first && channel.level() == 6 ? 0 : 1);
    }
    int status = 1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(channel.level(), 6) << "the child took nothing away";
    EXPECT_EQ(std::system(("test ! -e /proc/self/fd/" + std::to_string(queueOf())).c_str()), 0);
}

TEST(FileWatch, childrenLeaveAForeignDescriptorUnderItsNumberOpen) {
    const Scratch scratch(1);
    Channel channel;
    ASSERT_TRUE(channel.isWatched());
    const int number = queueOf();
    const int foreign = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::dup2(foreign, number), number);
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(::fcntl(number, F_GETFD) < 0 ? 1 : 0);
    int status = 1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    ::close(number);
    ::close(foreign);
}

TEST(FileWatch, whereItCantWatchEachStatementLooks) {
    struct sigaction handled {};
    handled.sa_handler = [](int) {};
    rlimit few{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &few), 0);
    few.rlim_cur = 64;
    sigset_t urgent;
    sigemptyset(&urgent);
    sigaddset(&urgent, SIGURG);
    const struct {
        const char* reason;
        std::function<void()> begin;
    } hindrances[] = {
        {"the signal is blocked", [&] { ::sigprocmask(SIG_BLOCK, &urgent, nullptr); }},
        {"the program handles the signal", [&] { ::sigaction(SIGURG, &handled, nullptr); }},
        {"no descriptor is left", [&] { ::setrlimit(RLIMIT_NOFILE, &few); }},
    };
    for (const auto& [reason, begin] : hindrances) {
        // In a process of its own, which has no watch yet.
        const pid_t child = ::fork();
        if (child == 0) {
            begin();
            bool isRight = true;
            {
                const Scratch scratch(1);
                Channel channel;
                isRight = !channel.isWatched();
                for (const int level : {5, 1, 6}) {
                    scratch.configureLog(level);
                    isRight = isRight && channel.level() == level;
                }
            }
            ::_exit(isRight ? 0 : 1);
        }
        int status = 1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << reason;
    }
}
