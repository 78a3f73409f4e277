// SPDX-License-Identifier: Apache-2.0
#include "flow/exitScenarios.h"

#include "flow/Lab.h"

namespace Zorvane {

namespace {

constexpr int USAGE = 7;
constexpr int SUBMITTED = 32;

const std::string SERVER = "-vmserver vcenter01.lab.example ";
const std::string PROXY = "-vmproxy convhost01.lab.example ";
const std::string NEEDED = SERVER + PROXY + "-veconfig CONF ";
const std::string TARGET = "name=new-vm\ntoolsIsoPath=[ng-san-01] iso/tools.iso\n";

// The way of a conversion, part by part.
const std::string READ = "config tree";
const std::string GATES = READ + " config tree backups";
const std::string DEFAULTS = GATES + " 9 10 7 22 11 7 19 17";
const std::string PROFILE = DEFAULTS + " equal? profile+";
const std::string PENDING = PROFILE + " pending?";
const std::string LISTED = PENDING + " 9 10 7 7 19 11 7 22 17";
const std::string VERIFIED = LISTED + " profile? verify";
const std::string ENABLED = VERIFIED + " profile?";
const std::string INSERTED = ENABLED + " task+";
const std::string STARTED = INSERTED + " start";

const std::string LEDGER = "ledger01.corp.example";
const std::string QUARRY = "quarry06.corp.example";

} // namespace

std::vector<Exit> usageExits() {
    return {
        {"", "", "", "", 1, USAGE, "5", ""},
        {"", NEEDED + "-C", "", "", 1, USAGE, "6 -C", ""},
        {"", "-C a " + SERVER + "-veconfig CONF", "", "", 1, USAGE, "8", ""},
        {"", "-C a " + PROXY + "-veconfig CONF", "", "", 1, USAGE, "4", ""},
        {"", "-C a " + PROXY + SERVER, "", "", 1, USAGE, "3", ""},
        {"", "-C a " + PROXY + SERVER + "-veconfig /no/file", "", "", 1, USAGE, "31 /no/file", ""},
        {"", "-C a " + PROXY + SERVER + "-veconfig /tmp", "", "", 1, USAGE, "31 /tmp", ""},
        {LEDGER, "", "harddisk=1\n", "", 1, USAGE, "", ""},
        {LEDGER, "-help", "", "", 1, USAGE, "", READ},
        {"nobody", "-help", "", "", 3, 0, "17 current", "config"},
        {LEDGER, "", "toolsIsoPath=\"\"\n", "", 1, USAGE, "10 toolsIsoPath", DEFAULTS},
        {LEDGER, "", "", "listing:7", 1, USAGE, "10 esxhost", DEFAULTS},
        {LEDGER, "", "", "listing:17", 1, USAGE, "10 network", DEFAULTS},
        {LEDGER, "", "", "listing:22", 1, USAGE, "10 datastore", DEFAULTS},
        {LEDGER, "-vmhv", "", "", 1, USAGE, "", GATES},
        {"", "-C EMPTY " + NEEDED, "", "", 3, 0, "17 current", "config"},
        {LEDGER, "-config EMPTY", "", "", 3, 0, "17", "config"},
        {"", "-C " + LEDGER + " -vmserver EMPTY " + PROXY + "-veconfig CONF", "", "", 1, USAGE, "4",
         GATES + " 9 10 22 11 17"},
        {"", "-C " + LEDGER + " -vmserver EMPTY " + PROXY + "-veconfig CONF", "", "listing:10", 1, 0, "",
         GATES + " 9 10"},
        {"", "-C " + LEDGER + " " + SERVER + "-vmproxy EMPTY -veconfig CONF", "", "", 1, USAGE, "8",
         DEFAULTS},
        {"harbor03.corp.example", "-vmhv", "", "", 1, 0, "14 harbor03.corp.example|current", READ},
    };
}

std::vector<Exit> clientsThatDoNotQualifyExits() {
    return {
        {LEDGER, "", "", "query:Config=7", 3, 0, "15", "config"},
        {"nobody", "", "", "", 3, 0, "17 current", "config"},
        {LEDGER, "-config old", "", "", 3, 0, "17 old", "config"},
        {LEDGER, "", "", "tree:Config=7", 3, 0, "17 current", READ},
        {"relic02.corp.example", "", "", "", 1, 0, "14 relic02.corp.example|current", READ},
        {"HARBOR03.corp.example", "-con Current", "", "", 1, 0, "14 HARBOR03.corp.example|Current", READ},
        {"depot05.corp.example", "", "", "", 1, 0, "33", GATES},
        {LEDGER, "", "", "query:Config@2=7", 1, 0, "33", READ + " config"},
        {LEDGER, "", "", "catalogue:kvnlist=1", 1, 0, "33", GATES},
        {LEDGER, "", "", "catalogue=1", 1, 0, "33", GATES},
        {LEDGER, "", "", "catalogue=192", 1, 0, "34", GATES},
        {LEDGER, "", "", "catalogue=193", 1, 0, "34", GATES},
        {LEDGER, "", "", "catalogue=116", 1, 0, "34", GATES},
    };
}

std::vector<Exit> profilesAndPendingJobsExits() {
    return {
        {LEDGER, "", "", "listing:10", 1, 0, "", GATES + " 9 10"},
        {LEDGER, "-veprofile MINE", "", "", 1, 0, "18", DEFAULTS + " profile?", "1 0",
         "INSERT INTO ZOR_VmwareProfileOptions (ProfileName) VALUES ('mine')"},
        {LEDGER, "-veprofile p", "", "query:VmwareProfileOptions=7", 1, 0, "15", DEFAULTS + " profile?"},
        {LEDGER, "", "", "query:VmwareProfileOptions=7", 1, 0, "\n", DEFAULTS + " equal?"},
        {LEDGER, "", "", "insert:VmwareProfileOptions=7", 1, 0, "\n", PROFILE},
        {LEDGER, "", "", "", 1, 0, "16", PENDING, "1 1",
         "INSERT INTO ZOR_P2VRestoreTask (ClientName, State) VALUES ('Ledger01.CORP.example', 3)"},
        {LEDGER, "", "", "query:P2VRestoreTask=7", 1, 0, "15", PENDING, "1 0"},
    };
}

std::vector<Exit> targetsThatAreNotThereExits() {
    const std::string given = "esxhost=esx01.lab.example\ndatacenter=/x/Northgate\nfolder=/Northgate/vm\n"
                              "resourcepool=Gold\ndatastore=ng-san-01\nnetwork=VM Network\n";
    const auto with = [&](const std::string& line, const std::string& told, const std::string& listings) {
        return Exit{LEDGER,
                    "",
                    given + line + "\n",
                    "",
                    1,
                    0,
                    told,
                    GATES + " 9 10 equal? profile+ pending? " + listings + " profile-"};
    };
    return {
        {LEDGER, "", "", "listing:9@2", 1, 0, "21 convhost01.lab.example", PENDING + " 9 profile-"},
        {LEDGER, "", "", "listing:10@2", 1, 0, "22 vcenter01.lab.example", PENDING + " 9 10 profile-"},
        with("esxhost=esx77", "30 esx77", "9 10 7"),
        with("datacenter=/x/Westend", "23 /x/Westend", "9 10 7 7"),
        with("folder=/Northgate/vm/No", "24 /Northgate/vm/No", "9 10 7 7 19"),
        with("cluster=cl9", "29 cl9", "9 10 7 7 19 7"),
        with("resourcepool=Lead", "25 Lead", "9 10 7 7 19 11"),
        with("name=NG-WEB01", "26", "9 10 7 7 19 11 7"),
        with("datastore=ds9", "28 ds9", "9 10 7 7 19 11 7 22"),
        with("harddisk=0:ng-san-02\nharddisk=1:\"d9\"", "28 d9", "9 10 7 7 19 11 7 22 22 22"),
        with("network=Dark net", "27 Dark net", "9 10 7 7 19 11 7 22 17"),
        // A machine of that name is no matter where it may be overwritten.
        {LEDGER, "-O", "name=ng-web01\n", "verifyb2v=199", 1, 0, "20",
         PENDING + " 9 10 7 7 19 11 22 17 profile? verify profile-"},
        {LEDGER, "", "", "verifyb2v=-4", 1, 0, "20", VERIFIED + " profile-"},
        {LEDGER, "", "", "verifyb2v=200", 1, 0, "11 200", VERIFIED + " profile-"},
        {LEDGER, "", "", "query:VmwareProfileOptions@2=7", 1, 0, "15", LISTED + " profile? profile-"},
        {LEDGER, "", "", "verifyb2v deleteprofile", 1, 0, "20", VERIFIED + " profile-", "1 0"},
    };
}

std::vector<Exit> submissionExits() {
    const std::string lost = "query:VmwareProfileOptions@3=7"; // the profile can't be made visible
    const std::string disks = "UPDATE ZOR_WindowsDisk SET DeviceType = CASE WHEN Name LIKE '%Harddisk";
    return {
        {LEDGER, "", "", "insert:P2VRestoreTask=7", 1, 0, "37", INSERTED, "1 0"},
        {LEDGER, "", "", "dob2v=7", 1, 0, "38", STARTED, "1 1"},
        // The run goes on without a task, and the daemon is asked for number 0.
        {LEDGER, "", "", lost, 1, 0, "38", STARTED, "1 0"},
        {LEDGER, "", "", lost + " dob2v:0=0", 0, SUBMITTED, "", STARTED, "1 0"},
        {QUARRY, "", "", "", 1, 0, "39", ENABLED, "1 0"},
        {QUARRY, "-systemOnly", "", "", 0, SUBMITTED, "", STARTED, "1 1"},
        {LEDGER, "", "", "", 1, 0, "35", ENABLED, "1 0", disks + "0' THEN 7 ELSE 1 END"},
        {LEDGER, "", "", "", 1, 0, "36", ENABLED, "1 0", disks + "1' THEN 6 ELSE 1 END"},
        {LEDGER, "-sys", "", "", 0, SUBMITTED, "", STARTED, "1 1"},
    };
}

std::vector<Exit> consoleJobsExits() {
    const std::string given = "esxhost=esx01.lab.example\nnetwork=VM Network\ndatastore=ng-san-01\n";
    const std::string hidden =
        "INSERT INTO ZOR_VmwareProfileOptions (ProfileName, HiddenProfile) VALUES ('P', 1)";
    const std::string task = "INSERT INTO ZOR_P2VRestoreTask (ClientName) VALUES ('" + LEDGER + "')";
    const std::string enabled = GATES + " pending? profile? profile! task+ start";
    return {
        {LEDGER, "-gui -veprofile P", given, "", 0, SUBMITTED, "", enabled, "1 1", hidden},
        {LEDGER, "-gui -veprofile P", given, "update=7", 1, 0, "38", enabled, "0 0", hidden},
        {LEDGER, "-gui -veprofile Q", given, "", 1, 0, "38", GATES + " pending? profile? task+ start"},
        {LEDGER, "-gui -veprofile P", "", "", 1, USAGE, "10 esxhost", GATES},
        {LEDGER, "-gui -veprofile P", given, "", 1, 0, "16", GATES + " pending?", "0 1", task},
    };
}

std::vector<std::string> argumentsOf(const Exit& exit, const std::string& target) {
    std::vector<std::string> arguments =
        words((exit.client.empty() ? "" : "-C " + exit.client + " " + NEEDED) + exit.options);
    for (std::string& argument : arguments)
        if (argument == "CONF" || argument == "EMPTY")
            argument = argument == "CONF" ? target : "";
    return arguments;
}

std::string targetOf(const Exit& exit) {
    return TARGET + exit.target;
}

} // namespace Zorvane
