// SPDX-License-Identifier: Apache-2.0
// Signals that come while a child runs.
#include "logging/Trace.h"
#include "platform/childSignals.h"
#include "platform/zorSystemCommon.h"
#include "suite/Scratch.h"

#include <memory>

#include <gtest/gtest.h>
#include <unistd.h>

namespace Zorvane {

namespace {

struct ForwardedSignal {
    int number;
    const char* name;
};

constexpr ForwardedSignal FORWARDED[] = {
    {SIGHUP, "HUP"}, {SIGINT, "INT"}, {SIGQUIT, "QUIT"}, {SIGPIPE, "PIPE"}, {SIGTERM, "TERM"}};

volatile std::sig_atomic_t arrived = 0;
void count(int /*signal*/) {
    arrived = arrived + 1;
}

/// Sends this process a signal as soon as the child says that it is ready.
int sendWhenReady(void* context, const std::string& line) {
    if (line == "ready")
        kill(getpid(), *static_cast<const int*>(context));
    return 0;
}

int runAndSend(const std::string& command, int signal, std::int32_t& status) {
    return ZorRunCommandCommon(command, sendWhenReady, &signal, status, 0, true);
}

std::string untilSignal(const ForwardedSignal& signal, const std::string& action) {
    return std::string("trap '") + action + "; exit 5' " + signal.name +
           "; echo ready; for i in $(seq 500); do sleep 0.02; done";
}

TEST(ChildSignals, ChildGetsItFirstAndTheCallersHandlerThen) {
    for (const ForwardedSignal& signal : FORWARDED) {
        arrived = 0;
        const auto previous = std::signal(signal.number, count);
        std::int32_t status = 0;
        EXPECT_EQ(runAndSend(untilSignal(signal, ":"), signal.number, status), ZOR_FAIL) << signal.name;
        EXPECT_EQ(status, 5) << signal.name;
        EXPECT_EQ(arrived, 1) << signal.name;
        EXPECT_EQ(zorSystem_caughtSignal, 0) << signal.name;
        EXPECT_EQ(std::signal(signal.number, previous), &count) << signal.name;
    }
}

TEST(ChildSignals, IgnoredOnesStayIgnored) {
    for (const ForwardedSignal& signal : FORWARDED) {
        const auto previous = std::signal(signal.number, SIG_IGN);
        std::int32_t status = -100;
        EXPECT_EQ(runAndSend("echo ready; sleep 0.05", signal.number, status), ZOR_SUCCESS) << signal.name;
        EXPECT_EQ(status, 0) << signal.name;
        EXPECT_EQ(std::signal(signal.number, previous), SIG_IGN) << signal.name;
    }
}

TEST(ChildSignalsDeathTest, ProcessEndsByItOnlyWhenTheChildIsGone) {
    const Scratch scratch;
    for (const ForwardedSignal& signal : FORWARDED) {
        const std::string mark = scratch.path(signal.name);
        std::int32_t status = 0;
        EXPECT_EXIT(
            {
                runAndSend(untilSignal(signal, "sleep 0.1; : > " + mark), signal.number, status);
                _exit(0);
            },
            testing::KilledBySignal(signal.number), "")
            << signal.name;
        EXPECT_TRUE(std::filesystem::exists(mark)) << signal.name;
    }
}

TEST(ChildSignals, ForwardingIsLoggedWhileTheChildStillRuns) {
    const Scratch scratch(LEVEL_FAILURE);
    const auto log = std::make_unique<CZorLog>(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR);
    g_libLog = log.get();
    const auto previous = std::signal(SIGTERM, count);
    std::int32_t status = -100;
    ZorSystem(
        "trap '' TERM; kill -TERM $PPID; for i in $(seq 100); do sleep 0.02; grep -q 'Sending signal=15' " +
            scratch.path("51216-128.log") + " && exit 7; done",
        status, 0);
    std::signal(SIGTERM, previous);
    g_libLog = nullptr;
    EXPECT_EQ(status, 7);
}

TEST(ChildSignals, ManySignalsWhileTheLogIsBusy) {
    const Scratch scratch(LEVEL_FINE);
    const auto log = std::make_unique<CZorLog>(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR);
    g_libLog = log.get();
    arrived = 0;
    const auto previous = std::signal(SIGHUP, count);

    std::stringstream output;
    std::int32_t status = 0;
    const int code =
        ZorRunCommand("trap '' HUP; for i in $(seq 500); do kill -HUP $PPID; echo $i; done; exit 4", output,
                      status, 0, false);
    std::signal(SIGHUP, previous);
    g_libLog = nullptr;

    EXPECT_EQ(code, ZOR_FAIL);
    EXPECT_EQ(status, 4);
    EXPECT_TRUE(output.str().ends_with("\n500\n"));
    EXPECT_GE(arrived, 1);

    const std::string text = scratch.read("51216-128.log");
    const std::size_t started = text.find("Child process started, pid=");
    const std::size_t lastSent = text.rfind("Sending signal=1 to child process pid=");
    const std::size_t ended = text.find("exited with non-zero status=4");
    const std::size_t raised = text.find("Sending kill signal=1 to self.");
    ASSERT_NE(lastSent, std::string::npos);
    EXPECT_LT(started, lastSent);
    EXPECT_LT(lastSent, ended);
    EXPECT_LT(ended, raised);
    EXPECT_NE(raised, std::string::npos);
    EXPECT_EQ(text.find("trap"), std::string::npos) << "the command was to be kept out of the log";
}

} // namespace

} // namespace Zorvane
