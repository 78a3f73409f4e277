// SPDX-License-Identifier: Apache-2.0
#include "platform/commandParser.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

using namespace Zorvane;

using Arguments = std::vector<std::string>;

// What is stored before a failure is the caller's, in a list with an end.
TEST(CommandParser, Arguments) {
    const Arguments many(20, "x");
    const std::string manyText = "x x x x x x x x x x x x x x x x x x x x ";
    const struct {
        std::string command;
        int result;
        Arguments arguments;
    } cases[] = {{"a 'b c' d\\ e", 1, {"a", "b c", "d e"}},
                 {" \t/bin/ls\t-l ", 1, {"/bin/ls", "-l"}},
                 {R"("a\b" 'c\')", 1, {"a\\b", "c\\"}}, // no escape within quotes
                 {R"(\"a\" \\)", 1, {"\"a\"", "\\"}},
                 {R"(a"b c"'d "e"'f '' "it's")", 1, {"ab cd \"e\"f", "", "it's"}},
                 {manyText, 1, many},
                 {" \t ", 0, {}},
                 {"a \"b' c", 0, {"a"}},
                 {"a b\\", 0, {"a"}},
                 {manyText + "'open", 0, many}};
    for (const auto& c : cases) {
        char** arguments = nullptr;
        EXPECT_EQ(ParseCommand(c.command, arguments), c.result) << c.command;
        const std::unique_ptr<char*, void (*)(char**)> owner(arguments, FreeArguments);
        Arguments stored;
        for (char** argument = arguments; argument && *argument; ++argument)
            stored.emplace_back(*argument);
        EXPECT_EQ(stored, c.arguments) << c.command;
    }
}
