// SPDX-License-Identifier: Apache-2.0
// CB2VResource: which clients can become a virtual machine.
#include "logging/Trace.h"
#include "model/core_records.h"
#include "model/windows_records.h"
#include "resources/CB2VResource.h"
#include "resources/clientConfiguration.h"
#include "storage/windowsDisks.h"

#include <algorithm>

namespace Zorvane {

namespace {

constexpr std::uint64_t MSG_SYSTEM_DISK_UNSUPPORTED = 35;
constexpr std::uint64_t MSG_DATA_DISK_UNSUPPORTED = 36;
constexpr std::uint64_t MSG_BUS_UNSUPPORTED = 39;

constexpr const char* OLDEST_CLIENT_LEVEL = "7.6.0";
constexpr const char* OLDEST_WINDOWS = "5.2";
constexpr const char* FIRST_WINDOWS_WITH_STORAGE_SPACES = "6.2";

bool isConvertible(ConfigType type) {
    return type == ConfigType::SAVED || type == ConfigType::PIT || type == ConfigType::B2V_COPIED;
}

// The disk of a volume is the lowest by name here; the boot order's rules, which go by arc name, are others.
const CWindowsDisk* lowestNamed(const std::vector<CWindowsDisk*>& disks) {
    const CWindowsDisk* lowest = nullptr;
    for (const CWindowsDisk* disk : disks)
        if (!lowest || (!disk->getName().empty() && disk->getName() < lowest->getName()))
            lowest = disk;
    return lowest;
}

const CWindowsDisk* diskOfFirstVolume(const CZor& config, bool (CWindowsVolume::*flag)() const) {
    for (const CWindowsVolume* volume : config.m_vWindowsVolume)
        if (volume && (volume->*flag)())
            return lowestNamed(FindWindowsDisksOfVolume(config, *volume));
    return nullptr;
}

bool isSameDisk(const CWindowsDisk* known, const CWindowsDisk& disk) {
    return known && known->getId() == disk.getId();
}

} // namespace

bool CB2VResource::isClientSupported(const CZor& clientConfig) {
    ClassTrace trace(g_libLog, "CB2VResource:CB2VResource::isClientSupported()");
    const auto refuse = [&](const char* why) {
        trace.write(LEVEL_FAILURE, why);
        return trace.leave(false, ", isSupported=", false);
    };
    const CSystem* system = clientConfig.m_vSystem.first();
    const CConfig* config = clientConfig.m_vConfig.first();
    if (!system || !config)
        return refuse("Either Client system or config table is empty");
    if (!isConvertible(config->getType()))
        return refuse("Unsupported Config type");
    if (!isLevelAtLeast(config->getZorVersion(), OLDEST_CLIENT_LEVEL))
        return refuse("Unsupported client's kvn version");
    if (system->getOs() != OsType::NT)
        return refuse("Unsupported OS Type for Backup to Virtual restores");
    const bool isSupported = isLevelAtLeast(windowsVersion(system->getOsLevel()), OLDEST_WINDOWS);
    return trace.leave(isSupported, ", isSupported=", isSupported);
}

std::uint32_t CB2VResource::preSubmitCheck(B2VInput& input) {
    ClassTrace trace(g_appLog, "CB2VResource:CB2VResource::preSubmitCheck()");
    const auto refuse = [&](std::uint64_t messageId) {
        setErrorFromCatalogue(messageId);
        return trace.leave(std::uint32_t{1}, ", return rc=", 1);
    };
    CZor& config = input.clientConfig;
    const CSystem* system = config.m_vSystem.first();
    if (!system || system->getOs() != OsType::NT)
        return trace.leave(0, ", return rc=", 0);

    const CWindowsDisk* systemDisk = diskOfFirstVolume(config, &CWindowsVolume::getIsSystem);
    const CWindowsDisk* bootDisk = diskOfFirstVolume(config, &CWindowsVolume::getIsBoot);
    for (const CWindowsDisk* disk : config.m_vWindowsDisk) {
        if (!disk || !HasUnconvertibleDeviceType(*disk))
            continue;
        if (isSameDisk(systemDisk, *disk) || isSameDisk(bootDisk, *disk))
            return refuse(MSG_SYSTEM_DISK_UNSUPPORTED);
        if (!disk->getRestricted() && !input.systemOnly)
            return refuse(MSG_DATA_DISK_UNSUPPORTED);
    }

    const bool mayHaveStorageSpaces =
        isLevelAtLeast(windowsVersion(system->getOsLevel()), FIRST_WINDOWS_WITH_STORAGE_SPACES);
    if (mayHaveStorageSpaces && !input.systemOnly) {
        if (HasUnrestrictedDiskOnBus7(config))
            return refuse(MSG_BUS_UNSUPPORTED);
        if (IsReFsPresent(config))
            trace.write(LEVEL_FAILURE, "ReFS based volume found. ZOR will restore it as NTFS based volume.");
    }
    return trace.leave(0, ", return rc=", 0);
}

} // namespace Zorvane
