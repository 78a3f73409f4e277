// SPDX-License-Identifier: Apache-2.0
// CZorb2vCommandLine: the conversion itself. The order of the steps and their exits are the design.
#include "frontend/CZorb2vCommandLine.h"

#include "frontend/messageNumbers.h"
#include "logging/Trace.h"
#include "platform/returnCodes.h"
#include "resources/CB2VResource.h"
#include "resources/clientConfiguration.h"
#include "suite/terminal.h"

namespace Zorvane {

namespace {

// The message of what a step has found; the arguments are for the messages that take several.
void tell(const FirstFinding& refusal, std::vector<std::string> arguments = {}) {
    if (!refusal.finding())
        return;
    Finding finding = *refusal.finding();
    finding.arguments = std::move(arguments);
    tellFailure(finding);
}

void showError(const CB2VResource& resource) {
    Suite::writeTerminal(stderr, resource.getError() + "\n");
}

} // namespace

int CZorb2vCommandLine::execute(const Arguments& arguments) {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::execute()");
    if (parseArguments(arguments, m_input) != 0) {
        trace.write(LEVEL_TRACE, "Invalid input.");
        usage();
    }
    if (const int rc = readConfiguration(m_input))
        return trace.leave(rc, ", return ZOR_ERROR");
    if (m_helpRequested)
        usage();
    const int rc = convert();
    return trace.leave(rc, ", rc=", rc);
}

int CZorb2vCommandLine::readConfiguration(B2VInput& input) {
    CZor& config = input.clientConfig;
    if (queryConfigRecord(config, input.clientName, input.configName) != 0) {
        m_findings.report({.kind = FindingKind::DATABASE_NOT_ASKED, .isUnanswered = true});
        return ZOR_ERROR;
    }
    const bool isThere = !config.m_vConfig.empty();
    if (isThere && queryConfigTree(config) == 0)
        return ZOR_SUCCESS;
    m_findings.report({.kind = isThere ? FindingKind::CONFIG_NOT_READ : FindingKind::CONFIG_UNKNOWN,
                       .value = input.configName,
                       .isUnanswered = isThere});
    return ZOR_ERROR;
}

// The resource is gone before the final message of each path.
int CZorb2vCommandLine::convert() {
    ClassTrace trace(g_appLog, "CZorb2vCommandLine:CZorb2vCommandLine::convert()");
    std::unique_ptr<CB2VResource> resource = CreateB2VResource(&m_input.veType);
    if (!resource)
        return trace.leave(1, ", rc=", 1);
    FirstFinding refusal;
    resource->reportTo(refusal);

    if (!resource->isClientSupported(m_input.clientConfig)) {
        resource.reset();
        tell(refusal, {m_input.clientName, m_input.configName});
        return trace.leave(1, ", rc=", 1);
    }
    if (resource->isFullBackupAvail(m_input, m_input.configName) != 0) {
        resource.reset();
        tell(refusal);
        return trace.leave(1, ", rc=", 1);
    }
    // The console has prepared its profile and made the checks of the target itself.
    const bool preparesTarget = !m_input.guiJob;
    if (preparesTarget && resource->initializeVeDefaults(m_input) != 0)
        return trace.leave(1, ", rc=", 1);
    if (validateInput(m_input) != 0) {
        resource.reset();
        usage();
    }
    // The profile is recorded before the target is validated, and removed again if that fails. A run that is
    // refused in between leaves it in place.
    if (preparesTarget && resource->insertVeProfile(m_input) != 0) {
        showError(*resource);
        return trace.leave(1, ", rc=", 1);
    }
    bool pending = false;
    const std::uint32_t pendingResult = resource->isAnyPendingP2Vjob(m_input, pending);
    if (pending) {
        resource.reset();
        tell(refusal);
        return trace.leave(1, ", rc=", 1);
    }
    if (pendingResult != 0) {
        showError(*resource);
        return trace.leave(1, ", rc=", 1);
    }
    if (preparesTarget && resource->validateSetup(m_input) != 0) {
        showError(*resource);
        resource->deleteVeProfile(m_input.veType, m_input.profileName);
        return trace.leave(1, ", rc=", 1);
    }
    if (resource->enableVeProfile(m_input.profileName) != 0) {
        // A failed enable ends nothing: what is left of the target is the base's behaviour, so that no task
        // is prepared, and the job is asked for all the same. This order of events stays.
        resource = std::make_unique<CB2VResource>();
        trace.write(LEVEL_FAILURE, "Failed to make Ve Profile visible");
    }
    if (resource->prepareRestoreTask(m_input) != 0)
        return trace.leave(1, ", rc=", 1);
    if (resource->submitJob(m_input) != 0) {
        showError(*resource);
        return trace.leave(1, ", rc=", 1);
    }
    resource.reset();
    tellUser(MSG_SUBMITTED);
    trace.write(LEVEL_TRACE, "Successfully submitted P2V Conversion job");
    return trace.leave(0, ", rc=", 0);
}

} // namespace Zorvane
