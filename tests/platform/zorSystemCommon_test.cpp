// SPDX-License-Identifier: Apache-2.0
// The runner with real children.
#include "logging/CZorLog.h"
#include "platform/HostFiles.h"
#include "platform/zorSystemCommon.h"

#include <functional>
#include <iterator>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane {
namespace {

/// Return code, exit status and output as one text.
std::string shell(const std::string& command, std::uint32_t flags = 0) {
    std::stringstream output("stale");
    std::int32_t status = -100;
    const int code = ZorRunCommand(command, output, status, flags, true);
    return std::to_string(code) + ' ' + std::to_string(status) + ' ' + output.str();
}

/// Runs a command and gives each line to a function, which says whether to go on.
std::string listen(const std::string& command, std::function<int(const std::string&)> onLine) {
    const ZorSystemCallback callback = [](void* context, const std::string& line) {
        return (*static_cast<std::function<int(const std::string&)>*>(context))(line);
    };
    std::int32_t status = -100;
    const int code = ZorRunCommandCommon(command, callback, &onLine, status, 0, true);
    return std::to_string(code) + ' ' + std::to_string(status);
}

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// No run leaves anything behind.
class Runner : public testing::Test {
  protected:
    void TearDown() override {
        EXPECT_EQ(zorSystem_childPid, 0);
        EXPECT_EQ(zorSystem_caughtSignal, 0);
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
        EXPECT_EQ(openDescriptors(), m_descriptors);
    }

  private:
    std::ptrdiff_t m_descriptors = openDescriptors();
};
using RunnerDeathTest = Runner;

TEST_F(Runner, OutcomesAndOutput) {
    const std::string x1500(1500, 'x'), big(1 << 20, 'x');
    const struct {
        const char* command;
        std::uint32_t flags;
        std::string expected;
    } cases[] = {
        {"true", 0, "0 0 "},
        {"echo partial; exit 3", 0, "1 3 partial\n"},
        {"kill -KILL $$", 0, "2 9 "},
        {"/no/such/command 2>/dev/null", 0, "1 127 "},
        {"printf 'no line end'", 0, "0 0 no line end\n"},
        {"printf 'dos\\r\\n\\nunix\\n'", 0, "0 0 dos\n\nunix\n"},
        {"head -c 1500 /dev/zero | tr '\\0' x", 0, "0 0 " + x1500 + "\n"},
        {"printf '\\0a\\0b\\n\\377\\001\\n'", 0, std::string("0 0 \0a\0b\n\377\001\n", 12)},
        {"echo out; echo err >&2", ZOR_SYSTEM_CAPTURE_ALL, "0 0 out\nerr\n"},
        {"for i in 1 2; do head -c 1048576 /dev/zero | tr '\\0' x; echo; exec >&2; done",
         ZOR_SYSTEM_CAPTURE_ALL, "0 0 " + big + "\n" + big + "\n"},
        {"(sleep 0.1; echo grandchild) & echo child", 0, "0 0 child\ngrandchild\n"},
        {"echo $LC_ALL $LANG", 0, "0 0 C C\n"},
        {"echo $LC_ALL $LANG", ZOR_SYSTEM_KEEP_LOCALE, "0 0 xx_YY zz\n"},
        {"test -e /proc/$$/fd/300", 0, "1 1 "}, // nothing is inherited
    };
    setenv("LC_ALL", "xx_YY", 1);
    setenv("LANG", "zz", 1);
    const int kept = fcntl(STDERR_FILENO, F_DUPFD, 300);
    for (const auto& c : cases)
        EXPECT_TRUE(shell(c.command, c.flags) == c.expected) << c.command;
    close(kept);
    unsetenv("LC_ALL");
    unsetenv("LANG");
}

TEST_F(Runner, ArgumentVectorRunsWithoutShell) {
    const auto runVector = [](std::vector<const char*> arguments) {
        arguments.push_back(nullptr);
        std::stringstream output;
        std::int32_t status = -100;
        const int code = ZorRunCommandCommon2(arguments.data(), output, status, 0, true);
        return std::to_string(code) + ' ' + std::to_string(status) + ' ' + output.str();
    };
    EXPECT_EQ(runVector({"/bin/echo", "a  b", "$HOME;"}), "0 0 a  b $HOME;\n");
    EXPECT_EQ(runVector({"/bin/sh", "-c", "echo lost; exit 4"}), "1 3 ");

    const char* const missing[] = {"/no/such/program", nullptr};
    ZorSystemOptions options{.flags = ZOR_SYSTEM_CAPTURE_ALL};
    EXPECT_EQ(ZorSystemCommon2(missing, &options, true), ZOR_FAIL);
    EXPECT_EQ(options.exitStatus, 255);
    EXPECT_EQ(*options.output, "execv(cmdPath) failed: No such file or directory\n");
}

TEST_F(Runner, FormsWithoutCapture) {
    std::int32_t status = -100;
    EXPECT_EQ(ZorSystem("exit 6", status, 0), ZOR_FAIL);
    EXPECT_EQ(status, 6);
    EXPECT_EQ(ZorSystemCommon("true", nullptr, false), ZOR_SUCCESS);
    EXPECT_EQ(ZorSystemCommon("echo heard by nobody", status, ZOR_SYSTEM_CALLBACK, true), ZOR_ERROR);
    EXPECT_EQ(status, 1);
}

TEST(RunnerLog, APrivateCommandStaysOutOfIt) {
    const Scratch scratch(6);
    CZorLog log(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR);
    g_libLog = &log;
    std::stringstream output;
    std::int32_t status = 0;
    for (const char* command : {"echo s3cret", "echo s3cret; exit 4", "exec /no/such/s3cret 2>/dev/null",
                                "kill -KILL $$ # s3cret"}) {
        const char* const arguments[] = {"/bin/sh", "-c", command, nullptr};
        ZorRunCommandCommon(command, output, status, ZOR_SYSTEM_CAPTURE_ALL, false);
        ZorRunCommandCommon2(arguments, output, status, ZOR_SYSTEM_CAPTURE_ALL, false);
        ZorSystemCommon(std::string(command) + " >/dev/null", status, 0, false);
    }
    EXPECT_EQ(scratch.read("51216-128.log").find("s3cret"), std::string::npos);
    ZorRunCommandCommon("echo s3cret", output, status, 0, true);
    EXPECT_NE(scratch.read("51216-128.log").find("command=echo s3cret"), std::string::npos);
    g_libLog = nullptr;
}

TEST_F(Runner, FailingCallbackEndsTheCaptureNotTheWait) {
    const std::string endless = "while echo again; do :; done";
    int calls = 0;
    EXPECT_EQ(listen(endless, [&](const auto&) { return ++calls == 3 ? 9 : 0; }), "3 1");
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(listen("echo last; exit 0", [](const auto&) { return 1; }), "3 1");
    EXPECT_THROW(listen(endless, [](const auto&) -> int { throw std::bad_alloc(); }), std::bad_alloc);
}

TEST_F(Runner, SecondRunIsRefusedAndLeavesTheFirstAlone) {
    std::string lines;
    const auto onLine = [&](const std::string& line) {
        const pid_t first = zorSystem_childPid;
        EXPECT_EQ(shell("true"), "3 0 ");
        EXPECT_EQ(zorSystem_childPid, first);
        lines += line;
        return 0;
    };
    EXPECT_EQ(listen("echo 1; echo 2; exit 8", onLine), "1 8");
    EXPECT_EQ(lines, "12");

    zorSystem_caughtSignal = SIGTERM; // left behind by an earlier run
    EXPECT_EQ(shell("true"), "3 0 ");
    zorSystem_caughtSignal = 0;
}

TEST_F(Runner, ThousandRunsLeakNothing) {
    const char* const quiet[] = {"/bin/true", nullptr};
    const char* const speaking[] = {"/bin/echo", "x", nullptr};
    const ZorSystemCallback refuse = [](void*, const std::string&) { return 1; };
    for (int i = 0; i < 250; ++i) {
        ZorSystemOptions captured{.flags = ZOR_SYSTEM_CAPTURE_ALL};
        ZorSystemOptions refused{.flags = ZOR_SYSTEM_CALLBACK, .callback = refuse};
        std::int32_t status = 0;
        ASSERT_EQ(ZorSystemCommon2(quiet, nullptr, true), ZOR_SUCCESS);
        ASSERT_EQ(ZorSystemCommon2(speaking, &captured, true), ZOR_SUCCESS);
        ASSERT_EQ(ZorSystemCommon2(speaking, &refused, true), ZOR_ERROR);
        ASSERT_EQ(ZorSystem("exit 1", status, 0), ZOR_FAIL);
    }
}

TEST_F(RunnerDeathTest, StandardDescriptorsMayBeClosed) {
    // A pipe end in the place of standard input would have cat read the child's own output, forever.
    EXPECT_EXIT(
        {
            for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                close(descriptor);
            _exit(shell("echo out; cat; exit 5") == "1 5 out\n" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Runner, NoPipeNoRun) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none{3, limit.rlim_max};
    shell("true"); // the sanitizer looks at each type once, and needs a descriptor for it
    setrlimit(RLIMIT_NOFILE, &none);
    const std::string result = shell("echo x");
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(result, "3 0 ");
}

sighandler_t handlerOfSigterm() {
    struct sigaction action {};
    sigaction(SIGTERM, nullptr, &action);
    return action.sa_handler;
}

TEST_F(RunnerDeathTest, HandlersOutliveAFailedForkOnly) {
    EXPECT_EXIT(
        {
            const rlimit none{};
            setrlimit(RLIMIT_NPROC, &none);
            if (geteuid() == 0 && setuid(65534) != 0)
                _exit(2);
            _exit(shell("true") == "3 0 " && handlerOfSigterm() == zorSystem_SignalHandler ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    std::signal(SIGCHLD, SIG_IGN); // the child's status is lost
    EXPECT_EQ(shell("exit 0"), "3 0 ");
    std::signal(SIGCHLD, SIG_DFL);
    EXPECT_EQ(handlerOfSigterm(), SIG_DFL);
}

TEST_F(RunnerDeathTest, SpinnerTurnsAndIsWipedOut) {
    EXPECT_EXIT(_exit(shell("sleep 1.3", ZOR_SYSTEM_SPINNER)[0]), testing::ExitedWithCode('0'),
                "^[|]\b/\b.* \b$");
    EXPECT_EXIT(_exit(shell("true")[0]), testing::ExitedWithCode('0'), "^$");
}

TEST_F(Runner, ReadsLinesInPieces) {
    const std::string a(511, 'a'), b(510, 'b');
    std::string text = a + "\n" + b + "\r\n" + "end";
    std::FILE* stream = fmemopen(text.data(), text.size(), "r");
    std::vector<std::string> lines;
    std::string line;
    while (ReadLineFromStream(stream, line) == 0)
        lines.push_back(line);
    std::fclose(stream);
    // A carriage return at the end of a piece is a line end of its own.
    EXPECT_EQ(lines, (std::vector<std::string>{a, b, "", "end"}));

    stream = std::fopen("/", "r");
    line = "stale";
    EXPECT_EQ(ReadLineFromStream(stream, line), 1);
    EXPECT_EQ(line, "");
    EXPECT_TRUE(std::ferror(stream));
    std::fclose(stream);
}

} // namespace
} // namespace Zorvane
