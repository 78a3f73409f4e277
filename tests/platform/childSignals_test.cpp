// SPDX-License-Identifier: Apache-2.0
// Signals that come while a child runs.
#include "logging/Trace.h"
#include "platform/childProgram.h"
#include "platform/zorSystemCommon.h"
#include "suite/Scratch.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane {
namespace {

constexpr std::pair<int, const char*> FORWARDED[] = {
    {SIGHUP, "HUP"}, {SIGINT, "INT"}, {SIGQUIT, "QUIT"}, {SIGPIPE, "PIPE"}, {SIGTERM, "TERM"}};

volatile std::sig_atomic_t arrived = 0;
void count(int /*signal*/) {
    arrived = arrived + 1;
}

/// Runs a command and sends this process a signal as soon as the child says that it is ready.
int runAndSend(const std::string& command, int signal, std::int32_t& status) {
    const ZorSystemCallback send = [](void* context, const std::string& line) {
        return line == "ready" ? kill(getpid(), *static_cast<const int*>(context)) : 0;
    };
    return ZorRunCommandCommon(command, send, &signal, status, 0, true);
}

std::string untilSignal(const char* name, const std::string& action) {
    return "trap '" + action + "; exit 5' " + name + "; echo ready; for i in $(seq 500); do sleep 0.02; done";
}

TEST(ChildSignals, GoToTheChildFirstAndStayIgnored) {
    for (const auto& [signal, name] : FORWARDED) {
        arrived = 0;
        const auto previous = std::signal(signal, count);
        std::int32_t status = 0;
        EXPECT_EQ(runAndSend(untilSignal(name, ":"), signal, status), ZOR_FAIL) << name;
        EXPECT_EQ(status, 5) << name;
        EXPECT_EQ(arrived, 1) << name;
        EXPECT_EQ(zorSystem_caughtSignal, 0) << name;
        EXPECT_EQ(std::signal(signal, SIG_IGN), &count) << name;

        EXPECT_EQ(runAndSend("echo ready; sleep 0.05", signal, status), ZOR_SUCCESS) << name;
        EXPECT_EQ(std::signal(signal, previous), SIG_IGN) << name;
    }
}

TEST(ChildSignalsDeathTest, ProcessEndsByItOnlyWhenTheChildIsGone) {
    const Scratch scratch;
    for (const auto& [signal, name] : FORWARDED) {
        const std::string mark = scratch.path(name);
        std::int32_t status = 0;
        EXPECT_EXIT(
            {
                runAndSend(untilSignal(name, "sleep 0.1; : > " + mark), signal, status);
                _exit(0);
            },
            testing::KilledBySignal(signal), "");
        EXPECT_TRUE(std::filesystem::exists(mark)) << name;
    }
}

class ChildSignalsLog : public testing::Test {
  protected:
    ChildSignalsLog() { g_libLog = &m_log; }
    ~ChildSignalsLog() override { g_libLog = nullptr; }

    const Scratch m_scratch{LEVEL_FINE};

  private:
    CZorLog m_log{ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR};
};

TEST_F(ChildSignalsLog, ForwardingIsToldWhileTheChildStillRuns) {
    const auto previous = std::signal(SIGTERM, count);
    std::int32_t status = -100;
    ZorSystem(
        "trap '' TERM; kill -TERM $PPID; for i in $(seq 100); do sleep 0.02; grep -q 'Sending signal=15' " +
            m_scratch.path("51216-128.log") + " && exit 7; done",
        status, 0);
    std::signal(SIGTERM, previous);
    EXPECT_EQ(status, 7);
}

TEST_F(ChildSignalsLog, ManySignalsWhileTheLogIsBusy) {
    arrived = 0;
    const auto previous = std::signal(SIGHUP, count);
    std::stringstream output;
    std::int32_t status = 0;
    EXPECT_EQ(ZorRunCommand("trap '' HUP; for i in $(seq 500); do kill -HUP $PPID; echo $i; done; exit 4",
                            output, status, 0, false),
              ZOR_FAIL);
    std::signal(SIGHUP, previous);
    EXPECT_EQ(status, 4);
    EXPECT_TRUE(output.str().ends_with("\n500\n"));
    EXPECT_GE(arrived, 1);

    const std::string text = m_scratch.read("51216-128.log");
    std::size_t last = text.find("Child process started, pid=");
    for (const char* later : {"Sending signal=1 to child process pid=", "exited with non-zero status=4",
                              "Sending kill signal=1 to self."}) {
        const std::size_t at = text.rfind(later);
        ASSERT_NE(at, std::string::npos) << later;
        EXPECT_GT(at, last) << later;
        last = at;
    }
    EXPECT_EQ(text.find("trap"), std::string::npos) << "the command was to be kept out of the log";
}

TEST_F(ChildSignalsLog, ParentTellsWhatFailedInTheChild) {
    const char* const arguments[] = {"/bin/true", nullptr};
    Trace trace(g_libLog, "test");
    const BlockedSignals blocked;
    const ForwardedSignals forwarded(false);
    const pid_t child =
        StartChild(trace, {.file = *arguments, .arguments = arguments, .failureText = "", .output = 9999},
                   forwarded, blocked);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 255);
    const auto lines = m_scratch.logLines(ZOR_LIBRARY_ORIGINATOR);
    EXPECT_TRUE(lines.back().starts_with("diag 1 test [128:593]")) << lines.back();
    EXPECT_NE(lines.back().find("stdout"), std::string::npos);
}

} // namespace
} // namespace Zorvane
