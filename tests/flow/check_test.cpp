// SPDX-License-Identifier: Apache-2.0
// The companion's check held against the command: the same verdict and the same first reason, and nothing
// changed.
#include "flow/Lab.h"
#include "flow/exitScenarios.h"
#include "info/schema.h"

#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using testing::HasSubstr;

namespace Zorvane {
namespace {

using Json = nlohmann::json;

class Check : public testing::Test {
  protected:
    Json check(std::vector<std::string> arguments, const Lab::Environment& environment = {}) {
        arguments.insert(arguments.begin(), "check");
        arguments.emplace_back("--json");
        const Ended ended = m_lab.zorinfo(arguments, environment);
        Json document = Json::parse(ended.out, nullptr, false);
        EXPECT_FALSE(document.is_discarded()) << ended.out << ended.err;
        if (document.is_discarded())
            return Json::object();
        EXPECT_EQ(m_schema.breach(document), "");
        EXPECT_EQ(document["status"], ended.status);
        return document;
    }

    /// Checks, then converts, with the same arguments; the lab's rules count from their start for each.
    void compare(const std::vector<std::string>& arguments, const std::string& rules,
                 const Lab::Environment& environment = {}) {
        if (arguments.empty()) // there is nothing to check
            return;
        m_lab.stop();
        m_lab.serve(words(rules));
        const std::string before = rows();
        const Json document = check(arguments, environment);
        EXPECT_EQ(rows(), before) << "a check changes nothing";
        for (const std::string& request : words(m_lab.road()))
            EXPECT_THAT((std::vector<std::string>{"profile+", "task+", "profile-", "profile!", "start"}),
                        testing::Not(testing::Contains(request)));
        m_lab.stop();
        m_lab.serve(words(rules));
        const Ended ended = m_lab.zorb2v(arguments, environment);
        ++s_compared;
        const Json first = firstThatBlocks(document);
        if (isSeenByDoingOnly(document, rules)) {
            EXPECT_EQ(first, Json());
            ++s_byDoing;
            return;
        }
        EXPECT_EQ(first.is_null(), ended.status == 0) << document.dump(2) << ended.err;
        if (first.is_null())
            return;
        EXPECT_EQ(first["told"].is_null() ? "" : first["told"].get<std::string>() + "\n",
                  ended.err == "\n" ? "" : ended.err)
            << document.dump(2);
    }

    void compare(const std::vector<Exit>& exits) {
        for (const Exit& exit : exits) {
            SCOPED_TRACE(exit.client + " " + exit.options + " " + exit.target + exit.rules);
            m_lab.sql(exit.before);
            m_lab.write("target", targetOf(exit));
            compare(argumentsOf(exit, m_lab.path("target")), exit.rules);
            m_lab.forget();
        }
    }

    static Json firstThatBlocks(const Json& document) {
        for (const Json& finding : document["findings"])
            if (finding["severity"] == "blocks")
                return finding;
        return {};
    }

    static void TearDownTestSuite() {
        std::cout << s_compared << " scenarios compared, " << s_byDoing << " of them seen by doing only\n";
    }

    std::string rows() const {
        return m_lab.sql("SELECT 'p', * FROM ZOR_VmwareProfileOptions; SELECT 't', * FROM ZOR_P2VRestoreTask;"
                         "SELECT 'm', * FROM ZOR_DiskToDataStoreMap");
    }

    // Inserts, the check of a profile that was inserted, and the start of the job have no dry form; without
    // its console's profile a run goes on, and the daemon's answer decides.
    static bool isSeenByDoingOnly(const Json& document, const std::string& rules) {
        for (const char* point : {"insert:", "update", "dob2v", "verifyb2v", "VmwareProfileOptions@"})
            if (rules.find(point) != std::string::npos)
                return true;
        return !document["isBlocked"] &&
               std::any_of(document["findings"].begin(), document["findings"].end(),
                           [](const Json& finding) { return finding["id"] == "profile.unknown"; });
    }

    void edit(const std::string& file, const char* pattern, const char* replacement) const {
        const std::string text = (std::ostringstream() << std::ifstream(m_lab.path(file)).rdbuf()).str();
        m_lab.write(file, std::regex_replace(text, std::regex(pattern), replacement));
    }

    Lab m_lab;
    Schema m_schema{std::string(ZOR_SOURCE_DIR) + "/share/schema/check.schema.json"};
    static inline int s_compared = 0;
    static inline int s_byDoing = 0;
};

TEST_F(Check, isTheCommandsVerdictOnUsage) {
    compare(usageExits());
}
TEST_F(Check, isTheCommandsVerdictOnClients) {
    compare(clientsThatDoNotQualifyExits());
}
TEST_F(Check, isTheCommandsVerdictOnProfilesAndJobs) {
    compare(profilesAndPendingJobsExits());
}
TEST_F(Check, isTheCommandsVerdictOnTargets) {
    compare(targetsThatAreNotThereExits());
}
TEST_F(Check, isTheCommandsVerdictOnSubmissions) {
    compare(submissionExits());
}
TEST_F(Check, isTheCommandsVerdictOnConsoleJobs) {
    compare(consoleJobsExits());
}

TEST_F(Check, isTheCommandsVerdictOnBadAnswers) {
    m_lab.write("target", "toolsIsoPath=t");
    const std::vector<std::string> arguments =
        argumentsOf(Exit{"ledger01.corp.example", "", "", "", 1, 0, "", ""}, m_lab.path("target"));
    for (const char* rule :
         {"connect:zord=close", "version=type", "query:Config=notxml", "tree:Config=deep", "catalogue=close",
          "command=37", "listing:10=half", "listing:9=notxml", "listing:11", "listing:19", "listing:7@3"}) {
        SCOPED_TRACE(rule);
        compare(arguments, rule);
        m_lab.forget();
    }
}

// In parts, so that no test is long.
class CheckOfScenarios : public Check, public testing::WithParamInterface<std::size_t> {};
constexpr std::size_t PARTS = 4;

TEST_P(CheckOfScenarios, isTheCommandsVerdict) {
    const Json list = Json::parse(m_lab.run(ZOR_ZORLAB, {"scenario", "--json"}).out);
    EXPECT_GT(list.size(), 20U);
    for (std::size_t i = GetParam(); i < list.size(); i += PARTS) {
        const std::string name = list[i]["name"];
        SCOPED_TRACE(name);
        m_lab.stop();
        const Json scenario =
            Json::parse(m_lab.run(ZOR_ZORLAB, {"scenario", name, m_lab.path("lab"), "--json"}).out);
        std::string rules;
        for (const std::string word : scenario["serve"])
            if (word != "--fail")
                rules += word + " ";
        compare(scenario["arguments"], rules, {{"KVN_CONF", scenario["environment"]["KVN_CONF"]}});
    }
}
INSTANTIATE_TEST_SUITE_P(Parts, CheckOfScenarios, testing::Range(std::size_t{0}, PARTS));

TEST_F(Check, tellsAllAtOnceWithWaysOut) {
    m_lab.serve();
    m_lab.write("target",
                "name=NG-WEB01\ntoolsIsoPath=t\nesxhost=esx01\nresourcepol=Gold\nfolder=Production\n"
                "network=VM Netwrok\nharddisk=0:ng-san-1\n");
    const Ended ended =
        m_lab.zorinfo({"check", "-C", "ledger01.corp.example", "-vmserver", "vcenter01.lab.example",
                       "-vmproxy", "convhost1.lab.example", "-veconfig", m_lab.path("target")});
    EXPECT_EQ(ended.status, 1);
    for (const char* part :
         {"proxy.unknown (-vmproxy)", "Did you mean \"convhost01.lab.example\"",
          "host.unknown (esxhost, line 3)", "Did you mean \"esx01.lab.example\"",
          "folder.unknown (folder, line 5)", "\"/Northgate/vm/Production\"", "machine.exists (name, line 1)",
          "Did you mean \"resourcepool\"", "disk.unmapped"})
        EXPECT_THAT(ended.out, HasSubstr(part));
    EXPECT_EQ(ended.out.find('\033'), std::string::npos);
}

// Lines that name objects that exist; those of a case come behind them, from the eighth on.
const std::string GIVEN = "name=new-vm\ntoolsIsoPath=t\nesxhost=esx01.lab.example\ndatacenter=Northgate\n"
                          "folder=/Northgate/vm\nresourcepool=Gold\nnetwork=VM Network\n";

// "store.unknown (harddisk 8 9) ng-san-1: ", and what is said of it.
std::string summaryOf(const Json& finding) {
    std::string text = finding["id"].get<std::string>() + " (";
    text += finding["key"].is_null() ? "" : finding["key"].get<std::string>();
    for (const Json& line : finding["lines"])
        text += " " + line.dump();
    return text + ") " + finding["value"].get<std::string>() + ": " + finding["message"].get<std::string>() +
           " " + finding["hint"].get<std::string>();
}

TEST_F(Check, tellsOfEachDoubtAndItsPlace) {
    const struct {
        const char *options, *target;
        std::string begins, says;
        const char* before = "";
    } cases[] = {
        {"", "harddisk=0:ng-san-01\nharddisk=0:ng-san-02", "disk.repeated (harddisk 8 9) Harddisk0: ", ""},
        {"", "harddisk=7:ng-san-01", "disk.unknown (harddisk 8) Harddisk7: ", "Harddisk1"},
        {"", "harddisk=0:ng-san\nharddisk=1:ng-san", "store.unknown (harddisk 8 9) ng-san: ", "ng-san-01"},
        {"", "datastore=ng-san\nharddisk=1:ng-san", "store.unknown (datastore 8 9) ng-san: ", ""},
        {"", "resourcepool=Web", "name.ambiguous (resourcepool 8) Web: ", "resource pool"},
        {"", "name=ng-web01", "machine.exists (name 8) ng-web01: ", "\"ledger01-vm\" is free"},
        {"", "network=VM  Network", "network.unknown (network 8) VM  Network: ", "\"VM  Network\""},
        {"", "esxhost=esx01\nnetwork=VM",
         "network.unknown (network 9) VM: ", "Assuming the ESX host \"esx01.lab."},
        {"", "datacenter=Norhtgate\nfolder=vms",
         "folder.unknown (folder 9) vms: ", "Assuming the data center \"Northgate\"."},
        {"-vmserver vcentre01", "resourcepool=Gould", "pool.unknown (resourcepool 8) Gould: ",
         "Assuming the virtual machine server \"vcenter01.lab.example\"."},
        {"-vmhv", "", "option.vmhv (-vmhv) Hyper-V: ", ""},
        {"-vmhv", "", "check.skipped () target (zorb2v refuses Hyper-V", ""},
        {"", "", "job.pending (-C) ledger01.corp.example: ", "queued, ready, since",
         "INSERT INTO ZOR_P2VRestoreTask (ClientName, State, Operation) "
         "VALUES ('ledger01.corp.example', 1, 1)"},
        {"", "", "backup.old () 20", "more than a day",
         "UPDATE ZOR_Config SET RetrievalTime = RetrievalTime + 90000"},
    };
    edit("lab/inventory.toml", "\"Silver\"", "\"Silver\", \"Silver/Web\"");
    m_lab.serve();
    for (const auto& [options, target, begins, says, before] : cases) {
        SCOPED_TRACE(begins);
        m_lab.sql(before);
        m_lab.write("target", GIVEN + target);
        std::vector<std::string> arguments =
            words(options + std::string(" -C ledger01.corp.example -vmserver vcenter01.lab.example "
                                        "-vmproxy convhost01.lab.example -veconfig"));
        arguments.push_back(m_lab.path("target"));
        const Json document = check(arguments);
        std::vector<std::string> found;
        for (const Json& finding : document["findings"])
            if (summaryOf(finding).starts_with(begins))
                found.push_back(summaryOf(finding));
        EXPECT_THAT(found, testing::ElementsAre(HasSubstr(says)));
        m_lab.forget();
    }
}

TEST_F(Check, tellsWhichBackupHoldsAFile) {
    for (const char* type : {"type = 13", "type = 0"}) {
        SCOPED_TRACE(type);
        edit("lab/catalogue.toml", "type = 13", type);
        m_lab.stop();
        m_lab.serve();
        const std::string out =
            m_lab.zorinfo(words("check -C depot05.corp.example -vmserver x -vmproxy y -veconfig /no/file"))
                .out;
        for (const char* part : {"2-6. backup.file", "So with", "is no full one (Incremental)"})
            EXPECT_THAT(out, HasSubstr(part));
        EXPECT_EQ(out.find("> The newest backup"), out.rfind("> The newest backup")) << "told once";
    }
}

TEST_F(Check, tellsWhyABackupThatHoldsAFileDoesNotCount) {
    const auto image = [](const char* schedule, int behind, const char* file) {
        return "[[client.image]]\npolicy = \"Windows_Hourly\"\nschedule = \"" + std::string(schedule) +
               "\"\ntime = " + std::to_string(1795384800 + behind) + "\nfiles = [\"" + file + "\"]\n";
    };
    const std::string holder = image("Full", 20, "/System State/Registry/Registry");
    for (const auto& [images, objection] :
         {std::pair(holder + image("Hourly", -10, "/x"), "is newer than the configuration of"),
          std::pair(image("Full", 30, "/x") + holder + image("Full", -10, "/x"),
                    "is not the newest full one")}) {
        m_lab.write("lab/catalogue.toml",
                    "[[client]]\nname = \"depot05.corp.example\"\ntype = 13\n" + images);
        m_lab.stop();
        m_lab.serve();
        const Json found = check(words("-C depot05.corp.example -vmserver x -vmproxy y -veconfig /dev/null"));
        EXPECT_THAT(firstThatBlocks(found)["hint"].get<std::string>(), HasSubstr(objection));
    }
}

TEST_F(Check, showsWhatWouldBeRecorded) {
    m_lab.serve();
    m_lab.write("target", "name=it's new\ntoolsIsoPath=t\nesxhost=esx11.lab.example\ndatacenter=Southbank\n"
                          "folder=/Southbank/vm\nharddisk=0:sb-esx11-local\nharddisk=1:sb-nfs-01\n");
    const std::vector<std::string> arguments = {"-C",    "ledger01.corp.example",
                                                "-vmse", "vcenter01.lab.example",
                                                "-vmpr", "convhost01.lab.example",
                                                "-vec",  m_lab.path("target"),
                                                "-vmsn", "-vmpoo"};
    const Json document = check(arguments);
    EXPECT_EQ(document["status"], 0) << document.dump(2);
    EXPECT_EQ(document["record"]["task"]["VmName"], "it's new");
    EXPECT_EQ(document["record"]["profile"]["EsxServer"], "esx11.lab.example");
    EXPECT_EQ(document["record"]["disks"].size(), 2U);
    EXPECT_EQ(document["space"][0]["needed"].get<long>() - document["space"][0]["free"].get<long>(),
              -document["space"][0]["after"].get<long>());
    std::vector<std::string> identifiers;
    for (const Json& finding : document["findings"])
        identifiers.push_back(finding["id"]);
    EXPECT_THAT(identifiers, testing::IsSupersetOf({"option.ignored", "store.space", "network.out"}));
    EXPECT_EQ(m_lab.zorb2v(arguments).status, 0);
    EXPECT_EQ(m_lab.sql("SELECT VmName FROM ZOR_P2VRestoreTask"), "it's new\n");
}

TEST_F(Check, holdsWhatIsDrafted) {
    m_lab.serve();
    const Schema schema(std::string(ZOR_SOURCE_DIR) + "/share/schema/draft.schema.json");
    for (const char* options : {"-vmserver vcenter01.lab.example -vmproxy convhost01.lab.example",
                                "-vmserver esx90.lab.example -vmproxy convhost02.lab.example -systemOnly"}) {
        const Ended drafted = m_lab.zorinfo(words(std::string("draft ledger01.corp.example ") + options));
        EXPECT_EQ(drafted.status, 0) << drafted.err;
        m_lab.write("target", drafted.out);
        std::vector<std::string> arguments = words(std::string("-C ledger01.corp.example ") + options);
        arguments.insert(arguments.end(), {"-veconfig", m_lab.path("target")});
        const Json document = check(arguments);
        EXPECT_EQ(document["status"], 0) << document.dump(2);
        for (const Json& finding : document["findings"])
            EXPECT_EQ(finding["severity"], "informs") << finding.dump(2);
        EXPECT_EQ(m_lab.zorb2v(arguments).status, 0) << drafted.out;
        m_lab.forget();
        const Json draft = Json::parse(
            m_lab.zorinfo(words(std::string("draft ledger01.corp.example --json ") + options)).out);
        EXPECT_EQ(schema.breach(draft), "");
        EXPECT_EQ(draft["file"], drafted.out);
    }
    const Ended full = m_lab.zorinfo({"draft", "ledger01.corp.example", "-vmserver", "esx90.lab.example",
                                      "-vmproxy", "convhost01.lab.example"});
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.err, HasSubstr("has room"));
    EXPECT_EQ(m_lab.zorinfo({"draft", "ledger01.corp.example", "-vmserver", "x"}).status, 2);
}

TEST_F(Check, holdsWhatIsDraftedOfAnEstate) {
    ASSERT_EQ(m_lab.run(ZOR_ZORLAB, {"init", m_lab.path("lab"), "--force", "--estate", "small"}).status, 0);
    m_lab.serve();
    std::map<int, int> ends;
    for (const std::string& client : words(m_lab.zorinfo({"configs", "--names"}).out)) {
        const std::string options =
            client + " -vmserver vcenter01.lab.example -vmproxy convhost01.lab.example";
        const Ended drafted = m_lab.zorinfo(words("draft " + options));
        EXPECT_EQ(drafted.err.empty(), drafted.status == 0) << drafted.err;
        ++ends[drafted.status];
        if (drafted.out.empty())
            continue;
        m_lab.write("target", drafted.out);
        EXPECT_EQ(check(words("-C " + options + " -veconfig " + m_lab.path("target")))["status"],
                  drafted.status)
            << drafted.out;
    }
    EXPECT_GT(ends[0], 2);
    EXPECT_GT(ends[1], 2);
}

TEST_F(Check, holdsNoDraftOfWhatIsNotTold) {
    const struct {
        const char* rules;
        const char* client;
        const char* server;
        int status;
        const char* err;
    } cases[] = {
        {"listing:22", "ledger01", "vcenter01", 3,
         "vcenter01.lab.example did not answer: data stores of esx01"},
        {"listing:17 listing:19", "ledger01", "vcenter01", 3, "did not answer: networks of esx01"},
        {"listing:22@1", "ledger01", "vcenter01", 0, "data stores of esx01.lab.example not told (status 1): that host is left out"},
        {"", "depot05", "vcenter01", 1, "zorinfo: backup.file: No full backup"},
        {"", "quarry06", "vcenter01", 1, "takes 3.9 TiB, and the roomiest data store"},
        {"", "ledgr01", "vcenter01", 3, "Did you mean \"ledger01.corp.example\"?"},
        {"", "ledger01", "vcentre01", 3, "Did you mean \"vcenter01.lab.example\"?"},
    };
    for (const auto& [rules, client, server, status, err] : cases) {
        m_lab.serve(words(rules));
        const Ended drafted =
            m_lab.zorinfo({"draft", std::string(client) + ".corp.example", "-vmserver",
                           std::string(server) + ".lab.example", "-vmproxy", "convhost01.lab.example"});
        EXPECT_EQ(drafted.status, status) << rules << client;
        EXPECT_THAT(drafted.err, HasSubstr(err));
        m_lab.stop();
    }
}

TEST_F(Check, wantsOptions) {
    EXPECT_EQ(m_lab.zorinfo({"check"}).status, 2);
    const Ended ended = m_lab.zorinfo({"check", "--json"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(Json::parse(ended.out)["error"]["status"], 2);
    EXPECT_THAT(m_lab.zorinfo({"check", "--help"}).out, HasSubstr("Exit status"));
    EXPECT_EQ(m_lab.zorinfo({"check", "-h"}).status, 1) << "an option of the command";
}

} // namespace
} // namespace Zorvane
