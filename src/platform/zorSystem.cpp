// SPDX-License-Identifier: Apache-2.0
#include "platform/zorSystem.h"

#include "logging/Trace.h"
#include "platform/hostRoot.h"
#include "platform/stringManipulation.h"
#include "platform/zorSystemCommon.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <span>

namespace Zorvane {

namespace {

constexpr std::uint64_t MSG_NO_RELEASE_FILE = 309;
constexpr std::uint64_t MSG_UNKNOWN_RELEASE = 312; ///< the release file's first line

constexpr const char* PARAMETER_SEPARATORS = "=:";

std::string OsLevel;
std::string OsQualifier;

struct ReleasePattern {
    const char* level;
    const char* pattern;
};

struct ReleaseFile {
    const char* name;
    const char* qualifier;
    std::span<const ReleasePattern> patterns; ///< the first one that occurs in the first line wins
};

// The blanks at the end of a pattern keep release 3 apart from a release 30.
constexpr ReleasePattern REDHAT_PATTERNS[] = {
    {"3.0", "Red Hat Enterprise Linux AS release 3 "},
    {"3.0", "Red Hat Enterprise Linux ES release 3 "},
    {"3.0", "Red Hat Enterprise Linux WS release 3 "},
    {"4.0", "Red Hat Enterprise Linux AS release 4 "},
    {"4.0", "Red Hat Enterprise Linux ES release 4 "},
    {"4.0", "Red Hat Enterprise Linux WS release 4 "},
    {"4.0", "Enterprise Linux AS release 4 "},
    {"5", "Red Hat Enterprise Linux Server release 5"},
    {"6", "Red Hat Enterprise Linux Server release 6"},
    {"7", "Red Hat Enterprise Linux Server release 7"},
    {"8", "Red Hat Enterprise Linux release 8"},
    {"9", "Red Hat Enterprise Linux release 9"},
    {"5", "Enterprise Linux Server release 5"},
    {"6", "CentOS Linux release 6"},
    {"6", "CentOS release 6"},
    {"7", "CentOS Linux release 7"},
    {"8", "CentOS Linux release 8"},
    {"9", "CentOS Linux release 9"},
};
constexpr ReleasePattern SUSE_PATTERNS[] = {
    {"8.0", "SuSE SLES-8 "},
    {"9.0", "SUSE LINUX 9.0"},
    {"9.0", "SUSE LINUX Enterprise Server 9"},
    {"10.0", "SUSE Linux Enterprise Server 10"},
    {"11", "SUSE Linux Enterprise Server 11"},
};
constexpr ReleasePattern UNITED_LINUX_PATTERNS[] = {{"8.0", "UnitedLinux 1.0 "}};

constexpr ReleaseFile RELEASE_FILES[] = {
    {"/etc/redhat-release", "RHEL", REDHAT_PATTERNS},
    {"/etc/SuSE-release", "SLES", SUSE_PATTERNS},
    {"/etc/UnitedLinux-release", "SLES", UNITED_LINUX_PATTERNS},
};

bool exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// The level with its minor release, as the line has it; empty if none of the four is in the line.
std::string minorLevel(const std::string& line) {
    // It stays that the four are sought in this order anywhere in the line, whatever its release is: in
    // "7.5.1804" the level found is "5.1804".
    for (const char* major : {"5.", "6.", "7.", "8."})
        if (const std::size_t at = line.find(major); at != std::string::npos)
            return line.substr(at, line.find(' ', at) - at);
    return {};
}

std::string unquote(const std::string& value) {
    return StripTrailing(StripLeading(value, "\""), "\"");
}

/// CentOS 7 tells its minor release in its own file only.
int setCentosLevel(Trace& trace) {
    std::ifstream file(HostPath("/etc/centos-release"));
    std::string line;
    if (!file || !std::getline(file, line)) {
        trace.write(LEVEL_FAILURE,
                    ", throwing exception SrtFuncsRunTimeError as the file /etc/centos-release is "
                    "missing from the SRT");
        return ZOR_FAIL;
    }
    if (GetFieldFromLine(line, " ", 4, OsLevel, true) != ZOR_SUCCESS) {
        trace.write(LEVEL_FAILURE, "Exiting, failed to find the OS Level from string: ", line);
        return ZOR_FAIL;
    }
    return ZOR_SUCCESS;
}

} // namespace

int SetOsInfo() {
    Trace trace(g_libLog, "zorSystem:SetOsInfo()");
    OsLevel.clear();
    OsQualifier.clear();
    if (SetOsInfoFromOsRelease() == ZOR_SUCCESS) {
        trace.write(LEVEL_TRANSFER, "set OsLevel=", OsLevel, " OsQualifier=", OsQualifier);
        return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
    }

    const auto* const release = std::ranges::find_if(
        RELEASE_FILES, [](const ReleaseFile& file) { return exists(HostPath(file.name)); });
    if (release == std::end(RELEASE_FILES)) {
        trace.diag(MSG_NO_RELEASE_FILE);
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    OsQualifier = release->qualifier;

    const std::string name = HostPath(release->name);
    std::ifstream file(name);
    if (!file) {
        trace.write(LEVEL_FAILURE, "open(", name, ") failed: ", std::strerror(errno));
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    std::string line;
    if (!std::getline(file, line)) {
        trace.write(LEVEL_FAILURE, "Nothing to read in file ", name);
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    const auto known = std::ranges::find_if(release->patterns, [&line](const ReleasePattern& row) {
        return line.find(row.pattern) != std::string::npos;
    });
    if (known == release->patterns.end()) {
        trace.diag(MSG_UNKNOWN_RELEASE, line);
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }

    const std::string_view level = known->level;
    if (OsQualifier == "SLES" && level == "11") {
        OsLevel = level;
        std::string patchLevel;
        if (GetParameterValueFromFile(name, "PATCHLEVEL", patchLevel, PARAMETER_SEPARATORS) == ZOR_SUCCESS)
            OsLevel += "." + patchLevel;
    } else if (level == "5" || level == "6" || level == "7" || level == "8") {
        if (const std::string minor = minorLevel(line); !minor.empty())
            OsLevel = minor;
    }
    if (OsLevel.empty())
        OsLevel = level;
    trace.write(LEVEL_TRANSFER, "set OsLevel=", OsLevel);
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

int SetOsInfoFromOsRelease() {
    Trace trace(g_libLog, "zorSystem:SetOsInfoFromOsRelease()");
    const std::string name = HostPath("/etc/os-release");
    if (!exists(name)) {
        trace.write(LEVEL_FAILURE, "Cant find file ", name);
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    std::ifstream file(name);
    if (!file) {
        trace.write(LEVEL_FAILURE, "open(", name, ") failed: ", std::strerror(errno));
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }

    std::string value;
    if (GetParameterValueFromFileStream(file, "ID", value, PARAMETER_SEPARATORS) != ZOR_SUCCESS) {
        trace.write(LEVEL_FAILURE, "Failed to retrieve param ID from file ", name);
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    const std::string distribution = StrToUpper(unquote(value));
    OsQualifier = distribution;
    if (distribution == "OL" || distribution == "CENTOS") {
        trace.write(LEVEL_TRACE, "Resetting OsQualifier to RHEL from:", distribution);
        OsQualifier = "RHEL";
    }

    file.clear();
    file.seekg(0);
    if (GetParameterValueFromFileStream(file, "VERSION_ID", value, PARAMETER_SEPARATORS) != ZOR_SUCCESS) {
        trace.write(LEVEL_FAILURE, "Failed to retrieve param VERSION_ID from file ", name);
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    OsLevel = unquote(value);
    if (distribution == "CENTOS" && OsLevel == "7" && setCentosLevel(trace) != ZOR_SUCCESS)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    trace.write(LEVEL_TRACE, "OsLevel=", OsLevel, " OsQualifier=", OsQualifier);
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

std::string GetOsLevel() {
    if (OsLevel.empty())
        SetOsInfo();
    return OsLevel;
}

std::string GetOsQualifier() {
    if (OsQualifier.empty())
        SetOsInfo();
    return OsQualifier;
}

std::string GetOsLevelCommon(const std::string& command) {
    Trace trace(g_libLog, "zorSystem:GetOsLevelCommon()", ", command=", command);
    std::stringstream output;
    std::int32_t exitStatus = 0;
    ZorRunCommand(command, output, exitStatus, 0, true);
    std::string level;
    if (const std::string text = output.str(); !text.empty())
        GetFieldFromLine(text, "\n", 1, level);
    trace.exitLine(", level=", level);
    return level;
}

} // namespace Zorvane
