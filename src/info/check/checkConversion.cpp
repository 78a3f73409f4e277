// SPDX-License-Identifier: Apache-2.0
#include "info/check/checkConversion.h"

#include "info/check/backups.h"
#include "info/check/similarNames.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "resources/CVmwareB2VResource.h"
#include "resources/sqlConditions.h"
#include "resources/vmwareProfiles.h"

#include <algorithm>

namespace Zorvane {

namespace {

/// The steps share the check that they fill.
class Steps {
  public:
    explicit Steps(ConversionCheck& check)
        : m_check(check), m_input(check.input), m_findings(check.findings), m_commandLine(check.findings) {
        m_resource.reportTo(m_findings);
    }

    void take() {
        m_commandLine.initializeDefaults(m_input);
        m_commandLine.parseArguments(m_check.arguments, m_input);
        m_check.file = m_commandLine.veConfigFile();
        forgetSpace();
        const bool hasClient = readClient();
        if (m_commandLine.isHelpRequested())
            m_findings.report({.kind = FindingKind::HELP_ASKED, .value = "-help"});
        if (hasClient) {
            m_resource.isClientSupported(m_input.clientConfig);
            nameClient();
            if (m_resource.isFullBackupAvail(m_input, m_input.configName) == 0 ||
                m_findings.has(FindingKind::BACKUP_FILE) || m_findings.has(FindingKind::BACKUP_NONE))
                lookIntoBackups(m_input, m_findings);
        }
        if (m_input.guiJob)
            takeConsoleTarget(hasClient);
        else
            takeTarget(hasClient);
        if (hasClient)
            holdClientAgainstTarget();
        suggestWords();
        m_findings.blameLines(m_commandLine.veConfigLines(), m_input);
        m_resource.prepareRestoreTask(m_input);
    }

  private:
    void skip(const std::string& what, const std::string& why) {
        m_findings.report({.kind = FindingKind::NOT_CHECKED, .value = what + " (" + why + ")"});
    }

    bool readClient() {
        constexpr const char* what = "client, backups and disks";
        if (m_input.clientName.empty()) {
            skip(what, "no client is named");
            return false;
        }
        if (m_commandLine.readConfiguration(m_input) == 0)
            return true;
        skip(what, "the configuration could not be read");
        for (Finding& finding : m_findings.all())
            if (finding.kind == FindingKind::CONFIG_UNKNOWN)
                suggestConfiguration(finding);
        return false;
    }

    // The client's configurations; if there is no such client, the one that was meant.
    void suggestConfiguration(Finding& finding) {
        CZor own, all;
        own.queryRequest("*", CConfig::TableName,
                         equalsIgnoringCase(CConfig::Column::ClientName, m_input.clientName));
        for (const CConfig* config : own.m_vConfig)
            if (config)
                finding.candidates.push_back(config->getName());
        if (!finding.candidates.empty())
            return;
        all.queryRequest("*", CConfig::TableName, std::string(CConfig::Column::Id) + " > 0");
        std::vector<std::string> clients;
        for (const CConfig* config : all.m_vConfig)
            if (config)
                clients.push_back(config->getClientName());
        finding.hint = "There is no client \"" + m_input.clientName + "\". " +
                       suggestionFor(m_input.clientName, clients);
    }

    // The message about the client's eligibility is the run's, which knows the names.
    void nameClient() {
        const std::uint64_t eligibility = describe(FindingKind::CLIENT_OS).message;
        for (Finding& finding : m_findings.all())
            if (describe(finding.kind).message == eligibility)
                finding.arguments = {m_input.clientName, m_input.configName};
    }

    void suggestWords() {
        for (Finding& finding : m_findings.all()) {
            if (finding.kind == FindingKind::KEY_UNKNOWN)
                finding.candidates = similarNames(finding.value, veConfigKeys());
            else if (finding.kind == FindingKind::WORD_IGNORED)
                finding.candidates = similarNames(finding.value, optionNames());
        }
    }

    // Until the inventory tells it.
    void forgetSpace() {
        m_input.dataStoreSize = SPACE_UNKNOWN;
        for (DiskDataStoreEntry& entry : m_input.diskMap)
            entry.availableSize = SPACE_UNKNOWN;
    }

    // With -gui the console has checked the target; zorb2v tries no more of it than this.
    void takeConsoleTarget(bool hasClient) {
        skip("target", "with -gui the console has checked it, and zorb2v does not");
        m_commandLine.validateInput(m_input);
        bool isPending = false;
        if (hasClient)
            m_resource.isAnyPendingP2Vjob(m_input, isPending);
        CZor profiles;
        if (queryVmwareProfileByName(profiles, m_input.profileName) == 0 &&
            profiles.m_vVmwareProfileOptions.empty())
            m_findings.report({.kind = FindingKind::CONSOLE_PROFILE_UNKNOWN, .value = m_input.profileName});
    }

    void takeTarget(bool hasClient) {
        constexpr const char* what = "target";
        const bool hasFile =
            !m_findings.has(FindingKind::NO_FILE) && !m_findings.has(FindingKind::FILE_NOT_OPENED);
        const bool hasServer = !m_input.vmServer.empty() && !m_input.vmProxy.empty();
        const bool isVmware = m_input.veType == VMWARE_VE_TYPE;
        m_input.dataStoreSize = 0; // as a run has it, for the profile
        const bool isListed = isVmware && hasServer && m_resource.initializeVeDefaults(m_input) == 0;
        if (hasFile || !isVmware)
            m_commandLine.validateInput(m_input);
        if (isVmware && !isListed) // the inventory would have filled in the others
            std::erase_if(m_findings.all(), [](const Finding& finding) {
                return finding.kind == FindingKind::VALUE_MISSING && finding.value != "toolsIsoPath";
            });

        bool isPending = false;
        if (isVmware && isListed)
            m_resource.previewVeProfile(m_input, m_check.profile);
        if (hasClient)
            m_resource.isAnyPendingP2Vjob(m_input, isPending);
        forgetSpace();
        if (!isVmware)
            return;
        if (!isListed) {
            skip(what, hasServer ? "the inventory did not answer" : "no server or no backup host is named");
            return;
        }
        m_resource.validateVMwareVEsetup(m_input);
        if (!m_check.profile.m_vVmwareProfileOptions.empty())
            skip("profile", "the daemon verifies it when it is recorded");
        else if (!m_input.profileName.empty())
            m_resource.verifyVeProfile(m_input);
    }

    void holdClientAgainstTarget() {
        m_resource.preSubmitCheck(m_input);
        m_check.space = spaceSheet(m_input, m_findings);
        if (!m_input.stripNetwork)
            return;
        std::string interfaces;
        for (const CNetworkInterface* interface : m_input.clientConfig.m_vNetworkInterface)
            if (interface)
                interfaces += (interfaces.empty() ? "" : ", ") + interface->getName();
        if (!interfaces.empty())
            m_findings.report({.kind = FindingKind::NETWORK_LEFT_OUT, .value = interfaces});
    }

    ConversionCheck& m_check;
    B2VInput& m_input;
    CollectedFindings& m_findings;
    CZorb2vCommandLine m_commandLine;
    CVmwareB2VResource m_resource;
};

} // namespace

bool ConversionCheck::isUnanswered() const {
    bool isAny = false;
    for (const Finding& finding : findings.all()) {
        if (describe(finding.kind).severity != Severity::BLOCKS)
            continue;
        if (!finding.isUnanswered)
            return false;
        isAny = true;
    }
    return isAny;
}

void checkConversion(ConversionCheck& check) {
    Steps(check).take();
}

} // namespace Zorvane
