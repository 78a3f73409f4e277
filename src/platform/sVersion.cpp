// SPDX-License-Identifier: Apache-2.0
#include "platform/sVersion.h"

#include "logging/Trace.h"
#include "platform/fieldSplitting.h"
#include "platform/returnCodes.h"
#include "platform/valueConversion.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <optional>
#include <vector>

namespace Zorvane {

namespace {

constexpr std::size_t LEVEL_FIELDS = 4;
using Level = std::array<long, LEVEL_FIELDS>;

// The number that a field begins with; 0 if there is none.
long leadingNumber(const std::string& field) {
    return std::strtol(field.c_str(), nullptr, 10);
}

std::optional<Level> parsedLevel(Trace& trace, const std::string& text) {
    std::vector<std::string> fields;
    Split(text, ".", fields, true);
    if (fields.empty() || fields.size() > LEVEL_FIELDS) {
        trace.write(LEVEL_FAILURE, "Error parsing ", text);
        return std::nullopt;
    }
    Level level{};
    std::transform(fields.begin(), fields.end(), level.begin(), leadingNumber);
    return level;
}

std::string joined(const std::vector<std::string>& fields) {
    std::string text;
    for (const auto& field : fields)
        text.append(text.empty() ? "" : ".").append(field);
    return text;
}

} // namespace

int CompareLevels(const std::string& level1, const std::string& level2) {
    Trace trace(g_libLog, "sVersion:CompareLevels()", ", level1=", level1, ", level2=", level2);
    const auto first = parsedLevel(trace, level1);
    if (!first)
        return trace.leave(-1, ", return -1");
    const auto second = parsedLevel(trace, level2);
    if (!second)
        return trace.leave(-1, ", return -1");
    const int result = *first >= *second;
    return trace.leave(result, ", return ", result);
}

int CompareLinuxKernelVersion(const std::string& kernel1, const std::string& kernel2) {
    Trace trace(g_libLog, "sVersion:CompareLinuxKernelVersion()");
    std::vector<std::string> fields;
    Split(kernel1, ".", fields);
    fields.resize(std::min(fields.size(), LEVEL_FIELDS));
    for (auto& field : fields)
        field = std::to_string(leadingNumber(field));
    return CompareLevels(joined(fields), kernel2);
}

namespace {

// The patch number of "Generic_<patch>-<revision>", given from the underscore on; 0 if it has another form.
long patchNumber(const std::string& fromUnderscore) {
    std::vector<std::string> fields;
    Split(fromUnderscore.substr(1), "-", fields);
    return fields.size() == 2 ? leadingNumber(fields[0]) : 0;
}

} // namespace

int CompareSolarisKernelVersion(const std::string& kernel1, const std::string& kernel2) {
    Trace trace(g_libLog, "sVersion:CompareSolarisKernelVersion()", ", kernel1=", kernel1,
                ", kernel2=", kernel2);
    if (kernel1.empty() || kernel2.empty())
        return kernel1.empty() && kernel2.empty();
    const std::size_t at1 = kernel1.find('_');
    const std::size_t at2 = kernel2.find('_');
    if (at1 == std::string::npos && at2 == std::string::npos)
        return CompareLevels(kernel1, kernel2);
    if (at1 == std::string::npos || at2 == std::string::npos)
        return 0;
    // The revision behind the patch decides nothing: any revision of the same patch will do.
    return patchNumber(kernel1.substr(at1)) >= patchNumber(kernel2.substr(at2));
}

int CompareArchitectures(const std::string& architecture1, const std::string& architecture2) {
    Trace trace(g_libLog, "sVersion:CompareArchitectures()");
    const auto named = [](const std::string& name) { return name.empty() ? "x86" : name; };
    return named(architecture1) == named(architecture2);
}

std::string getReleaseUpdate(const std::string& version) {
    Trace trace(g_libLog, "sVersion:getReleaseUpdate()", ", version=", version);
    std::vector<std::string> fields;
    Split(version, ".", fields);
    if (fields.empty() || fields.size() > LEVEL_FIELDS) {
        trace.write(LEVEL_FAILURE, "Error parsing ", version);
        return {};
    }
    return joined(fields);
}

std::string IntVersionToString(std::uint64_t version) {
    Trace trace(g_libLog, "sVersion:IntVersionToString()");
    std::vector<std::string> groups;
    for (const int shift : {48, 32, 16, 0})
        groups.push_back(std::to_string((version >> shift) & 0xffff));
    return joined(groups);
}

std::uint64_t StringVersionToInt(const std::string& version) {
    Trace trace(g_libLog, "sVersion:StringVersionToInt()", ", version=", version);
    if (version.empty())
        return 0;
    std::vector<std::string> fields;
    Split(version, ".", fields);
    fields.resize(LEVEL_FIELDS, "0");
    std::uint64_t packed = 0;
    for (const auto& field : fields)
        packed = (packed << 16) + StringToUlong(field);
    return packed;
}

namespace {

bool isOldForm(const std::string& level) {
    return level.size() <= OSLEVEL_OLD_FORM_MAX;
}

struct Place {
    std::size_t begin;
    std::size_t length;
};

std::optional<Place> findValue(const std::string& level, const std::string& tag,
                               const std::string& delimiter) {
    const std::size_t at = level.find(tag);
    if (at == std::string::npos)
        return std::nullopt;
    const std::size_t begin = at + tag.size();
    const std::size_t end = level.find(delimiter, begin);
    if (end == std::string::npos)
        return std::nullopt;
    return Place{begin, end - begin};
}

} // namespace

int GetInfoFromOSLevel(const std::string& level, const std::string& tag, std::string& out,
                       const std::string& delimiter) {
    Trace trace(g_libLog, "sVersion:GetInfoFromOSLevel()", ", level=", level, ", tag=", tag);
    if (isOldForm(level)) {
        out = level;
        return trace.leave(ZOR_SUCCESS, ", old form, return ZOR_SUCCESS");
    }
    const auto place = findValue(level, tag, delimiter);
    if (!place)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    out = level.substr(place->begin, place->length);
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS, value=", out);
}

int ReplaceInfoInOSLevel(const std::string& level, const std::string& tag, const std::string& value,
                         std::string& out, const std::string& delimiter) {
    Trace trace(g_libLog, "sVersion:ReplaceInfoInOSLevel()", ", level=", level, ", tag=", tag,
                ", value=", value);
    const auto place = findValue(level, tag, delimiter);
    out = level;
    if (isOldForm(out))
        return trace.leave(ZOR_SUCCESS, ", old form, return ZOR_SUCCESS");
    if (!place)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    out.replace(place->begin, place->length, value);
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

std::string GetVersionFromOSLevel(const std::string& level) {
    Trace trace(g_libLog, "sVersion:GetVersionFromOSLevel()");
    std::string version;
    GetInfoFromOSLevel(level, OSLEVEL_VERSION, version);
    return version;
}

int GetReleaseIdFromOSLevel(const std::string& level, int& releaseId) {
    Trace trace(g_libLog, "sVersion:GetReleaseIdFromOSLevel()", ", level=", level);
    std::string text;
    if (isOldForm(level) || GetInfoFromOSLevel(level, OSLEVEL_RELEASE_ID, text) != ZOR_SUCCESS)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    releaseId = static_cast<int>(leadingNumber(text));
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS, releaseId=", releaseId);
}

int GetSupportedReleaseId(int releaseId, int& out) {
    Trace trace(g_libLog, "sVersion:GetSupportedReleaseId()", ", releaseId=", releaseId);
    // Each supported release with those that count as it.
    static const std::map<int, std::vector<int>> SUPPORTED = {{1607, {1511, 1703, 1709, 1803}}, {1809, {}}};

    std::optional<int> supported;
    for (const auto& [release, counting] : SUPPORTED) {
        if (release == releaseId ||
            std::find(counting.begin(), counting.end(), releaseId) != counting.end()) {
            supported = release;
            break;
        }
        if (release < releaseId)
            supported = release; // newer than all known ones: as the newest known one below it
    }
    if (!supported)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    out = *supported;
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS, out=", out);
}

int GetSupportedOSLevel(const std::string& level, std::string& out) {
    Trace trace(g_libLog, "sVersion:GetSupportedOSLevel()", ", level=", level);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): `out` may be the same object
    const std::string given = level;
    if (isOldForm(given)) {
        out = given;
        return trace.leave(ZOR_SUCCESS, ", old form, return ZOR_SUCCESS");
    }
    out.clear();
    int releaseId = 0;
    int supported = 0;
    int rc = GetReleaseIdFromOSLevel(given, releaseId);
    if (rc == ZOR_SUCCESS)
        rc = GetSupportedReleaseId(releaseId, supported);
    if (rc == ZOR_SUCCESS && supported != releaseId)
        rc = ReplaceInfoInOSLevel(given, OSLEVEL_RELEASE_ID, std::to_string(supported), out);
    else if (rc == ZOR_SUCCESS)
        out = given;
    return trace.leave(rc, ", return rc=", rc);
}

int CompareNewFormatOSLevels(const std::string& level1, const std::string& level2) {
    Trace trace(g_libLog, "sVersion:CompareNewFormatOSLevels()", ", level1=", level1, ", level2=", level2);
    const auto& [shorter, longer] =
        std::minmax(level1, level2, [](const std::string& left, const std::string& right) {
            return left.size() < right.size();
        });
    const bool held =
        shorter.size() < longer.size() ? longer.find(shorter) != std::string::npos : level1 == level2;
    // Service pack and architecture don't count.
    const auto same = [&](const char* tag) {
        std::string value1;
        std::string value2;
        GetInfoFromOSLevel(level1, tag, value1);
        GetInfoFromOSLevel(level2, tag, value2);
        return value1 == value2;
    };
    const int match = held || (same(OSLEVEL_TYPE) && same(OSLEVEL_VERSION) && same(OSLEVEL_RELEASE_ID));
    return trace.leave(match, ", return ", match);
}

namespace {

bool matchesOldForm(const std::string& old, const std::string& tagged) {
    std::string supported;
    int releaseId = 0;
    return GetSupportedOSLevel(tagged, supported) == ZOR_SUCCESS && GetVersionFromOSLevel(supported) == old &&
           GetReleaseIdFromOSLevel(supported, releaseId) == ZOR_SUCCESS;
}

bool matchesTags(const std::string& level1, const std::string& level2, const std::set<std::string>& tags) {
    std::string supported1;
    std::string supported2;
    if (GetSupportedOSLevel(level1, supported1) != ZOR_SUCCESS ||
        GetSupportedOSLevel(level2, supported2) != ZOR_SUCCESS)
        return false;
    return std::all_of(tags.begin(), tags.end(), [&](const std::string& tag) {
        std::string value1;
        std::string value2;
        return GetInfoFromOSLevel(supported1, tag, value1) == ZOR_SUCCESS &&
               GetInfoFromOSLevel(supported2, tag, value2) == ZOR_SUCCESS && value1 == value2;
    });
}

} // namespace

int CompareOSLevels(const std::string& level1, const std::string& level2, bool& match,
                    const std::set<std::string>& fields) {
    Trace trace(g_libLog, "sVersion:CompareOSLevels()", ", level1=", level1, ", level2=", level2);
    static const std::set<std::string> USUAL = {OSLEVEL_VERSION, OSLEVEL_RELEASE_ID, OSLEVEL_TYPE};
    const bool old1 = isOldForm(level1);
    const bool old2 = isOldForm(level2);
    if (level1 == level2)
        match = true;
    else if (old1 && old2)
        match = false;
    else if (old1 || old2)
        match = matchesOldForm(old1 ? level1 : level2, old1 ? level2 : level1);
    else
        match = matchesTags(level1, level2, fields.empty() ? USUAL : fields);
    const int rc = match ? ZOR_SUCCESS : ZOR_FAIL;
    return trace.leave(rc, ", return rc=", rc);
}

} // namespace Zorvane
