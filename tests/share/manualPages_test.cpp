// SPDX-License-Identifier: Apache-2.0
// The manual pages name what there is, and nothing else.
#include "share/Texts.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::IsSupersetOf;

namespace Zorvane {
namespace {

std::string pathOf(const std::string& name) {
    return std::string("share/man/man") + name.back() + "/" + name;
}

std::string page(const std::string& name) {
    return sourceText(pathOf(name));
}

// From a heading's line to the next heading of its kind.
std::string section(const std::string& text, const std::string& heading) {
    const std::size_t begin = text.find("\n" + heading + "\n");
    if (begin == std::string::npos)
        return {};
    return text.substr(begin, text.find("\n" + heading.substr(0, 3), begin + 1) - begin);
}

// The words of the list items of a kind ("Cm" in ".It Cm insert , update").
Names items(const std::string& text, const std::string& kind) {
    Names found;
    for (const std::string& line : matches(text, "^\\.It " + kind + R"(( .*)$)"))
        found.merge(names(line.substr(0, line.find(" Ar ")), R"([ ]([^ ,]+))"));
    return found;
}

// The options that a page tells of for each subcommand; the pages have a list within the list.
std::map<std::string, Names> optionsBySubcommand(const std::string& description) {
    std::map<std::string, Names> found;
    std::string subcommand;
    for (const std::string& item : matches(description, R"(^\.It ((?:Cm [a-z]+|Fl -[a-z-]+)))"))
        if (item.starts_with("Cm "))
            found[subcommand = item.substr(3)];
        else
            found[subcommand].insert(item.substr(4));
    return found;
}

class ManualPages : public testing::TestWithParam<const char*> {};

TEST_P(ManualPages, haveTheirSections) {
    const std::string text = page(GetParam());
    const Names sections = names(text, R"(^\.Sh (.+)$)");
    EXPECT_THAT(sections,
                IsSupersetOf({"ENVIRONMENT", "FILES", "EXIT STATUS", "EXAMPLES", "DIAGNOSTICS", "SEE ALSO"}));
    for (const std::string& other : matches(text, R"(^\.Xr (\S+ \d))")) {
        const std::string name = other.substr(0, other.size() - 2) + "." + other.back();
        EXPECT_TRUE(name == "services.5" || std::filesystem::exists(ZOR_SOURCE_DIR "/" + pathOf(name)))
            << name;
    }
}

TEST_P(ManualPages, passTheirFormatter) {
    ASSERT_TRUE(isInstalled("mandoc")) << "scripts/setup installs it";
    const std::string file = ZOR_SOURCE_DIR "/" + pathOf(GetParam());
    for (const std::string& complaint : matches(outputOf({"mandoc", "-Tlint", file}), "^(.+)$"))
        // Pages that are not installed yet are not found; the test above looks for them.
        EXPECT_NE(complaint.find("referenced manual not found"), complaint.npos) << complaint;
}

INSTANTIATE_TEST_SUITE_P(, ManualPages,
                         testing::Values("zorb2v.1", "zorlab.1", "zorinfo.1", "zorb2v-veconfig.5",
                                         "kvn.toml.5"),
                         [](const auto& test) {
                             std::string name = test.param;
                             std::ranges::replace_if(
                                 name, [](char letter) { return !std::isalnum(letter); }, '_');
                             return name;
                         });

TEST(ManualPage, namesTheOptionsOfZorb2v) {
    const auto options = optionsOfZorb2v();
    const std::string text = page("zorb2v.1");
    EXPECT_EQ(items(text, "Fl"), Names(options.begin(), options.end()));
    EXPECT_EQ(names(section(text, ".Sh SYNOPSIS"), R"((?:Fl|\|) (\w+))"),
              Names(options.begin(), options.end()));
    const auto lengths =
        matches(sourceText("src/frontend/options.cpp"), R"re(CommandOption OPTION_\w+\{"-\w+", (\d)\})re");
    ASSERT_EQ(lengths.size(), options.size());
    const std::string shortened = text.substr(text.find("cut short"));
    Names shortest;
    for (std::size_t i = 0; i < options.size(); ++i)
        shortest.insert(options[i].substr(0, std::max<std::size_t>(1, std::stoul(lengths[i]) - 1)));
    EXPECT_EQ(names(shortened.substr(0, shortened.find("\nUpper")), R"(^\.Fl (\w+))"), shortest);
}

TEST(ManualPage, namesTheKeysOfTheTargetFile) {
    const std::string source = sourceText("src/frontend/veconfig.cpp");
    Names keys = names(source, R"re(\{"(\w+)",\s+&B2VInput)re");
    keys.merge(names(source, R"re(_KEY = "(\w+)")re"));
    ASSERT_GE(keys.size(), 11U);
    EXPECT_EQ(items(page("zorb2v-veconfig.5"), "Cm"), keys);
}

TEST(ManualPage, namesTheKeysOfTheConfiguration) {
    std::map<std::string, Names> keys, told; // by section
    std::string where;
    for (const std::string& each :
         matches(sourceText("src/suite/configurationDocument.cpp"),
                 R"re((void read[A-Z]\w+|(?:section|read)\(\*?\w+, "\w+|get\("\w+))re")) {
        const std::string name = matches(each, R"((\w+)$)").front();
        if (each.starts_with("void"))
            where = name == "readMaster" ? "master" : "logging";
        else if (each.starts_with("section(root"))
            keys[where = name];
        else
            keys[where].insert(name);
    }
    const std::string text = page("kvn.toml.5");
    for (const std::string& each : names(text, R"(^\.Ss Section (\w+)$)"))
        told[each] = items(section(text, ".Ss Section " + each), "Cm");
    EXPECT_EQ(told, keys);
    EXPECT_EQ(keys.size(), 4U);
}

TEST(ManualPage, tellsTheMessagesAsTheyAreExplained) {
    const std::string made = outputOf({"env", "LC_ALL=C", ZOR_PROGRAMS "/zorinfo", "explain", "--man"});
    EXPECT_GT(made.size(), 1000U);
    EXPECT_THAT(page("zorb2v.1"), HasSubstr(made)) << "take over what zorinfo explain --man writes";
}

TEST(ManualPage, tellsFailuresAsTheCompanionDoes) {
    std::string source;
    for (const char* folder : {"/src/info", "/src/bundle"})
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(ZOR_SOURCE_DIR + std::string(folder)))
            if (entry.path().extension() == ".cpp")
                source += sourceText(std::filesystem::relative(entry.path(), ZOR_SOURCE_DIR));
    source = std::regex_replace(source, std::regex("\"\\s+\""), ""); // literals in a row are one
    for (const std::string& failure : matches(page("zorinfo.1"), R"re(^\.It "zorinfo: (.+)"$)re"))
        for (const std::string& piece :
             matches(std::regex_replace(failure, std::regex(R"(\.\.\.|\\\(dq|\. )"), "\n"), R"(^(.{3,})$)"))
            EXPECT_THAT(source, HasSubstr(piece));
}

class SubcommandPages : public testing::TestWithParam<const char*> {};

TEST_P(SubcommandPages, nameTheSubcommandsAndTheirOptions) {
    const std::string program = GetParam();
    const std::string description = section(page(program + ".1"), ".Sh DESCRIPTION");
    const auto told = optionsBySubcommand(description.substr(0, description.find("\n.Ss ")));
    const std::string help = helpOf(program);
    const Names subcommands = subcommandsIn(help);
    ASSERT_FALSE(subcommands.empty());
    for (const std::string& subcommand : subcommands) {
        Names options = longOptionsIn(helpOf(program, subcommand));
        options.erase("help");
        ASSERT_TRUE(told.contains(subcommand)) << subcommand;
        EXPECT_EQ(told.at(subcommand), options) << subcommand;
    }
    for (const auto& [subcommand, options] : told)
        EXPECT_TRUE(subcommand.empty() || subcommands.contains(subcommand)) << subcommand;
    Names general = longOptionsIn(help);
    general.erase("help");
    EXPECT_EQ(told.contains("") ? told.at("") : Names(), general);
}

INSTANTIATE_TEST_SUITE_P(, SubcommandPages, testing::Values("zorlab", "zorinfo"),
                         [](const auto& test) { return std::string(test.param); });

TEST(ManualPage, namesThePointsAndEffectsOfALabsFailures) {
    const std::string help = helpOf("zorlab", "serve");
    const std::string text = page("zorlab.1");
    const Names words = names(help.substr(help.find("\nPoints")), R"(^  ([a-z0-9]+) )");
    ASSERT_GE(words.size(), 20U);
    EXPECT_EQ(items(section(text, ".Ss Failures on demand"), "Cm"), words);
}

} // namespace
} // namespace Zorvane
