// SPDX-License-Identifier: Apache-2.0
// What the companion tells of clients, targets, profiles and conversions.
#include "flow/Lab.h"
#include "info/schema.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <wchar.h>

using testing::HasSubstr;
using testing::Not;

namespace Zorvane {
namespace {

using Json = nlohmann::json;

const std::string CLIENT = "ledger01.corp.example";
const std::vector<std::string> TARGET = {"inventory", "-vmserver", "vcenter01.lab.example", "-vmproxy",
                                         "convhost01.lab.example"};

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// In the locale that the test sets.
std::size_t terminalColumns(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    wide.resize(std::mbstowcs(wide.data(), text.c_str(), wide.size()));
    return static_cast<std::size_t>(wcswidth(wide.c_str(), wide.size()));
}

class Asks : public testing::Test {
  protected:
    Json ask(std::vector<std::string> arguments, int status = 0) {
        const Schema schema(std::string(ZOR_SOURCE_DIR) + "/share/schema/" + arguments.front() +
                            ".schema.json");
        arguments.emplace_back("--json");
        const Ended ended = m_lab.zorinfo(arguments);
        EXPECT_EQ(ended.status, status) << ended.err;
        Json document = Json::parse(ended.out, nullptr, false);
        EXPECT_FALSE(document.is_discarded()) << ended.out;
        const Schema failure(std::string(ZOR_SOURCE_DIR) + "/share/schema/error.schema.json");
        EXPECT_EQ((document.contains("error") ? failure : schema).breach(document), "");
        return document;
    }

    void makeEstate() {
        const Ended ended =
            m_lab.run(ZOR_ZORLAB, {"init", m_lab.path("lab"), "--force", "--estate", "small"});
        ASSERT_EQ(ended.status, 0) << ended.err;
        m_lab.serve();
    }

    std::vector<std::string> conversion(const std::string& target) {
        m_lab.write("target", target);
        return {"-C",       CLIENT,
                "-vmserve", "vcenter01.lab.example",
                "-vmproxy", "convhost01.lab.example",
                "-veconf",  m_lab.path("target")};
    }

    void convert(const std::string& more) {
        const Ended ended =
            m_lab.zorb2v(conversion("name=new\ntoolsIsoPath=t\nesxhost=esx01.lab.example\n" + more));
        ASSERT_EQ(ended.status, 0) << ended.err;
    }

    Lab m_lab;
};

TEST_F(Asks, forConfigurations) {
    makeEstate();
    const Json clients = ask({"configs"})["clients"];
    std::string names;
    for (const Json& client : clients)
        names += client["client"].get<std::string>() + "\n";
    EXPECT_GT(clients.size(), 10U);
    EXPECT_EQ(m_lab.zorinfo({"configs", "--names"}).out, names);
    EXPECT_EQ(m_lab.zorinfo({"configs", "LEDGER01.corp.example", "--names"}).out, "current\n");
    EXPECT_THAT(m_lab.zorinfo({"configs", CLIENT}).out, HasSubstr(CLIENT + "  current"));
    EXPECT_EQ(m_lab.zorinfo({"configs", "--names", "--json"}).status, 2);
    EXPECT_THAT(ask({"configs", "ledger1.corp.example"}, 3)["error"]["message"],
                HasSubstr("Did you mean \"" + CLIENT + "\"?"));
}

TEST_F(Asks, inAlignedColumnsWithoutControls) {
    m_lab.serve();
    m_lab.sql("UPDATE ZOR_Config SET ClientName='東京の倉庫' WHERE ClientName='" + CLIENT +
              "'; UPDATE ZOR_Config SET Name='x' || char(155) || '2J' || char(10) || 'y'"
              " WHERE ClientName='東京の倉庫'");
    std::setlocale(LC_ALL, "C.UTF-8");
    const Ended ended = m_lab.zorinfo({"configs"}, {{"LC_ALL", "C.UTF-8"}});
    std::vector<std::size_t> columns;
    for (const std::string& line : linesOf(ended.out)) {
        EXPECT_LE(terminalColumns(line), 80U) << line;
        for (const char* word : {"SAVED", "20"})
            if (const std::size_t at = line.find(word); at != line.npos) {
                columns.push_back(terminalColumns(line.substr(0, at)));
                break;
            }
    }
    ASSERT_GT(columns.size(), 2U) << ended.out << ended.err;
    EXPECT_THAT(columns, testing::Each(columns.front())) << ended.out;
    EXPECT_THAT(ended.out, HasSubstr("東京の倉庫"));
    EXPECT_EQ(ended.out.find("\u009b"), std::string::npos);
    EXPECT_EQ(linesOf(m_lab.zorinfo({"configs", "東京の倉庫", "--names"}).out).size(), 1U);
}

TEST_F(Asks, forATargetsNamesThatACommandTakes) {
    makeEstate();
    const Json known = ask({"inventory"});
    EXPECT_GT(known["servers"].size(), 2U);
    int conversions = 0;
    for (const Json& server : known["servers"]) {
        const std::string name = server["name"], proxy = known["proxies"].back();
        const Json target = ask({"inventory", "--vmserver", name, "--vmproxy", proxy})["target"];
        EXPECT_TRUE(target["unanswered"].empty());
        for (const Json& dataCenter : target["dataCenters"]) {
            auto check = [&](const Json& host, const std::string& cluster) {
                const Json& store = host["stores"].back()["name"];
                for (const Json* pool : {&host["pools"].front(), &host["pools"].back()}) {
                    std::string text = "name=new machine\ntoolsIsoPath=t\n" + cluster;
                    text += "datacenter=" + dataCenter["name"].get<std::string>() + "\n";
                    if (server["type"] == "vcenter")
                        text += "folder=" + dataCenter["folders"].back().get<std::string>() + "\n";
                    text += "esxhost=" + host["name"].get<std::string>() +
                            "\nnetwork=" + host["networks"].back().get<std::string>() +
                            "\ndatastore=" + store.get<std::string>() +
                            "\nresourcepool=" + pool->get<std::string>() + "\n";
                    m_lab.write("target", text);
                    const Ended ended = m_lab.zorinfo({"check", "-C", CLIENT, "-vmserver", name, "-vmproxy",
                                                       proxy, "-veconfig", m_lab.path("target")});
                    EXPECT_EQ(ended.status, 0) << text << ended.out;
                    ++conversions;
                }
            };
            for (const Json& host : dataCenter["hosts"])
                check(host, "");
            for (const Json& cluster : dataCenter["clusters"])
                check(cluster["hosts"].front(), "cluster=" + cluster["name"].get<std::string>() + "\n");
        }
    }
    EXPECT_GT(conversions, 6);
}

TEST_F(Asks, forATargetsTree) {
    m_lab.serve();
    const std::string tree = m_lab.zorinfo(TARGET).out;
    for (const char* line :
         {"datacenter=Northgate\n  folder=/Northgate/vm\n", "\n    esxhost=esx01.lab.example\n",
          "\n      network=VM Network\n", "\n      machine ng-web01\n", "iB free\n"})
        EXPECT_THAT(tree, HasSubstr(line)) << tree;
    const std::pair<const char*, const char*> cases[] = {
        {"inventory -vmserver vcenter01.lab.example", "2 belong together"},
        {"inventory -vmserver", "2 needs a value"},
        {"inventory extra", "2 does not take \"extra\""},
        {"inventory -vmserver vcentre01 -vmproxy x", "3 virtual machine server \"vcentre01\" is not known"},
        {"inventory -vmserver vcenter01.lab.example -vmproxy x", "3 backup host \"x\" is not known"},
    };
    for (const auto& [line, expected] : cases) {
        const Ended ended = m_lab.zorinfo(words(line));
        EXPECT_THAT(std::to_string(ended.status) + " " + ended.err,
                    HasSubstr(std::string(expected).substr(2)));
        EXPECT_EQ(ended.status, expected[0] - '0') << line;
    }
}

TEST_F(Asks, andTellsWhatWasNotAnswered) {
    m_lab.serve({"listing:17@2=half"});
    const Json target = ask(TARGET, 3)["target"];
    ASSERT_EQ(target["unanswered"].size(), 1U);
    EXPECT_EQ(target["unanswered"][0]["what"], "networks");
    m_lab.stop();
    m_lab.serve({"listing:17"});
    EXPECT_THAT(m_lab.zorinfo(TARGET).out, HasSubstr("networks not told (status "));
    m_lab.stop();
    for (const std::string line :
         {"configs", "profiles", "profiles show x", "tasks", "tasks --follow --wait 60"}) {
        const Ended ended = m_lab.zorinfo(words(line));
        EXPECT_EQ(ended.status, 3) << line;
        EXPECT_THAT(ended.err, HasSubstr("the recovery daemon on localhost did not tell"));
        EXPECT_THAT(ended.err, HasSubstr("(status 200); check that zord runs there"));
    }
    const Ended ended = m_lab.zorinfo(TARGET);
    EXPECT_EQ(ended.status, 3);
    EXPECT_THAT(ended.err,
                HasSubstr("the request daemon on localhost did not list the virtual machine servers"));
}

TEST_F(Asks, forALayoutAsInTheDocument) {
    m_lab.serve();
    for (const char* client : {"ledger01", "atlas07", "harbor03"}) {
        const std::string full = std::string(client) + ".corp.example";
        const std::string document = std::string(ZOR_SOURCE_DIR) + "/share/samples/" + client + ".xml";
        EXPECT_EQ(ask({"layout", full})["client"], full);
        for (const char* form : {"--svg", "--no-color"})
            EXPECT_EQ(m_lab.zorinfo({"layout", full, "current", form}).out,
                      m_lab.zorinfo({"layout", "--file", document, form}).out);
    }
    EXPECT_THAT(ask({"layout", CLIENT, "older"}, 3)["error"]["message"], HasSubstr("no configuration older"));
    m_lab.write("target", "name=new\nharddisk=0\n");
    for (const auto& [file, reason] :
         {std::pair(m_lab.path("target"), ", line 2: harddisk=0 names no data store;"),
          std::pair(m_lab.path(""), " is no file")}) {
        const Ended ended = m_lab.zorinfo({"layout", CLIENT, "--veconfig", file});
        EXPECT_EQ(ended.status, 3);
        EXPECT_EQ(linesOf(ended.err).size(), 1U) << ended.err;
        EXPECT_THAT(ended.err, HasSubstr(file + reason));
    }
}

TEST_F(Asks, whatMessagesMean) {
    EXPECT_GT(ask({"explain"})["subjects"].size(), 80U);
    const Json shared = ask({"explain", "926"})["subjects"];
    ASSERT_EQ(shared.size(), 1U);
    EXPECT_EQ(shared[0]["set"], 128);
    EXPECT_THAT(ask({"explain", "store.spcae"}, 3)["error"]["message"],
                HasSubstr("Did you mean \"store.space\""));
    // Lines that the terminal would break are cut at a letter, elsewhere they are whole.
    const std::string list = "stty cols 70; " + std::string(ZOR_ZORINFO) + " explain --no-color";
    for (const std::string& line : linesOf(m_lab.run("/usr/bin/script", {"-qec", list, "/dev/null"}).out)) {
        const bool isCut = line.ends_with("\u2026\r");
        EXPECT_LE(line.size(), isCut ? 73U : 71U) << line;
    }
    EXPECT_THAT(m_lab.zorinfo({"explain"}).out, Not(HasSubstr("\u2026")));
}

TEST_F(Asks, inVainWithoutAUsage) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "Usage: zorinfo bundle|check|"},
        {"chek", "\"chek\" is no subcommand of zorinfo; did you mean \"check\"?"},
        {"tasks --folow", "\"--folow\" is not expected; did you mean \"--follow\"?"},
        {"profiles shw x", "did you mean \"show\"? Usage: zorinfo profiles [show|diff]"},
        {"profiles show", "NAME is required. Usage: zorinfo profiles show NAME;"},
        {"profiles diff x", "SECOND is required. Usage: zorinfo profiles diff FIRST SECOND;"},
        {"tasks --wait x", "Usage: zorinfo tasks [CLIENT] [--follow] [--wait SECONDS];"},
    };
    for (const auto& [line, expected] : cases) {
        const Ended ended = m_lab.zorinfo(words(line));
        EXPECT_EQ(ended.status, 2) << line;
        EXPECT_THAT(ended.err, HasSubstr(expected)) << line;
    }
}

TEST_F(Asks, withTheMannersOfItsOutput) {
    m_lab.serve();
    const std::string program = ZOR_ZORINFO;
    const Ended cut =
        m_lab.run("/bin/bash", {"-c", "trap '' PIPE; " + program + " explain | true; echo ${PIPESTATUS[0]}"});
    EXPECT_EQ(cut.out, "0\n") << cut.err;
    EXPECT_EQ(cut.err, "");
    EXPECT_EQ(m_lab.run("/bin/sh", {"-c", program + " explain >/dev/full"}).status, 3);
    // The lab's own log can be emptied under it.
    std::filesystem::resize_file(m_lab.path("lab/requests.log"), 0);
    EXPECT_EQ(m_lab.zorinfo({"configs"}).status, 0);
    EXPECT_EQ(std::ifstream(m_lab.path("lab/requests.log")).get(), 'z') << "a hole";
    for (const auto& [terminal, isColored] : {std::pair("dumb", false), std::pair("xterm", true)}) {
        const Ended ended =
            m_lab.run("/usr/bin/script", {"-qec", program + " configs", "/dev/null"}, {{"TERM", terminal}});
        EXPECT_EQ(ended.out.find('\033') != std::string::npos, isColored) << terminal;
    }
}

TEST_F(Asks, forProfiles) {
    m_lab.serve();
    EXPECT_EQ(m_lab.zorinfo({"profiles"}).out, "There are no profiles.\n");
    convert("datacenter=Northgate\nfolder=/Northgate/vm\ndiskformat=ThickLazy\n");
    m_lab.sql("UPDATE ZOR_VmwareProfileOptions SET ProfileName='one'; DELETE FROM ZOR_P2VRestoreTask");
    convert("datacenter=Northgate\nfolder=/Northgate/vm\nnetwork=VM Network\n");
    m_lab.sql(
        "UPDATE ZOR_VmwareProfileOptions SET ProfileName='other', BootInstance=1 WHERE ProfileName<>'one'");
    EXPECT_EQ(ask({"profiles"})["profiles"].size(), 2U);
    EXPECT_EQ(ask({"profiles", "show", "ONE"})["profiles"][0]["values"]["diskformat"], "ThickLazy");
    EXPECT_THAT(m_lab.zorinfo({"profiles", "show", "one"}).out, HasSubstr("folder        /Northgate/vm\n"));
    std::vector<std::string> different;
    const Json differences = ask({"profiles", "diff", "one", "other"})["differences"];
    for (const Json& each : differences)
        different.push_back(each["name"]);
    EXPECT_THAT(different, testing::ElementsAre("diskformat", "-vmpo"));
    EXPECT_EQ(m_lab.zorinfo({"profiles", "diff", "one", "one"}).out, "one and one have the same target.\n");
    EXPECT_THAT(m_lab.zorinfo({"profiles", "show", "othr"}).err, HasSubstr("Did you mean \"other\"?"));
}

TEST_F(Asks, forTasks) {
    m_lab.serve();
    EXPECT_EQ(m_lab.zorinfo({"tasks", "--wait", "60"}).out, "No conversion runs.\n");
    convert("");
    EXPECT_THAT(m_lab.zorinfo({"tasks"}).out, HasSubstr(CLIENT + "/current  queued  ready"));
    m_lab.sql("UPDATE ZOR_P2VRestoreTask SET State=2, Operation=17");
    const std::vector<std::string> table = linesOf(m_lab.zorinfo({"tasks"}).out);
    ASSERT_EQ(table.size(), 2U);
    EXPECT_EQ(table[0].find("MACHINE"), table[1].find("new"));
    EXPECT_LE(table[1].size(), 80U);
    m_lab.sql("UPDATE ZOR_P2VRestoreTask SET State=1, Operation=1");
    EXPECT_EQ(ask({"tasks", CLIENT, "--wait", "0"}, 1)["running"][0]["step"], "READY");
    EXPECT_EQ(m_lab.zorinfo({"tasks", "harbor03.corp.example", "--wait", "60"}).status, 0)
        << "of another client";
    EXPECT_THAT(m_lab.zorinfo({"tasks", "ledger1.corp.example", "--wait", "60"}).err,
                HasSubstr("Did you mean"));
    m_lab.sql("UPDATE ZOR_P2VRestoreTask SET Operation=14");
    EXPECT_EQ(m_lab.zorinfo({"tasks", "--wait", "60"}).status, 0) << "a failed task never ends";
    m_lab.sql("UPDATE ZOR_P2VRestoreTask SET Operation=1");
}

TEST_F(Asks, forTasksUntilTheyEnd) {
    const std::string end =
        "INSERT INTO ZOR_P2VRestoreTaskLog (ClientName, ConfigName, State, Status, CreateTime, EndTime) "
        "SELECT "
        "ClientName, ConfigName, 3, 7, CreateTime, CreateTime + 60 FROM ZOR_P2VRestoreTask; DELETE FROM "
        "ZOR_P2VRestoreTask";
    m_lab.serve();
    for (const bool isTerminal : {false, true}) {
        convert("");
        std::jthread steps([&](const std::stop_token& stop) {
            const auto waitFor = [&](const char* text) {
                const auto told = [&] {
                    const std::ifstream file(m_lab.path("out"));
                    return (std::ostringstream() << file.rdbuf()).str().find(text) != std::string::npos;
                };
                while (!stop.stop_requested() && !told())
                    std::this_thread::sleep_for(std::chrono::milliseconds(5));
            };
            waitFor("queued, ready");
            m_lab.sql("UPDATE ZOR_P2VRestoreTask SET State=2, Operation=17");
            waitFor("active, vm creating");
            m_lab.sql(end);
        });
        const std::string follow = std::string(ZOR_ZORINFO) + " tasks --follow";
        const Ended ended = isTerminal ? m_lab.run("/usr/bin/script", {"-qec", follow, "/dev/null"})
                                       : m_lab.zorinfo({"tasks", "--follow"});
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.out.find("watched for") != std::string::npos, isTerminal) << ended.out;
        EXPECT_EQ(ended.out.find('\033') != std::string::npos, isTerminal);
        EXPECT_EQ(linesOf(ended.out).size(), 3U) << ended.out;
        EXPECT_THAT(ended.out, HasSubstr(CLIENT + "/current  failed (status 7)"));
        m_lab.forget();
    }
    const Json document = ask({"tasks", "--follow"});
    EXPECT_TRUE(document["running"].empty());
    EXPECT_EQ(document["finished"][0]["status"], 7);
    EXPECT_THAT(m_lab.zorinfo({"tasks"}).out, HasSubstr("failed (status 7)"));
}

} // namespace
} // namespace Zorvane
