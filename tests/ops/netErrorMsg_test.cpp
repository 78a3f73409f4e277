// SPDX-License-Identifier: Apache-2.0
#include "model/CZor.h"
#include "model/task_records.h"
#include "ops/Wire.h"
#include "ops/netErrorMsg.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace Zorvane {

namespace {

void fill(CErrorMsg& message, const std::vector<std::string>& parameters) {
    message.setMsg(42, 610);
    message.setOriginatorId(128);
    for (const std::string& parameter : parameters)
        message.setMessageNumber(parameter);
}

std::string errorPacket(const std::string& xml) {
    return packet(28, i(static_cast<long>(xml.size()))) + xml;
}

} // namespace

TEST(CNetErrorMsg, travels) {
    for (const std::vector<std::string>& parameters :
         {std::vector<std::string>{}, {"one"}, {"<&>", "", "zwölf"}, {"1", "2", "3", "4", "5", "6"}}) {
        const SocketPair peers;
        CNetErrorMsg sent;
        fill(sent, parameters);
        EXPECT_EQ(sent.sendMessage(peers.near()), 0);
        const std::string bytes = peers.hears();
        peers.says(bytes);
        CNetErrorMsg received;
        received.setMessageNumber("of an earlier message");
        EXPECT_EQ(received.receiveMessage(peers.near()), 0);
        EXPECT_EQ(received.getReturnCode(), 42);
        EXPECT_EQ(received.getOriginatorId(), 128);
        EXPECT_EQ(received.getMessageNumber(), 610);
        EXPECT_EQ(received.getParameters(), parameters);
        EXPECT_EQ(bytes, errorPacket(bytes.substr(8)));
    }
}

TEST(CNetErrorMsg, isRowsOfADocument) {
    CNetErrorMsg message;
    CZor none;
    message.serializeToData(none);
    EXPECT_TRUE(none.m_vErrorResponseArgument.empty());
    CZor document;
    fill(message, {"a", "b"});
    message.serializeToData(document);
    ASSERT_EQ(document.m_vErrorResponse.size(), 1);
    EXPECT_EQ(document.m_vErrorResponse.front()->getId(), 1);
    EXPECT_EQ(document.m_vErrorResponse.front()->getOriginatorLocale(), "");
    ASSERT_EQ(document.m_vErrorResponseArgument.size(), 2);
    EXPECT_EQ(document.m_vErrorResponseArgument.back()->getId(), 2);
    EXPECT_EQ(document.m_vErrorResponseArgument.back()->getData(), "b");

    document.m_vErrorResponse.front()->setOriginatorLocale("the peer's own words");
    message.serializeFromData(document);
    EXPECT_EQ(message.getMessage(), "the peer's own words");
    message.serializeFromData(CZor());
    EXPECT_EQ(message.getMessageNumber(), 610) << "no row, no change";
    EXPECT_THAT(message.getParameters(), ElementsAre("a", "b"));
    message.reset();
    EXPECT_THAT(message.getParameters(), IsEmpty());
}

TEST(CNetErrorMsg, survivesWhatAPeerSends) {
    const struct {
        const char* reason;
        std::string bytes;
        int expected;
    } cases[] = {
        {"no row", errorPacket("<ZorData/>"), 0},
        {"nothing", "", 1},
        {"another packet", packet(24, i(0) + i(0)), 1},
        {"cut off", errorPacket("<ZorData/>").substr(0, 12), 1},
        {"a size below 0", packet(28, i(-1)) + "<ZorData/>", 1},
        {"a size beyond sense", packet(28, i(0x7FFFFFFF)) + "<ZorData/>", 1},
        {"no document", errorPacket(""), 1},
        {"no XML", errorPacket("none"), 1},
    };
    for (const auto& test : cases) {
        const SocketPair peers;
        peers.says(test.bytes);
        CNetErrorMsg message;
        fill(message, {"stays"});
        EXPECT_EQ(message.receiveMessage(peers.near()), test.expected) << test.reason;
        EXPECT_EQ(message.getMessageNumber(), 610) << test.reason;
        EXPECT_THAT(message.getParameters(), ElementsAre("stays")) << test.reason;
    }
    EXPECT_EQ(CNetErrorMsg().sendMessage(-1), 1);
}

} // namespace Zorvane
