// SPDX-License-Identifier: Apache-2.0
#include "ops/FakeZord.h"
#include "ops/client_utils.h"
#include "ops/zorop.h"

#include <functional>

#include <fcntl.h>
#include <gmock/gmock.h>

using testing::HasSubstr;

namespace Zorvane {

namespace {

const unsigned char* bytesOf(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

const std::string XML = "<ZorData/>";

std::string dbRequest(int command) {
    return packet(22, i(command) + i(static_cast<long>(XML.size()))) + XML;
}

// A query's answer, in the form that its caller frees.
struct Answer {
    unsigned char* bytes = nullptr;
    int length = -1;
    Answer() = default;
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer() { delete[] bytes; }
    [[nodiscard]] std::string text() const {
        return bytes ? std::string(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length))
                     : "";
    }
};

// A method's, which comes from malloc.
struct Output {
    unsigned char* bytes = nullptr;
    int length = -1;
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() { std::free(bytes); }
};

int query(Answer& answer) {
    return SendDbRequest(ZOROP_QUERY, bytesOf(XML.c_str()), static_cast<int>(XML.size()), &answer.bytes,
                         &answer.length);
}

const std::string ERROR_XML = "<ZorData><ErrorResponse><Id>1</Id><ReturnCode>7</ReturnCode>"
                              "<OriginatorId>128</OriginatorId><MessageNumber>750</MessageNumber>"
                              "</ErrorResponse></ZorData>";

} // namespace

// One request with one status in reply.
struct Exchange {
    const char* name;
    std::function<int()> run;
    std::string request;
    unsigned replyType;
    std::string replyRest; ///< behind the status
};

class exchanges : public testing::TestWithParam<Exchange> {};

TEST_P(exchanges, endWithTheStatusOfTheDaemon) {
    const Exchange& exchange = GetParam();
    const std::string rest = exchange.replyRest;
    const struct {
        const char* reason;
        std::string reply;
        int expected;
    } cases[] = {
        {"success", packet(exchange.replyType, c(0) + rest), 0},
        {"the daemon's status", packet(exchange.replyType, c(7) + rest), 7},
        {"a status that looks like ours", packet(exchange.replyType, c(200) + rest), 200},
        {"no reply", "", 200},
        {"half a reply", packet(exchange.replyType, c(0) + rest).substr(0, 4), 200},
        {"another reply", packet(30, i(0) + i(0)), 200},
        {"no version", "-", 204},
    };
    for (const auto& test : cases) {
        FakeZord zord(test.expected == 204 ? "" : test.reply, test.expected == 204 ? test.reply : COMPATIBLE);
        EXPECT_EQ(exchange.run(), test.expected) << test.reason;
        EXPECT_EQ(zord.heardOnce(), test.expected == 204 ? "" : exchange.request) << test.reason;
    }
    FakeZord zord;
    zord.heard();
    EXPECT_EQ(exchange.run(), 200) << "the daemon is gone";
}

INSTANTIATE_TEST_SUITE_P(
    ops, exchanges,
    testing::Values(
        Exchange{"message", [] { return SendMsgRequest("alpha", 3, "a text"); },
                 packet(7, c(3) + s(7) + S("alpha")) + S("a text"), 16, ""},
        Exchange{
            "longMessage",
            [] { return SendMsgRequest(std::string(600, 'c').c_str(), 3, std::string(2000, 't').c_str()); },
            packet(7, c(3) + s(1024) + S(std::string(560, 'c'))) + std::string(1024, 't'), 16, ""},
        Exchange{"change", [] { return SendChangeRequest(13, "alpha", 2, 6); },
                 packet(26, i(13) + S("alpha") + i(2) + i(6)), 27, ""},
        Exchange{"push", [] { return SendPushRequest("alpha", "config", "file", bytesOf("12345"), 5); },
                 packet(12, i(5) + S("file") + S("config") + S("alpha")) + "12345", 13, ""},
        Exchange{"import",
                 [] {
                     return SendImportRequest(8, std::string(600, 'c').c_str(), "config", bytesOf("12"), 2,
                                              true);
                 },
                 packet(17, i(2) + S("config") + S(std::string(511, 'c')) + i(8)) + "12", 18, ""},
        Exchange{"update", [] { return SendDbRequest(13, bytesOf(XML.c_str()), 10, nullptr, nullptr); },
                 dbRequest(13), 23, i(5)},
        Exchange{"pull", [] { return SendPullRequest("/dev/null", "source", "alpha", PULL_REQUEST); },
                 packet(14, S("source") + S("alpha")), 15, i(0644) + i(0)},
        Exchange{"pullProcedure",
                 [] { return SendPullRequest("/dev/null", "source", "alpha", PULL_PROCEDURE_REQUEST); },
                 packet(21, S("source") + S("alpha")), 15, i(0644) + i(0)}),
    [](const auto& test) { return test.param.name; });

TEST(SendDbRequest, readsTheAnswersOfQueriesAndInsertsOnly) {
    for (const int command : {ZOROP_QUERY, ZOROP_INSERT}) {
        FakeZord zord(packet(23, c(0) + i(6)) + "<rows>");
        Answer answer;
        EXPECT_EQ(SendDbRequest(command, bytesOf(XML.c_str()), 10, &answer.bytes, &answer.length), 0);
        EXPECT_EQ(answer.text(), "<rows>");
        EXPECT_EQ(SendDbRequest(command, bytesOf(XML.c_str()), 10, nullptr, nullptr), 0);
    }
    for (const int command : {11, 13, 5, 0, 99}) {
        FakeZord zord(packet(23, c(0) + i(6)) + "<rows>");
        Answer answer;
        EXPECT_EQ(SendDbRequest(command, bytesOf(XML.c_str()), 10, &answer.bytes, &answer.length), 0);
        EXPECT_EQ(answer.bytes, nullptr);
        EXPECT_EQ(answer.length, -1);
    }
}

TEST(SendDbRequest, survivesWhatAPeerSaysOfItsAnswer) {
    {
        FakeZord zord(packet(23, c(0) + i(0)));
        Answer answer;
        EXPECT_EQ(query(answer), 0);
        EXPECT_EQ(answer.length, 0);
    }
    for (const long size : {-1L, -0x80000000L}) {
        FakeZord zord(packet(23, c(0) + i(size)) + "rows");
        Answer answer;
        EXPECT_EQ(query(answer), 203);
        EXPECT_EQ(answer.bytes, nullptr);
        EXPECT_THAT(zord.log(), HasSubstr("Failed getting buffer for request."));
    }
    FakeZord zord(packet(23, c(0) + i(0x7FFFFFFF)) + "only the start", COMPATIBLE, "zord",
                  dbRequest(10).size());
    Answer answer;
    EXPECT_EQ(query(answer), 200);
    EXPECT_EQ(answer.bytes, nullptr);
    EXPECT_THAT(zord.log(), HasSubstr("Failed getting output buffer from request."));
}

TEST(SendDbRequest, refusesWhatItCanNotSend) {
    FakeZord zord("", COMPATIBLE, "zord", 30000);
    EXPECT_EQ(SendDbRequest(-1, bytesOf(XML.c_str()), 10, nullptr, nullptr), 203);
    EXPECT_EQ(SendDbRequest(10, nullptr, 10, nullptr, nullptr), 203);
    const std::string large(64 << 20, 'x');
    EXPECT_EQ(SendDbRequest(10, bytesOf(large.c_str()), static_cast<int>(large.size()), nullptr, nullptr),
              200);
    EXPECT_THAT(zord.log(), HasSubstr("Failed sending XML of 67108864"));
    EXPECT_EQ(zord.heard().size(), 1);
}

TEST(ProcessMethodCall, handsOutWhateverStandsBehindTheReply) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{512}, std::size_t{100'000}}) {
        FakeZord zord(packet(24, i(5) + i(-3)) + std::string(size, 'o'));
        Output output;
        std::string errorText = "as it was";
        EXPECT_EQ(ProcessMethodCall(MethodExecute(), &output.bytes, &output.length, &errorText), -3);
        ASSERT_TRUE(output.bytes);
        EXPECT_EQ(output.length, size);
        EXPECT_EQ(reinterpret_cast<char*>(output.bytes), std::string(size, 'o'));
        EXPECT_EQ(errorText, "as it was") << "no flag, no error response";
    }
    FakeZord zord(packet(24, i(0) + i(0)));
    Output output;
    EXPECT_EQ(ProcessMethodCall(MethodExecute(), &output.bytes, &output.length, nullptr), 0);
    EXPECT_EQ(output.bytes, nullptr);
    EXPECT_EQ(output.length, 0);
}

TEST(ProcessMethodCall, readsTheErrorResponseInFrontOfTheOutput) {
    const std::string response = packet(28, i(static_cast<long>(ERROR_XML.size()))) + ERROR_XML;
    const struct {
        const char* reason;
        std::string reply;
        int expected;
        const char* output;
        const char* errorText;
    } cases[] = {
        {"told", packet(0x80 | 24, i(0) + i(7)) + response + "output", 7, "output", "Message catalog error!"},
        {"success has none", packet(0x80 | 24, i(0) + i(0)) + "output", 0, "output", "as it was"},
        {"a document that is none", packet(0x80 | 24, i(0) + i(7)) + packet(28, i(3)) + "<a>output", 7,
         "output", "as it was"},
        {"a size below 0", packet(0x80 | 24, i(0) + i(7)) + packet(28, i(-1)) + "output", 7, "output",
         "as it was"},
        {"a size beyond sense", packet(0x80 | 24, i(0) + i(7)) + packet(28, i(0x7FFFFFFF)) + "output", 7,
         "output", "as it was"},
        {"cut off", packet(0x80 | 24, i(0) + i(7)) + response.substr(0, 50), 7, "", "as it was"},
        {"no error response", packet(0x80 | 24, i(0) + i(7)), 7, "", "as it was"},
        {"no reply", "", 200, "", "as it was"},
    };
    for (const auto& test : cases) {
        FakeZord zord(test.reply);
        Output output;
        std::string errorText = "as it was";
        EXPECT_EQ(ProcessMethodCall(MethodExecute(), &output.bytes, &output.length, &errorText),
                  test.expected);
        EXPECT_STREQ(output.bytes ? reinterpret_cast<char*>(output.bytes) : "", test.output) << test.reason;
        EXPECT_EQ(errorText, test.errorText) << test.reason;
    }
    FakeZord zord(packet(0x80 | 24, i(0) + i(7)) + response + "output");
    Output output;
    EXPECT_EQ(ProcessMethodCall(MethodExecute(), &output.bytes, &output.length, nullptr), 7);
    EXPECT_EQ(output.length, 6) << "read, though nobody wants its text";
}

TEST(ProcessMethodCall, sendsNothingThatAShellWouldRun) {
    FakeZord zord(packet(24, i(0) + i(0)));
    MethodExecute call;
    call.count = 1;
    ParameterWriter(call.parameters).append("`reboot`");
    Output output;
    EXPECT_EQ(ProcessMethodCall(call, &output.bytes, &output.length, nullptr), -1);
    EXPECT_EQ(zord.heardOnce(), "");
}

TEST(SendLogRequest, streamsStandardInputUntilTheProcessEnds) {
    FakeZord zord;
    const std::string text(100'000, 'l');
    zord.scratch().write("input", text);
    const int input = open(zord.scratch().path("input").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EXIT(
        {
            const Redirect redirect(STDIN_FILENO, input);
            _exit(SendLogRequest("alpha"));
        },
        testing::ExitedWithCode(0), "");
    close(input);
    EXPECT_EQ(zord.heardOnce(), packet(8, S("alpha") + S("")) + text);
}

TEST(SendLogRequest, fails) {
    FakeZord zord;
    const Redirect redirect(STDIN_FILENO, -1);
    close(STDIN_FILENO);
    EXPECT_EQ(SendLogRequest("alpha"), 200);
    EXPECT_EQ(zord.heardOnce(), packet(8, S("alpha") + S("")));
}

TEST(SendErrRequest, isAlwaysAWholePacket) {
    const std::string start = s(25) + s(4072) + i(9) + i(6) + S("first") + S("second");
    {
        FakeZord zord;
        EXPECT_EQ(SendErrRequest("first", "second", 9, true), 0);
        EXPECT_EQ(zord.heardOnce(), start + std::string(4072 - start.size(), '\0'));
    }
    const SocketPair peers;
    {
        const Redirect redirect(STDOUT_FILENO, peers.near());
        EXPECT_EQ(SendErrRequest("first", "second", 9, false), 0);
    }
    EXPECT_EQ(peers.hears().substr(0, start.size()), start);
    EXPECT_EQ(SendErrRequest("first", "second", 9, true), 200) << "no daemon";
}

TEST(SendChangeRequest, takesTasksOnly) {
    FakeZord zord;
    EXPECT_EQ(SendChangeRequest(11, nullptr, 1, 1), 203);
    EXPECT_EQ(SendChangeRequest(9, "alpha", 1, 1), 203);
    EXPECT_EQ(SendChangeRequest(20, "alpha", -1, 1), 203);
    EXPECT_EQ(SendChangeRequest(20, "alpha", 1, -1), 203);
    EXPECT_TRUE(zord.heard().empty());
}

} // namespace Zorvane
