// SPDX-License-Identifier: Apache-2.0
// The archives for the support: what is in them, what a mask leaves, and when they are not written.
#include "flow/Lab.h"
#include "info/schema.h"

#include <algorithm>
#include <fstream>
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
        // All that the logs can hold.
        std::string site = readFile(m_lab.path("lab/kvn.toml"));
        site.replace(site.find("debug = 1"), 9, "debug = 6");
        m_lab.write("lab/kvn.toml", site + "# password = x\npassword = \"hush\"\n");
        m_lab.write("target", TARGET);
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

    // None of the names and addresses of the samples and of the inventory, in whatever case.
    static void expectNoNames(const std::map<std::string, std::string>& files) {
        for (const auto& [name, content] : files) {
            std::string text = name + "\n" + content;
            std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
            for (const char* known :
                 {"ledger01", "corp.example", "lab.example", "northgate", "ng-san", "ng-cluster",
                  "vm network", "convhost", "vcenter01", "esx01", "ledger01-vm", "10.20.", "169082"})
                EXPECT_EQ(text.find(known), text.npos)
                    << name << ": "
                    << text.substr(text.find(known) - std::min<std::size_t>(text.find(known), 60), 120);
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
    for (const char* name :
         {"machine.json", "site/servers.json", "site/configuration.json", "logs/51216-128.log"})
        EXPECT_THAT(files["README.txt"], HasSubstr(name));
    EXPECT_THAT(files["site/kvn.toml"], Not(HasSubstr("hush")));
    EXPECT_EQ(files["target.conf"], TARGET);
    EXPECT_THAT(files["client/ledger01.corp.example/current.xml"],
                HasSubstr("<ClientName>ledger01.corp.example<"));
    // The conversion of a moment ago is under way.
    EXPECT_THAT(Json::parse(files["check.json"])["first"], "job.pending");
    EXPECT_EQ(std::ranges::count(files["logs/51216-128.log"], '\n'), 2000);
    EXPECT_THAT(files["logs/51216-433.log"], HasSubstr("ledger01"));
}

TEST_F(Bundles, areMaskedInEveryMember) {
    m_lab.serve();
    ASSERT_EQ(m_lab.zorb2v(conversion()).status, 0);
    const Ended ended = m_lab.zorinfo(conversion(
        {"bundle", "--mask", "--legend", m_lab.path("legend"), "--output", m_lab.path("b.tar.gz")}));
    EXPECT_EQ(ended.status, 0) << ended.out << ended.err;
    auto files = unpack("b.tar.gz");
    EXPECT_EQ(files.size(), 11U);
    expectNoNames(files);
    const std::string legend = readFile(m_lab.path("legend"));
    EXPECT_THAT(legend, HasSubstr("client-1\tledger01\n"));
    // Of a host that the conversion has nothing to do with.
    for (const char* name : {"\tSouthbank 210\n", "\tsb-nfs-01\n"})
        EXPECT_THAT(legend, HasSubstr(name));
    EXPECT_THAT(files["target.conf"], HasSubstr("esxhost=host-"));
    // A masked document is one still: a lab takes it.
    m_lab.write("masked.xml", files["client/client-1.domain-1/current.xml"]);
    EXPECT_THAT(m_lab.run(ZOR_ZORLAB, {"load", m_lab.path("lab"), m_lab.path("masked.xml")}).out,
                HasSubstr("loaded client client-1.domain-1"));

    EXPECT_EQ(m_lab
                  .run(ZOR_ZORLAB, {"bundle", m_lab.path("lab"), "--mask", "--client",
                                    "ledger01.corp.example", "--output", m_lab.path("l.tar.gz")})
                  .status,
              0);
    files = unpack("l.tar.gz");
    EXPECT_EQ(files.size(), 12U);
    expectNoNames(files);
    EXPECT_EQ(Json::parse(files["lab/database.json"])["integrity"], Json::array({"ok"}));
}

TEST_F(Bundles, areWrittenWhenNobodyAnswers) {
    m_lab.serve();
    ASSERT_EQ(m_lab.zorb2v(conversion()).status, 0);
    m_lab.stop();
    for (const bool isSilent : {false, true}) {
        if (isSilent)
            m_lab.serve({"version:zord=silent", "connect:kvnrd=silent"});
        const Ended ended = m_lab.zorinfo(
            conversion({"bundle", "--mask", "--limit", "1", "--force", "--output", m_lab.path("b.tar.gz")}));
        EXPECT_EQ(ended.status, 3) << ended.err;
        auto files = unpack("b.tar.gz");
        expectNoNames(files);
        EXPECT_THAT(files["README.txt"], HasSubstr("configuration current of client client-1.domain-1\n"));
        EXPECT_GT(files["logs/51216-128.log"].size(), 10'000U);
    }
    m_lab.write("lab/recovery.db", "no database");
    EXPECT_EQ(m_lab.run(ZOR_ZORLAB, {"bundle", m_lab.path("lab"), "--output", m_lab.path("l.tar.gz")}).status,
              0);
    EXPECT_THAT(unpack("l.tar.gz")["README.txt"], HasSubstr("the state of the database"));
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
