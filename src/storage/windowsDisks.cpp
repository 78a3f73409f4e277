// SPDX-License-Identifier: Apache-2.0
#include "storage/windowsDisks.h"

#include "logging/Trace.h"
#include "model/volume_manager_records.h"
#include "model/windows_records.h"
#include "storage/lookup.h"
#include "storage/readUnsigned.h"
#include "storage/volfind.h"

#include <utility>

namespace Zorvane {

namespace {

/// The first disk, unless a later one has a lower arc name. An empty arc name is no lower one but has none
/// below it: a first disk without an arc name is kept, and that stays so.
template <class Disk>
Disk* chooseByArcName(const std::vector<Disk*>& disks) {
    Disk* chosen = disks.empty() ? nullptr : disks.front();
    for (Disk* disk : disks)
        if (!disk->getArcName().empty() && disk->getArcName() < chosen->getArcName())
            chosen = disk;
    return chosen;
}

CWindowsDisk* windowsDiskOf(const CZor& zor, const CWindowsVolume* volume) {
    return volume ? chooseByArcName(FindWindowsDisksOfVolume(zor, *volume)) : nullptr;
}

CQuswDisk* quswDiskOf(const CZor& zor, const CQuswVolume* volume) {
    return volume ? chooseByArcName(FindQuswDisksOfVolume(zor, *volume)) : nullptr;
}

std::string nameOf(const CDisk* disk) {
    return disk ? disk->getName() : std::string();
}

/// The number in the last parentheses of an arc name: the disk's, or the partition's where one is named
/// behind it. It stays so, although partitions then compete with disks.
unsigned int lastArcNumber(const std::string& arcName) {
    const std::size_t open = arcName.rfind('(');
    if (open == std::string::npos)
        return 0;
    std::string piece = arcName.substr(open);
    piece[0] = ' ';
    if (const std::size_t close = piece.find(')'); close != std::string::npos)
        piece[close] = ' ';
    return readUnsigned(piece);
}

/// Whether the firmware can boot from a disk, as far as its record tells.
bool isBootCandidate(const CWindowsDisk& disk) {
    switch (disk.getDeviceType()) {
    case 2:
    case 3:
    case 5:
        return false;
    default:
        return disk.getArcName().find("rdisk") != std::string::npos;
    }
}

} // namespace

std::vector<CWindowsDisk*> FindWindowsDisksOfVolume(const CZor& zor, const CWindowsVolume& volume) {
    const auto plexes = FindReferring<CWindowsPlex>(zor, volume);
    return FindReferred<CWindowsDisk>(zor, FindReferring<CWindowsRegion>(zor, plexes));
}

std::vector<CQuswDisk*> FindQuswDisksOfVolume(const CZor& zor, const CQuswVolume& volume) {
    const auto plexes = FindReferring<CQuswPlex>(zor, volume);
    return FindReferred<CQuswDisk>(zor, FindReferring<CQuswSubDisk>(zor, plexes));
}

std::vector<CWindowsVolume*> FindWindowsVolumesOfDisk(const CZor& zor, const CWindowsDisk& disk) {
    const auto regions = FindReferring<CWindowsRegion>(zor, disk);
    return FindReferred<CWindowsVolume>(zor, FindReferred<CWindowsPlex>(zor, regions));
}

CWindowsDisk* FindWindowsSystemDisk(const CZor& zor) {
    return windowsDiskOf(zor, FindByFlag(zor.m_vWindowsVolume, &CWindowsVolume::getIsSystem));
}

CWindowsDisk* FindWindowsBootDisk(const CZor& zor) {
    return windowsDiskOf(zor, FindByFlag(zor.m_vWindowsVolume, &CWindowsVolume::getIsBoot));
}

CQuswDisk* FindQuswSystemDisk(const CZor& zor) {
    return quswDiskOf(zor, FindByFlag(zor.m_vQuswVolume, &CQuswVolume::getIsSystem));
}

CQuswDisk* FindQuswBootDisk(const CZor& zor) {
    return quswDiskOf(zor, FindByFlag(zor.m_vQuswVolume, &CQuswVolume::getIsBoot));
}

std::string FindSystemDiskName(const CZor& zor) {
    switch (FindVolumeManager(zor)) {
    case VolumeManager::Windows:
        return nameOf(FindWindowsSystemDisk(zor));
    case VolumeManager::Qusw:
        return nameOf(FindQuswSystemDisk(zor));
    default:
        return {};
    }
}

std::string FindBootDiskName(const CZor& zor) {
    switch (FindVolumeManager(zor)) {
    case VolumeManager::Windows:
        return nameOf(FindWindowsBootDisk(zor));
    case VolumeManager::Qusw:
        return nameOf(FindQuswBootDisk(zor));
    default:
        return {};
    }
}

CWindowsDisk* FindFirstBootableDisk(const RecordRows<CWindowsDisk>& disks) {
    Trace trace(g_libLog, "windowsDisks:FindFirstBootableDisk()");
    CWindowsDisk* best = nullptr;
    std::pair<unsigned int, std::string> bestKey;
    for (CWindowsDisk* disk : disks) {
        if (!disk || !isBootCandidate(*disk))
            continue;
        std::pair key(lastArcNumber(disk->getArcName()), disk->getArcName());
        if (best && key >= bestKey)
            continue;
        best = disk;
        bestKey = std::move(key);
    }
    if (best)
        trace.write(LEVEL_TRANSFER, "First Boot disk is ", best->getName(),
                    ", with arcName=", best->getArcName());
    else
        trace.write(LEVEL_FAILURE, "Couldn't find boot disk using arcpath.");
    return best;
}

int IsSystemDiskInBootOrder(const CZor& zor) {
    if (FindVolumeManager(zor) != VolumeManager::Windows)
        return 1;
    return FindWindowsSystemDisk(zor) == FindFirstBootableDisk(zor.m_vWindowsDisk) ? 1 : 0;
}

std::vector<CWindowsVolume*> FindReFsVolumes(const CZor& zor) {
    std::vector<CWindowsVolume*> found;
    for (const CWindowsDisk* disk : zor.m_vWindowsDisk) {
        if (!disk || disk->getRestricted())
            continue;
        for (CWindowsVolume* volume : FindWindowsVolumesOfDisk(zor, *disk)) {
            // A later file system of the volume doesn't count, and that stays so.
            const auto* fileSystem = FindFirstReferring<CWindowsFileSystem>(zor, *volume);
            const bool isReFs = fileSystem && fileSystem->getType() == FileSystemType::REFS;
            if (isReFs && std::find(found.begin(), found.end(), volume) == found.end())
                found.push_back(volume);
        }
    }
    return found;
}

int IsReFsPresent(const CZor& zor) {
    Trace trace(g_libLog, "windowsDisks:IsReFsPresent()");
    const int present = FindReFsVolumes(zor).empty() ? 0 : 1;
    return trace.leave(present, ", present=", present);
}

bool HasUnconvertibleDeviceType(const CWindowsDisk& disk) {
    return disk.getDeviceType() == 6 || disk.getDeviceType() == 7;
}

std::vector<CWindowsDisk*> FindUnrestrictedDisksOnBus7(const CZor& zor) {
    return FindAllIf(zor.m_vWindowsDisk, [](const CWindowsDisk& disk) {
        return disk.getBusType() == 7 && !disk.getRestricted();
    });
}

} // namespace Zorvane
