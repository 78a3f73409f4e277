// SPDX-License-Identifier: Apache-2.0
#include "platform/boundedStrings.h"
#include "platform/valueConversion.h"

#include <memory>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

// There and back.
std::string throughBinary(const std::string& text) {
    unsigned int count = 0;
    const std::unique_ptr<unsigned char[]> bytes(StringToBinary(text, count));
    return BinaryToString(bytes.get(), count);
}

TEST(ValueConversion, Binary) {
    EXPECT_EQ(throughBinary("00017F80abFF"), "00017F80ABFF");
    EXPECT_EQ(throughBinary("ffzz1z-1 f3"), "FF00010000") << "what strtoul stops at; the odd 3 is ignored";
    EXPECT_EQ(throughBinary("f"), "");
}

TEST(ValueConversion, Integers) {
    EXPECT_EQ(FormatInteger(-1234567, 10), "-1234567");
    EXPECT_EQ(FormatInteger(0xab, 16, true, 4), "00AB");
    EXPECT_EQ(FormatInteger(7, 10, false, 3) + FormatInteger(8, 8), "  710");
    EXPECT_EQ(FormatInteger(12, 2), "12") << "no such base";
}

TEST(BoundedStrings, CutAndAlwaysEnd) {
    char buffer[4] = {};
    EXPECT_EQ(V_strlcpy(buffer, "abcdef", sizeof buffer), 6U);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(V_strlncpy(buffer, "xyz", sizeof buffer, 1), 1U);
    EXPECT_EQ(V_strlncat(buffer, "yyyy", sizeof buffer, 1), 2U);
    EXPECT_EQ(V_strlcat(buffer, "zzz", sizeof buffer), 5U);
    EXPECT_STREQ(buffer, "xyz");
    buffer[3] = '!'; // no end
    EXPECT_EQ(V_strlcat(buffer, "g", sizeof buffer), 5U);
    EXPECT_EQ(std::string(buffer, sizeof buffer), "xyz!");
}

} // namespace
} // namespace Zorvane
