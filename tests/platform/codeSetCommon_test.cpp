// SPDX-License-Identifier: Apache-2.0
#include "platform/codeSetCommon.h"
#include "platform/inLocale.h"

#include <memory>

using namespace Zorvane;

using Wide = std::unique_ptr<wchar_t[]>;

TEST(CodeSet, Utf8) {
    checkInLocale(UTF8_LOCALE, [] {
        for (const std::string text : {"", "plain", "\u20ac and \U0001F600"}) {
            const Wide wide(ZorMbsToWcsCommon(text));
            ASSERT_TRUE(wide) << text;
            EXPECT_EQ(ZorWcsToMbsCommon(wide.get()), text);
        }
        for (const std::string invalid : {"a\xff", "cut \xe2\x82", "\xc0\xaf", "\xed\xa0\x80"}) {
            EXPECT_FALSE(Wide(ZorMbsToWcsCommon(invalid))) << invalid;
            EXPECT_EQ(ZorMbsToDbCommon(invalid), invalid);
        }
        EXPECT_FALSE(Wide(ZorMbsToWcsCommon(std::string("a\0b", 3))));
        EXPECT_EQ(ZorWcsToMbsCommon({L'a', static_cast<wchar_t>(0xd800)}), "");
    });
}

TEST(CodeSet, TheCLocaleHandsForeignBytesOn) {
    checkInLocale("C", [] {
        for (const std::string text : {"plain", "\u00e9", "\xff\x80"})
            EXPECT_EQ(ZorMbsToDbCommon(text) + ZorDbToMbsCommon(text), text + text);
        EXPECT_EQ(ZorWcsToMbsCommon(L"\u20ac"), "");
    });
}

TEST(CodeSet, Latin1) {
    checkInLocale(LATIN1_LOCALE, [] {
        EXPECT_EQ(ZorMbsToDbCommon(std::string("\xe9\0\xe9", 3)), std::string("\u00e9\0\u00e9", 5));
        EXPECT_EQ(ZorDbToMbsCommon("\u00e9t\u00e9"), "\xe9t\xe9");
        EXPECT_STREQ(Wide(ZorMbsToWcsCommon("\xe9")).get(), L"\u00e9");
        for (const std::string homeless : {"10 \u20ac", "\xe9", "cut \xc3"})
            EXPECT_EQ(ZorDbToMbsCommon(homeless), homeless);
    });
}
