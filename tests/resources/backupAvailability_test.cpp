// SPDX-License-Identifier: Apache-2.0
#include "resources/AnsweringZord.h"
#include "resources/CB2VResource.h"
#include "resources/documents.h"

#include <gmock/gmock.h>

using testing::ElementsAreArray;

namespace Zorvane {
namespace {

using Commands = std::vector<std::string>;

std::string image(const std::string& schedule, const std::string& policy) {
    return "d t d t 9 13 " + schedule + " 0 " + policy + "\n";
}
std::string listing(const std::string& schedule, const std::string& policy = "pol") {
    return "head\n----\n" + image(schedule, policy);
}

// A client's check against a catalogue that answers with a test's function.
struct Check {
    std::uint32_t result = 0;
    Commands commands{};
    std::vector<std::string> queries{};
};
Check check(const std::string& rows, const std::function<Reply(const std::string&)>& catalogue) {
    AnsweringZord zord([&](const std::string& asked) {
        return asked.starts_with("kvn") ? catalogue(asked) : Reply{0, documentOf(rows)};
    });
    B2VInput input;
    input.clientName = "it's";
    Check made{CB2VResource().isFullBackupAvail(input, "cfg")};
    for (const std::string& asked : zord.asked())
        (asked.starts_with("kvn") ? made.commands : made.queries).push_back(asked);
    return made;
}

// Answers to the commands in their order; the last one goes on for ever.
std::function<Reply(const std::string&)> inOrder(std::vector<Reply> replies) {
    return [replies = std::move(replies), next = std::size_t{0}](const std::string&) mutable {
        return replies[std::min(next++, replies.size() - 1)];
    };
}

// Images of any schedule whose files are all there, from 111 to 222.
std::function<Reply(const std::string&)> allThere(const std::string& schedule) {
    return [schedule](const std::string& command) -> Reply {
        if (command.find("-Listseconds") != std::string::npos)
            return {0, listing(schedule, "pol\r")};
        if (command.find("-likelydate") != std::string::npos)
            return {12, command.find("-s 0 ") != std::string::npos ? "111\r\nx" : "222 3\r\n"};
        return {0, command.starts_with("kvnlist") ? "d t 1 file\n" : "?"};
    };
}

// The commands for a list of files, all found in one image.
Commands search(const std::string& type, const Commands& files) {
    Commands commands = {
        "kvnclimagelist -client node -policy pol -X -s 0 -X -e 100 -t NOT_ARCHIVE -Listseconds -ct " + type};
    for (const std::string& file : files) {
        for (const char* start : {"0", "111"})
            commands.push_back("kvnclimagelist -client node -policy pol -X -s " + std::string(start) +
                               " -ct " + type + " -t NOT_ARCHIVE -likelydate");
        commands.push_back("kvnlist -E -C node -k pol -t " + type + " -X -s 111 -X -e 222 -I \"" + file +
                           "\"");
    }
    return commands;
}

std::string client(const std::string& config, const std::string& system) {
    return "Config RetrievalTime=100 " + config + "; Esm NodeName=node Policy=pol; System " + system + ";";
}
const std::string WINDOWS = client("ZorVersion=8", "Os=NT OsLevel=6.1 Firmware=BIOS");
const std::string LINUX = client("ZorVersion=8", "Os=LINUX ZorDirectory=/usr/zor/");

TEST(FullBackup, asksForTheFilesOfEachBandInTheirOrder) {
    const std::string shadow = "/Shadow Copy Components/";
    const std::string registry = "/System State/Registry/Registry", files = "/System State/System Files/";
    const std::string wmi = shadow + "System Service/Windows Management Instrumentation/WMI";
    const std::string links = "/System State/_SharedHardlinkData_/";
    const std::string com = "/System State/COM+ Class Registration Database/COM+ REGDB";
    const std::string bios = "/System State/Automated System Recovery/BCD/BCD";
    const std::string efi = "/EFI System Partition/EFI/Microsoft/Boot/BCD";
    const Commands old = {"/System_State/Registry/system",
                          "/System_State/Boot_Files/Protected_Files/C:/WINNT/ntoskrnl.exe"};
    const struct {
        std::string version, level, firmware;
        Commands wanted;
    } bands[] = {
        {"5.2", "7.5.0", "BIOS", {registry, files}},
        {"5.2", "7.4.9", "BIOS", {shadow, registry, files}},
        {"5.2", "6.5.4", "UEFI", {shadow, registry, files}},
        {"5.2",
         "6.5.3",
         "BIOS",
         {shadow, "/Shadow Copy Components" + registry, "/Shadow Copy Components" + files}},
        {"6.0", "7.5.0", "BIOS", {registry, files, links, com, bios}},
        {"VER@10.0#RID@1809#", "9.1", "UEFI", {registry, files, links, com, efi}},
        {"6.3", "7.5.0", "UNKNOWN", {registry, files, links, com, efi}},
        {"6.1", "7.0", "BIOS", {shadow, registry, files, wmi, links, com, bios}},
        {"6.0",
         "6.5",
         "UEFI",
         {shadow, "/Shadow Copy Components" + registry, "/Shadow Copy Components" + files, wmi, links, com,
          efi}},
        {"5.1", "9", "BIOS", old},
        {"5.0", "6", "BIOS", old},
        {"6.1.7601", "9", "BIOS", old}, // no level that can be read
    };
    for (const auto& [version, level, firmware, wanted] : bands) {
        const Check made =
            check(client("ZorVersion=" + level, "Os=NT OsLevel=" + version + " Firmware=" + firmware) +
                      "WindowsSystem SystemRoot=C:\\WINNT",
                  allThere("Full"));
        EXPECT_EQ(made.result, 0U);
        EXPECT_THAT(made.commands, ElementsAreArray(search("13", wanted))) << version << " " << level;
    }
    const Check linux = check(LINUX, allThere("Full"));
    EXPECT_EQ(linux.result, 0U);
    EXPECT_THAT(linux.commands, ElementsAreArray(search("0", {"/usr/*", "/etc/*", "/usr/zor/client/data"})));
    EXPECT_THAT(
        linux.queries,
        testing::ElementsAre("query ZorDba.ZOR_Config lower(ZorDba.ZOR_Config.ClientName) = lower('it''s') "
                             "AND lower(ZorDba.ZOR_Config.Name) = lower('cfg')",
                             testing::StartsWith("tree ZorDba.ZOR_Config ")));
}

TEST(FullBackup, takesOnlyTheClientsOwnDataFromOtherImages) {
    const struct {
        std::string schedule;
        std::uint32_t result;
        Commands wanted;
    } cases[] = {
        {"Incremental", 1, {"/usr/zor/client/data"}},
        {"Synthetic-FULL", 0, {"/usr/*", "/etc/*", "/usr/zor/client/data"}},
    };
    for (const auto& [schedule, result, wanted] : cases) {
        const Check made = check(LINUX, allThere(schedule));
        EXPECT_EQ(made.result, result) << schedule;
        EXPECT_THAT(made.commands, ElementsAreArray(search("0", wanted)));
    }
    EXPECT_EQ(check(client("", "Os=LINUX ZorDirectory=/opt/Zor/"), allThere("Incremental")).commands.size(),
              1U)
        << "the word is sought as it is written";
}

TEST(FullBackup, endsWithTheStatusOfTheListing) {
    const std::string list13 =
        "kvnclimagelist -client node -policy pol -X -s 0 -X -e 100 -t NOT_ARCHIVE -Listseconds -ct 13";
    const std::string list0 = list13.substr(0, list13.size() - 2) + "0";
    const struct {
        std::string rows;
        std::vector<Reply> replies;
        std::uint32_t result;
        Commands commands;
    } cases[] = {
        {WINDOWS, {{192}}, 192, {list13}},
        {WINDOWS, {{193, listing("Full")}}, 193, {list13}},
        {WINDOWS, {{116}}, 116, {list13}},
        {WINDOWS, {{227}, {192}}, 192, {list13, list0}},
        {WINDOWS, {{227}, {227}, {0}}, 227, {list13, list0}},
        {LINUX, {{227}, {1}}, 1, {list0, list13}},
        {WINDOWS, {{0}}, 1, {list13}},
        {WINDOWS, {{0, "head\n\n\n----\n\n"}}, 1, {list13}},
        {"Config; Esm NodeName=node",
         {{1}},
         1,
         {"kvnclimagelist -client node -X -s 0 -X -e 32535212400 -t NOT_ARCHIVE -Listseconds -ct 0"}},
    };
    for (const auto& [rows, replies, result, commands] : cases) {
        const Check made = check(rows, inOrder(replies));
        EXPECT_EQ(made.result, result);
        EXPECT_THAT(made.commands, ElementsAreArray(commands));
    }
    const Check other = check(WINDOWS, inOrder({{227}, {0, listing("Full")}, {0, "1"}, {0, "2"}, {1}}));
    EXPECT_NE(other.commands.back().find(" -t 0 -X "), std::string::npos) << "the type that the images have";
}

// Each command's output takes the place of the lines that are being walked.
TEST(FullBackup, goesOnOverTheLinesOfTheLastOutput) {
    const auto policies = [](const std::string& first, const std::string& found) {
        const auto catalogue = [&](const std::string& command) -> Reply {
            if (command.find("-Listseconds") != std::string::npos)
                return {0, first};
            return command.starts_with("kvnlist") ? Reply{1, found} : Reply{0, "1\n"};
        };
        std::string walked;
        const Check made = check(LINUX, catalogue);
        EXPECT_EQ(made.result, 1U);
        for (const std::string& command : made.commands)
            if (command.ends_with("\"/usr/*\""))
                walked += command.substr(0, command.find(" -t")).substr(command.find(" -k ") + 4) + " ";
        return walked;
    };
    const std::string second = listing("Full") + image("Full", "two");
    EXPECT_EQ(policies(second, "a\nb\nc\n"), "pol ") << "there is no line 3 any more";
    EXPECT_EQ(policies(second, "a\nb\nc\nd\n"), "pol ") << "a line without fields names no image";
    EXPECT_EQ(policies(second, "a\nb\nc\n" + image("Full", "new")), "pol new ");
    EXPECT_EQ(policies(second, ""), "pol ") << "the lines of the command before";
    // A full image whose policy is known is passed over, one that is no full image is not.
    EXPECT_EQ(policies(listing("Full"), "a\nb\nc\n" + image("Full", "pol") + image("Full", "two")),
              "pol two ");
    EXPECT_EQ(policies(listing("Fuller"), "a\nb\nc\n" + image("Fuller", "pol")), "pol pol ");
    // Policies are kept without their carriage return and compared with it.
    EXPECT_EQ(policies(listing("FULL", "pol\r"), "a\nb\nc\n" + image("Full", "pol\r")), "pol pol ");
    EXPECT_EQ(policies(listing("full", "pol\r"), "a\nb\nc\n" + image("full", "pol")), "pol ");
}

TEST(FullBackup, endsWithThreeWithoutAConfigurationToGoBy) {
    const struct {
        std::string rows;
        int query, tree;
        std::string logged;
    } cases[] = {
        {WINDOWS, 7, 0, "Failed to query database."},
        {WINDOWS, 0, 7, "Failed to retrieve the zor config for client=it's"},
        {"System", 0, 0, "Either no client configuration found or esm vector is empty."},
        {"Config", 0, 0, "Either no client configuration found or esm vector is empty."},
    };
    for (const auto& c : cases) {
        AnsweringZord zord([&](const std::string& asked) {
            return Reply{asked.starts_with("query") ? c.query : c.tree, documentOf(c.rows)};
        });
        B2VInput input;
        input.clientName = "it's";
        EXPECT_EQ(CB2VResource().isFullBackupAvail(input, "cfg"), 3U);
        EXPECT_EQ(zord.log().take("debug 1 CB2VResource:CB2VResource::isFullBackupAvail() "), c.logged);
    }
}

} // namespace
} // namespace Zorvane
