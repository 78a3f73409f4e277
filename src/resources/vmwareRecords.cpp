// SPDX-License-Identifier: Apache-2.0
// CVmwareB2VResource: the profile and the restore task.
#include "logging/Trace.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "platform/returnCodes.h"
#include "resources/CVmwareB2VResource.h"
#include "resources/sqlConditions.h"
#include "resources/vmwareProfiles.h"

#include <ctime>
#include <memory>

namespace Zorvane {

namespace {

using Column = CVmwareProfileOptions::Column;

constexpr std::uint32_t PROFILE_NAME_TAKEN = 18;
constexpr std::uint32_t EQUAL_PROFILE = 19;

std::string equalsNumber(std::string_view column, std::uint32_t value) {
    return " AND (" + std::string(column) + " = " + std::to_string(value) + ")";
}

// An optional clause follows without a blank; the daemon's parser takes it so.
std::string andEquals(std::string_view column, const std::string& value) {
    return "AND " + equalsIgnoringCase(column, value);
}

// A new profile and the condition that would find an equal one, made field by field together.
struct ProfileDraft {
    std::unique_ptr<CVmwareProfileOptions> profile = std::make_unique<CVmwareProfileOptions>();
    std::string condition;

    using Setter = void (CVmwareProfileOptions::*)(const std::string&);

    void setIfGiven(Setter setter, std::string_view column, const std::string& value) {
        if (!value.empty())
            set(setter, column, value);
    }
    void set(Setter setter, std::string_view column, const std::string& value) {
        ((*profile).*setter)(value);
        condition += andEquals(column, value);
    }
};

ProfileDraft draftProfile(const B2VInput& input) {
    ProfileDraft draft;
    CVmwareProfileOptions& profile = *draft.profile;
    profile.setId(1);
    profile.setProfileName(input.guiJob ? input.profileName
                                        : "B2VProfile_" + std::to_string(std::time(nullptr)));
    profile.setVICName(input.vmProxy);
    profile.setEsxServer(input.esxHost);
    profile.setStripeNwInterfaces(input.stripNetwork);
    profile.setVdiskFormat(static_cast<VdiskFormat>(input.diskFormat));
    profile.setOverwriteVM(input.overwriteVm);
    profile.setBootInstance(input.powerOn);
    draft.condition = equalsIgnoringCase(Column::VICName, input.vmProxy) + " AND " +
                      equalsIgnoringCase(Column::EsxServer, input.esxHost) +
                      equalsNumber(Column::StripeNwInterfaces, input.stripNetwork) +
                      equalsNumber(Column::VdiskFormat, input.diskFormat) +
                      equalsNumber(Column::OverwriteVM, input.overwriteVm) +
                      equalsNumber(Column::BootInstance, input.powerOn);
    profile.setVCenterServer(input.vmServer);
    if (input.vmServer != input.esxHost)
        draft.condition += andEquals(Column::VCenterServer, input.vmServer);
    draft.setIfGiven(&CVmwareProfileOptions::setDataCenter, Column::DataCenter, input.dataCenter);
    draft.setIfGiven(&CVmwareProfileOptions::setESXCluster, Column::ESXCluster, input.cluster);
    draft.setIfGiven(&CVmwareProfileOptions::setDataStore, Column::DataStore, input.dataStore);
    if (!input.dataStore.empty())
        profile.setAvailableSize(input.dataStoreSize);
    draft.setIfGiven(&CVmwareProfileOptions::setResourcePool, Column::ResourcePool, input.resourcePool);
    draft.setIfGiven(&CVmwareProfileOptions::setFolder, Column::Folder, input.vmFolder);
    if (!input.stripNetwork)
        draft.set(&CVmwareProfileOptions::setNetwork, Column::Network, input.vmNetwork);
    draft.setIfGiven(&CVmwareProfileOptions::setToolPath, Column::ToolPath, input.toolsIsoPath);
    profile.setHiddenProfile(false);
    return draft;
}

} // namespace

std::uint32_t CVmwareB2VResource::insertVeProfile(B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::insertVEProfile()",
                     ", profileName=", input.profileName);
    CZor profiles;
    if (const std::uint32_t rc = draftVeProfile(trace, input, profiles))
        return trace.leave(rc, ", return ZOR_ERROR");
    const CVmwareProfileOptions* draft = profiles.m_vVmwareProfileOptions.first();
    if (!draft)
        return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");

    const std::string newName = draft->getProfileName();
    if (profiles.insertRequest() != 0) {
        trace.write(LEVEL_FAILURE, "Database insertion failed.");
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    if (!input.guiJob)
        input.profileName = newName;
    if (const CVmwareProfileOptions* inserted = profiles.m_vVmwareProfileOptions.first())
        input.profileId = inserted->getId();
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

std::uint32_t CVmwareB2VResource::previewVeProfile(B2VInput& input, CZor& draft) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::previewVeProfile()");
    const std::uint32_t rc = draftVeProfile(trace, input, draft);
    return trace.leave(rc, ", return rc=", rc);
}

std::uint32_t CVmwareB2VResource::draftVeProfile(Trace& trace, B2VInput& input, CZor& profiles) {
    if (!input.profileName.empty()) {
        CZor named;
        if (queryVmwareProfileByName(named, input.profileName) != 0) {
            if (!refuse({.kind = FindingKind::PROFILE_NAME_NOT_ASKED,
                         .value = input.profileName,
                         .isUnanswered = true}))
                return ZOR_ERROR;
        } else if (!named.m_vVmwareProfileOptions.empty()) {
            if (!refuse({.kind = FindingKind::PROFILE_NAME_TAKEN, .value = input.profileName}))
                return PROFILE_NAME_TAKEN;
        }
    }

    ProfileDraft draft = draftProfile(input);
    CZor equals;
    if (queryVmwareProfiles(equals, draft.condition) != 0) {
        report({.kind = FindingKind::EQUAL_PROFILE_NOT_ASKED, .isUnanswered = true});
        trace.write(LEVEL_FAILURE, "Query of Vmware Profile information FAILED");
        return ZOR_ERROR;
    }
    if (const CVmwareProfileOptions* equal = equals.m_vVmwareProfileOptions.first()) {
        if (input.guiJob) {
            refuse({.kind = FindingKind::EQUAL_PROFILE, .value = equal->getProfileName()});
            return EQUAL_PROFILE;
        }
        input.profileName = equal->getProfileName();
        input.profileId = equal->getId();
        return ZOR_SUCCESS;
    }
    profiles.m_vVmwareProfileOptions.push_back(draft.profile.release());
    return ZOR_SUCCESS;
}

std::uint32_t CVmwareB2VResource::enableVeProfile(const std::string& profileName) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::enableVeProfile()",
                     ", profileName=", profileName);
    CZor profiles;
    if (queryVmwareProfileByName(profiles, profileName) != 0) {
        trace.write(LEVEL_FAILURE, "Query of Vmware Profile information FAILED");
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    CVmwareProfileOptions* profile = profiles.m_vVmwareProfileOptions.first();
    if (!profile) {
        trace.write(LEVEL_FAILURE, "Vmware Profile with name=", profileName, " doesnot exist");
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    int rc = ZOR_SUCCESS;
    if (profile->getHiddenProfile()) {
        profile->setHiddenProfile(false);
        rc = profiles.updateRequest();
    }
    return trace.leave(static_cast<std::uint32_t>(rc), ", return rc=", rc);
}

std::uint32_t CVmwareB2VResource::isAnyPendingP2Vjob(B2VInput& input, bool& pending) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::isAnyPendingP2Vjob()");
    pending = false;
    const CConfig* config = input.clientConfig.m_vConfig.first();
    const std::string client = config ? config->getClientName() : std::string();
    CZor tasks;
    if (tasks.queryRequest("*", CP2VRestoreTask::TableName,
                           equalsIgnoringCase(CP2VRestoreTask::Column::ClientName, client)) != 0) {
        refuse({.kind = FindingKind::JOBS_NOT_ASKED, .value = client, .isUnanswered = true});
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    // Any row counts, whatever its state: the task of a finished job has moved to the log.
    pending = !tasks.m_vP2VRestoreTask.empty();
    if (pending)
        report({.kind = FindingKind::JOB_PENDING, .value = client});
    trace.write(LEVEL_TRACE, "No Pending P2V for client=", client, "and config=,",
                config ? config->getName() : std::string(), ", return=", pending);
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

std::uint32_t CVmwareB2VResource::prepareRestoreTask(B2VInput& input) {
    ClassTrace trace(g_appLog, "CVmwareB2VResource:CVmwareB2VResource::prepareRestoreTask()");
    // Made-up numbers: the daemon replaces them, and the references between these rows, when they are
    // inserted.
    constexpr ID taskId = 1;
    const CConfig* config = input.clientConfig.m_vConfig.first();
    const ID configId = config ? config->getId() : 0;

    auto task = std::make_unique<CP2VRestoreTask>();
    task->setId(taskId);
    task->setClientName(input.clientName);
    task->setConfigName(input.configName);
    task->setConfigId(configId, true);
    task->setState(TaskState::QUEUED);
    task->setOperation(TaskSubState::READY);
    task->setSystemOnly(input.systemOnly);
    task->setEndDate(config ? config->getRetrievalTime() : 0);
    task->setCreateTime(std::time(nullptr));
    task->setVeType(static_cast<VeType>(input.veType));
    task->setVmName(input.vmDisplayName);
    task->setProfileName(input.profileName);
    input.veRecords.m_vP2VRestoreTask.push_back(task.release());

    ID number = 0;
    for (const DiskDataStoreEntry& entry : input.diskMap) {
        auto map = std::make_unique<CDiskToDataStoreMap>();
        map->setId(++number);
        map->setDiskName(entry.diskName);
        map->setDataStoreName(entry.dataStoreName);
        map->setAvailableSize(entry.availableSize);
        map->setConfigId(configId, true);
        map->setP2VRestoreTaskId(taskId, false);
        input.veRecords.m_vDiskToDataStoreMap.push_back(map.release());
    }
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

} // namespace Zorvane
