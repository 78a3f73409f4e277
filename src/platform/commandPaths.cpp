// SPDX-License-Identifier: Apache-2.0
#include "platform/commandPaths.h"

#include "logging/Trace.h"
#include "platform/hostRoot.h"

#include <filesystem>

namespace Zorvane {

const std::string CMD_ZORC = GetKvnBinPath() + "zorc";
const std::string CMD_MKISOFS = GetKvnBinPath() + "mkisofs";
const std::string CMD_ISOVOLSIZE = GetKvnBinPath() + "isovolsize";
const std::string CMD_ZORMKFS_SOL_QUVM = GetKvnBinPath() + "zormkfs_sol_quvm";
const std::string CMD_KVNLIST = GetKvnBinPath() + "kvnlist";
const std::string CMD_KVNRESTORE = GetKvnBinPath() + "kvnrestore";
const std::string CMD_KVNCLIMAGELIST = GetKvnBinPath() + "kvnclimagelist";
const std::string CMD_KVNHOSTDBCMD = GetKvnBinPath() + "kvnhostdbcmd";
const std::string FILE_TPP_CONFIG = GetZorServerDataPath() + "tppConfig.json";

std::string GetKvnInstallPath() {
    Trace trace(g_libLog, "commandPaths:GetKvnInstallPath()");
    const std::string configured = HostPath("/usr/tarnv/kelvarion");
    std::error_code failure;
    const std::filesystem::path resolved = std::filesystem::canonical(configured, failure);
    std::string path = (failure ? configured : resolved.string()) + "/";
    trace.exitLine(", return ", path);
    return path;
}

std::string GetKvnBinPath() {
    return GetKvnInstallPath() + "bin/";
}
std::string GetZorInstallPath() {
    return GetKvnInstallPath() + "zorvane/";
}
std::string GetZorServerPath() {
    return GetZorInstallPath() + "server/";
}
std::string GetZorClientPath() {
    return GetZorInstallPath() + "client/";
}
std::string GetZorServerDataPath() {
    return GetZorInstallPath() + "server/data/";
}
std::string GetZorClientDataPath() {
    return GetZorInstallPath() + "client/data/";
}
std::string GetGlobalVarPath() {
    return "/usr/tarnv/var/global/";
}
std::string GetSharePath() {
    return GetKvnInstallPath() + "../share/";
}

} // namespace Zorvane
