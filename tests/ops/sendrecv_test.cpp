// SPDX-License-Identifier: Apache-2.0
#include "ops/FakeZord.h"
#include "ops/client_utils.h"
#include "ops/sendrecv.h"
#include "ops/zorop.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace Zorvane {

namespace {

// What RecvPacket makes of a peer's words that it expects to be a version reply.
int receive(const std::string& bytes, VersionReply& reply) {
    const SocketPair peers;
    peers.says(bytes);
    return RecvPacket(peers.near(), reply, VersionReply::MaxSize);
}

int connectTo() {
    int descriptor = -1;
    const int rc = SockConnect(&descriptor);
    if (rc == 0)
        close(descriptor);
    else
        EXPECT_EQ(descriptor, -1);
    return rc;
}

} // namespace

TEST(sendrecv, validatesInput) {
    const std::pair<const char*, int> cases[] = {
        {"", 0},
        {"plain text", 0},
        {"$HOME", 0},
        {"cost $ 5 (net)", 0},
        {"(a) \"b\" *", 0},
        {"C:\\dir", 0},
        {"a`b", -2},
        {"`", -2},
        {"$(id)", -2},
        {"x$  (id)", -2},
        {"\\\"", -2},
        {"\\ \"", -2},
        {"$ $(", 0},
        {"$$(", 0},
        {"$$$(", -2},
        {"\\\\\"", 0},
        {"$ ", 0},
        {"$\t(id)", -2},
        {nullptr, 0},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ValidateInput(text), expected) << (text ? text : "null");
}

TEST(sendrecv, refusesBrokenPackets) {
    const std::string good = versionReply(1, "7.0", "KVN");
    const struct {
        const char* reason;
        std::string bytes;
        int expected;
    } cases[] = {
        {"nothing", "", -1},
        {"half a header", good.substr(0, 3), -1},
        {"closed after the header", good.substr(0, 4), -1},
        {"closed in the body", good.substr(0, 9), -1},
        {"another type", packet(23, c(0) + i(0)), -1},
        {"a type that does not exist", packet(31, c(0)), -1},
        {"a type beyond the flag", packet(0x100 | 11, c(0)), -1},
        {"whole", good, 13},
        {"the flag is ignored", packet(0x80 | 11, good.substr(4)), 13},
        {"a length below the header: the fields are zero", s(11) + s(3), 7},
    };
    for (const auto& test : cases) {
        VersionReply reply;
        EXPECT_EQ(receive(test.bytes, reply), test.expected) << test.reason;
    }
}

TEST(sendrecv, aPacketIsCutAtTheMaximum) {
    const SocketPair peers;
    peers.says(packet(11, c(1) + std::string(4000, 'v')));
    VersionReply reply;
    EXPECT_EQ(RecvPacket(peers.near(), reply, VersionReply::MaxSize), 4 + 1 + 34 + 1);
    EXPECT_EQ(reply.version.c_str(), std::string(33, 'v')) << "longer than its slot, and whole";
    EXPECT_STREQ(reply.esmType.c_str(), "");
    EXPECT_EQ(reply.header.len, 4005);
    std::string rest(8192, '\0');
    EXPECT_EQ(ReadN(peers.near(), rest.data(), 3967), 3967) << "what is behind it stays";
    EXPECT_EQ(ReadN(peers.near(), rest.data(), 1), 0);
}

TEST(sendrecv, textsThatFillThePacketStayInTheirRecord) {
    const std::string longest(4000, 'n');
    SocketPair peers;
    peers.says(packet(14, S(longest) + S("client")), false);
    PullRequest request;
    EXPECT_EQ(RecvPacket(peers.near(), request, PACKET_SIZE), 4 + 4001 + 7);
    EXPECT_EQ(request.source.c_str(), longest);
    EXPECT_STREQ(request.client.c_str(), "client");
    // A length beyond any buffer, and no end in any text.
    peers.says(s(12) + s(0xFFFF) + std::string(0xFFFF, 'x'), false);
    AnyPacket any;
    EXPECT_EQ(RecvPacket(peers.near(), any), -1);
}

TEST(sendrecv, methodParametersAreCheckedInBothDirections) {
    const SocketPair peers;
    MethodExecute call;
    ParameterWriter writer(call.parameters);
    writer.append("good");
    writer.append("$(bad)");
    call.count = 1;
    EXPECT_GT(SendPacket(peers.near(), call), 0) << "only the counted ones are looked at";
    EXPECT_EQ(peers.hears(), packet(9, s(0) + s(0) + s(1) + S("good") + S("$(bad)") + S("")));
    call.count = 2;
    EXPECT_EQ(SendPacket(peers.near(), call), -2);
    EXPECT_EQ(peers.hears(), "");
    peers.says(packet(0x80 | 9, s(9) + s(9) + s(2) + S("good") + S("`bad`") + S("")), false);
    EXPECT_EQ(RecvPacket(peers.near(), call, PACKET_SIZE), -2);
    peers.says(packet(9, s(9) + s(9) + s(0xFFFF) + S(std::string(4000, 'a')) + S("")), false);
    EXPECT_EQ(RecvPacket(peers.near(), call, PACKET_SIZE), 10 + 4001);
}

TEST(sendrecv, packetsWithoutARecordAreNotSent) {
    const SocketPair peers;
    EXPECT_EQ(SendPacket(peers.near(), PacketHeader{NO_PACKET, 4}), -1);
    EXPECT_EQ(SendPacket(peers.near(), PacketHeader{31, 4}), -1);
    EXPECT_EQ(SendPacket(-1, DbReply()), -1);
    EXPECT_EQ(peers.hears(), "");
    EXPECT_EQ(ReadN(peers.near(), nullptr, 0), 0);
    EXPECT_EQ(ReadN(peers.near(), nullptr, -4), -4);
    EXPECT_EQ(PlatformCloseSocketCommon(-1), 1);
}

TEST(SockConnect, asksTheConfigurationForTheMasterOnce) {
    FakeZord zord;
    EXPECT_EQ(connectTo(), 0);
    EXPECT_EQ(g_masterServerName, "127.0.0.1");
    g_masterServerName = "no-such-host.invalid";
    EXPECT_EQ(connectTo(), 200);
    ClearMasterServerName();
    EXPECT_EQ(connectTo(), 0);
    EXPECT_THAT(zord.heard(), testing::ElementsAre("", ""));
    EXPECT_THAT(zord.log(), HasSubstr("kvlink_connect_to_service()  failed, rc = 26"));
}

TEST(SockConnect, failsWithoutAService) {
    FakeZord zord;
    EXPECT_EQ(SockConnect(nullptr), 200);
    for (const char* service : {static_cast<const char*>(nullptr), "zor", "ZORD", "zorbd"}) {
        g_service = service;
        EXPECT_EQ(connectTo(), 200);
    }
    g_service = ZOR_SERVICE;
    zord.scratch().configure("master = {servers = []}\nlogging.directory = '" + zord.scratch().path("") +
                             "'\n");
    ClearMasterServerName();
    EXPECT_EQ(connectTo(), 200);
    EXPECT_THAT(zord.log(), HasSubstr("Null server name, exiting, line="));
    EXPECT_TRUE(zord.heard().empty());
}

TEST(SockConnect, theBootServerIsNamedByTheProgram) {
    FakeZord zorbd("", COMPATIBLE, "zorbd");
    g_service = ZOR_BOOT_SERVICE;
    EXPECT_EQ(SetBootServerName(nullptr), 1);
    EXPECT_EQ(connectTo(), 200);
    EXPECT_EQ(SetBootServerName("no-such-host.invalid"), 0);
    EXPECT_EQ(SetBootServerName("127.0.0.1"), 0);
    EXPECT_EQ(connectTo(), 0);
}

TEST(SockConnect, checksTheDaemonsVersion) {
    const struct {
        std::string reply;
        int expected;
        const char* log;
    } cases[] = {
        {versionReply(1, "1.0", "XYZ"), 0, ""},
        {versionReply(0, "7.0", "KVN"), 0, ""},
        {versionReply(0, "6.5.0", "KVN"), 0, ""},
        {versionReply(9, "6.5.0.1", "KVN"), 0, ""},
        {versionReply(0, "6.4", "KVN"), 204, "zord version 6.4 is incompatible with zorc version 6.5.0"},
        {versionReply(0, "", "KVN"), 204, "zord version  is incompatible"},
        {versionReply(2, "7.0", "KVN"), 204, "zord version 7.0 is incompatible with zorc version 6.5.0"},
        {versionReply(0, "7.0", "XYZ"), 204, "zord ESM type XYZ is incompatible with zorc ESM type KVN"},
        {versionReply(0, "7.0", "KVNX"), 204, "zord ESM type KVNX"},
        {packet(23, c(0) + i(0)), 204, "cannot receive VERSION_REPLY"},
        {"", 204, "cannot receive VERSION_REPLY"},
    };
    for (const auto& test : cases) {
        FakeZord zord("", test.reply);
        EXPECT_EQ(connectTo(), test.expected) << test.reply;
        EXPECT_THAT(zord.log(), HasSubstr(test.log));
        EXPECT_EQ(zord.heardOnce(), "");
    }
}

TEST(SockConnect, securityThatCanNotBeHadIsAFailure) {
    for (const char* mode : {"required", "allowed"}) {
        FakeZord zord("", COMPATIBLE, "zord", 0, mode);
        EXPECT_EQ(connectTo(), 205);
        EXPECT_EQ(zord.heardOnce(), "bad opening: 0 0\n") << "the peer gets its opening all the same";
        EXPECT_THAT(zord.log(), HasSubstr("defaulting to QuSS Prohibited"));
    }
}

} // namespace Zorvane
