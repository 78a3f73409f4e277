// SPDX-License-Identifier: Apache-2.0
#include "logging/Trace.h"
#include "suite/Scratch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::StartsWith;
using namespace Zorvane;

namespace {

constexpr int BASE = __LINE__;

int withResult(CZorLog* log, const char* name) {
    Trace trace(log, "Trace_test:withResult()", ", name=", orNull(name));
    if (!name) {
        trace.write(LEVEL_FAILURE, "no name, rc=", 1);
        return trace.leave(1, ", return rc=", 1);
    }
    return trace.leave(0, ", return ZOR_SUCCESS");
}

void withoutResult(CZorLog* log) {
    const ClassTrace trace(log, "Trace_test:withoutResult()");
}

void innermost(CZorLog* log) {
    FineTrace trace(log, "Trace_test:innermost()");
    trace.exitLine(", done");
}

std::string at(const char* text, int offset) {
    return text + std::to_string(BASE + offset);
}

} // namespace

TEST(Trace, linesOfEntryAndExit) {
    const Scratch scratch(6);
    CZorLog log(51216, 433);
    EXPECT_EQ(withResult(&log, "x"), 0);
    EXPECT_EQ(withResult(&log, nullptr), 1);
    withoutResult(&log);
    innermost(&log);
    const std::string entry = at("debug 5 Trace_test:withResult() Entering, line=", 3);
    EXPECT_THAT(scratch.logLines(433),
                ElementsAre(entry + ", name=x",
                            at("debug 5 Trace_test:withResult() Exiting, line=", 8) + ", return ZOR_SUCCESS",
                            entry + ", name=(null)", "debug 1 Trace_test:withResult() no name, rc=1",
                            at("debug 5 Trace_test:withResult() Exiting, line=", 6) + ", return rc=1",
                            at("debug 5 Trace_test:withoutResult() Entered, line=", 12),
                            at("debug 5 Trace_test:withoutResult() Exiting, line=", 12),
                            at("debug 6 Trace_test:innermost() Entering, line=", 16),
                            at("debug 6 Trace_test:innermost() Exiting, line=", 17) + ", done"));
}

TEST(Trace, isSilentBelowItsLevelAndWithoutAChannel) {
    const Scratch scratch(4);
    CZorLog log(51216, 433);
    withResult(&log, nullptr);
    withoutResult(&log);
    innermost(&log);
    EXPECT_EQ(withResult(nullptr, nullptr), 1);
    Trace trace(&log, "Trace_test:diag()");
    g_msgFlags = 2;
    trace.diag(31, "/a/path");
    EXPECT_THAT(scratch.logLines(433),
                ElementsAre("debug 1 Trace_test:withResult() no name, rc=1",
                            StartsWith("diag 1 Trace_test:diag() [433:31] The configuration "
                                       "file \"/a/path\"")));
}
