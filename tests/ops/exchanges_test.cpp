// SPDX-License-Identifier: Apache-2.0
#include "ops/FakeZord.h"
#include "ops/client_utils.h"
#include "ops/zorop.h"

#include <fcntl.h>
#include <gmock/gmock.h>

using testing::HasSubstr;

namespace Zorvane {

namespace {

unsigned char xml[] = "<ZorData/>";
constexpr int XML_SIZE = sizeof xml - 1;

std::string dbRequest(int command) {
    return packet(22, i(command) + i(XML_SIZE)) + "<ZorData/>";
}

// One request with one status in reply.
struct Exchange {
    const char* name;
    int (*run)();
    std::string request;
    unsigned replyType;
    std::string replyRest; ///< behind the status
};

const Exchange EXCHANGES[] = {
    {"message", [] { return ZorOps(ZOROP_CREATE, ZOROP_MESSAGE, "alpha", "!", "text"); },
     packet(7, c('!') + s(5) + S("alpha")) + S("text"), 16, ""},
    {"long message",
     [] { return SendMsgRequest(std::string(600, 'c').c_str(), 3, std::string(2000, 't').c_str()); },
     packet(7, c(3) + s(1024) + S(std::string(560, 'c'))) + std::string(1024, 't'), 16, ""},
    {"change by name", [] { return ZorOps(ZOROP_CHANGE, ZOROP_RESTORETASK, "alpha", "ACTIVE", "FORMATING"); },
     packet(26, i(11) + S("alpha") + i(2) + i(5)), 27, ""},
    {"change by number", [] { return ZorOps(ZOROP_CHANGE, ZOROP_DISCOVERTASK, "alpha", "5", "99999999999"); },
     packet(26, i(13) + S("alpha") + i(5) + i(0x7FFFFFFF)), 27, ""},
    {"change mixed",
     [] { return ZorOps(ZOROP_CHANGE, ZOROP_B2VRESTORETASK, std::string("alpha"), "active", 3); },
     packet(26, i(20) + S("alpha") + i(0) + i(3)), 27, ""},
    {"push of strings",
     [] { return ZorOps(ZOROP_PUSH, ZOROP_INFO, std::string("alpha"), "config", "file", xml, XML_SIZE); },
     packet(12, i(XML_SIZE) + S("file") + S("config") + S("alpha")) + "<ZorData/>", 13, ""},
    {"push of texts", [] { return ZorOps(ZOROP_PUSH, ZOROP_INFO, "alpha", "config", "file", xml, 4); },
     packet(12, i(4) + S("file") + S("config") + S("alpha")) + "<Zor", 13, ""},
    {"import of strings",
     [] { return ZorOps(ZOROP_IMPORT, ZOROP_PACKAGE, std::string(600, 'c'), "config", xml, 2, true); },
     packet(17, i(2) + S("config") + S(std::string(511, 'c')) + i(8)) + "<Z", 18, ""},
    {"import of texts", [] { return ZorOps(ZOROP_IMPORT, ZOROP_CONFIG, "alpha", "config", "1234", 2, true); },
     packet(17, i(2) + S("config") + S("alpha") + i(4)) + "12", 18, ""},
    {"update", [] { return ZorOps(ZOROP_UPDATE, ZOROP_DB, xml, XML_SIZE); }, dbRequest(13), 23, i(5)},
    {"delete", [] { return ZorOps(ZOROP_DELETE, ZOROP_DB, "<ZorData/>", XML_SIZE); }, dbRequest(5), 23, i(5)},
    {"pull", [] { return SendPullRequest("/dev/null", "source", "alpha", PULL_REQUEST); },
     packet(14, S("source") + S("alpha")), 15, i(0644) + i(0)},
    {"pull of a procedure",
     [] { return SendPullRequest("/dev/null", "source", "alpha", PULL_PROCEDURE_REQUEST); },
     packet(21, S("source") + S("alpha")), 15, i(0644) + i(0)},
};

// What a method call and a query hand out.
struct Output {
    unsigned char* bytes = nullptr;
    int length = -1;

    [[nodiscard]] std::string text() const {
        return bytes ? std::string(bytes, bytes + length) : "none, " + std::to_string(length);
    }
};

std::pair<int, std::string> database(int command) {
    Output output;
    const int rc = SendDbRequest(command, xml, XML_SIZE, &output.bytes, &output.length);
    const std::unique_ptr<unsigned char[]> owner(output.bytes);
    return {rc, output.text()};
}

std::pair<int, std::string> method(std::string* errorText, const MethodExecute& call = {}) {
    Output output;
    const int rc = ProcessMethodCall(call, &output.bytes, &output.length, errorText);
    const std::unique_ptr<unsigned char, void (*)(void*)> owner(output.bytes, &std::free);
    EXPECT_TRUE(!output.bytes || output.bytes[output.length] == '\0');
    return {rc, output.text()};
}

} // namespace

TEST(exchanges, endWithTheStatusOfTheDaemon) {
    for (const Exchange& exchange : EXCHANGES) {
        const auto reply = [&](unsigned status) {
            return packet(exchange.replyType, c(status) + exchange.replyRest);
        };
        for (const auto& [says, expected] :
             {std::pair(reply(0), 0), std::pair(reply(7), 7), std::pair(reply(200), 200),
              std::pair(std::string(), 200), std::pair(reply(0).substr(0, 4), 200),
              std::pair(packet(30, i(0) + i(0)), 200)}) {
            FakeZord zord(says);
            EXPECT_EQ(exchange.run(), expected) << exchange.name;
            EXPECT_EQ(zord.heardOnce(), exchange.request) << exchange.name;
            EXPECT_EQ(exchange.run(), 200) << "the daemon is gone";
        }
        FakeZord incompatible("", versionReply(2, "7.0", "KVN"));
        EXPECT_EQ(exchange.run(), 204) << exchange.name;
        EXPECT_EQ(incompatible.heardOnce(), "");
    }
}

TEST(SendDbRequest, readsTheAnswersOfQueriesAndInsertsOnly) {
    for (const auto& [command, expected] :
         {std::pair(10, "<rows>"), std::pair(12, "<rows>"), std::pair(11, "none, -1"),
          std::pair(13, "none, -1"), std::pair(5, "none, -1"), std::pair(99, "none, -1")}) {
        FakeZord zord(packet(23, c(0) + i(6)) + "<rows>");
        EXPECT_EQ(database(command), std::pair(0, std::string(expected)));
        EXPECT_EQ(SendDbRequest(command, xml, XML_SIZE, nullptr, nullptr), 0);
    }
}

TEST(SendDbRequest, survivesWhatAPeerSaysOfItsAnswer) {
    for (const auto& [size, expected] :
         {std::pair(0L, 0), std::pair(-1L, 203), std::pair(-0x80000000L, 203), std::pair(0x7FFFFFFFL, 200)}) {
        FakeZord zord(packet(23, c(0) + i(size)) + "the start", COMPATIBLE, "zord", dbRequest(10).size());
        EXPECT_EQ(database(10), std::pair(expected, std::string(size == 0 ? "" : "none, -1")));
        EXPECT_EQ(zord.heardOnce(), dbRequest(10));
    }
    FakeZord zord("", COMPATIBLE, "zord", 30000);
    std::string large(64 << 20, 'x');
    EXPECT_EQ(ZorOps(ZOROP_QUERY, ZOROP_DB, large.c_str(), 64 << 20), 200);
    EXPECT_THAT(zord.log(), HasSubstr("Failed sending XML of 67108864"));
}

TEST(ProcessMethodCall, handsOutWhateverStandsBehindTheReply) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{512}, std::size_t{100'000}}) {
        FakeZord zord(packet(24, i(5) + i(-3)) + std::string(size, 'o'));
        EXPECT_EQ(method(nullptr), std::pair(-3, std::string(size, 'o')));
    }
    FakeZord zord(packet(24, i(0) + i(0)));
    EXPECT_EQ(method(nullptr), std::pair(0, std::string("none, 0")));
    MethodExecute call;
    call.count = 1;
    ParameterWriter(call.parameters).append("`reboot`");
    EXPECT_EQ(method(nullptr, call).first, -1);
    EXPECT_EQ(zord.heard().at(1), "");
}

TEST(ProcessMethodCall, readsTheErrorResponseInFrontOfTheOutput) {
    const std::string document = "<ZorData><ErrorResponse><Id>1</Id><MessageNumber>123456789</MessageNumber>"
                                 "</ErrorResponse></ZorData>";
    const std::string response = packet(28, i(static_cast<long>(document.size()))) + document;
    const std::string reply = packet(0x80 | 24, i(0) + i(7));
    const struct {
        const char* reason;
        std::string says;
        std::pair<int, std::string> expected;
        const char* errorText;
    } cases[] = {
        {"told", reply + response + "output", {7, "output"}, "Message catalog error!"},
        {"success has none", packet(0x80 | 24, i(0) + i(0)) + "output", {0, "output"}, "as it was"},
        {"no flag", packet(24, i(0) + i(7)) + "output", {7, "output"}, "as it was"},
        {"a document that is none", reply + packet(28, i(3)) + "<a>output", {7, "output"}, "as it was"},
        {"a size below 0", reply + packet(28, i(-1)) + "output", {7, "output"}, "as it was"},
        {"a size beyond sense", reply + packet(28, i(0x7FFFFFFF)) + "output", {7, "output"}, "as it was"},
        {"cut off", reply + response.substr(0, 50), {7, "none, 0"}, "as it was"},
        {"no error response", reply, {7, "none, 0"}, "as it was"},
        {"no reply", "", {200, "none, -1"}, "as it was"},
    };
    for (const auto& test : cases) {
        FakeZord zord(test.says);
        std::string errorText = "as it was";
        EXPECT_EQ(method(&errorText), test.expected) << test.reason;
        EXPECT_EQ(errorText, test.errorText) << test.reason;
        EXPECT_EQ(method(nullptr), test.expected) << "read, though nobody wants its text";
    }
}

TEST(SendLogRequest, streamsStandardInputUntilTheProcessEnds) {
    FakeZord zord;
    const std::string text(100'000, 'l');
    zord.scratch().write("input", text);
    const int input = open(zord.scratch().path("input").c_str(), O_RDONLY | O_CLOEXEC);
    const int folder = open("/", O_RDONLY | O_CLOEXEC);
    const auto send = [](int from) {
        const Redirect redirect(STDIN_FILENO, from);
        return SendLogRequest("alpha");
    };
    EXPECT_EXIT(_exit(send(input)), testing::ExitedWithCode(0), "");
    EXPECT_EQ(send(folder), 200);
    close(input);
    close(folder);
    const std::string request = packet(8, S("alpha") + S(""));
    EXPECT_THAT(zord.heard(), testing::ElementsAre(request + text, request));
}

TEST(SendErrRequest, isAlwaysAWholePacket) {
    const std::string start = s(25) + s(4072) + i(9) + i(6) + S("first") + S("second");
    const SocketPair peers;
    {
        const Redirect redirect(STDOUT_FILENO, peers.near());
        EXPECT_EQ(SendErrRequest("first", "second", 9, false), 0);
    }
    EXPECT_EQ(peers.hears(), start + std::string(4072 - start.size(), '\0'));
    FakeZord zord;
    EXPECT_EQ(ZorOps(ZOROP_CREATE, ZOROP_ERROR, "first", std::string("second"), 9, 1), 0);
    EXPECT_EQ(zord.heardOnce(), start + std::string(4072 - start.size(), '\0'));
    EXPECT_EQ(SendErrRequest("first", "second", 9, true), 200) << "the daemon is gone";
}

} // namespace Zorvane
