// SPDX-License-Identifier: Apache-2.0
#include "frontend/veconfig.h"

#include "logging/Trace.h"
#include "platform/fieldSplitting.h"
#include "platform/returnCodes.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <utility>

namespace Zorvane {

namespace {

constexpr const char* QUOTE = "\"";

struct TextKey {
    std::string_view key;
    std::string B2VInput::*field;
};

constexpr TextKey TEXT_KEYS[] = {
    {"datastore", &B2VInput::dataStore},       {"folder", &B2VInput::vmFolder},
    {"resourcepool", &B2VInput::resourcePool}, {"datacenter", &B2VInput::dataCenter},
    {"cluster", &B2VInput::cluster},           {"esxhost", &B2VInput::esxHost},
    {"name", &B2VInput::vmDisplayName},        {"network", &B2VInput::vmNetwork},
    {"toolsIsoPath", &B2VInput::toolsIsoPath},
};

constexpr const char* FORMAT_KEY = "diskformat";
constexpr const char* DISK_KEY = "harddisk";

std::uint32_t diskFormatOf(const std::string& word) {
    if (word == "ThickVdisk")
        return DISK_FORMAT_THICK;
    if (word == "ThinVdisk")
        return DISK_FORMAT_THIN;
    if (word == "ThickLazy")
        return DISK_FORMAT_THICK_LAZY;
    return DISK_FORMAT_INVALID;
}

std::string withoutQuotes(const std::string& text) {
    return StripTrailing(StripLeading(text, QUOTE), QUOTE);
}

/// The file on its way into the input.
struct Reading {
    Trace& trace;
    B2VInput& input;
    Findings& findings;
    VEconfigLines lines{};
    int line = 0; ///< the one that is read

    [[nodiscard]] bool report(FindingKind kind, const std::string& value) {
        return findings.report({.kind = kind, .value = value, .lines = {line}});
    }
};

// Whether the lines behind this one are to be read.
bool refuseDisk(Reading& reading, const char* why, const std::string& value) {
    reading.trace.write(LEVEL_FAILURE, why, value);
    return reading.report(FindingKind::DISK_WITHOUT_STORE, value);
}

// `number:datastore`, appended to the disk map. The code of the parse: not 0 if the line ends it.
int addHardDisk(Reading& reading, const std::string& value) {
    std::vector<std::string> tokens;
    if (Split(value, ":", tokens) != ZOR_SUCCESS)
        return refuseDisk(reading, "Failed to split the the line: ", value) ? 0 : 1;
    if (tokens.size() < 2)
        return refuseDisk(reading, "Invalid Datastore Map entry", value) ? 0 : 1;
    DiskDataStoreEntry entry;
    entry.diskName = "Harddisk" + tokens.front();
    // The format has one level of separators: a colon within a data store's name is lost, on purpose.
    for (std::size_t i = 1; i < tokens.size(); ++i)
        entry.dataStoreName += tokens[i];
    entry.dataStoreName = withoutQuotes(entry.dataStoreName);
    reading.input.diskMap.push_back(entry);
    reading.lines.hardDisks.push_back(reading.line);
    return 0;
}

int takeValue(Reading& reading, const std::string& key, const std::string& value) {
    if (key == DISK_KEY)
        return addHardDisk(reading, value);
    const auto known = std::find_if(std::begin(TEXT_KEYS), std::end(TEXT_KEYS),
                                    [&](const TextKey& text) { return text.key == key; });
    if (key == FORMAT_KEY) {
        reading.input.diskFormat = diskFormatOf(value);
        if (reading.input.diskFormat == DISK_FORMAT_INVALID)
            (void)reading.report(FindingKind::FORMAT_UNKNOWN, value);
    } else if (known != std::end(TEXT_KEYS)) {
        reading.input.*(known->field) = value;
    } else {
        if (!key.starts_with('#')) // no syntax of comments, but a habit
            (void)reading.report(FindingKind::KEY_UNKNOWN, key);
        return 0;
    }
    if (!reading.lines.keys.insert_or_assign(key, reading.line).second)
        (void)reading.report(FindingKind::KEY_REPEATED, key);
    return 0;
}

int takeLine(Reading& reading, const std::string& line) {
    std::vector<std::string> tokens;
    if (Split(line, "=", tokens) != ZOR_SUCCESS) {
        reading.trace.write(LEVEL_FAILURE, "Split of line=", line, " failed");
        return reading.report(FindingKind::LINE_UNREADABLE, line) ? 0 : ZOR_FAIL;
    }
    if (tokens.size() < 2) {
        reading.trace.write(LEVEL_FAILURE, "Invalid line found in VEconfiguration file. line=", line);
        if (!line.starts_with('#'))
            (void)reading.report(FindingKind::LINE_IGNORED, line);
        return 0;
    }
    if (tokens.size() > 2 && !line.starts_with('#'))
        (void)reading.report(FindingKind::VALUE_CUT, line);
    return takeValue(reading, tokens[0], tokens[1].starts_with('"') ? withoutQuotes(tokens[1]) : tokens[1]);
}

// A target is a page or two; the bound keeps a device without an end out.
constexpr std::size_t MAX_FILE_SIZE = 64 << 20;

// The whole file, or nothing: half a target is another target.
std::optional<std::string> readFile(const std::string& path) {
    std::error_code ignored;
    // A folder opens like a file and then reads as an empty one.
    if (std::filesystem::is_directory(path, ignored))
        return std::nullopt;
    std::ifstream file(path);
    std::string text;
    do {
        std::array<char, 8192> piece;
        file.read(piece.data(), piece.size());
        text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    } while (file && text.size() <= MAX_FILE_SIZE);
    return file.eof() && !file.bad() ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace

int parseVEconfig(const std::string& path, B2VInput& input, Findings& findings, VEconfigLines* lines) {
    ClassTrace trace(g_appLog, "veconfig:parseVEconfig()", ", path=", path);
    const std::optional<std::string> text = readFile(path);
    if (!text) {
        findings.report({.kind = FindingKind::FILE_NOT_OPENED, .value = path});
        trace.write(LEVEL_FAILURE, "Cannot open veconfig file ", path);
        return trace.leave(ZOR_FAIL, " return=ZOR_FAIL");
    }
    Reading reading{.trace = trace, .input = input, .findings = findings};
    std::istringstream file(*text);
    file.exceptions(std::ios::badbit); // a lack of memory has to be thrown on, and not to end the file early
    for (std::string line; std::getline(file, line);) {
        ++reading.line;
        line = StripTrailingChar(line, '\n');
        if (line.empty())
            continue;
        if (const int rc = takeLine(reading, line))
            return trace.leave(rc, ", return ZOR_FAIL");
    }
    if (lines)
        *lines = reading.lines;
    if (input.dataStore.empty() && !input.diskMap.empty())
        input.dataStore = input.diskMap.front().dataStoreName;
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

std::vector<std::string> veConfigKeys() {
    std::vector<std::string> keys = {FORMAT_KEY, DISK_KEY};
    for (const TextKey& known : TEXT_KEYS)
        keys.emplace_back(known.key);
    return keys;
}

} // namespace Zorvane
