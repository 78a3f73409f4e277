// SPDX-License-Identifier: Apache-2.0
#include "frontend/veconfig.h"

#include "frontend/messageNumbers.h"
#include "logging/Trace.h"
#include "platform/fieldSplitting.h"
#include "platform/returnCodes.h"
#include "platform/stringManipulation.h"

#include <filesystem>
#include <fstream>

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

// `number:datastore`, appended to the disk map.
int addHardDisk(Trace& trace, const std::string& value, B2VInput& input) {
    std::vector<std::string> tokens;
    if (Split(value, ":", tokens) != ZOR_SUCCESS) {
        trace.write(LEVEL_FAILURE, "Failed to split the the line: ", value);
        return 1;
    }
    if (tokens.size() < 2) {
        trace.write(LEVEL_FAILURE, "Invalid Datastore Map entry", value);
        return 1;
    }
    DiskDataStoreEntry entry;
    entry.diskName = "Harddisk" + tokens.front();
    // The format has one level of separators: a colon within a data store's name is lost, on purpose.
    for (std::size_t i = 1; i < tokens.size(); ++i)
        entry.dataStoreName += tokens[i];
    entry.dataStoreName = withoutQuotes(entry.dataStoreName);
    input.diskMap.push_back(entry);
    return 0;
}

int takeLine(Trace& trace, const std::string& line, B2VInput& input) {
    std::vector<std::string> tokens;
    if (Split(line, "=", tokens) != ZOR_SUCCESS) {
        trace.write(LEVEL_FAILURE, "Split of line=", line, " failed");
        return ZOR_FAIL;
    }
    if (tokens.size() < 2) {
        trace.write(LEVEL_FAILURE, "Invalid line found in VEconfiguration file. line=", line);
        return 0;
    }
    const std::string& key = tokens[0];
    const std::string value = tokens[1].starts_with('"') ? withoutQuotes(tokens[1]) : tokens[1];
    if (key == "diskformat")
        input.diskFormat = diskFormatOf(value);
    else if (key == "harddisk")
        return addHardDisk(trace, value, input);
    else
        for (const TextKey& known : TEXT_KEYS)
            if (key == known.key)
                input.*known.field = value;
    return 0;
}

} // namespace

int parseVEconfig(const std::string& path, B2VInput& input) {
    ClassTrace trace(g_appLog, "veconfig:parseVEconfig()", ", path=", path);
    std::error_code ignored;
    std::ifstream file;
    // A folder opens like a file and then reads as an empty one.
    if (!std::filesystem::is_directory(path, ignored))
        file.open(path);
    if (!file.is_open()) {
        tellFailure(MSG_CANNOT_OPEN, path);
        trace.write(LEVEL_FAILURE, "Cannot open veconfig file ", path);
        return trace.leave(ZOR_FAIL, " return=ZOR_FAIL");
    }
    for (std::string line; std::getline(file, line);) {
        line = StripTrailingChar(line, '\n');
        if (line.empty())
            continue;
        if (const int rc = takeLine(trace, line, input))
            return trace.leave(rc, ", return ZOR_FAIL");
    }
    if (input.dataStore.empty() && !input.diskMap.empty())
        input.dataStore = input.diskMap.front().dataStoreName;
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

} // namespace Zorvane
