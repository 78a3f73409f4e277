// SPDX-License-Identifier: Apache-2.0
#include "platform/ipConvert.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

TEST(IpConvert, TextAndNumber) {
    EXPECT_EQ(ConvertIp2Hex("10.1.2.255"), 0x0A0102FFu);
    EXPECT_EQ(ConvertIp2Hex("no address"), 0xFFFFFFFFu);
    EXPECT_EQ(ConvertIp2Dec(0x0A0102FF), "10.1.2.255");
    EXPECT_EQ(ConvertIp2HexString("10.1.2.255"), "0A0102FF");
    const std::pair<std::uint32_t, std::uint32_t> masks[] = {
        {0, 0xFFFFFFFF}, {1, 0x80000000}, {24, 0xFFFFFF00}, {32, 0xFFFFFFFF}, {33, 0x80000000}};
    for (const auto& [bits, mask] : masks)
        EXPECT_EQ(ConvertBitsToAddress(bits), mask) << bits;
}

TEST(IpConvert, Networks) {
    const char* const wide = "255.255.0.0";
    const char* const narrow = "255.255.255.0";
    EXPECT_EQ(FindIpIntersect("10.1.2.3", narrow, "10.1.2.77", narrow), 1);
    EXPECT_EQ(FindIpIntersect("10.1.2.3", narrow, "10.1.3.3", narrow), 0);
    EXPECT_EQ(FindIpIntersect("10.1.0.3", wide, "10.1.0.99", narrow), 1);
    EXPECT_EQ(FindIpIntersect("10.1.2.3", wide, "10.1.2.3", narrow), 0) << "each under its own mask";
}

} // namespace
} // namespace Zorvane
