// SPDX-License-Identifier: Apache-2.0
#include "storage/linuxStorage.h"

#include "logging/Trace.h"
#include "model/core_records.h"
#include "model/linux_records.h"
#include "storage/lookup.h"

#include <string_view>

namespace Zorvane {

namespace {

constexpr const char* EFI_MOUNT = "/boot/efi";

CLinuxFileSystem* fileSystemMountedOn(const CZor& zor, const std::string& directory) {
    const CLinuxMountPoint* mount = FindByName(zor.m_vLinuxMountPoint, directory);
    return mount ? FindReferred<CLinuxFileSystem>(zor, *mount) : nullptr;
}

CLinuxPartition* partitionMountedOn(const CZor& zor, const std::string& directory) {
    const CLinuxFileSystem* fileSystem = fileSystemMountedOn(zor, directory);
    const auto* link =
        fileSystem ? FindFirstReferring<CLinuxFileSystemToPartition>(zor, *fileSystem) : nullptr;
    return link ? FindReferred<CLinuxPartition>(zor, *link) : nullptr;
}

/// The partitions of the multi-device that "/boot", or "/" where it is no mount point, lies on.
std::vector<CLinuxPartition*> bootMultiDeviceMembers(const CZor& zor) {
    const char* directory = FindByName(zor.m_vLinuxMountPoint, "/boot") ? "/boot" : "/";
    const CLinuxFileSystem* fileSystem = fileSystemMountedOn(zor, directory);
    const auto* link =
        fileSystem ? FindFirstReferring<CLinuxFileSystemToMultiDevice>(zor, *fileSystem) : nullptr;
    if (!link)
        return {};
    return FindReferred<CLinuxPartition>(zor, FindAllBy(zor.m_vLinuxPartitionToMultiDevice,
                                                        &CLinuxPartitionToMultiDevice::getLinuxMultiDeviceId,
                                                        link->getLinuxMultiDeviceId()));
}

/// A device-mapper path as the path of a group and a volume: a doubled hyphen is a hyphen of a name, and the
/// first single one separates the names.
std::string groupPath(const std::string& mapperPath) {
    constexpr std::string_view mapper = "/dev/mapper/";
    constexpr std::string_view dropped = "mapper/";
    std::string in = mapperPath;
    in.erase(in.find(mapper) + mapper.size() - dropped.size(), dropped.size());

    std::string out;
    bool separated = false;
    for (std::size_t at = 0; at < in.size(); ++at) {
        if (in[at] != '-') {
            out += in[at];
        } else if (in.compare(at, 2, "--") == 0) {
            out += '-';
            ++at;
        } else {
            out += separated ? '-' : '/';
            separated = true;
        }
    }
    return out;
}

} // namespace

int VerifyESPisMapped(const CZor& zor) {
    Trace trace(g_libLog, "linuxStorage:VerifyESPisMapped()");
    const CSystem* system = zor.m_vSystem.first();
    if (!system || system->getFirmware() != FirmwareType::UEFI || partitionMountedOn(zor, EFI_MOUNT))
        return trace.leave(1, ", mapped=", 1);
    trace.write(LEVEL_FAILURE, "EFI client should contain /boot/efi filesystem.");
    return trace.leave(0, ", mapped=", 0);
}

std::vector<CLinuxPartition*> FindLinuxBootPartitions(const CZor& zor) {
    Trace trace(g_libLog, "linuxStorage:FindLinuxBootPartitions()");
    std::vector<CLinuxPartition*> found;
    if (CLinuxPartition* efi = partitionMountedOn(zor, EFI_MOUNT))
        found.push_back(efi);
    // Where "/boot" lies on a multi-device and "/" on a partition, that partition counts, and that stays so.
    CLinuxPartition* boot = partitionMountedOn(zor, "/boot");
    if (!boot)
        boot = partitionMountedOn(zor, "/");
    if (boot) {
        found.push_back(boot);
    } else {
        const auto members = bootMultiDeviceMembers(zor);
        found.insert(found.end(), members.begin(), members.end());
    }
    trace.exitLine(", partitions=", found.size());
    return found;
}

CLinuxLogicalVolume* Find(const RecordRows<CLinuxLogicalVolume>& volumes, const std::string& deviceName) {
    Trace trace(g_libLog, "linuxStorage:Find()", ", name=", deviceName);
    if (CLinuxLogicalVolume* volume = FindByName(volumes, deviceName)) {
        trace.write(LEVEL_TRACE, "Exiting, object found, first try, name=", deviceName);
        return volume;
    }
    if (deviceName.find("/dev/mapper/") != std::string::npos) {
        const std::string generated = groupPath(deviceName);
        trace.write(LEVEL_TRACE, "Second try with generated name=", generated);
        if (CLinuxLogicalVolume* volume = FindByName(volumes, generated)) {
            trace.write(LEVEL_TRACE, "Exiting, object found, second try, name=", generated);
            return volume;
        }
    }
    trace.write(LEVEL_TRACE, "Exiting, No object found, name=", deviceName);
    return nullptr;
}

} // namespace Zorvane
