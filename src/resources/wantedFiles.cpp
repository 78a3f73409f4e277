// SPDX-License-Identifier: Apache-2.0
#include "resources/wantedFiles.h"

#include "model/core_records.h"
#include "model/windows_records.h"
#include "platform/stringManipulation.h"
#include "resources/clientConfiguration.h"

namespace Zorvane {

namespace {

// Bands of the client's software, by how it names the parts of a Windows system.
constexpr const char* SYSTEM_STATE_LEVEL = "7.5.0";
constexpr const char* MIXED_LEVEL = "6.5.4";

std::string withForwardSlashes(std::string path) {
    StrReplace(path, "\\", "/", true);
    return path;
}

void addWindows(std::vector<std::string>& wanted, const CZor& config, const CSystem& system) {
    const std::string version = windowsVersion(system.getOsLevel());
    const std::string configLevel = config.m_vConfig.back()->getZorVersion();
    const auto add = [&](auto... paths) { (wanted.emplace_back(paths), ...); };

    if (!isLevelAtLeast(version, "5.2")) {
        const CWindowsSystem* windows = config.m_vWindowsSystem.first();
        const std::string root = windows ? withForwardSlashes(windows->getSystemRoot()) : std::string();
        add("/System_State/Registry/system",
            "/System_State/Boot_Files/Protected_Files/" + root + "/ntoskrnl.exe");
        return;
    }
    const bool hasSystemState = isLevelAtLeast(configLevel, SYSTEM_STATE_LEVEL);
    if (hasSystemState)
        add("/System State/Registry/Registry", "/System State/System Files/");
    else if (isLevelAtLeast(configLevel, MIXED_LEVEL))
        add("/Shadow Copy Components/", "/System State/Registry/Registry", "/System State/System Files/");
    else
        add("/Shadow Copy Components/", "/Shadow Copy Components/System State/Registry/Registry",
            "/Shadow Copy Components/System State/System Files/");
    if (!isLevelAtLeast(version, "6.0"))
        return;
    if (!hasSystemState)
        add("/Shadow Copy Components/System Service/Windows Management Instrumentation/WMI");
    add("/System State/_SharedHardlinkData_/", "/System State/COM+ Class Registration Database/COM+ REGDB");
    add(system.getFirmware() == FirmwareType::BIOS ? "/System State/Automated System Recovery/BCD/BCD"
                                                   : "/EFI System Partition/EFI/Microsoft/Boot/BCD");
}

} // namespace

std::vector<std::string> wantedFiles(const CZor& config) {
    std::vector<std::string> wanted;
    const CSystem* system = config.m_vSystem.first();
    if (system && system->getOs() == OsType::NT)
        addWindows(wanted, config, *system);
    else
        wanted = {"/usr/*", "/etc/*", (system ? system->getZorDirectory() : std::string()) + "client/data"};
    wanted.emplace_back(WANTED_FILES_END);
    return wanted;
}

} // namespace Zorvane
