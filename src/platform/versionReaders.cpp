// SPDX-License-Identifier: Apache-2.0
#include "platform/versionReaders.h"

#include "logging/Trace.h"
#include "platform/commandPaths.h"
#include "platform/sVersion.h"
#include "platform/stringManipulation.h"
#include "platform/zorSystemCommon.h"

#include <fstream>

namespace Zorvane {

namespace {

constexpr char RELEASE_LEVEL[] = "RELEASE_LEVEL=";

} // namespace

int validateKvnVsOsArchType(const std::string& installPath, const std::string& osArchType,
                            std::string& version) {
    Trace trace(g_libLog, "versionReaders:validateKvnVsOsArchType()", ", installPath=", installPath,
                ", osArchType=", osArchType);
    version.clear();
    std::string installed;
    const std::string file = installPath + (installPath.ends_with('/') ? "bin/version" : "/bin/version");
    if (const int rc = GetKvnClientOrServerVersion(file, installed); rc != ZOR_SUCCESS) {
        trace.write(LEVEL_FAILURE,
                    "Failed to get KVN Client or Server version from path supplied path=", file, ", rc=", rc);
        return trace.leave(0, ", return 0");
    }
    version = installed;
    const int compatible = CompareLevels(version, "7.0") == (osArchType == "64" ? 1 : 0) ? 1 : 0;
    return trace.leave(compatible, ", return ", compatible, ", version=", version);
}

int GetKvnClientOrServerVersion(const std::string& versionFile, std::string& version) {
    Trace trace(g_libLog, "versionReaders:GetKvnClientOrServerVersion()", ", versionFile=", versionFile);
    std::string output;
    const std::string command = std::string("grep ") + RELEASE_LEVEL + " " + ShellQuoteSingle(versionFile);
    if (const int rc = RunForOutput(trace, command, output); rc != ZOR_SUCCESS)
        return trace.leave(rc, ", return rc=", rc);
    // It stays that the name is stripped as a set of characters: letters of it that begin the value go too.
    const std::string value = StripLeading(output, RELEASE_LEVEL);
    version = value.substr(0, value.find_first_not_of(".0123456789"));
    return trace.leave(ZOR_SUCCESS, ", version=", version);
}

int ServerVersion(std::string& version) {
    Trace trace(g_libLog, "versionReaders:ServerVersion()");
    // It stays that folder and file are joined without a separator: the file is sought in the working
    // directory.
    const std::string name = std::string("bin") + "version.info";
    std::ifstream file(name);
    if (!file) {
        trace.write(LEVEL_TRANSFER, "Could not open version file ", name);
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    std::string line;
    if (!std::getline(file, line)) {
        trace.write(LEVEL_FINE, "Version info not available, file ", name, " may be empty");
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    version = line;
    return trace.leave(ZOR_SUCCESS, ", version=", version);
}

std::string GetZorVersionCommon(const std::string& topDirectory) {
    Trace trace(g_libLog, "versionReaders:GetZorVersionCommon()", ", topDirectory=", topDirectory);
    std::string name = GetKvnBinPath() + "version";
    std::ifstream file(name);
    if (!file) {
        trace.write(LEVEL_TRACE, "failed to open file sFile= ", name, "retrying with fixed path");
        name = topDirectory + "/usr/tarnv/kelvarion/bin/version";
        file.open(name);
    }
    if (!file) {
        trace.write(LEVEL_TRACE, "failed to open File= ", name, ". Could not determine ZOR version.");
        return {};
    }
    std::string line;
    GetLineFromFile(file, LINE_BEGINS_WITH, 1, "Kelvarion", line);
    if (line.empty()) {
        trace.write(LEVEL_FINE, "Could not determine ZOR Version");
        return {};
    }
    std::string version;
    GetFieldFromLine(line, " ", 2, version, true);
    trace.exitLine(", version=", version);
    return version;
}

} // namespace Zorvane
