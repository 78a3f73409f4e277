// SPDX-License-Identifier: Apache-2.0
#include "storage/configurations.h"

#include "logging/Trace.h"
#include "model/core_records.h"
#include "platform/stringManipulation.h"
#include "storage/lookup.h"

namespace Zorvane {

namespace {

/// Reads a whole configuration, provided that it belongs to the client.
bool readConfig(CZor& zor, ID id, const std::string& clientName, Trace& trace) {
    const std::string query = std::string(CConfig::Column::Id) + "='" + std::to_string(id) + "' AND lower(" +
                              std::string(CConfig::Column::ClientName) + ") = lower(" +
                              QuoteSqlLiteral(clientName) + ")";
    if (const int rc = zor.queryRequest("*", CConfig::TableName, query); rc != 0) {
        trace.write(LEVEL_WARNING, "Unable to fetch table details.Query: ", query, ", rc=", rc);
        return false;
    }
    if (zor.m_vConfig.empty() || zor.queryTreeRequest(CConfig::TableName, id) != 0) {
        trace.write(LEVEL_WARNING, "Unable to read config; config id:", id);
        return false;
    }
    return true;
}

} // namespace

int isDSRConfig(const CZor& zor) {
    Trace trace(g_libLog, "configurations:isDSRConfig()");
    const CConfig* config = zor.m_vConfig.first();
    const CConfigEditSession* session = zor.m_vConfigEditSession.first();
    if (!config || config->getType() != ConfigType::COPIED || !session)
        return trace.leave(0, ", dissimilar=", 0);

    CZor source;
    if (!readConfig(source, session->getOriginalConfigId(), config->getClientName(), trace))
        return trace.leave(0, ", dissimilar=", 0);

    // Additional interfaces don't matter: each of the source's must still be there.
    const auto isMissing = [&](const CNetworkInterface& interface) {
        return !FindBy(zor.m_vNetworkInterface, &CNetworkInterface::getMacAddress, interface.getMacAddress());
    };
    const int dissimilar = FindIf(source.m_vNetworkInterface, isMissing) ? 1 : 0;
    return trace.leave(dissimilar, ", dissimilar=", dissimilar);
}

} // namespace Zorvane
