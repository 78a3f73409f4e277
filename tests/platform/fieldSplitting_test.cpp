// SPDX-License-Identifier: Apache-2.0
#include "platform/fieldSplitting.h"
#include "platform/inLocale.h"
#include "platform/returnCodes.h"

using namespace Zorvane;

using Fields = std::vector<std::string>;

TEST(FieldSplitting, Cutting) {
    struct {
        int (*cut)(const std::string&, const std::string&, Fields&, bool);
        const char *input, *delimiters;
        int rc;
        Fields fields;
    } const cases[] = {
        {Tokenize, "a::b:;", ":;", ZOR_SUCCESS, {"a", "", "b", ";"}}, // the first delimiter only
        {Tokenize, "b:", ":", ZOR_SUCCESS, {"b", ""}},
        {Tokenize, "whole", "", ZOR_SUCCESS, {"whole"}},
        {Tokenize, "", ":", ZOR_FAIL, {}},
        {Split, "  a  b\n", " ", ZOR_SUCCESS, {"a", "b"}},
        {Split, "a\n\n b\r\n", " ", ZOR_SUCCESS, {"a", "b\r"}},
        {Split, "a \n", " ", ZOR_SUCCESS, {"a"}}, // a token of line feeds only is none
        {Split, "::a\nb;c::", ":;", ZOR_SUCCESS, {"a\nb", "c"}},
        {Split, ":::", ":", ZOR_SUCCESS, {}},
        {Split, "", ":", ZOR_FAIL, {"old"}}}; // refused before the vector is cleared
    for (const auto& c : cases) {
        Fields fields = {"old"};
        EXPECT_EQ(c.cut(c.input, c.delimiters, fields, true), c.rc) << c.input;
        EXPECT_EQ(fields, c.fields) << c.input;
    }
}

TEST(FieldSplitting, AtOneCharacter) {
    std::string left = "l";
    std::string right = "r";
    EXPECT_EQ(StrSplitAtFirst("none", '=', left, right), ZOR_FAIL);
    EXPECT_EQ(left + right, "lr") << "left as they were";
    EXPECT_EQ(StrSplitAtFirst("a=b=c", '=', left, right), ZOR_SUCCESS);
    EXPECT_EQ(left + ' ' + right, "a b=c");
    EXPECT_EQ(StrSplitAtLast("a=b=c", '=', left, right), ZOR_SUCCESS);
    EXPECT_EQ(left + ' ' + right, "a=b c");
    EXPECT_EQ(StrSplitAtFirst("=a", '=', left, right), ZOR_SUCCESS);
    EXPECT_EQ(left, "");
}

TEST(FieldSplitting, FieldOfALine) {
    struct {
        const char *line, *separators;
        unsigned field;
        const char* out; // null: no such field
    } const cases[] = {{"a;b:c", ":;", 1, "a;b"}, {"a : b", " :", 2, "b"},     {"a::b", ":", 2, ""},
                       {"x y  z\n", " ", 0, "z"}, {"x y", " ", 3, nullptr},    {"   ", " ", 0, nullptr},
                       {"", " ", 1, nullptr},     {"x", "", 1, nullptr},       {"a:", ":", 0, ""},
                       {"a", ":", ~0U, nullptr},  {"one\ntwo", "\n", 1, "one"}};
    for (const auto& c : cases) {
        std::string out = "old";
        EXPECT_EQ(GetFieldFromLine(c.line, c.separators, c.field, out) == ZOR_SUCCESS, !!c.out) << c.line;
        EXPECT_EQ(out, c.out ? c.out : "") << c.line;
    }
    EXPECT_EQ(StrInStringList("two", "one, two", ", "), 1);
    EXPECT_EQ(StrInStringList("Two", "one, two", ", "), 0);
}

// 0xC3 is a letter here, and half of one in UTF-8: the result must come back in one byte each.
TEST(FieldSplitting, Latin1) {
    checkInLocale(LATIN1_LOCALE, [] {
        Fields fields;
        EXPECT_EQ(Split("\xe9t\xe9 \xc3", " ", fields, true), ZOR_SUCCESS);
        EXPECT_EQ(fields, (Fields{"\xe9t\xe9", "\xc3"}));
        EXPECT_EQ(StrInStringList("\xe9", "a,\xe9", ","), 1);
    });
}
