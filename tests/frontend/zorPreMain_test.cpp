// SPDX-License-Identifier: Apache-2.0
#include "frontend/failingAllocations.h"
#include "frontend/zorPreMain.h"
#include "frontend/zorb2v.h"
#include "logging/CErrorMsg.h"
#include "resources/CommandLog.h"

#include <new>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace Zorvane {
namespace {

using Test::g_allocationsLeft;
using Test::NEVER;

struct Outcome {
    int status;
    std::string errors;
    bool operator==(const Outcome&) const = default;
};

// Runs a command in a process of its own.
Outcome run(CommandMain command, long failingAllocation = NEVER) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        char name[] = "prog";
        char argument[] = "-x";
        char* argv[] = {name, argument, nullptr};
        g_allocationsLeft = failingAllocation;
        _exit(ZorPreMain(2, argv, ZOR_PRODUCT_ID, ZOR_COMMAND_ORIGINATOR, command));
    }
    close(ends[1]);
    Outcome outcome;
    char piece[256];
    for (ssize_t got; (got = read(ends[0], piece, sizeof piece)) > 0;)
        outcome.errors.append(piece, static_cast<std::size_t>(got));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

int isSetUp(std::int32_t argc, char**) {
    const bool isReady = g_appLog && g_libLog && g_errorMsg && g_msgFlags == 2;
    return isReady ? 40 + argc : 1;
}

TEST(ZorPreMain, givesTheCommandsStatusOrTellsWhatEndedIt) {
    const Scratch scratch;
    scratch.configureLog(5);
    EXPECT_EQ(run(isSetUp), (Outcome{42, ""}));
    EXPECT_EQ(run([](std::int32_t, char**) {
                  g_allocationsLeft = 0;
                  ::operator delete(::operator new(1));
                  return 0;
              }),
              (Outcome{10, "prog ran out of memory. Halting..\n"}));
    const Outcome thrown = run([](std::int32_t, char**) -> int { throw std::runtime_error("x"); });
    EXPECT_EQ(thrown.status, 114);
    EXPECT_TRUE(thrown.errors.starts_with("prog ended because of a failure")) << thrown.errors;
    EXPECT_EQ(run([](std::int32_t, char**) -> int { throw 1; }), thrown);

    EXPECT_NE(scratch.read("51216-433.log").find("debug 5 zorPreMain:ZorPreMain() Locale changed to "),
              std::string::npos);
    std::vector<std::string> lines = scratch.logLines(ZOR_LIBRARY_ORIGINATOR);
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("debug 5 "); });
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].substr(0, 40), "debug 1 zorPreMain:ZorPreMain() prog ran");
    EXPECT_EQ(lines[1].substr(0, 22), "app 2 - [128:926] prog");
    EXPECT_EQ(lines[2], lines[1]);
}

TEST(ZorPreMain, channelsThatCannotBeOpenedStaySilent) {
    const Scratch scratch("logging.directory = '/dev/null/x'\n");
    EXPECT_EQ(run([](std::int32_t argc, char** argv) {
                  return g_appLog->WriteAppMsg(2, 2, 5) == 1 ? isSetUp(argc, argv) : 1;
              }),
              (Outcome{42, ""}));
}

TEST(ZorPreMain, anAllocationThatFailsBeforeTheCommandRunsHaltsIt) {
    const Scratch scratch;
    scratch.configureLog(5);
    const Outcome halted{114, "prog logging setup exception. Halting..\n"};
    const CommandMain command = [](std::int32_t argc, char** argv) {
        return g_allocationsLeft == NEVER ? isSetUp(argc, argv) : 0;
    };
    int halts = 0;
    Outcome outcome;
    for (long n = 0; (outcome = run(command, n)).status != 0 && n < 1000; ++n) {
        halts += outcome == halted;
        // A channel survives some of them, silent.
        EXPECT_TRUE(outcome == halted || outcome == (Outcome{42, ""})) << n << ": " << outcome.errors;
    }
    EXPECT_EQ(outcome, (Outcome{0, ""}));
    EXPECT_GT(halts, 3);
}

TEST(Zormain, withoutArgumentsTheClientIsMissing) {
    const CommandLog log;
    char name[] = "zorb2v";
    char* argv[] = {name, nullptr};
    EXPECT_EXIT(zormain(1, argv), testing::ExitedWithCode(1), "The option -C is missing");
    EXPECT_EXIT(zormain(0, argv + 1), testing::ExitedWithCode(1), "The option -C is missing");
}

} // namespace
} // namespace Zorvane
