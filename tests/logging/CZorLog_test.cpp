// SPDX-License-Identifier: Apache-2.0
#include "logging/CZorLog.h"
#include "suite/Scratch.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using Zorvane::CZorLog;

namespace {

int cellsUntilFailure = -1; ///< -1: none fails
bool libraryThrows = false;
mrthLogResult_t libraryResult = 0;

} // namespace

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (cellsUntilFailure >= 0 && size == sizeof(mrthLisAny_t) && cellsUntilFailure-- == 0)
        return nullptr;
    return __real_calloc(count, size);
}
mrthLogResult_t __real_mrthLogMsg(mrthLogHandle_t* handle, mrthLogFlags_t flags, mrthLogMsg_t* message);
mrthLogResult_t __wrap_mrthLogMsg(mrthLogHandle_t* handle, mrthLogFlags_t flags, mrthLogMsg_t* message) {
    if (libraryThrows)
        throw std::runtime_error("the library fails");
    return libraryResult != 0 ? libraryResult : __real_mrthLogMsg(handle, flags, message);
}
}

namespace {

class LogChannel : public testing::Test {
  protected:
    ~LogChannel() override {
        cellsUntilFailure = -1;
        libraryThrows = false;
        libraryResult = 0;
    }
    [[nodiscard]] std::vector<std::string> lines() const { return m_scratch.logLines(433); }

    Scratch m_scratch{4};
    CZorLog log{51216, 433};
};

} // namespace

TEST_F(LogChannel, joinsValuesOfAllTypes) {
    ASSERT_EQ(log.openStatus(), 0);
    const char* null = nullptr;
    const unsigned char bytes[] = "bytes";
    EXPECT_EQ(
        log.WriteDebugMsg(0, 1, "a:b()", "rc=", -3, ", id=", ~0ULL, ", ", std::string("text"), ", ", bytes),
        0);
    EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", "x", null, "", std::string(), nullptr, "y", true), 0);
    EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", INT64_MIN), 0);
    EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", null), 0);
    EXPECT_THAT(lines(),
                ElementsAre("debug 1 a:b() rc=-3, id=18446744073709551615, text, bytes", "debug 1 a:b() xy1",
                            "debug 1 a:b() -9223372036854775808", "debug 1 a:b() "));
}

TEST_F(LogChannel, filtersByTheLevelOfTheMoment) {
    EXPECT_EQ(log.WriteDebugMsg(0, 5, "a:b()", "five"), 0) << "filtered out is success";
    EXPECT_EQ(log.WriteDebugMsg(0, 4, "a:b()", "four"), 0);
    EXPECT_EQ(log.WriteDiagMsg(2, 2, "a:b()", 309), 0);
    m_scratch.configureLog(5, 2);
    log.WriteDebugMsg(0, 5, "a:b()", "now");
    log.WriteDiagMsg(2, 2, "a:b()", 26);
    EXPECT_THAT(lines(), ElementsAre("debug 4 a:b() four", "debug 5 a:b() now",
                                     StartsWith("diag 2 a:b() [433:26] A")));
    EXPECT_EQ(log.getDebugLevel(), 4) << "the level as it was configured at the start";
}

TEST_F(LogChannel, catalogueArgumentsKeepTheirPlaces) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(log.WriteAppMsg(2, 2, 14, "", std::string("current")), 0);
    EXPECT_EQ(log.WriteAppMsg(2, 2, 11, 200), 0);
    EXPECT_EQ(log.WriteAppMsg(2, 2, 11, 200U), 0);
    EXPECT_EQ(log.WriteAppMsg(2, 2, 17, nullptr), 0);
    const std::string shown = testing::internal::GetCapturedStderr();
    EXPECT_THAT(shown, HasSubstr("Client \"\" with its configuration \"current\""));
    EXPECT_THAT(shown, HasSubstr("no configuration \"\""));
    EXPECT_THAT(lines(), ElementsAre(StartsWith("app 2 - [433:14] "), HasSubstr("(status 200)"),
                                     HasSubstr("(status 200)"), StartsWith("app 2 - [433:17] ")));
}

TEST_F(LogChannel, failedArgumentDropsTheMessageAndNothingElse) {
    for (int failing = 0; failing < 3; ++failing) {
        cellsUntilFailure = failing;
        EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", "one", 2, "three"), 3);
        cellsUntilFailure = failing;
        EXPECT_EQ(log.WriteAppMsg(2, 2, 14, "client", 5U, "more"), 3);
        cellsUntilFailure = failing;
        EXPECT_EQ(log.WriteDiagMsg(2, 1, "a:b()", 14, "client", "config", 7), 3);
    }
    EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", "next"), 0);
    EXPECT_THAT(lines(), ElementsAre("debug 1 a:b() next"));
}

TEST_F(LogChannel, whatTheLibraryDoesStaysInTheStatement) {
    libraryResult = 77;
    EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", "x"), 77);
    libraryThrows = true;
    EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", "x"), 3);
    EXPECT_EQ(log.WriteDiagMsg(0, 1, "a:b()", 26), 3);
    EXPECT_EQ(log.WriteAppMsg(0, 2, 26), 3);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(LogChannel, closedChannelIsSilent) {
    m_scratch.configure("[logging]\ndirectory = \"" + m_scratch.path("kvn.toml") + "\"\n");
    CZorLog closed(51216, 128, 433);
    EXPECT_NE(closed.openStatus(), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(closed.WriteDebugMsg(0, 1, "a:b()", "x"), 1);
    EXPECT_EQ(closed.WriteDiagMsg(0, 1, "a:b()", 26), 1);
    EXPECT_EQ(closed.WriteAppMsg(2, 2, 926, "zorb2v"), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(LogChannel, masterSwitchAndMirror) {
    CZorLog other(51216, 128, 433);
    other.startMirror("second");
    log.copyMirror(other);
    other.stopMirror();
    EXPECT_TRUE(log.mirrorEnabled());
    EXPECT_FALSE(other.mirrorEnabled());
    EXPECT_EQ(log.mirrorName(), "second");
    log.disable();
    EXPECT_EQ(log.WriteDebugMsg(0, 1, "a:b()", "x"), 1);
    EXPECT_EQ(log.WriteDiagMsg(0, 1, "a:b()", 26), 1);
    EXPECT_EQ(log.WriteAppMsg(0, 2, 26), 1);
    log.enable();
    EXPECT_EQ(log.WriteDiagMsg(0, 1, "a:b()", 26), 0);
    EXPECT_THAT(lines(), SizeIs(1));
}

TEST_F(LogChannel, listenerHearsOfWrittenMessagesThatAskForIt) {
    struct Counter final : Mirathi::Logging::Listener {
        int heard = 0;
        void notify(const mrthLogMsg_t& message, const mrthLogMsg_t&) override { heard += message.level; }
    } counter;
    Mirathi::Logging::Log<false> channel(51216, 433, 0);
    channel.attach(&counter);
    const Mirathi::L10N::LogValue values[] = {"x"};
    EXPECT_EQ(channel.WriteDebugMsg(0, 1, "a:b()", values), 0);
    EXPECT_EQ(channel.WriteDebugMsg(MRTH_LOG_NOTIFY, 2, "a:b()", values), 0);
    libraryResult = 1;
    channel.WriteDebugMsg(MRTH_LOG_NOTIFY, 4, "a:b()", values);
    EXPECT_EQ(counter.heard, 2);
}
