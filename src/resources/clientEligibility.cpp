// SPDX-License-Identifier: Apache-2.0
// CB2VResource: which clients can become a virtual machine.
#include "logging/Trace.h"
#include "model/core_records.h"
#include "model/enumerations.h"
#include "model/windows_records.h"
#include "resources/CB2VResource.h"
#include "resources/clientConfiguration.h"
#include "storage/windowsDisks.h"

#include <algorithm>

namespace Zorvane {

namespace {

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
    bool isSupported = true;
    // Whether the rule behind is tried.
    const auto refuse = [&](FindingKind rule, const std::string& value, const char* why) {
        isSupported = false;
        if (why)
            trace.write(LEVEL_FAILURE, why);
        return report({.kind = rule, .value = value});
    };
    const CSystem* system = clientConfig.m_vSystem.first();
    const CConfig* config = clientConfig.m_vConfig.first();
    const auto tryRules = [&] {
        if (!system || !config)
            return refuse(FindingKind::CLIENT_EMPTY, {}, "Either Client system or config table is empty");
        if (!isConvertible(config->getType()) &&
            !refuse(FindingKind::CLIENT_TYPE, toName(config->getType()), "Unsupported Config type"))
            return false;
        if (!isLevelAtLeast(config->getZorVersion(), OLDEST_CLIENT_LEVEL) &&
            !refuse(FindingKind::CLIENT_LEVEL, config->getZorVersion(), "Unsupported client's kvn version"))
            return false;
        if (system->getOs() != OsType::NT) // and the level is no version of Windows
            return refuse(FindingKind::CLIENT_OS, toName(system->getOs()),
                          "Unsupported OS Type for Backup to Virtual restores");
        const std::string version = windowsVersion(system->getOsLevel());
        return isLevelAtLeast(version, OLDEST_WINDOWS) ||
               refuse(FindingKind::CLIENT_WINDOWS, version, nullptr);
    };
    (void)tryRules();
    return trace.leave(isSupported, ", isSupported=", isSupported);
}

std::uint32_t CB2VResource::preSubmitCheck(B2VInput& input) {
    ClassTrace trace(g_appLog, "CB2VResource:CB2VResource::preSubmitCheck()");
    std::uint32_t rc = 0;
    // Whether the check ends with it.
    const auto refuses = [&](FindingKind rule, const std::string& diskName, const std::string& text = {}) {
        rc = 1;
        return !refuse({.kind = rule, .value = diskName, .text = text});
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
        const bool isOfSystem = isSameDisk(systemDisk, *disk) || isSameDisk(bootDisk, *disk);
        if (!isOfSystem && (disk->getRestricted() || input.systemOnly))
            continue;
        if (refuses(isOfSystem ? FindingKind::SYSTEM_DISK_UNSUPPORTED : FindingKind::DATA_DISK_UNSUPPORTED,
                    disk->getName()))
            return trace.leave(rc, ", return rc=", rc);
    }

    const bool mayHaveStorageSpaces =
        isLevelAtLeast(windowsVersion(system->getOsLevel()), FIRST_WINDOWS_WITH_STORAGE_SPACES);
    if (mayHaveStorageSpaces && !input.systemOnly) {
        const std::vector<CWindowsDisk*> disks = FindUnrestrictedDisksOnBus7(config);
        for (const CWindowsDisk* disk : disks)
            if (refuses(FindingKind::BUS_UNSUPPORTED, disk->getName(),
                        "It is the disk \"" + disk->getName() + "\"."))
                return trace.leave(rc, ", return rc=", rc);
        if (disks.empty() && IsReFsPresent(config)) {
            trace.write(LEVEL_FAILURE, "ReFS based volume found. ZOR will restore it as NTFS based volume.");
            for (const CWindowsVolume* volume : FindReFsVolumes(config))
                report({.kind = FindingKind::REFS_BECOMES_NTFS,
                        .value = volume->getName(),
                        .text = "It is the volume \"" + volume->getName() + "\"."});
        }
    }
    return trace.leave(rc, ", return rc=", rc);
}

} // namespace Zorvane
