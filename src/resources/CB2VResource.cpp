// SPDX-License-Identifier: Apache-2.0
#include "resources/CB2VResource.h"

#include "logging/Trace.h"
#include "logging/getMessage.h"
#include "model/task_records.h"
#include "ops/zorop.h"
#include "platform/valueConversion.h"
#include "resources/CHypervB2VResource.h"
#include "resources/CVmwareB2VResource.h"

#include <span>

namespace Zorvane {

namespace {

constexpr std::uint64_t MSG_RECORDS_NOT_INSERTED = 37;
constexpr std::uint64_t MSG_JOB_NOT_STARTED = 38;

std::string decimal(std::uint32_t number) {
    return FormatInteger(number, 10);
}

std::string errorTextOf(std::uint64_t messageId, std::span<const std::string> arguments) {
    try {
        return getMessage(ZOR_COMMAND_ORIGINATOR, messageId, arguments);
    } catch (const CatalogFailure&) {
        return MESSAGE_CATALOG_ERROR;
    } catch (const std::runtime_error&) {
        return UNEXPECTED_CATALOG_ERROR;
    } catch (...) {
        return MESSAGE_CATALOG_ERROR;
    }
}

} // namespace

std::uint32_t CB2VResource::isAnyPendingP2Vjob(B2VInput&, bool&) {
    ClassTrace trace(g_libLog, "CB2VResource:CB2VResource::isAnyPendingP2Vjob()");
    return 0;
}

std::uint32_t CB2VResource::prepareRestoreTask(B2VInput&) {
    ClassTrace trace(g_libLog, "CB2VResource:CB2VResource::prepareRestoreTask()");
    return 0;
}

std::uint32_t CB2VResource::insertVeProfile(B2VInput&) {
    ClassTrace trace(g_libLog, "CB2VResource:CB2VResource::insertVeProfile()");
    return 0;
}

std::uint32_t CB2VResource::enableVeProfile(const std::string&) {
    ClassTrace trace(g_libLog, "CB2VResource:CB2VResource::enableVeProfile()");
    return 0;
}

std::uint32_t CB2VResource::initializeVeDefaults(B2VInput&) {
    ClassTrace trace(g_libLog, "CB2VResource:CB2VResource::initializeVeDefaults()");
    return 0;
}

std::uint32_t CB2VResource::validateSetup(B2VInput&) {
    ClassTrace trace(g_libLog, "CB2VResource:CB2VResource::validateSetup()");
    return 0;
}

std::uint32_t CB2VResource::submitJob(B2VInput& input) {
    ClassTrace trace(g_appLog, "CB2VResource:CB2VResource::submitJob()");
    if (const std::uint32_t rc = preSubmitCheck(input)) {
        trace.write(LEVEL_FAILURE, " Failed to pass VM conversion criterion");
        return trace.leave(rc, ", return rc=", rc);
    }
    if (const int rc = input.veRecords.insertRequest()) {
        setErrorFromCatalogue(MSG_RECORDS_NOT_INSERTED);
        trace.write(LEVEL_FAILURE, "InsertRequest for VE Profile and RestoreTask records failed");
        return trace.leave(static_cast<std::uint32_t>(rc), ", return rc=", rc);
    }
    // The daemon has given the task its real number. Without a task (after a failed enable) the number is 0
    // and the daemon's answer decides.
    const CP2VRestoreTask* task = input.veRecords.m_vP2VRestoreTask.first();
    const std::string taskId = decimal(task ? task->getId() : 0);
    std::string reply;
    const int rc = ZorOps(ZOROP_DOB2V, ZOROP_B2VRESTORETASK, taskId, taskId, &reply);
    if (rc != 0) {
        setErrorFromCatalogue(MSG_JOB_NOT_STARTED);
        trace.write(LEVEL_FAILURE, "Failed to start P2V job", reply);
    }
    return trace.leave(static_cast<std::uint32_t>(rc), ", return rc=", rc);
}

std::uint32_t CB2VResource::deleteVeProfile(std::uint32_t veType, const std::string& profileName) {
    ClassTrace trace(g_appLog, "CB2VResource:CB2VResource::deleteVeProfile()", ", profileName=", profileName);
    std::string reply;
    const int rc = ZorOps(ZOROP_DELETE, ZOROP_VEPROFILE, decimal(veType), profileName, &reply);
    if (rc != 0)
        trace.write(LEVEL_FAILURE, "Failed to delete VeProfile:", profileName);
    return trace.leave(static_cast<std::uint32_t>(rc), ", return rc=", rc);
}

bool CB2VResource::report(const Finding& finding) {
    if (m_findings)
        return m_findings->report(finding);
    return describe(finding.kind).severity != Severity::BLOCKS;
}

bool CB2VResource::refuse(const Finding& finding) {
    const FindingDescriptor& kind = describe(finding.kind);
    if (kind.hasArgument)
        setErrorFromCatalogue(kind.message, finding.value);
    else if (kind.message != 0)
        setErrorFromCatalogue(kind.message);
    return report(finding);
}

std::string CB2VResource::meantBy(const Finding& unknown) const {
    return m_findings ? m_findings->meantBy(unknown) : std::string();
}

void CB2VResource::setErrorFromCatalogue(std::uint64_t messageId) {
    m_errorText = errorTextOf(messageId, {});
}

void CB2VResource::setErrorFromCatalogue(std::uint64_t messageId, const std::string& argument) {
    m_errorText = errorTextOf(messageId, std::span(&argument, 1));
}

void CB2VResource::setErrorFromCatalogue(std::uint64_t messageId, std::uint32_t argument) {
    setErrorFromCatalogue(messageId, decimal(argument));
}

std::unique_ptr<CB2VResource> CreateB2VResource(const std::uint32_t* veType) {
    switch (*veType) {
    case VMWARE_VE_TYPE:
        return std::make_unique<CVmwareB2VResource>();
    case HYPERV_VE_TYPE:
        return std::make_unique<CHypervB2VResource>();
    default:
        return nullptr;
    }
}

} // namespace Zorvane
