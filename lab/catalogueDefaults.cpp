// SPDX-License-Identifier: Apache-2.0
#include "lab/Catalogue.h"
#include "lab/tomlFile.h"
#include "model/CZor.h"
#include "model/core_records.h"
#include "model/windows_records.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace Zorvane {

namespace {

constexpr std::int64_t DAY = 86400;
constexpr const char* INCREMENTAL = "Incremental";

// What a full backup of a Windows server holds, at all the levels of the client's software that are about.
std::vector<std::string> windowsFiles(const std::string& systemRoot, bool bios) {
    std::vector<std::string> files = {
        "/C/Windows/explorer.exe",
        "/C/Users/Public/Documents/readme.txt",
        "/Shadow Copy Components/System State/Registry/Registry",
        "/Shadow Copy Components/System State/System Files/System Files",
        "/Shadow Copy Components/System Service/Windows Management Instrumentation/WMI",
        "/System State/Registry/Registry",
        "/System State/System Files/System Files",
        "/System State/_SharedHardlinkData_/Shared Hardlink Data",
        "/System State/COM+ Class Registration Database/COM+ REGDB",
        "/System_State/Registry/system",
        "/System_State/Boot_Files/Protected_Files/" + systemRoot + "/ntoskrnl.exe",
    };
    files.emplace_back(bios ? "/System State/Automated System Recovery/BCD/BCD"
                            : "/EFI System Partition/EFI/Microsoft/Boot/BCD");
    return files;
}

std::vector<std::string> unixFiles(const std::string& dataPath) {
    return {"/etc/fstab",
            "/etc/hosts",
            "/etc/passwd",
            "/usr/bin/bash",
            "/usr/lib/locale/C.utf8/LC_CTYPE",
            dataPath + "/config.xml"};
}

std::string fileList(const std::vector<std::string>& files) {
    std::string text = "[\n";
    for (const std::string& file : files)
        text += "    " + tomlQuoted(file) + ",\n";
    return text + "  ]\n";
}

constexpr const char* WINDOWS_BIOS = "windows-bios";
constexpr const char* WINDOWS_EFI = "windows-efi";
constexpr const char* UNIX = "unix";

void appendImage(std::string& text, const std::string& policy, const char* schedule, std::int64_t time,
                 const std::vector<std::string>& files) {
    text += "\n  [[client.image]]\n  policy = " + tomlQuoted(policy) + "\n  schedule = \"" + schedule +
            "\"\n  time = " + std::to_string(time) + "\n  files = " + fileList(files);
}

} // namespace

std::string catalogueEntry(const CZor& configuration) {
    const CConfig* config = configuration.m_vConfig.first();
    const CEsm* esm = configuration.m_vEsm.first();
    const CSystem* system = configuration.m_vSystem.first();
    if (!config || !esm || !system || esm->getNodeName().empty())
        return {};
    const bool windows = system->getOs() == OsType::NT;
    const std::string policy = esm->getPolicy().empty() ? "Daily" : esm->getPolicy();
    // Clients look for images up to the moment at which the configuration was taken.
    const std::int64_t taken =
        config->getRetrievalTime() > 0 ? config->getRetrievalTime() : std::time(nullptr);

    std::vector<std::string> files;
    if (windows) {
        const CWindowsSystem* details = configuration.m_vWindowsSystem.first();
        std::string root = details ? details->getSystemRoot() : "C:/Windows";
        std::ranges::replace(root, '\\', '/');
        files = windowsFiles(root, system->getFirmware() == FirmwareType::BIOS);
    } else {
        files = unixFiles(system->getZorDirectory() + "client/data");
    }
    std::string text = "\n[[client]]\nname = " + tomlQuoted(esm->getNodeName()) +
                       "\ntype = " + std::to_string(windows ? CATALOGUE_WINDOWS : CATALOGUE_STANDARD) + "\n";
    // A client whose schedule makes incremental backups only has no full image to be converted from.
    const char* const full = esm->getBscheduleType() == INCREMENTAL ? INCREMENTAL : "Full";
    appendImage(text, policy, full, taken - 600, files);
    appendImage(text, policy, INCREMENTAL, taken - DAY, {files.front()});
    appendImage(text, policy, full, taken - 7 * DAY, files);
    return text;
}

std::string sharedContents() {
    const std::pair<const char*, std::vector<std::string>> contents[] = {
        {WINDOWS_BIOS, windowsFiles("C:/Windows", true)},
        {WINDOWS_EFI, windowsFiles("C:/Windows", false)},
        {UNIX, unixFiles("/usr/tarnv/kelvarion/zorvane/client/data")},
    };
    std::string text;
    for (const auto& [name, files] : contents)
        text += std::string("\n[[content]]\nname = \"") + name + "\"\nfiles = " + fileList(files);
    return text;
}

std::string sharedContentOf(const CZor& configuration) {
    const CSystem* system = configuration.m_vSystem.first();
    if (!system || system->getOs() != OsType::NT)
        return UNIX;
    return system->getFirmware() == FirmwareType::BIOS ? WINDOWS_BIOS : WINDOWS_EFI;
}

} // namespace Zorvane
