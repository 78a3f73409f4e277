// SPDX-License-Identifier: Apache-2.0
// The archives for the support: what is in them, what a mask leaves, and when they are not written.
#include "flow/Lab.h"
#include "info/schema.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

namespace Zorvane {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

const std::string TARGET =
    "name=ledger01-vm\nesxhost=esx01.lab.example\ndatacenter=/Northgate\nfolder=/Northgate/vm/"
    "Production\nresourcepool=Gold\nnetwork=VM Network\ndatastore=ng-san-01\nharddisk=0:ng-san-01\n"
    "harddisk=1:ng-san-02\ntoolsIsoPath=/images/tools.iso\n";

class Bundles : public testing::Test {
  protected:
    Bundles() {
        m_lab.run(ZOR_ZORLAB, {"init", m_lab.path("lab"), "--force", "--estate", "small", "--seed", "7"});
        // All that the logs can hold, and names in all spellings.
        edit("lab/kvn.toml", "debug = 1", "debug = 6\npassword = \"hush\" # hush");
        edit("lab/inventory.toml", "Backup 900", "O'Neill & Co");
        m_lab.sql("UPDATE ZOR_Config SET ClientName = 'O''Brien''s' WHERE ClientName LIKE 'relic02%'");
        m_lab.write("target", TARGET);
    }

    void edit(const std::string& file, const std::string& what, const std::string& by) const {
        std::string text = readFile(m_lab.path(file));
        m_lab.write(file, text.replace(text.find(what), what.size(), by));
    }

    static std::string readFile(const std::string& path) {
        return (std::ostringstream() << std::ifstream(path).rdbuf()).str();
    }

    std::vector<std::string> conversion(std::vector<std::string> words = {}) const {
        words.insert(words.end(), {"-C", "ledger01.corp.example", "-vmserver", "vcenter01.lab.example",
                                   "-vmproxy", "convhost01.lab.example", "-veconfig", m_lab.path("target")});
        return words;
    }

    // The files of an archive by their names, through tar.
    std::map<std::string, std::string> unpack(const std::string& archive) {
        fs::remove_all(m_lab.path("unpacked"));
        fs::create_directory(m_lab.path("unpacked"));
        EXPECT_EQ(m_lab
                      .run("/usr/bin/tar", {"-xzf", m_lab.path(archive), "-C", m_lab.path("unpacked"),
                                            "--strip-components=1"})
                      .err,
                  "");
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(m_lab.path("unpacked")))
            if (entry.is_regular_file())
                files[fs::relative(entry.path(), m_lab.path("unpacked")).string()] = readFile(entry.path());
        return files;
    }

    // Every name that the inventory, the database and the legend tell, as XML and SQL write it, too.
    std::set<std::string> namesOf(const std::string& legend) const {
        std::set<std::string> names;
        const auto add = [&](const std::string& name) {
            // No names are small numbers, types, and words that stand for nothing.
            if (name.size() > 2 && name != "vcenter" && name != "esx" && name != "None" && name != "current")
                for (const auto& [sign, spelling] : {std::pair("'", "'"), {"'", "''"}, {"&", "&amp;"}})
                    names.insert(lowered(std::regex_replace(name, std::regex(sign), spelling)));
        };
        std::istringstream rows(m_lab.sql(
            "SELECT ClientName FROM ZOR_Config UNION SELECT Name FROM ZOR_Config UNION SELECT Hostname FROM "
            "ZOR_WindowsSystem UNION SELECT Name FROM ZOR_HostList UNION SELECT Policy FROM ZOR_Esm UNION "
            "SELECT MacAddress FROM ZOR_NetworkInterface UNION SELECT DomainName FROM ZOR_Network"));
        for (std::string row; std::getline(rows, row);)
            add(row);
        std::string text = readFile(m_lab.path("lab/inventory.toml"));
        text.erase(0, text.find("\n\n")); // notes
        const std::regex part(R"re(["/]([^"/,\n]+)(?=["/]))re");
        for (std::sregex_iterator match(text.begin(), text.end(), part), end; match != end; ++match)
            add((*match)[1]);
        std::istringstream told(legend);
        for (std::string standIn, name; std::getline(told, standIn, '\t') && std::getline(told, name);)
            if (!standIn.starts_with("folder-")) // of the test's own path
                add(name);
        EXPECT_GT(names.size(), 50U);
        return names;
    }

    static std::string lowered(std::string text) {
        std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
        return text;
    }

    // None of the names as a word.
    static void expectNone(const std::set<std::string>& names,
                           const std::map<std::string, std::string>& files) {
        const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
        for (const auto& [file, content] : files) {
            const std::string text = lowered(" " + content + " ");
            for (const std::string& name : names)
                for (std::size_t at = text.find(name); at != text.npos; at = text.find(name, at + 1))
                    EXPECT_TRUE(isWord(text[at - 1]) || isWord(text[at + name.size()]))
                        << file << ": " << name << ": "
                        << text.substr(std::max<std::size_t>(at, 60) - 60, 120);
        }
    }

    Lab m_lab;
};

TEST_F(Bundles, holdWhatTheSupportNeeds) {
    m_lab.serve();
    ASSERT_EQ(m_lab.zorb2v(conversion()).status, 0);
    const Ended ended = m_lab.zorinfo(conversion({"bundle", "--json", "--output", m_lab.path("b.tar.gz")}));
    EXPECT_EQ(ended.status, 0) << ended.out;
    const Json report = Json::parse(ended.out);
    EXPECT_EQ(Schema(ZOR_SOURCE_DIR "/share/schema/bundle.schema.json").breach(report), "");
    struct stat facts {};
    ASSERT_EQ(::stat(m_lab.path("b.tar.gz").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0600U);
    auto files = unpack("b.tar.gz");
    EXPECT_EQ(files.size(), report["members"].size());
    for (const Json& member : report["members"])
        EXPECT_EQ(files[member["path"]].size(), member["size"]) << member;
    EXPECT_THAT(files["README.txt"], HasSubstr("site/servers.json"));
    EXPECT_THAT(files["site/kvn.toml"], Not(HasSubstr("hush")));
    EXPECT_EQ(files["target.conf"], TARGET);
    EXPECT_THAT(files["client/configuration.xml"], HasSubstr("<ClientName>ledger01.corp.example<"));
    // The conversion of a moment ago is under way.
    EXPECT_THAT(Json::parse(files["check.json"])["first"], "job.pending");
    EXPECT_EQ(std::ranges::count(files["logs/51216-128.log"], '\n'), 2000);
    EXPECT_THAT(files["logs/51216-433.log"], HasSubstr("ledger01"));
}

TEST_F(Bundles, areMaskedInEveryMember) {
    m_lab.serve();
    ASSERT_EQ(m_lab.zorb2v(conversion()).status, 0);
    std::vector<std::string> other = conversion();
    other[1] = "O'Brien's";
    ASSERT_EQ(m_lab.zorb2v(other).status, 1);
    const auto bundle = [&](const char* program, std::vector<std::string> words) {
        words.insert(words.end(), {"--mask", "--legend", m_lab.path("legend"), "--force", "--output",
                                   m_lab.path("b.tar.gz")});
        const Ended ended = m_lab.run(program, words);
        EXPECT_EQ(ended.status, 0) << ended.out << ended.err;
        EXPECT_THAT(ended.out, HasSubstr("bytes, masked\n" + m_lab.path("legend") + ": "));
        auto files = unpack("b.tar.gz");
        expectNone(namesOf(readFile(m_lab.path("legend"))), files);
        return files;
    };
    auto files = bundle(ZOR_ZORINFO, conversion({"bundle"}));
    EXPECT_EQ(files.size(), 11U);
    EXPECT_THAT(readFile(m_lab.path("legend")), HasSubstr("client-1\tledger01\n"));
    EXPECT_THAT(files["target.conf"], HasSubstr("esxhost=host-"));
    m_lab.write("masked.xml", files["client/configuration.xml"]);
    m_lab.stop();
    m_lab.write("lab/requests.log", "Before Update, at kelmedia02\n");
    files = bundle(ZOR_ZORLAB, {"bundle", m_lab.path("lab"), "--client", "harbor03.corp.example"});
    EXPECT_EQ(files.size(), 12U);
    EXPECT_EQ(Json::parse(files["lab/database.json"])["integrity"], Json::array({"ok"}));
    EXPECT_THAT(files["client/configuration.xml"], Not(HasSubstr("<Content>")));
    // A masked document is one still: a lab takes it.
    EXPECT_THAT(m_lab.run(ZOR_ZORLAB, {"load", m_lab.path("lab"), m_lab.path("masked.xml")}).out,
                HasSubstr("loaded client client-1.domain-1"));
}

TEST_F(Bundles, areWrittenWhenPartsCantBeHad) {
    m_lab.serve();
    ASSERT_EQ(m_lab.zorb2v(conversion()).status, 0);
    m_lab.stop();
    std::set<std::string> names = namesOf("");
    std::erase_if(names, [](const std::string& name) { return name.find('.') == name.npos; });
    for (const bool isSilent : {false, true}) {
        if (isSilent)
            m_lab.serve({"version:zord=silent", "connect:kvnrd=silent"});
        const Ended ended = m_lab.zorinfo(
            conversion({"bundle", "--mask", "--limit", "1", "--force", "--output", m_lab.path("b.tar.gz")}));
        EXPECT_EQ(ended.status, 3) << ended.err;
        auto files = unpack("b.tar.gz");
        expectNone(names, files);
        EXPECT_THAT(files["README.txt"], HasSubstr("Not all names were known"));
        EXPECT_THAT(files["README.txt"], HasSubstr("\n  the client's configuration\n"));
        EXPECT_GT(files["logs/51216-128.log"].size(), 10'000U);
    }
    m_lab.write("lab/recovery.db", "no database");
    m_lab.write("lab/kvn.toml", "password = hush");
    const Ended ended = m_lab.run(
        ZOR_ZORLAB, {"bundle", m_lab.path("lab"), "--mask", "--force", "--output", m_lab.path("b.tar.gz")});
    EXPECT_EQ(ended.status, 3);
    EXPECT_THAT(ended.out, HasSubstr("missing: the state of the database: "));
    auto files = unpack("b.tar.gz");
    EXPECT_FALSE(files.contains("site/kvn.toml"));
    expectNone(names, files);
}

TEST_F(Bundles, replaceNothingUnasked) {
    m_lab.write("there", "old");
    fs::create_symlink(m_lab.path("there"), m_lab.path("link"));
    const std::tuple<std::vector<std::string>, int, const char*> cases[] = {
        {{"--output", m_lab.path("there")}, 3, "there stands there already"},
        {{"--output", m_lab.path("link"), "--force"}, 3, "is no plain file"},
        {{"--output", m_lab.path("no/where")}, 3, "No such file"},
        {{"--output", m_lab.path("new"), "--mask", "--legend", m_lab.path("new")}, 3, "can't be one file"},
        {{"--legend", m_lab.path("new")}, 2, "--mask"},
        {{"--maks"}, 2, "no option --maks"},
        {{"stray"}, 2, "\"stray\" is no option"},
    };
    for (const auto& [words, status, text] : cases) {
        std::vector<std::string> command = {"bundle"};
        command.insert(command.end(), words.begin(), words.end());
        const Ended ended = m_lab.zorinfo(command);
        EXPECT_EQ(ended.status, status) << text;
        EXPECT_THAT(ended.err, HasSubstr(text));
    }
    EXPECT_EQ(readFile(m_lab.path("there")), "old");
    EXPECT_FALSE(fs::exists(m_lab.path("new")));
    EXPECT_EQ(m_lab.zorinfo({"bundle", "--force", "--output", m_lab.path("there")}).status, 3)
        << "nobody answers";
    EXPECT_TRUE(unpack("there").contains("manifest.json"));
}

} // namespace
} // namespace Zorvane
