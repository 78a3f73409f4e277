// SPDX-License-Identifier: Apache-2.0
#include "ops/Wire.h"
#include "ops/pack.h"

#include <array>
#include <cstring>

#include <gtest/gtest.h>

namespace Zorvane {

namespace {

using Buffer = std::array<unsigned char, PACKET_BUFFER_SIZE>;

std::string start(const Buffer& buffer, int length) {
    return {buffer.begin(), buffer.begin() + std::max(length, 0)};
}

// What Pack makes of one text field or run.
std::string packText(const char* format, std::string text, const std::uint16_t* count = nullptr) {
    Buffer buffer{};
    text.resize(PACKET_BUFFER_SIZE);
    const int length = Pack(buffer.data(), count, format, {text.data()});
    return length < 0 ? "refused" : start(buffer, length);
}

} // namespace

TEST(pack, numbersAreBigEndianAndUnaligned) {
    std::uint8_t byte = 0xAB;
    std::uint16_t word = 0x0102;
    std::int32_t negative = -2;
    std::uint32_t large = 0x89ABCDEF;
    Buffer buffer{};
    const int length = Pack(buffer.data(), nullptr, "csiis", {&byte, &word, &negative, &large, &word});
    EXPECT_EQ(start(buffer, length), "\xAB\x01\x02\xFF\xFF\xFF\xFE\x89\xAB\xCD\xEF\x01\x02");

    std::uint16_t second = 0;
    byte = 0;
    word = 0;
    negative = 0;
    large = 0;
    EXPECT_EQ(Unack(buffer.data(), nullptr, "csiis", {&byte, &word, &negative, &large, &second}), 13);
    EXPECT_EQ(byte, 0xAB);
    EXPECT_EQ(word, 0x0102);
    EXPECT_EQ(negative, -2);
    EXPECT_EQ(large, 0x89ABCDEF);
    EXPECT_EQ(second, 0x0102);
}

TEST(pack, textsAndRuns) {
    const std::uint16_t two = 2;
    const std::string whole(4071, 'x');
    EXPECT_EQ(packText("S", ""), S(""));
    EXPECT_EQ(packText("S", "ab"), S("ab"));
    EXPECT_EQ(packText("S", whole), S(whole));
    EXPECT_EQ(packText("S", whole + 'x'), "refused");
    EXPECT_EQ(packText("X", ""), S(""));
    EXPECT_EQ(packText("X", S("a") + S("bc")), S("a") + S("bc") + S(""));
    EXPECT_EQ(packText("X", S("a") + S("") + S("b")), S("a") + S("")) << "an empty text ends the run";
    EXPECT_EQ(packText("X", S("a"), &two), S("a") + S("") + S("")) << "but not among the counted";
    EXPECT_EQ(packText("X", S("a") + S("") + S("c"), &two), S("a") + S("") + S("c") + S(""));
    EXPECT_EQ(packText("X", whole + 'x'), "refused");
    EXPECT_EQ(packText("X", S(whole) + S("b")), "refused") << "not cut in silence";
    EXPECT_EQ(packText("X", whole), S(whole) + S("")) << "the last NUL is one byte beyond the budget";
}

TEST(pack, runsComeBackOneByteShorter) {
    const std::uint16_t two = 2;
    Buffer buffer{'a'};
    std::string place(PACKET_BUFFER_SIZE, '?');
    EXPECT_EQ(Unack(buffer.data(), &two, "X", {place.data()}), 3);
    EXPECT_EQ(place.substr(0, 5), std::string("a\0\0\0?", 5));
}

TEST(pack, whateverIsReadEndsWithTheBudget) {
    Buffer buffer;
    buffer.fill('x');
    std::string place(PACKET_BUFFER_SIZE, '?');
    const std::uint16_t many = 0xFFFF;
    EXPECT_EQ(Unack(buffer.data(), nullptr, "S", {place.data()}), -1);
    EXPECT_EQ(Unack(buffer.data(), nullptr, "X", {place.data()}), -1);
    buffer.fill(0);
    EXPECT_EQ(Unack(buffer.data(), &many, "X", {place.data()}), -1) << "no room for so many";
    buffer.fill('x');
    buffer[PACKET_SIZE - 1] = 0;
    EXPECT_EQ(Unack(buffer.data(), nullptr, "X", {place.data()}), static_cast<int>(PACKET_SIZE));
    EXPECT_EQ(std::strlen(place.data()), PACKET_SIZE - 1);
    std::uint8_t byte = 7;
    EXPECT_EQ(Unack(buffer.data(), nullptr, "Sc", {place.data(), &byte}), -1);
    EXPECT_EQ(Unack(buffer.data(), nullptr, "XS", {place.data(), place.data()}), -1);
    EXPECT_EQ(byte, 7);
}

TEST(pack, stopsAtAFieldThatItCanNotDo) {
    for (const char* format : {"ss?", "ssT", "ssC", "ssc", "ssi", "ssS", "ssss"}) {
        std::uint16_t first = 0x0102;
        std::uint16_t second = 0x0304;
        std::uint16_t third = 0x0506;
        Buffer buffer{};
        EXPECT_EQ(Pack(buffer.data(), nullptr, format, {&first, &second, &third}), -1) << format;
        EXPECT_EQ(start(buffer, 4), "\x01\x02\x03\x04") << format;
    }
    Buffer buffer{};
    EXPECT_EQ(Pack(buffer.data(), nullptr, nullptr, {}), -1);
    EXPECT_EQ(Pack(buffer.data(), nullptr, "", {}), 0);
}

} // namespace Zorvane
