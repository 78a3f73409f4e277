// SPDX-License-Identifier: Apache-2.0
#include "logging/CErrorMsg.h"
#include "logging/CZorLog.h"
#include "logging/getMessage.h"
#include "suite/Scratch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace Zorvane;

TEST(CErrorMsg, errorStrings) {
    const Scratch scratch;
    struct Case {
        int originator;
        int number;
        std::vector<std::string> parameters;
        const char* text; ///< a part of the text; "" is the whole
    };
    const Case cases[] = {
        {433, -1, {"a"}, ""},
        {433, 26, {}, "A virtual machine of that name exists already."},
        {433, 14, {"alpha", "current"}, "Client \"alpha\" with its configuration \"current\""},
        {128,
         593,
         {"dup2", "stdout", "Bad file descriptor", "4", "5"},
         "dup2 failed for stdout: Bad file descriptor."},
        {433, 14, {"1", "2", "3", "4", "5", "6"}, "More parameters are requested than the provided number"},
        {433, 14, {"a\nb\x1b[2J"}, "\"a\\nb\\x1b[2J\""},
        {433, 2999, {}, "Message catalog error!"},
        {-5, 26, {}, "Message catalog error!"},
        {433, 0x7fffffff, {"x"}, "Message catalog error!"},
    };
    for (const Case& c : cases) {
        CErrorMsg error;
        error.setMsg(7, c.number);
        error.setOriginatorId(c.originator);
        for (const std::string& parameter : c.parameters)
            error.setMessageNumber(parameter);
        const std::string text = error.getErrorString();
        EXPECT_EQ(text.empty(), c.text[0] == '\0') << text;
        EXPECT_THAT(text, HasSubstr(c.text));
        EXPECT_EQ(error.getReturnCode(), 7);
    }
}

TEST(CErrorMsg, aNewMessageStartsFromNothing) {
    struct Derived : CErrorMsg {
        int resets = 0;
        void reset() override {
            CErrorMsg::reset();
            ++resets;
        }
    } error;
    error.setOriginatorId(433);
    error.setMessageNumber("parameter");
    error.setMessage("text");
    error.setMsg(5, 17);
    EXPECT_EQ(error.resets, 1) << "through the derived class";
    EXPECT_THAT(error.getParameters(), IsEmpty());
    EXPECT_EQ(error.getMessage(), "");
    EXPECT_EQ(error.getOriginatorId(), 119);
    EXPECT_EQ(error.getMessageNumber(), 17);
    error.reset();
    EXPECT_EQ(error.getReturnCode(), 1);
    EXPECT_EQ(error.getMessageNumber(), -1);
}

TEST(GetMessage, missingCatalogueThrowsAndIsTraced) {
    const Scratch scratch(5);
    CZorLog log(51216, 128, 433);
    g_libLog = &log;
    scratch.write("kvn.toml",
                  scratch.read("kvn.toml") + "[catalog]\ndirectory = \"" + scratch.path("none") + "\"\n");
    const std::vector<std::string> parameters = {"a"};
    EXPECT_THROW(getMessage(433, 17, parameters), std::runtime_error);
    mrthLisArgs_t arguments{};
    EXPECT_THROW(GetQuULMessageBottom(433, 17, MRTH_LIS_NO_MEMORY, arguments), std::runtime_error);
    CErrorMsg error;
    error.setMsg(1, 17);
    error.setMessageNumber("a");
    EXPECT_EQ(error.getErrorString(), "Message catalog error!");
    g_libLog = nullptr;
    const auto lines = scratch.logLines(128);
    EXPECT_THAT(lines, Contains(HasSubstr(
                           "message catalog failure: mrthLis(mssgId=17) returned status No such file")));
    EXPECT_THAT(lines, Contains(HasSubstr("returned status Cannot allocate memory")));
    EXPECT_THAT(lines, Contains(HasSubstr("Reveived 1 parameters")));
}
