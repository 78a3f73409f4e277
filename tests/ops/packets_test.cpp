// SPDX-License-Identifier: Apache-2.0
#include "ops/Wire.h"
#include "ops/packets.h"
#include "ops/sendrecv.h"

#include <gtest/gtest.h>

namespace Zorvane {

namespace {

// The fields of each type behind the header, as the peers know them.
struct TypeFormat {
    int type;
    const char* fields;
};
constexpr TypeFormat FORMATS[] = {
    {1, "SS"},    {2, "c"},     {3, "SS"},   {4, "c"},     {5, "SS"},   {6, "c"},   {7, "csS"},  {8, "SS"},
    {9, "sssX"},  {10, "SS"},   {11, "cSS"}, {12, "iSSS"}, {13, "c"},   {14, "SS"}, {15, "cii"}, {16, "c"},
    {17, "iSSi"}, {18, "c"},    {19, "S"},   {20, "ci"},   {21, "SS"},  {22, "ii"}, {23, "ci"},  {24, "ii"},
    {25, "iiX"},  {26, "iSii"}, {27, "c"},   {28, "i"},    {29, "iii"}, {30, "ii"},
};

// A packet whose fields all differ.
std::string sample(const TypeFormat& format) {
    std::string body;
    unsigned value = 1;
    for (const char* letter = format.fields; *letter; ++letter, ++value)
        switch (*letter) {
        case 'c':
            body += c(value);
            break;
        case 's':
            body += s(value * 0x101);
            break;
        case 'i':
            body += i(value * 0x1010101);
            break;
        case 'S':
            body += S("text" + std::to_string(value));
            break;
        default:
            body += S("one") + S("two") + S("");
        }
    return packet(static_cast<unsigned>(format.type), body);
}

} // namespace

TEST(packets, everyTypeGoesThroughItsRecordUnchanged) {
    for (const TypeFormat& format : FORMATS) {
        const SocketPair peers;
        const std::string bytes = sample(format);
        const bool hasRun = bytes.ends_with(S("two") + S(""));
        peers.says(bytes);
        AnyPacket any;
        EXPECT_EQ(RecvPacket(peers.near(), any), static_cast<int>(bytes.size()) - (hasRun ? 1 : 0))
            << format.type;
        EXPECT_EQ(any.header().len, bytes.size());
        EXPECT_EQ(SendPacket(peers.near(), any.header()), static_cast<int>(bytes.size())) << format.type;
        EXPECT_EQ(peers.hears(), bytes) << format.type;
    }
}

TEST(packets, recordsHaveTheirFieldsInPlace) {
    const SocketPair peers;
    peers.says(sample({17, "iSSi"}));
    ImportRequest request;
    EXPECT_GT(RecvPacket(peers.near(), request, PACKET_SIZE), 0);
    EXPECT_EQ(request.byteCount, 0x1010101);
    EXPECT_STREQ(request.configuration.c_str(), "text2");
    EXPECT_STREQ(request.client.c_str(), "text3");
    EXPECT_EQ(request.resource, 0x4040404);
}

TEST(packets, sendersCutTextsToTheirBounds) {
    TextSlot<8> slot;
    slot.set("1234567");
    EXPECT_STREQ(slot.c_str(), "1234567");
    slot.set("12345678");
    EXPECT_STREQ(slot.c_str(), "1234567");
    slot.set("");
    EXPECT_STREQ(slot.c_str(), "");

    MethodExecute call;
    ParameterWriter writer(call.parameters);
    writer.append(std::string(4050, 'a'));
    writer.append("0123456789abcdef");
    writer.append("lost");
    call.count = 3;
    const SocketPair peers;
    EXPECT_EQ(SendPacket(peers.near(), call), 10 + 4060 + 1);
    EXPECT_EQ(peers.hears(),
              packet(9, s(0) + s(0) + s(3) + S(std::string(4050, 'a')) + S("01234567") + S("")));
}

} // namespace Zorvane
