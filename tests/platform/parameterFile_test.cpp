// SPDX-License-Identifier: Apache-2.0
#include "platform/inLocale.h"
#include "platform/parameterFile.h"
#include "platform/returnCodes.h"

#include <sstream>
#include <stdexcept>

using namespace Zorvane;

TEST(ParameterFile, Value) {
    const std::pair<const char*, const char*> cases[] = {
        {"Name \t=  a b \t\r\n", "a b"},
        {"Name value", "value"},     // the separator may be missing
        {"Name== =\"q\"", "=\"q\""}, // one run of separators, no quotes
        {"NameOther=no\nName=1\nName=2", "1"},
        {"name=value\n Name=value", nullptr}};
    for (const auto& [content, expected] : cases) {
        std::istringstream stream(content);
        std::string value = "old";
        EXPECT_EQ(GetParameterValueFromFileStream(stream, "Name", value, "="),
                  expected ? ZOR_SUCCESS : ZOR_FAIL);
        EXPECT_EQ(value, expected ? expected : "old") << content;
    }
    for (const char* content : {"Name", "Name  \n", "Name=\n", "Name =\t\r\n"}) {
        std::istringstream stream(content);
        std::string value;
        EXPECT_THROW(GetParameterValueFromFileStream(stream, "Name", value, "="), std::out_of_range);
    }
}

TEST(ParameterFile, UnusableStreams) {
    std::string text = "old";
    EXPECT_EQ(GetParameterValueFromFile("/nonexistent", "Name", text, "="), ZOR_ERROR);
    std::istringstream bad;
    bad.setstate(std::ios::badbit);
    EXPECT_EQ(GetParameterValueFromFileStream(bad, "Name", text, "="), ZOR_ERROR);
    EXPECT_EQ(text, "old");
    EXPECT_EQ(GetLineFromFile(bad, LINE_CONTAINS, 1, "x", text), ZOR_FAIL);
    EXPECT_EQ(text, "");
}

TEST(ParameterFile, Line) {
    struct {
        const char* content;
        int location, caseFlag;
        const char *pattern, *line;
    } const cases[] = {
        {"one\nThe Two\n", LINE_CONTAINS, 1, "two", ""}, // no failure
        {"one\nThe Two\n", LINE_CONTAINS, 0, "tWO", "The Two"},
        {"a Name\nName b", LINE_BEGINS_WITH, 1, "Name", "Name b"},
        {"end to end\nthe end", LINE_ENDS_WITH, 1, "end", "the end"}, // its first occurrence decides
        {"end\n", 3, 1, "end", ""}};
    for (const auto& c : cases) {
        std::istringstream stream(c.content);
        std::string line = "old";
        EXPECT_EQ(GetLineFromFile(stream, c.location, c.caseFlag, c.pattern, line), ZOR_SUCCESS) << c.content;
        EXPECT_EQ(line, c.line) << c.content;
    }
}

TEST(ParameterFile, Latin1) {
    checkInLocale(LATIN1_LOCALE, [] {
        std::istringstream stream("\xc9=\xe9\nLieu: \xe9\n");
        std::string text;
        EXPECT_EQ(GetParameterValueFromFileStream(stream, "\xc9", text, "="), ZOR_SUCCESS);
        EXPECT_EQ(text, "\xe9");
        EXPECT_EQ(GetLineFromFile(stream, LINE_ENDS_WITH, 0, "LIEU: \xc9", text), ZOR_SUCCESS);
        EXPECT_EQ(text, "Lieu: \xe9");
    });
}
