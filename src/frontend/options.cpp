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
// An option in name only: no step reads it, the target host comes from the configuration file.
constexpr CommandOption OPTION_ESXHOST{"-esxhost", 2};

constexpr CommandOption FLAGS[] = {OPTION_ZORB2V, OPTION_POWER_ON,    OPTION_STRIP_NETWORK,
                                   OPTION_VMWARE, OPTION_HYPERV,      OPTION_OVERWRITE,
                                   OPTION_HELP,   OPTION_SYSTEM_ONLY, OPTION_GUI};
constexpr CommandOption OPTIONS_WITH_ARGUMENT[] = {OPTION_CONFIG,   OPTION_VMSERVER, OPTION_VMPROXY,
                                                   OPTION_VECONFIG, OPTION_MASTER,   OPTION_CLIENT,
                                                   OPTION_VERSION,  OPTION_VEPROFILE};

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
Found takeArgument(Findings& findings, const Arguments& arguments, const CommandOption& option,
                   std::string_view nameInMessage, std::string& value) {
    const auto at = find(arguments, option);
    if (at == arguments.end())
        return Found::Absent;
    if (at + 1 == arguments.end()) {
        findings.report({.kind = FindingKind::OPTION_WITHOUT_VALUE,
                         .value = std::string(option.name),
                         .arguments = {std::string(nameInMessage)}});
        return Found::WithoutArgument;
    }
    value = *(at + 1);
    return Found::WithArgument;
}

int extractOptional(Findings& findings, const Arguments& arguments, const CommandOption& option,
                    std::string& value) {
    const Found found = takeArgument(findings, arguments, option, option.name, value);
    return found == Found::WithoutArgument ? ARGUMENT_MISSING : 0;
}

int extractMandatory(Findings& findings, const Arguments& arguments, const CommandOption& option,
                     FindingKind missing, std::string& value) {
    switch (takeArgument(findings, arguments, option, option.name, value)) {
    case Found::Absent:
        findings.report({.kind = missing});
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

// Words that no step takes, neither as an option nor as an option's argument. They are no matter for a run.
void reportIgnoredWords(Findings& findings, const Arguments& arguments) {
    std::vector<bool> isTaken(arguments.size(), false);
    for (const CommandOption& option : FLAGS)
        for (std::size_t i = 0; i < arguments.size(); ++i)
            isTaken[i] = isTaken[i] || option.matches(arguments[i]);
    for (const CommandOption& option : OPTIONS_WITH_ARGUMENT) {
        const auto at = static_cast<std::size_t>(find(arguments, option) - arguments.begin());
        for (std::size_t i = at; i < std::min(at + 2, arguments.size()); ++i)
            isTaken[i] = true;
    }
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (!isTaken[i])
            findings.report({.kind = FindingKind::WORD_IGNORED, .value = arguments[i]});
}

} // namespace

bool CommandOption::matches(std::string_view element) const {
    return element.size() >= static_cast<std::size_t>(shortestLength) && name.starts_with(element);
}

std::vector<std::string> optionNames() {
    std::vector<std::string> names = {std::string(OPTION_ESXHOST.name)};
    for (const CommandOption& option : FLAGS)
        names.emplace_back(option.name);
    for (const CommandOption& option : OPTIONS_WITH_ARGUMENT)
        names.emplace_back(option.name);
    return names;
}

int GetMasterServerName(std::string& name) {
    ClassTrace trace(g_appLog, "options:GetMasterServerName()");
    const kvn_master_config* config = KVN_read_master_config() == 0 ? get_master_config_ptr() : nullptr;
    if (!config || config->servers.empty())
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    name = config->servers.front();
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

CZorb2vCommandLine::CZorb2vCommandLine(Findings& findings) : m_findings(findings) {
    // A run without a configured master server goes on; the daemon's connection will tell.
    initializeDefaults(m_input);
}

int CZorb2vCommandLine::initializeDefaults(B2VInput& input) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::initializeDefaults()");
    if (GetMasterServerName(input.masterServer) != 0) {
        if (g_appLog)
            g_appLog->WriteDiagMsg(FAILURE_FLAGS, LEVEL_FAILURE, trace.label(),
                                   describe(FindingKind::MASTER_UNKNOWN).message);
        m_findings.report({.kind = FindingKind::MASTER_UNKNOWN});
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
    // The first step that fails gives the code, and ends the parse unless all findings are wanted; the order
    // is part of the command's behaviour.
    const auto ends = [&](int result) {
        if (rc == 0)
            rc = result;
        return result != 0 && !m_findings.wantsAll();
    };
    const bool ended =
        ends(extractHelp(arguments, m_helpRequested)) || ends(extractZorb2v(arguments, m_invokedByOthers)) ||
        ends(extractGui(arguments, input.guiJob)) ||
        ends(extractSystemOnlyRestore(arguments, input.systemOnly)) ||
        ends(extractVersion(arguments, m_version)) || ends(extractVEtype(arguments, input.veType)) ||
        ends(extractProfile(arguments, input.profileName)) ||
        ends(extractClientAndConfig(arguments, input.clientName, input.configName)) ||
        ends(extractMasterServer(arguments, input.masterServer)) ||
        ends(extractVmproxy(arguments, input.vmProxy)) ||
        ends(extractVMServerName(arguments, input.vmServer)) ||
        ends(extractVEconfigDetails(arguments, input)) || ends(extractVmPowerOn(arguments, input.powerOn)) ||
        ends(extractStripNetwork(arguments, input.stripNetwork)) ||
        ends(extractOverwriteVM(arguments, input.overwriteVm));
    if (!ended)
        reportIgnoredWords(m_findings, arguments);
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
    return extractOptional(m_findings, arguments, OPTION_VERSION, version);
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
    return extractOptional(m_findings, arguments, OPTION_VEPROFILE, profileName);
}

int CZorb2vCommandLine::extractClientAndConfig(const Arguments& arguments, std::string& clientName,
                                               std::string& configName) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractClientAndConfig()");
    int rc = extractMandatory(m_findings, arguments, OPTION_CLIENT, FindingKind::NO_CLIENT, clientName);
    if (rc != 0 && !m_findings.wantsAll())
        return trace.leave(rc, ", return rc=", rc);
    switch (takeArgument(m_findings, arguments, OPTION_CONFIG, OPTION_CONFIG.name, configName)) {
    case Found::Absent:
        configName = DEFAULT_CONFIG;
        break;
    case Found::WithoutArgument:
        if (rc == 0)
            rc = CONFIG_ARGUMENT_MISSING;
        break;
    case Found::WithArgument:
        break;
    }
    return trace.leave(rc, ", return rc=", rc);
}

int CZorb2vCommandLine::extractMasterServer(const Arguments& arguments, std::string& masterServer) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractMasterServer()");
    // The message names "-vmserver" although "-S" lacks its argument; users and scripts know it so, and it
    // stays.
    switch (takeArgument(m_findings, arguments, OPTION_MASTER, OPTION_VMSERVER.name, masterServer)) {
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
    return extractMandatory(m_findings, arguments, OPTION_VMPROXY, FindingKind::NO_PROXY, vmProxy);
}

int CZorb2vCommandLine::extractVMServerName(const Arguments& arguments, std::string& vmServer) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVMServerName()");
    return extractMandatory(m_findings, arguments, OPTION_VMSERVER, FindingKind::NO_SERVER, vmServer);
}

int CZorb2vCommandLine::extractVEconfigDetails(const Arguments& arguments, B2VInput& input) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::extractVEconfigDetails()");
    // "-vmserver" in the message again, as for "-S": it stays.
    switch (takeArgument(m_findings, arguments, OPTION_VECONFIG, OPTION_VMSERVER.name, m_veConfigFile)) {
    case Found::Absent:
        m_findings.report({.kind = FindingKind::NO_FILE});
        return trace.leave(OPTION_MISSING, ", return rc=", OPTION_MISSING);
    case Found::WithoutArgument:
        return trace.leave(ARGUMENT_MISSING, ", return rc=", ARGUMENT_MISSING);
    case Found::WithArgument:
        break;
    }
    const int rc = parseVEconfig(m_veConfigFile, input, m_findings, &m_veConfigLines);
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
        m_findings.report({.kind = FindingKind::TYPE_UNSUPPORTED, .value = "Hyper-V"});
        trace.write(LEVEL_FAILURE, "Unsupported VE Type.", input.veType);
        return trace.leave(1, ", return rc=", 1);
    }
    struct Requirement {
        bool isMet;
        FindingKind finding;
        const char* key;
        const char* debugText;
    };
    const Requirement requirements[] = {
        {!input.vmServer.empty(), FindingKind::NO_SERVER, "", "Vmserver is not provided"},
        {!input.vmProxy.empty(), FindingKind::NO_PROXY, "", "Vmproxy is not provided"},
        {!input.toolsIsoPath.empty(), FindingKind::VALUE_MISSING, "toolsIsoPath",
         "tools iso location is not provided"},
        {!input.esxHost.empty(), FindingKind::VALUE_MISSING, "esxhost", "Target ESX host is not provided"},
        {input.stripNetwork || !input.vmNetwork.empty(), FindingKind::VALUE_MISSING, "network",
         "VM Network is not selected"},
        {!input.dataStore.empty() || !input.diskMap.empty(), FindingKind::VALUE_MISSING, "datastore",
         "Disk to Datastore mapping is not provided"},
    };
    int rc = 0;
    for (const Requirement& requirement : requirements) {
        if (requirement.isMet)
            continue;
        rc = 1;
        const bool goesOn = m_findings.report(
            {.kind = requirement.finding, .value = requirement.key, .key = requirement.key});
        trace.write(LEVEL_FAILURE, requirement.debugText);
        if (!goesOn)
            break;
    }
    return trace.leave(rc, ", return rc=", rc);
}

void CZorb2vCommandLine::usage() {
    tellUser(MSG_USAGE);
    std::exit(1);
}

} // namespace Zorvane
