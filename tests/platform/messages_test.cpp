// SPDX-License-Identifier: Apache-2.0
// What support staff find in the log when a call of the toolkit is refused.
#include "logging/CZorLog.h"
#include "platform/codeSetCommon.h"
#include "platform/inLocale.h"
#include "platform/sVersion.h"
#include "platform/stringManipulation.h"

#include <fstream>

namespace Zorvane {
namespace {

std::string out;
std::vector<std::string> fields;

void parse(const char* command) {
    char** arguments = nullptr;
    ParseCommand(command, arguments);
    FreeArguments(arguments);
}

const struct {
    void (*call)();
    const char* text;
} CASES[] = {
    {[] { Tokenize("", ":", fields); }, "Invalid input parameters"},
    {[] { Split("", ":", fields); }, "Invalid input parameters, exiting, line="},
    {[] { GetFieldFromLine("", " ", 1, out); }, "Invalid/empty input paramaters"},
    {[] { GetFieldFromLine("  ", " ", 0, out); }, "Blank line was passed"},
    {[] { GetFieldFromLine("a b", " ", 3, out); }, "looking for field 3 in line with 2 fields"},
    {[] { StrInStringList("", "a", ","); }, "Invalid parameters - Empty string not expected"},
    {[] { GetParameterValueFromFile("/no", "x", out, "="); }, "open(/no) failed: No such file or directory"},
    {[] { parse("a\\"); }, "Missing character. Exiting"},
    {[] { parse("'"); }, "Unmatched quote character. Exiting"},
    {[] { parse(" "); }, "No arguments. Exiting"},
    {[] { CompareLevels("1", "1.2.3.4.5"); }, "Error parsing 1.2.3.4.5"},
    {[] { ZorWcsToMbsCommon(L"\u20ac"); }, "wctomb() failed: Invalid or incomplete multibyte"},
    // The words name the directions in the same order both times.
    {[] { ZorMbsToDbCommon("\xff"); }, "Error converting from code set: ANSI_X3.4-1968 to UTF-8"},
    {[] { ZorDbToMbsCommon("\xff"); }, "Error converting from code set: ANSI_X3.4-1968 to UTF-8"},
};

// Each call writes its text, and no other.
TEST(Messages, OfTheToolkit) {
    checkInLocale("C", [] {
        char folder[] = "/tmp/zor_messagesXXXXXX";
        const std::string made = mkdtemp(folder);
        setenv("KVN_CONF", (made + "/kvn.toml").c_str(), 1);
        std::ofstream(made + "/kvn.toml") << "[logging]\ndirectory = \"" << made << "\"\ndebug = 2\n";
        CZorLog log(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR);
        g_libLog = &log;
        for (const auto& c : CASES)
            c.call();
        g_libLog = nullptr;
        std::ifstream file(made + "/51216-128.log");
        std::string line;
        for (const auto& c : CASES) {
            std::getline(file, line);
            EXPECT_NE(line.find(c.text), line.npos) << c.text << " is not in: " << line;
        }
        EXPECT_FALSE(std::getline(file, line)) << line;
        std::filesystem::remove_all(made);
    });
}

} // namespace
} // namespace Zorvane
