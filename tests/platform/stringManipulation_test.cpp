// SPDX-License-Identifier: Apache-2.0
#include "platform/inLocale.h"
#include "platform/stringManipulation.h"

#include <memory>

namespace Zorvane {
namespace {

void checkReplacing() {
    struct {
        const char *text, *search, *replacement;
        bool all, ignoreCase;
        const char* result;                                    // null: nothing is replaced
    } const cases[] = {{"aa", "a", "aa", true, false, "aaaa"}, // what was inserted is not searched
                       {"a.b.c", ".", "", false, false, "ab.c"},
                       {"aaaaa", "aa", "a", true, false, "aaa"},
                       {"Keep THE Case", "the", "a", true, true, "Keep a Case"},
                       {"Keep THE Case", "the", "a", true, false, nullptr},
                       {"\u00e9\u00c9", "\u00e9", "e", true, true, "e\u00c9"}, // tolower knows bytes only
                       {"bad \xff AND \u00e9", "and", "or", true, true, "bad \xff or \u00e9"},
                       {"text", "", "x", true, false, nullptr}};
    for (const auto& c : cases) {
        std::string text = c.text;
        const int rc = StrReplace(text, c.search, c.replacement, c.all, c.ignoreCase);
        EXPECT_EQ(rc, c.result ? ZOR_SUCCESS : ZOR_FAIL) << c.text;
        EXPECT_EQ(text, c.result ? c.result : c.text);
    }
}

void checkStripping() {
    EXPECT_EQ(StripLeading("\"\"a\"", "\"") + StripTrailing("\"a\"\"", "\""), "a\"\"a");
    EXPECT_EQ(StripLeading("xyx", "xy") + StripTrailing("xyx", "xy") + StripLeading("", "x"), "");
    EXPECT_EQ(StripLeading("\"\xff\"", "\""), "\xff\"") << "invalid text is not lost";
    EXPECT_EQ(StripTrailing(std::string("\"\0a\"", 4), "\""), std::string("\"\0a", 3));
    EXPECT_EQ(StripTrailingChar("\xff\r\n\r\n", '\n', true), "\xff");
    EXPECT_EQ(StripTrailingChar("line\n\r\r", '\r'), "line\n");
    EXPECT_EQ(StripTrailingChar("\n\r\n", '\n'), "");
}

void checkSearching() {
    EXPECT_EQ(StrContains("a\xff;b", ";|"), 1);
    EXPECT_EQ(StrContains("ab", 'c'), 0);
    EXPECT_EQ(StrContainsOnly("0120", "012") + StrContainsOnly("", "012"), 2);
    EXPECT_EQ(StrContainsOnly("013", "012"), 0);
    EXPECT_EQ(StrContainsSubstring("\xff A Full backup", "full", false), 1);
    EXPECT_EQ(StrContainsSubstring("A Full backup", "full", true), 0);
    EXPECT_EQ(StrCaseCmp("DataStore", "datastore"), 0);
    EXPECT_LT(StrCaseCmp("A", "b"), 0);
    const char* const haystack = "The FULL text";
    EXPECT_EQ(StrCaseStr(haystack, "full"), haystack + 4);
    EXPECT_EQ(StrCaseStr(haystack, "none"), nullptr);
}

void checkAsciiTests() {
    struct {
        std::string text;
        int control, nonAscii;
        std::string kept;
    } const cases[] = {{"a\tb\x7f", 1, 0, "ab"},
                       {"\xff\x80", 0, 1, ""}, // dropped, though no control characters
                       {"caf\u00e9\n", 1, 1, "caf"},
                       {std::string(1, '\0'), 0, 0, ""}};
    for (const auto& c : cases) {
        EXPECT_EQ(HasControlCharacters(c.text), c.control) << c.text;
        EXPECT_EQ(HasNonAsciiCharacters(c.text), c.nonAscii) << c.text;
        EXPECT_EQ(RemoveControlCharacters(c.text), c.kept) << c.text;
    }
}

void checkQuoting() {
    EXPECT_EQ(ShellQuoteSingle("it's $(x) `y` \\"), R"('it'"'"'s $(x) `y` \')");
    EXPECT_EQ(ShellQuoteDouble("a\"b$c\\"), R"("a\"b$c\")");
    EXPECT_EQ(QuoteSqlLiteral("o'; drop --\xff'"), "'o''; drop --\xff'''");
    EXPECT_EQ(zor_strdup(nullptr), nullptr);
    EXPECT_STREQ(std::unique_ptr<char[]>(zor_strdup("copy")).get(), "copy");
}

void checkAll() {
    checkReplacing();
    checkStripping();
    checkSearching();
    checkAsciiTests();
    checkQuoting();
}

// In C the bytes of other letters are worked on one by one, and none is lost.
TEST(StringManipulation, C) {
    checkInLocale("C", checkAll);
}

TEST(StringManipulation, Utf8) {
    checkInLocale(UTF8_LOCALE, [] {
        checkAll();
        EXPECT_EQ(StrContains("\u00e8", "\u00e9"), 0) << "they share a byte, not a character";
        EXPECT_EQ(StripTrailing("\u00e8\u00e9", "\u00e9"), "\u00e8");
    });
}

TEST(StringManipulation, Latin1) {
    checkInLocale(LATIN1_LOCALE, [] {
        std::string text = "\xc9t\xe9";
        EXPECT_EQ(StrReplace(text, "\xe9", "e", true, true), ZOR_SUCCESS);
        EXPECT_EQ(text, "ete") << "one byte a letter: tolower knows it";
        EXPECT_EQ(StrToLower("\xc9") + StrToUpper("\xe9"), "\xe9\xc9");
        EXPECT_EQ(QuoteSqlLiteral("\xe9't"), "'\xe9''t'");
    });
}

} // namespace
} // namespace Zorvane
