// SPDX-License-Identifier: Apache-2.0
#include "info/check/diskSpace.h"

#include "info/layout/labels.h"
#include "model/windows_records.h"
#include "platform/stringManipulation.h"
#include "storage/volfind.h"
#include "storage/windowsDisks.h"

#include <algorithm>
#include <limits>
#include <set>

namespace Zorvane {

namespace {

constexpr std::int64_t BYTES_PER_MB = 1048576;
constexpr std::int64_t MOST_MB = std::numeric_limits<std::int64_t>::max() / BYTES_PER_MB;

std::set<ID> disksOfSystem(const CZor& config) {
    std::set<ID> disks;
    for (const CWindowsVolume* volume : config.m_vWindowsVolume)
        if (volume && (volume->getIsSystem() || volume->getIsBoot()))
            for (const CWindowsDisk* disk : FindWindowsDisksOfVolume(config, *volume))
                disks.insert(disk->getId());
    return disks;
}

std::string mapName(const CWindowsDisk& disk) {
    unsigned int number = 0;
    return GetDiskNumber(disk, number) == 0 ? "Harddisk" + std::to_string(number) : disk.getName();
}

std::int64_t wholeMegabytes(std::int64_t bytes) {
    return bytes <= 0 ? 0 : bytes / BYTES_PER_MB + (bytes % BYTES_PER_MB == 0 ? 0 : 1);
}

bool isSameStore(const std::string& first, const std::string& second) {
    return StrCaseCmp(first.c_str(), second.c_str()) == 0;
}

class Sheet {
  public:
    void add(const std::string& store, std::int64_t needed, std::int64_t free) {
        const auto at = std::find_if(m_lines.begin(), m_lines.end(),
                                     [&](const StoreSpace& line) { return isSameStore(line.store, store); });
        StoreSpace& line = at == m_lines.end() ? m_lines.emplace_back(StoreSpace{store, 0, {}}) : *at;
        line.needed += needed;
        if (free != SPACE_UNKNOWN)
            line.free = free;
    }
    std::vector<StoreSpace> take() { return std::move(m_lines); }

  private:
    std::vector<StoreSpace> m_lines;
};

void reportMap(const B2VInput& input, const std::vector<ClientDisk>& disks, Findings& findings) {
    std::vector<std::string> known;
    known.reserve(disks.size());
    for (const ClientDisk& disk : disks)
        known.push_back(disk.name);
    std::set<std::string> mapped;
    for (const DiskDataStoreEntry& entry : input.diskMap) {
        if (!mapped.insert(entry.diskName).second)
            findings.report({.kind = FindingKind::DISK_MAPPED_TWICE, .value = entry.diskName});
        else if (std::find(known.begin(), known.end(), entry.diskName) == known.end())
            findings.report(
                {.kind = FindingKind::LINE_MAPS_NOTHING, .value = entry.diskName, .candidates = known});
    }
    if (input.diskMap.empty())
        return;
    for (const ClientDisk& disk : disks)
        if (!mapped.contains(disk.name))
            findings.report({.kind = FindingKind::DISK_UNMAPPED,
                             .value = disk.name,
                             .hint = "It goes to the data store \"" + input.dataStore + "\"."});
}

} // namespace

std::string megabytesText(std::int64_t megabytes) {
    const std::int64_t bytes = std::clamp(megabytes, -MOST_MB, MOST_MB) * BYTES_PER_MB;
    return bytes < 0 ? "-" + sizeText(-bytes) : sizeText(bytes);
}

std::vector<ClientDisk> convertedDisks(const B2VInput& input) {
    const std::set<ID> ofSystem = disksOfSystem(input.clientConfig);
    std::vector<ClientDisk> disks;
    for (const CWindowsDisk* disk : input.clientConfig.m_vWindowsDisk)
        if (disk && !disk->getRestricted() && (!input.systemOnly || ofSystem.contains(disk->getId())))
            disks.push_back({mapName(*disk), wholeMegabytes(disk->getLength())});
    return disks;
}

std::vector<StoreSpace> spaceSheet(const B2VInput& input, Findings& findings) {
    const std::vector<ClientDisk> disks = convertedDisks(input);
    if (disks.empty())
        return {};
    reportMap(input, disks, findings);
    Sheet sheet;
    for (const ClientDisk& disk : disks) {
        const auto entry = std::find_if(input.diskMap.begin(), input.diskMap.end(),
                                        [&](const auto& other) { return other.diskName == disk.name; });
        if (entry != input.diskMap.end())
            sheet.add(entry->dataStoreName, disk.size, entry->availableSize);
        else if (!input.dataStore.empty())
            sheet.add(input.dataStore, disk.size, input.dataStoreSize);
    }
    std::vector<StoreSpace> lines = sheet.take();
    for (const StoreSpace& line : lines)
        if (line.free && *line.free < line.needed)
            findings.report({.kind = FindingKind::SPACE_SHORT,
                             .value = line.store,
                             .hint = megabytesText(line.needed - *line.free) +
                                     " are missing: the disks take " + megabytesText(line.needed) + ", and " +
                                     megabytesText(*line.free) + " are free."});
    return lines;
}

} // namespace Zorvane
