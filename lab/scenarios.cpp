// SPDX-License-Identifier: Apache-2.0
#include "lab/Scenario.h"
#include "model/CZor.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "model/windows_records.h"

#include <array>

namespace Zorvane {

namespace {

// --- What is different of a scenario's client, compared with the sample that it is made from

void runOldWindows(CZor& client) {
    constexpr const char* XP = "VER@5.1#RID@#TYP@WORKSTATION#SPL@3#ARC@X86#";
    for (CSystem* system : client.m_vSystem)
        system->setOsLevel(XP);
    for (CWindowsSystem* system : client.m_vWindowsSystem)
        system->setOsLevel(XP);
}

void beDiscoveredOnly(CZor& client) {
    client.m_vConfig.front()->setType(ConfigType::DISCOVERED);
}

void haveATask(CZor& client) {
    const CConfig& config = *client.m_vConfig.front();
    auto* task = new CP2VRestoreTask;
    client.m_vP2VRestoreTask.push_back(task);
    task->setId(1);
    task->setClientName(config.getClientName());
    task->setConfigName(config.getName());
    task->setConfigId(config.getId());
    task->setState(TaskState::WAITING);
    task->setCreateTime(config.getRetrievalTime());
    task->setVeType(VeType::VMWARE);
}

// Profiles are named for their client, so that no two scenarios share one.
CVmwareProfileOptions& addProfile(CZor& client) {
    auto* profile = new CVmwareProfileOptions;
    client.m_vVmwareProfileOptions.push_back(profile);
    profile->setId(1);
    profile->setProfileName(client.m_vConfig.front()->getClientName());
    return *profile;
}

void haveAProfile(CZor& client) {
    addProfile(client);
}

void haveAHiddenProfile(CZor& client) {
    addProfile(client).setHiddenProfile(true);
}

void setDeviceType(CZor& client, std::size_t disk, std::uint32_t type) {
    if (disk < client.m_vWindowsDisk.size())
        client.m_vWindowsDisk[disk]->setDeviceType(type);
}

void haveAnOddSystemDisk(CZor& client) {
    setDeviceType(client, 0, 7);
}

void haveAnOddDataDisk(CZor& client) {
    setDeviceType(client, 1, 6);
}

// --- The table

constexpr std::string_view USED_UP = "query:VmwareProfileOptions@3=51"; // the third look at the profile fails
constexpr auto NO_MASTER = Scenario::Configuration::NoMaster;

constexpr auto SCENARIOS = std::to_array<Scenario>({
    {.name = "no-veconfig",
     .purpose = "the option -veconfig is missing",
     .message = 3,
     .told = 7,
     .without = "-veconfig"},
    {.name = "no-vmserver",
     .purpose = "the option -vmserver is missing",
     .message = 4,
     .told = 7,
     .without = "-vmserver"},
    {.name = "no-client", .purpose = "the option -C is missing", .message = 5, .told = 7, .without = "-C"},
    {.name = "no-client-value",
     .purpose = "the client's name is missing behind -C",
     .message = 6,
     .parameters = "-C",
     .told = 7,
     .without = "-C",
     .options = "-C"},
    {.name = "no-config-value",
     .purpose = "the configuration's name is missing behind -config",
     .message = 6,
     .parameters = "-config",
     .told = 7,
     .options = "-config"},
    {.name = "no-veconfig-value",
     .purpose = "the file's name is missing; the message names another option",
     .message = 6,
     .parameters = "-vmserver",
     .told = 7,
     .without = "-veconfig",
     .options = "-veconfig"},
    {.name = "no-master-value",
     .purpose = "the master server's name is missing; the message names another option",
     .message = 6,
     .parameters = "-vmserver",
     .told = 7,
     .options = "-S"},
    {.name = "help", .purpose = "the usage page that was asked for", .told = 7, .options = "-help"},
    {.name = "hyper-v",
     .purpose = "Hyper-V as the target is refused with the usage page",
     .told = 7,
     .options = "-vmhv"},
    {.name = "bad-harddisk",
     .purpose = "a harddisk line without a data store gives the usage page",
     .told = 7,
     .target = "harddisk=1"},
    {.name = "no-vmproxy",
     .purpose = "the option -vmproxy is missing",
     .message = 8,
     .told = 7,
     .without = "-vmproxy"},
    {.name = "no-master",
     .purpose = "no master server is configured: 9 is in the log, 15 is told",
     .message = 15,
     .status = 3,
     .logged = 9,
     .configuration = NO_MASTER},
    {.name = "no-tools",
     .purpose = "no image with the guest tools is named",
     .message = 10,
     .parameters = "toolsIsoPath",
     .told = 7,
     .target = "toolsIsoPath"},
    {.name = "no-esxhost",
     .purpose = "no ESX host is named, and none could be listed",
     .message = 10,
     .parameters = "esxhost",
     .told = 7,
     .target = "esxhost",
     .rules = "listing:7"},
    {.name = "no-network",
     .purpose = "no network is named, and none could be listed",
     .message = 10,
     .parameters = "network",
     .told = 7,
     .target = "network",
     .rules = "listing:17"},
    {.name = "no-datastore",
     .purpose = "no data store is named, and none could be listed",
     .message = 10,
     .parameters = "datastore",
     .told = 7,
     .target = "datastore|harddisk",
     .rules = "listing:22"},
    {.name = "master-lost",
     .purpose = "the master server hangs up while it verifies the profile",
     .message = 11,
     .parameters = "200",
     .rules = "verifyb2v=close"},
    {.name = "old-software",
     .purpose = "the client's backup software is too old",
     .message = 14,
     .parameters = "CLIENT|current",
     .base = "relic02"},
    {.name = "not-windows",
     .purpose = "the client runs Linux",
     .message = 14,
     .parameters = "CLIENT|current",
     .base = "harbor03"},
    {.name = "old-windows",
     .purpose = "the client's Windows is too old",
     .message = 14,
     .parameters = "CLIENT|current",
     .change = runOldWindows},
    {.name = "discovered-only",
     .purpose = "the configuration was discovered, not saved",
     .message = 14,
     .parameters = "CLIENT|current",
     .change = beDiscoveredOnly},
    {.name = "database-down",
     .purpose = "the recovery daemon hangs up",
     .message = 15,
     .status = 3,
     .rules = "connect:zord=close"},
    {.name = "database-other-version",
     .purpose = "the recovery daemon is of another version",
     .message = 15,
     .status = 3,
     .rules = "version=other"},
    {.name = "database-refuses",
     .purpose = "the recovery daemon refuses the first query",
     .message = 15,
     .status = 3,
     .rules = "query:Config=51"},
    {.name = "pending-unknown",
     .purpose = "pending conversions can't be asked for",
     .message = 15,
     .rules = "query:P2VRestoreTask=51"},
    {.name = "profile-unknown",
     .purpose = "the profile can't be read again",
     .message = 15,
     .rules = "query:VmwareProfileOptions@2=51"},
    {.name = "pending",
     .purpose = "a conversion of the client is pending",
     .message = 16,
     .change = haveATask},
    {.name = "unknown-client",
     .purpose = "no client of that name",
     .message = 17,
     .parameters = "current",
     .status = 3,
     .without = "-C",
     .options = "-C|nobody.scenario.example"},
    {.name = "unknown-configuration",
     .purpose = "no configuration of that name",
     .message = 17,
     .parameters = "last week",
     .status = 3,
     .options = "-config|last week"},
    {.name = "broken-configuration",
     .purpose = "the configuration's document can't be read",
     .message = 17,
     .parameters = "current",
     .status = 3,
     .rules = "tree:Config=notxml"},
    {.name = "profile-taken",
     .purpose = "the name behind -veprofile is taken",
     .message = 18,
     .change = haveAProfile,
     .options = "-veprofile|CLIENT"},
    {.name = "not-verified",
     .purpose = "the master server finds fault with the profile",
     .message = 20,
     .rules = "verifyb2v=1"},
    {.name = "unknown-vmproxy",
     .purpose = "no conversion host of that name",
     .message = 21,
     .parameters = "convhost77.lab.example",
     .without = "-vmproxy",
     .options = "-vmproxy|convhost77.lab.example"},
    {.name = "unknown-vmserver",
     .purpose = "no virtual machine server of that name",
     .message = 22,
     .parameters = "vcenter77.lab.example",
     .without = "-vmserver",
     .options = "-vmserver|vcenter77.lab.example"},
    {.name = "unknown-datacenter",
     .purpose = "no data center of that name",
     .message = 23,
     .parameters = "/Westend",
     .target = "datacenter=/Westend"},
    {.name = "unknown-folder",
     .purpose = "no folder of that name",
     .message = 24,
     .parameters = "/Northgate/vm/Nowhere",
     .target = "folder=/Northgate/vm/Nowhere"},
    {.name = "unknown-pool",
     .purpose = "no resource pool of that name",
     .message = 25,
     .parameters = "Lead",
     .target = "resourcepool=Lead"},
    {.name = "machine-exists",
     .purpose = "a machine of that name is there",
     .message = 26,
     .target = "name=ng-web01"},
    {.name = "unknown-network",
     .purpose = "no network of that name",
     .message = 27,
     .parameters = "Dark net",
     .target = "network=Dark net"},
    {.name = "unknown-datastore",
     .purpose = "no data store of that name",
     .message = 28,
     .parameters = "ng-san-77",
     .target = "datastore=ng-san-77"},
    {.name = "unknown-datastore-of-disk",
     .purpose = "no data store of the name on a disk's line",
     .message = 28,
     .parameters = "ng-san-99",
     .target = "harddisk=0:ng-san-01|harddisk=1:ng-san-99"},
    {.name = "unknown-cluster",
     .purpose = "no cluster of that name",
     .message = 29,
     .parameters = "ng-cluster9",
     .target = "cluster=ng-cluster9"},
    {.name = "unknown-esxhost",
     .purpose = "no ESX host of that name",
     .message = 30,
     .parameters = "esx77.lab.example",
     .target = "esxhost=esx77.lab.example"},
    {.name = "no-file",
     .purpose = "the target's file can't be opened",
     .message = 31,
     .parameters = "FILE.missing",
     .told = 7,
     .without = "-veconfig",
     .options = "-veconfig|FILE.missing"},
    {.name = "submitted", .purpose = "everything is in order: the job is submitted", .status = 0, .told = 32},
    {.name = "submitted-with-defaults",
     .purpose = "the inventory fills in what the file leaves out",
     .status = 0,
     .told = 32,
     .target = "esxhost|datacenter|folder|resourcepool|network|datastore|harddisk"},
    {.name = "submitted-system-only",
     .purpose = "a disk that can't come along is left out",
     .status = 0,
     .told = 32,
     .base = "quarry06",
     .options = "-systemOnly"},
    {.name = "submitted-overwriting",
     .purpose = "a machine of that name may be overwritten",
     .status = 0,
     .told = 32,
     .target = "name=ng-web01",
     .options = "-O"},
    {.name = "submitted-by-console",
     .purpose = "the console's profile is used and made visible",
     .status = 0,
     .told = 32,
     .change = haveAHiddenProfile,
     .options = "-gui|-veprofile|CLIENT"},
    {.name = "no-full-backup",
     .purpose = "the client has incremental backups only",
     .message = 33,
     .base = "depot05"},
    {.name = "no-system-files",
     .purpose = "the backups lack the system's own files",
     .message = 33,
     .rules = "catalogue:kvnlist=227"},
    {.name = "backups-unknown",
     .purpose = "the search for backups fails",
     .message = 33,
     .rules = "query:Config@2=51"},
    {.name = "catalogue-192",
     .purpose = "the backup catalogue can't be asked: status 192",
     .message = 34,
     .rules = "catalogue=192"},
    {.name = "catalogue-193",
     .purpose = "the backup catalogue can't be asked: status 193",
     .message = 34,
     .rules = "catalogue=193"},
    {.name = "catalogue-116",
     .purpose = "the backup catalogue can't be asked: status 116",
     .message = 34,
     .rules = "catalogue=116"},
    {.name = "odd-system-disk",
     .purpose = "the system's disk is of a kind that can't be converted",
     .message = 35,
     .change = haveAnOddSystemDisk},
    {.name = "odd-data-disk",
     .purpose = "a data disk is of a kind that can't be converted",
     .message = 36,
     .change = haveAnOddDataDisk},
    {.name = "not-recorded",
     .purpose = "the task's rows are refused",
     .message = 37,
     .rules = "insert:P2VRestoreTask=51"},
    {.name = "not-started",
     .purpose = "the job is recorded but not started",
     .message = 38,
     .rules = "dob2v=51"},
    {.name = "profile-not-shown",
     .purpose = "the profile can't be made visible: the job goes on without a task",
     .message = 38,
     .rules = USED_UP},
    {.name = "no-console-profile",
     .purpose = "the console's profile is not there",
     .message = 38,
     .options = "-gui|-veprofile|CLIENT"},
    {.name = "odd-bus",
     .purpose = "a data disk is on a bus that can't be converted",
     .message = 39,
     .base = "quarry06"},
    {.name = "inventory-down",
     .purpose = "the inventory does not answer: no message at all",
     .rules = "connect:kvnrd=close"},
    {.name = "profiles-unknown",
     .purpose = "profiles can't be asked for: an empty line",
     .rules = "query:VmwareProfileOptions=51",
     .blankLine = true},
    {.name = "profile-not-recorded",
     .purpose = "the profile is refused: an empty line",
     .rules = "insert:VmwareProfileOptions=51",
     .blankLine = true},
});

} // namespace

std::span<const Scenario> allScenarios() {
    return SCENARIOS;
}

} // namespace Zorvane
