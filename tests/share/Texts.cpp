// SPDX-License-Identifier: Apache-2.0
#include "share/Texts.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

namespace Zorvane {

std::string sourceText(const std::string& path) {
    const std::ifstream file(ZOR_SOURCE_DIR "/" + path);
    EXPECT_TRUE(file.is_open()) << path;
    return (std::ostringstream() << file.rdbuf()).str();
}

std::string outputOf(const std::vector<std::string>& command) {
    std::string line;
    for (const std::string& word : command)
        line += "'" + std::regex_replace(word, std::regex("'"), "'\\''") + "' ";
    std::FILE* pipe = popen((line + "2>/dev/null </dev/null").c_str(), "r");
    if (!pipe)
        return {};
    std::string text;
    for (int byte = std::fgetc(pipe); byte != EOF; byte = std::fgetc(pipe))
        text += static_cast<char>(byte);
    pclose(pipe);
    return text;
}

std::vector<std::string> matches(const std::string& text, const std::string& expression) {
    const std::regex regex(expression, std::regex::ECMAScript | std::regex::multiline);
    std::vector<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
        found.push_back((*at)[1]);
    return found;
}

Names names(const std::string& text, const std::string& expression) {
    const auto found = matches(text, expression);
    return {found.begin(), found.end()};
}

bool isInstalled(const std::string& program) {
    return !outputOf({"sh", "-c", "command -v " + program}).empty();
}

std::vector<std::string> optionsOfZorb2v() {
    return matches(sourceText("src/frontend/options.cpp"), R"re(CommandOption OPTION_\w+\{"-(\w+)", \d\})re");
}

std::string helpOf(const std::string& program, const std::string& subcommand) {
    std::vector<std::string> command = {ZOR_PROGRAMS "/" + program, "--help"};
    if (!subcommand.empty())
        command.insert(command.begin() + 1, subcommand);
    return outputOf(command);
}

Names subcommandsIn(const std::string& help) {
    const std::size_t at = help.find("\nSubcommands:");
    return at == std::string::npos ? Names() : names(help.substr(at), R"(^  ([a-z]+) )");
}

Names longOptionsIn(const std::string& help) {
    return names(help, R"(^ +(?:-\w,)?--([a-z-]+))");
}

} // namespace Zorvane
