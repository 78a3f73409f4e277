// SPDX-License-Identifier: Apache-2.0
#include "info/check/checkConversion.h"

#include "info/asks/TextTable.h"
#include "info/check/backups.h"
#include "info/check/similarNames.h"
#include "info/draft/TargetDraft.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "resources/CVmwareB2VResource.h"
#include "resources/sqlConditions.h"
#include "resources/vmwareProfiles.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Zorvane {

namespace {

// What the target's inventory fills in where the user left it open.
constexpr std::string B2VInput::*DEFAULTS[] = {
    &B2VInput::esxHost,  &B2VInput::dataStore, &B2VInput::resourcePool, &B2VInput::dataCenter,
    &B2VInput::vmFolder, &B2VInput::cluster,   &B2VInput::vmNetwork,
};

/// The steps share the check that they fill.
class Steps {
  public:
    explicit Steps(ConversionCheck& check)
        : m_check(check), m_input(check.input), m_findings(check.findings), m_commandLine(check.findings) {
        m_resource.reportTo(m_findings);
    }

    void take() {
        m_commandLine.initializeDefaults(m_input);
        m_isParsed = m_commandLine.parseArguments(m_check.arguments, m_input) == 0;
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
        offerNames();
        m_findings.blameLines(m_commandLine.veConfigLines(), m_input);
        for (DiskDataStoreEntry& entry : m_input.diskMap) // as a run records what it was not told
            entry.availableSize = std::max<std::int64_t>(entry.availableSize, 0);
        m_resource.prepareRestoreTask(m_input);
    }

  private:
    void skip(const std::string& what, const std::string& why) { m_findings.report(notChecked(what, why)); }

    bool readClient() {
        constexpr const char* what = "client, backups and disks";
        const bool isNamed =
            std::none_of(m_findings.all().begin(), m_findings.all().end(), [](const Finding& finding) {
                return finding.kind == FindingKind::NO_CLIENT ||
                       (finding.kind == FindingKind::OPTION_WITHOUT_VALUE && finding.value == "-C");
            });
        if (!isNamed) { // an empty name is one, and zorb2v asks for it
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
        finding.key = "-C";
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

    void offerNames() {
        for (Finding& finding : m_findings.all()) {
            if (finding.kind == FindingKind::KEY_UNKNOWN)
                finding.candidates = similarNames(finding.value, veConfigKeys());
            else if (finding.kind == FindingKind::WORD_IGNORED)
                finding.candidates = similarNames(finding.value, optionNames());
            else if (finding.kind == FindingKind::MACHINE_EXISTS)
                finding.hint =
                    "The name \"" + freeName(m_input.clientName, finding.candidates) + "\" is free.";
        }
    }

    void lookForPendingJob() {
        bool isPending = false;
        m_resource.isAnyPendingP2Vjob(m_input, isPending);
        if (!isPending)
            return;
        CZor tasks;
        tasks.queryRequest("*", CP2VRestoreTask::TableName,
                           equalsIgnoringCase(CP2VRestoreTask::Column::ClientName, m_input.clientName));
        std::string hint;
        for (const CP2VRestoreTask* task : tasks.m_vP2VRestoreTask)
            if (task)
                hint += "That of configuration \"" + task->getConfigName() + "\" is " +
                        wordsOf(toName(task->getState())) + ", " + wordsOf(toName(task->getOperation())) +
                        ", since " + minuteText(task->getCreateTime()) + ". ";
        for (Finding& finding : m_findings.all())
            if (finding.kind == FindingKind::JOB_PENDING)
                finding.hint = hint + "Watch it: zorinfo tasks " + m_input.clientName;
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
        if (hasClient)
            lookForPendingJob();
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
        std::vector<std::string> given;
        for (std::string B2VInput::*field : DEFAULTS)
            given.push_back(m_input.*field);
        // A run asks for the inventory before it looks whether the names are empty.
        const bool isListed = isVmware && (hasServer || m_isParsed) &&
                              m_resource.initializeVeDefaults(m_input) == 0 && hasServer;
        if (hasFile || !isVmware)
            m_commandLine.validateInput(m_input);
        if (isVmware && !isListed) // the inventory would have filled in the others
            std::erase_if(m_findings.all(), [](const Finding& finding) {
                return finding.kind == FindingKind::VALUE_MISSING && finding.value != "toolsIsoPath";
            });

        if (isVmware && isListed)
            m_resource.previewVeProfile(m_input, m_check.profile);
        if (hasClient)
            lookForPendingJob();
        forgetSpace();
        if (!isVmware)
            return skip(what, "zorb2v refuses Hyper-V before it looks at one");
        if (!isListed) {
            skip(what, hasServer ? "the inventory did not answer" : "no server or no backup host is named");
            return;
        }
        m_resource.validateVMwareVEsetup(m_input);
        assumeServer(given);
        if (!m_check.profile.m_vVmwareProfileOptions.empty())
            skip("profile", "the daemon verifies it when it is recorded");
        else if (!m_input.profileName.empty())
            m_resource.verifyVeProfile(m_input);
    }

    // Behind an unknown server, the one that was plainly meant: with the user's own values and its defaults.
    void assumeServer(const std::vector<std::string>& given) {
        std::vector<Finding>& all = m_findings.all();
        const auto unknown = std::find_if(all.begin(), all.end(), [](const Finding& finding) {
            return finding.kind == FindingKind::SERVER_UNKNOWN;
        });
        const std::string meant = unknown == all.end() ? std::string() : m_findings.meantBy(*unknown);
        if (meant.empty())
            return;
        std::erase_if(all,
                      [](const Finding& finding) { return finding.kind == FindingKind::CLUSTER_DROPPED; });
        const std::size_t before = all.size();
        const std::string server = std::exchange(m_input.vmServer, meant);
        for (std::size_t i = 0; i < given.size(); ++i)
            m_input.*DEFAULTS[i] = given[i];
        m_resource.initializeVeDefaults(m_input);
        m_resource.validateVMwareVEsetup(m_input);
        m_input.vmServer = server;
        for (std::size_t i = before; i < all.size(); ++i)
            if (all[i].kind != FindingKind::NOT_CHECKED)
                all[i].text += (all[i].text.empty() ? "" : " ") +
                               std::string("Assuming the virtual machine server \"") + meant + "\".";
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
    bool m_isParsed = false;
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
