// SPDX-License-Identifier: Apache-2.0
#include "platform/suiteHosts.h"

#include "logging/Trace.h"
#include "platform/returnCodes.h"
#include "suite/kvnclient.h"

namespace Zorvane {

namespace {

/// The suite's configuration as it stands now, or null.
const kvn_master_config* loadConfiguration() {
    return KVN_read_master_config() == 0 ? get_master_config_ptr() : nullptr;
}

} // namespace

int GetClientName(std::string& name) {
    Trace trace(g_libLog, "suiteHosts:GetClientName()");
    if (const auto* const configuration = loadConfiguration();
        configuration && !configuration->client_name.empty()) {
        name = configuration->client_name;
        return trace.leave(ZOR_SUCCESS, ", name=", name);
    }
    if (kvn_uname_info host; getUnameInfoData(host) == 0) {
        name = host.node;
        return trace.leave(ZOR_SUCCESS, ", name=", name);
    }
    return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
}

int OnMasterServer() {
    Trace trace(g_libLog, "suiteHosts:OnMasterServer()");
    char thisHost[KVN_HOSTNAME_SIZE] = "";
    if (kvn_gethostname(thisHost, sizeof thisHost) != 0) {
        trace.write(LEVEL_FAILURE, "kvn_gethostname failed. Exiting, line=", __LINE__);
        return trace.leave(0, ", return 0");
    }
    const auto* const configuration = loadConfiguration();
    if (!configuration || configuration->servers.empty())
        return trace.leave(0, ", return 0");
    const std::string& master = configuration->servers.front();
    if (hosts_equal(thisHost, master.c_str()))
        return trace.leave(1, ", return 1");
    trace.write(LEVEL_TRACE, "Hosts not equal thisHostName=", thisHost, " kvnServer= ", master);
    return trace.leave(0, ", return 0");
}

int GetMediaServers(std::vector<std::string>& servers) {
    Trace trace(g_libLog, "suiteHosts:GetMediaServers()");
    const auto* const configuration = loadConfiguration();
    if (!configuration)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    servers.insert(servers.end(), configuration->servers.begin(), configuration->servers.end());
    servers.insert(servers.end(), configuration->media_servers.begin(), configuration->media_servers.end());
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

int GetKVNRequiredInterface(std::string& name) {
    Trace trace(g_libLog, "suiteHosts:GetKVNRequiredInterface()");
    const auto* const configuration = loadConfiguration();
    if (!configuration || configuration->required_interface.empty())
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    name = configuration->required_interface;
    return trace.leave(ZOR_SUCCESS, ", name=", name);
}

} // namespace Zorvane
