// SPDX-License-Identifier: Apache-2.0
#include "torture/runs.h"

namespace Zorvane::Torture {

const std::vector<Run>& runs() {
    static const std::string LEDGER = "-C ledger01.corp.example";
    static const std::string GIVEN = "esxhost=esx01.lab.example\nnetwork=VM Network\ndatastore=ng-san-01\n";
    static const std::vector<Run> all = {
        {"submitted", LEDGER, "name=new-vm\nharddisk=0:ng-san-01\nharddisk=1:ng-san-02\n", 0},
        {.name = "traced", .options = "-C atlas07.corp.example -systemOnly", .status = 0, .debugLevel = 6},
        // A gate each, in the order of a conversion.
        {"usage", LEDGER, "harddisk=1\n"},
        {"client", "-C nobody", "", 3},
        {"eligibility", "-C relic02.corp.example"},
        {"backups", "-C depot05.corp.example"},
        {"defaults", LEDGER, "toolsIsoPath=\"\"\n"},
        {"profile", LEDGER + " -veprofile MINE", "", 1,
         "INSERT INTO ZOR_VmwareProfileOptions (ProfileName) VALUES ('mine')"},
        {"pending", LEDGER, "", 1,
         "INSERT INTO ZOR_P2VRestoreTask (ClientName, State, ProfileName) VALUES ('LEDGER01.corp.example', "
         "3, 'P');"
         "INSERT INTO ZOR_VmwareProfileOptions (ProfileName) VALUES ('P')"},
        // With the disks of the first run, so that its profile is like that one's but for the network.
        {"network", LEDGER, "network=Dark net\nharddisk=0:ng-san-01\nharddisk=1:ng-san-02\n", 1, "",
         "Dark net"},
        {"disks", "-C quarry06.corp.example"},
        {"console", LEDGER + " -gui -veprofile P", GIVEN, 0,
         "INSERT INTO ZOR_VmwareProfileOptions (ProfileName, HiddenProfile) VALUES ('P', 1)"},
        {.name = "zordDown", .options = LEDGER, .status = 3, .down = "zord"},
        {.name = "kvnrdDown", .options = LEDGER, .down = "kvnrd"},
        {.name = "child", .options = "", .status = 0},
    };
    return all;
}

} // namespace Zorvane::Torture
