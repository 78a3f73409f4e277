// SPDX-License-Identifier: Apache-2.0
#include "info/asks/recoveryQueries.h"

#include "info/check/similarNames.h"
#include "model/core_records.h"
#include "ops/zorop.h"
#include "platform/stringManipulation.h"
#include "suite/kvnclient.h"

namespace Zorvane {

namespace {

const char* remedyFor(int code) {
    switch (code) {
    case ZOROP_NETWORK_FAILURE:
        return "check that zord runs there, and zord in [services] of kvn.toml";
    case ZOROP_VERSION_FAILURE:
        return "it is of another version";
    case ZOROP_QUSS_FAILURE:
        return "it wants a security that this host doesn't have; see quss in kvn.toml";
    default:
        return "the log has the reason";
    }
}

} // namespace

std::string masterServerName() {
    const kvn_master_config* config = KVN_read_master_config() == 0 ? get_master_config_ptr() : nullptr;
    return config && !config->servers.empty() ? config->servers.front() : std::string();
}

void requireAnswer(int code, const std::string& what) {
    if (code == 0)
        return;
    const std::string master = masterServerName();
    if (master.empty())
        throw InfoFailure(InfoExit::NOT_ASKED,
                          "there is no master server to ask for " + what + "; see servers in kvn.toml");
    throw InfoFailure(InfoExit::NOT_ASKED, "the recovery daemon on " + master + " did not tell " + what +
                                               " (status " + std::to_string(code) + "); " + remedyFor(code));
}

void requireClient(const std::string& client) {
    std::vector<std::string> clients;
    for (const CConfig& config : queryRows(&CZor::m_vConfig, "", "the clients")) {
        if (StrCaseCmp(config.getClientName().c_str(), client.c_str()) == 0)
            return;
        clients.push_back(config.getClientName());
    }
    throw InfoFailure(InfoExit::NOT_ASKED, "there is no client \"" + client + "\". " +
                                               (clients.empty() ? "No client has a saved configuration."
                                                                : suggestionFor(client, clients)));
}

} // namespace Zorvane
