// SPDX-License-Identifier: Apache-2.0
#include "resources/vmwareProfiles.h"

#include "model/task_records.h"
#include "resources/sqlConditions.h"

namespace Zorvane {

int queryVmwareProfiles(CZor& profiles, const std::string& condition) {
    return profiles.queryRequest("*", CVmwareProfileOptions::TableName, condition);
}

int queryVmwareProfileByName(CZor& profiles, const std::string& profileName) {
    return queryVmwareProfiles(profiles,
                               equalsIgnoringCase(CVmwareProfileOptions::Column::ProfileName, profileName));
}

} // namespace Zorvane
