// SPDX-License-Identifier: Apache-2.0
#include "platform/ipConvert.h"

#include <gtest/gtest.h>

namespace Zorvane {

namespace {

TEST(IpConvert, TextAndNumber) {
    EXPECT_EQ(ConvertIp2Hex("10.1.2.255"), 0x0A0102FFu);
    EXPECT_EQ(ConvertIp2Hex("no address"), 0xFFFFFFFFu);
    EXPECT_EQ(ConvertIp2Dec(0x0A0102FF), "10.1.2.255");
    EXPECT_EQ(ConvertIp2Dec(0), "0.0.0.0");
    EXPECT_EQ(ConvertIp2HexString("10.1.2.255"), "0A0102FF");
    EXPECT_EQ(ConvertIp2HexString(0xC0A80001u), "C0A80001");
}

TEST(IpConvert, Networks) {
    EXPECT_EQ(FindIpIntersect("10.1.2.3", "255.255.255.0", "10.1.2.77", "255.255.255.0"), 1);
    EXPECT_EQ(FindIpIntersect("10.1.2.3", "255.255.255.0", "10.1.3.3", "255.255.255.0"), 0);
    EXPECT_EQ(FindIpIntersect("10.1.0.3", "255.255.0.0", "10.1.0.99", "255.255.255.0"), 1);
    EXPECT_EQ(FindIpIntersect("10.1.2.3", "255.255.0.0", "10.1.2.3", "255.255.255.0"), 0)
        << "each under its own mask";
}

TEST(IpConvert, PrefixBits) {
    const struct {
        std::uint32_t bits, mask;
    } cases[] = {{0, 0xFFFFFFFF},  {1, 0x80000000},  {24, 0xFFFFFF00},
                 {31, 0xFFFFFFFE}, {32, 0xFFFFFFFF}, {33, 0x80000000}};
    for (const auto& row : cases)
        EXPECT_EQ(ConvertBitsToAddress(row.bits), row.mask) << row.bits;
}

} // namespace

} // namespace Zorvane
