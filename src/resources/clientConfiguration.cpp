// SPDX-License-Identifier: Apache-2.0
#include "resources/clientConfiguration.h"

#include "model/core_records.h"
#include "platform/sVersion.h"
#include "resources/sqlConditions.h"

namespace Zorvane {

int queryConfigRecord(CZor& zor, const std::string& clientName, const std::string& configName) {
    return zor.queryRequest("*", CConfig::TableName,
                            equalsIgnoringCase(CConfig::Column::ClientName, clientName) + " AND " +
                                equalsIgnoringCase(CConfig::Column::Name, configName));
}

int queryConfigTree(CZor& zor) {
    return zor.queryTreeRequest(CConfig::TableName, zor.m_vConfig.front()->getId());
}

std::string windowsVersion(const std::string& osLevel) {
    std::string version;
    GetInfoFromOSLevel(osLevel, OSLEVEL_VERSION, version);
    return version;
}

bool isLevelAtLeast(const std::string& level, const std::string& bound) {
    return CompareLevels(level, bound) == 1;
}

} // namespace Zorvane
