// SPDX-License-Identifier: Apache-2.0
// CZorb2vCommandLine: the options.
#include "frontend/CZorb2vCommandLine.h"
#include "frontend/messageNumbers.h"
#include "frontend/veconfig.h"
#include "logging/Trace.h"
#include "platform/returnCodes.h"
#include "suite/kvnclient.h"

#include <algorithm>
#include <cstdlib>

namespace Zorvane {

namespace {

constexpr mrthLogDebugLevel_t LEVEL_OPTION = 4;
constexpr int OPTION_MISSING = 1;
constexpr int ARGUMENT_MISSING = 2;
constexpr int CONFIG_ARGUMENT_MISSING = 3;
constexpr const char* DEFAULT_CONFIG = "current";

constexpr CommandOption OPTION_ZORB2V{"-zorb2v", 2};
constexpr CommandOption OPTION_CONFIG{"-config", 3};
constexpr CommandOption OPTION_VMSERVER{"-vmserver", 5};
constexpr CommandOption OPTION_VMPROXY{"-vmproxy", 5};
constexpr CommandOption OPTION_VECONFIG{"-veconfig", 4};
constexpr CommandOption OPTION_POWER_ON{"-vmpo", 5};
constexpr CommandOption OPTION_STRIP_NETWORK{"-vmsn", 5};
constexpr CommandOption OPTION_VMWARE{"-vmw", 4};
constexpr CommandOption OPTION_HYPERV{"-vmhv", 4};
constexpr CommandOption OPTION_OVERWRITE{"-O", 2};
constexpr CommandOption OPTION_MASTER{"-S", 1};
constexpr CommandOption OPTION_CLIENT{"-C", 1};
constexpr CommandOption OPTION_HELP{"-help", 2};
constexpr CommandOption OPTION_SYSTEM_ONLY{"-systemOnly", 3};
constexpr CommandOption OPTION_VERSION{"-version", 4};
constexpr CommandOption OPTION_VEPROFILE{"-veprofile", 4};
constexpr CommandOption OPTION_GUI{"-gui", 2};
// "-esxhost" is an option in name only: no step reads it, the target host comes from the configuration file.

using Arguments = CZorb2vCommandLine::Arguments;

// The first element that matches, wherever it stands: values of other options are not skipped, so that a
// value that looks like an option counts as that option.
Arguments::const_iterator find(const Arguments& arguments, const CommandOption& option) {
    return std::find_if(arguments.begin(), arguments.end(),
                        [&](const std::string& element) { return option.matches(element); });
}

enum class Found { Absent, WithoutArgument, WithArgument };

// The option's argument is the next element, whatever it looks like. `nameInMessage` is the option that the
// user is told of when there is none.
Found takeArgument(const Arguments& arguments, const CommandOption& option, std::string_view nameInMessage,
                   std::string& value) {
    const auto at = find(arguments, option);
    if (at == arguments.end())
        return Found::Absent;
    if (at + 1 == arguments.end()) {
        tellFailure(MSG_NO_ARGUMENT, nameInMessage);
        return Found::WithoutArgument;
    }
    value = *(at + 1);
    return Found::WithArgument;
}

int extractOptional(const Arguments& arguments, const CommandOption& option, std::string& value) {
    return takeArgument(arguments, option, option.name, value) == Found::WithoutArgument ? ARGUMENT_MISSING
                                                                                         : 0;
}

int extractMandatory(const Arguments& arguments, const CommandOption& option, MessageNumber missing,
                     std::string& value) {
    switch (takeArgument(arguments, option, option.name, value)) {
    case Found::Absent:
        tellFailure(missing);
        return OPTION_MISSING;
    case Found::WithoutArgument:
        return ARGUMENT_MISSING;
    case Found::WithArgument:
        break;
    }
    return 0;
}

int extractFlag(Trace& trace, const Arguments& arguments, const CommandOption& option, const char* debugText,
                bool& flag) {
    if (find(arguments, option) != arguments.end()) {
        flag = true;
        trace.write(LEVEL_OPTION, debugText);
    }
    return trace.leave(0, ", return rc=", 0);
}

} // namespace

bool CommandOption::matches(std::string_view element) const {
    return element.size() >= static_cast<std::size_t>(shortestLength) && name.starts_with(element);
}

int GetMasterServerName(std::string& name) {
    ClassTrace trace(g_appLog, "options:GetMasterServerName()");
    const kvn_master_config* config = KVN_read_master_config() == 0 ? get_master_config_ptr() : nullptr;
    if (!config || config->servers.empty())
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    name = config->servers.front();
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

CZorb2vCommandLine::CZorb2vCommandLine() {
    // A run without a configured master server goes on; the daemon's connection will tell.
    initializeDefaults(m_input);
}

int CZorb2vCommandLine::initializeDefaults(B2VInput& input) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::initializeDefaults()");
    if (GetMasterServerName(input.masterServer) != 0) {
        if (g_appLog)
            g_appLog->WriteDiagMsg(FAILURE_FLAGS, LEVEL_FAILURE, trace.label(), MSG_NO_MASTER_SERVER);
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    input.configName = DEFAULT_CONFIG;
    for (std::string* text :
         {&input.clientName, &input.vmServer, &input.vmProxy, &input.toolsIsoPath, &input.vmDisplayName,
          &input.vmFolder, &input.dataCenter, &input.cluster, &input.esxHost, &input.vmNetwork,
          &input.resourcePool, &input.dataStore, &input.profileName})
        text->clear();
    input.guiJob = input.systemOnly = input.powerOn = input.stripNetwork = input.overwriteVm = false;
    input.veType = VMWARE_VE_TYPE;
    input.profileId = 0;
    input.diskFormat = DISK_FORMAT_THIN;
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

int CZorb2vCommandLine::parseArguments(const Arguments& arguments, B2VInput& input) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::parseArguments()");
    int rc = 0;
    const auto step = [&rc](int result) { return (rc = result) != 0; };
    // The first step that fails ends the parse; the order is part of the command's behaviour.
    (void)(step(extractHelp(arguments, m_helpRequested)) ||
           step(extractZorb2v(arguments, m_invokedByOthers)) || step(extractGui(arguments, input.guiJob)) ||
           step(extractSystemOnlyRestore(arguments, input.systemOnly)) ||
           step(extractVersion(arguments, m_version)) || step(extractVEtype(arguments, input.veType)) ||
           step(extractProfile(arguments, input.profileName)) ||
           step(extractClientAndConfig(arguments, input.clientName, input.configName)) ||
           step(extractMasterServer(arguments, input.masterServer)) ||
           step(extractVmproxy(arguments, input.vmProxy)) ||
           step(extractVMServerName(arguments, input.vmServer)) ||
           step(extractVEconfigDetails(arguments, input)) ||
           step(extractVmPowerOn(arguments, input.powerOn)) ||
           step(extractStripNetwork(arguments, input.stripNetwork)) ||
           step(extractOverwriteVM(arguments, input.overwriteVm)));
    return trace.leave(rc, ", return rc=", rc);
}

int CZorb2vCommandLine::extractHelp(const Arguments& arguments, bool& helpRequested) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractHelp()");
    return extractFlag(trace, arguments, OPTION_HELP, "help option was specified.", helpRequested);
}

int CZorb2vCommandLine::extractZorb2v(const Arguments& arguments, bool& invokedByOthers) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractZorb2v()");
    return extractFlag(trace, arguments, OPTION_ZORB2V, "zorb2v CLI invoked by others.", invokedByOthers);
}

int CZorb2vCommandLine::extractGui(const Arguments& arguments, bool& guiJob) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractGui()");
    return extractFlag(trace, arguments, OPTION_GUI, "gui option was specified.", guiJob);
}

int CZorb2vCommandLine::extractSystemOnlyRestore(const Arguments& arguments, bool& systemOnly) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractSystemOnlyRestore()");
    return extractFlag(trace, arguments, OPTION_SYSTEM_ONLY, "System only restore option was specified.",
                       systemOnly);
}

int CZorb2vCommandLine::extractVersion(const Arguments& arguments, std::string& version) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVersion()");
    return extractOptional(arguments, OPTION_VERSION, version);
}

int CZorb2vCommandLine::extractVEtype(const Arguments& arguments, std::uint32_t& veType) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVEtype()");
    if (find(arguments, OPTION_VMWARE) != arguments.end())
        veType = VMWARE_VE_TYPE;
    else if (find(arguments, OPTION_HYPERV) != arguments.end())
        veType = HYPERV_VE_TYPE;
    return trace.leave(0, ", veType=", veType);
}

int CZorb2vCommandLine::extractProfile(const Arguments& arguments, std::string& profileName) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractProfile()");
    return extractOptional(arguments, OPTION_VEPROFILE, profileName);
}

int CZorb2vCommandLine::extractClientAndConfig(const Arguments& arguments, std::string& clientName,
                                               std::string& configName) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractClientAndConfig()");
    if (const int rc = extractMandatory(arguments, OPTION_CLIENT, MSG_NO_CLIENT, clientName))
        return trace.leave(rc, ", return rc=", rc);
    switch (takeArgument(arguments, OPTION_CONFIG, OPTION_CONFIG.name, configName)) {
    case Found::Absent:
        configName = DEFAULT_CONFIG;
        break;
    case Found::WithoutArgument:
        return trace.leave(CONFIG_ARGUMENT_MISSING, ", return rc=", CONFIG_ARGUMENT_MISSING);
    case Found::WithArgument:
        break;
    }
    return trace.leave(0, ", return rc=", 0);
}

int CZorb2vCommandLine::extractMasterServer(const Arguments& arguments, std::string& masterServer) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractMasterServer()");
    // The message names "-vmserver" although "-S" lacks its argument; users and scripts know it so, and it
    // stays.
    switch (takeArgument(arguments, OPTION_MASTER, OPTION_VMSERVER.name, masterServer)) {
    case Found::Absent:
        trace.write(LEVEL_TRACE, "Master server Name is not specified");
        break;
    case Found::WithoutArgument:
        return trace.leave(ARGUMENT_MISSING, ", return rc=", ARGUMENT_MISSING);
    case Found::WithArgument:
        break;
    }
    return trace.leave(0, ", return rc=", 0);
}

int CZorb2vCommandLine::extractVmproxy(const Arguments& arguments, std::string& vmProxy) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVmproxy()");
    return extractMandatory(arguments, OPTION_VMPROXY, MSG_NO_VMPROXY, vmProxy);
}

int CZorb2vCommandLine::extractVMServerName(const Arguments& arguments, std::string& vmServer) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVMServerName()");
    return extractMandatory(arguments, OPTION_VMSERVER, MSG_NO_VMSERVER, vmServer);
}

int CZorb2vCommandLine::extractVEconfigDetails(const Arguments& arguments, B2VInput& input) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVEconfigDetails()");
    // "-vmserver" in the message again, as for "-S": it stays.
    switch (takeArgument(arguments, OPTION_VECONFIG, OPTION_VMSERVER.name, m_veConfigFile)) {
    case Found::Absent:
        tellFailure(MSG_NO_VECONFIG);
        return trace.leave(OPTION_MISSING, ", return rc=", OPTION_MISSING);
    case Found::WithoutArgument:
        return trace.leave(ARGUMENT_MISSING, ", return rc=", ARGUMENT_MISSING);
    case Found::WithArgument:
        break;
    }
    const int rc = parseVEconfig(m_veConfigFile, input);
    if (rc != 0)
        trace.write(LEVEL_FAILURE, "Failed to parse virtual environemnt configuration file=", m_veConfigFile);
    return trace.leave(rc, ", return rc=", rc);
}

int CZorb2vCommandLine::extractVmPowerOn(const Arguments& arguments, bool& powerOn) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVmPowerOn()");
    return extractFlag(trace, arguments, OPTION_POWER_ON, "power off VM after Restore option was specified.",
                       powerOn);
}

int CZorb2vCommandLine::extractStripNetwork(const Arguments& arguments, bool& stripNetwork) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractStripNetwork()");
    return extractFlag(trace, arguments, OPTION_STRIP_NETWORK, "strip network option was specified.",
                       stripNetwork);
}

int CZorb2vCommandLine::extractOverwriteVM(const Arguments& arguments, bool& overwriteVm) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractOverwriteVM()");
    return extractFlag(trace, arguments, OPTION_OVERWRITE, "Override existing VM option was specified.",
                       overwriteVm);
}

int CZorb2vCommandLine::validateInput(const B2VInput& input) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::validateInput()");
    // Hyper-V is recognised and refused here, at this one place.
    if (input.veType != VMWARE_VE_TYPE) {
        trace.write(LEVEL_FAILURE, "Unsupported VE Type.", input.veType);
        return trace.leave(1, ", return rc=", 1);
    }
    struct Requirement {
        bool isMet;
        MessageNumber message;
        const char* key; // null for a message without an argument
        const char* debugText;
    };
    const Requirement requirements[] = {
        {!input.vmServer.empty(), MSG_NO_VMSERVER, nullptr, "Vmserver is not provided"},
        {!input.vmProxy.empty(), MSG_NO_VMPROXY, nullptr, "Vmproxy is not provided"},
        {!input.toolsIsoPath.empty(), MSG_VALUE_MISSING, "toolsIsoPath",
         "tools iso location is not provided"},
        {!input.esxHost.empty(), MSG_VALUE_MISSING, "esxhost", "Target ESX host is not provided"},
        {input.stripNetwork || !input.vmNetwork.empty(), MSG_VALUE_MISSING, "network",
         "VM Network is not selected"},
        {!input.dataStore.empty() || !input.diskMap.empty(), MSG_VALUE_MISSING, "datastore",
         "Disk to Datastore mapping is not provided"},
    };
    for (const Requirement& requirement : requirements) {
        if (requirement.isMet)
            continue;
        if (requirement.key)
            tellFailure(requirement.message, requirement.key);
        else
            tellFailure(requirement.message);
        trace.write(LEVEL_FAILURE, requirement.debugText);
        return trace.leave(1, ", return rc=", 1);
    }
    return trace.leave(0, ", return rc=", 0);
}

void CZorb2vCommandLine::usage() {
    tellUser(MSG_USAGE);
    std::exit(1);
}

} // namespace Zorvane
