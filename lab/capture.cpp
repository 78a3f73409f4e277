// SPDX-License-Identifier: Apache-2.0
#include "lab/capture.h"

#include "lab/MachineCapture.h"
#include "platform/zorSystemCommon.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <sys/utsname.h>
#include <unistd.h>

namespace Zorvane {

namespace {

namespace fs = std::filesystem;

// More than any file of /proc and /sys that is read has.
constexpr std::size_t MAX_FILE_SIZE = std::size_t{1} << 20;

// The command of that name in the system's folders, not in the caller's PATH.
std::string commandPath(const std::string& name) {
    for (const char* folder : {"/usr/sbin/", "/usr/bin/", "/sbin/", "/bin/"})
        if (::access((folder + name).c_str(), X_OK) == 0)
            return folder + name;
    return {};
}

// Empty for a command that isn't there or fails.
template <class... Arguments>
std::string outputOf(const std::string& name, Arguments... arguments) {
    const std::string path = commandPath(name);
    if (path.empty())
        return {};
    const char* const command[] = {path.c_str(), arguments..., nullptr};
    std::stringstream output;
    std::int32_t status = 0;
    ZorRunCommandCommon2(command, output, status, 0, true);
    return output.str();
}

std::string architecture(const MachineCapture& capture) {
    // Kernels have this file since 6.1.
    if (std::string name = capture.file("proc/sys/kernel/arch"); !name.empty())
        return name;
    utsname kernel{};
    return ::uname(&kernel) == 0 ? kernel.machine : "";
}

int processorCount(const MachineCapture& capture) {
    int count = 0;
    for (const std::string& line : capture.lines("proc/cpuinfo"))
        count += line.starts_with("processor");
    return count;
}

std::int64_t memorySize(const MachineCapture& capture) {
    for (const std::string& line : capture.lines("proc/meminfo"))
        if (const auto words = wordsOf(line); words.size() > 1 && words[0] == "MemTotal:")
            return std::strtoll(words[1].c_str(), nullptr, 10) * 1024;
    return 0;
}

} // namespace

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

std::string MachineCapture::file(const std::string& name) const {
    std::ifstream stream(machine.root / name, std::ios::binary);
    std::string text(MAX_FILE_SIZE, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\0'))
        text.pop_back();
    return text;
}

std::vector<std::string> MachineCapture::lines(const std::string& name) const {
    std::vector<std::string> all;
    std::istringstream text(file(name));
    for (std::string line; std::getline(text, line);)
        all.push_back(line);
    return all;
}

bool MachineCapture::exists(const std::string& name) const {
    std::error_code error;
    return fs::exists(machine.root / name, error);
}

std::int64_t MachineCapture::number(const std::string& name) const {
    return std::strtoll(file(name).c_str(), nullptr, 10);
}

std::vector<std::string> MachineCapture::names(const std::string& folder) const {
    std::vector<std::string> found;
    std::error_code error;
    for (auto at = fs::directory_iterator(machine.root / folder, error);
         !error && at != fs::directory_iterator(); at.increment(error))
        found.push_back(at->path().filename());
    std::ranges::sort(found);
    return found;
}

std::string MachineCapture::setting(const std::string& name, std::string_view key) const {
    for (const std::string& line : lines(name)) {
        if (!line.starts_with(key) || line.substr(key.size(), 1) != "=")
            continue;
        std::string value = line.substr(key.size() + 1);
        if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
            value.back() == value.front())
            value = value.substr(1, value.size() - 2);
        return value;
    }
    return {};
}

std::string MachineCapture::hostName() const {
    const std::string name = file("proc/sys/kernel/hostname");
    return name.substr(0, name.find('.'));
}

void captureSystem(MachineCapture& capture) {
    auto& config = capture.add(capture.rows.m_vConfig);
    capture.config = config.getId();
    config.setName("current");
    config.setClientName(capture.file("proc/sys/kernel/hostname"));
    config.setType(ConfigType::DISCOVERED);
    config.setRetrievalTime(capture.machine.time);
    config.setCreateTime(capture.machine.time);
    config.setSaveTime(capture.machine.time);
    if (config.getClientName().empty())
        capture.leftOut.push_back("the client's name: /proc/sys/kernel/hostname tells none");

    auto& system = capture.add(capture.rows.m_vSystem);
    system.setConfigId(config.getId());
    system.setHostname(capture.hostName());
    system.setOs(OsType::LINUX);
    system.setOsLevel(capture.setting("etc/os-release", "VERSION_ID"));
    system.setOsQualifier(capture.setting("etc/os-release", "ID"));
    system.setKernelVersion(capture.file("proc/sys/kernel/osrelease"));
    system.setArchitecture(architecture(capture));
    system.setConsole(capture.file("sys/class/tty/console/active"));
    for (const char* file : {"etc/locale.conf", "etc/default/locale"})
        if (system.getLanguage().empty())
            system.setLanguage(capture.setting(file, "LANG"));
    system.setFirmware(capture.isUefi() ? FirmwareType::UEFI : FirmwareType::BIOS);
    system.setNumberOfCPUs(processorCount(capture));
    system.setTotalPhysicalMemorySize(memorySize(capture));

    auto& volumeInfo = capture.add(capture.rows.m_vVolumeInfo);
    volumeInfo.setConfigId(config.getId());
    capture.volumeInfo = volumeInfo.getId();
}

MachineSources askThisMachine() {
    return {.root = "/",
            .blockDevices = outputOf("lsblk", "--json", "--bytes", "--output-all"),
            .addresses = outputOf("ip", "-json", "address"),
            .routes = outputOf("ip", "-json", "route"),
            .time = std::time(nullptr)};
}

std::vector<std::string> captureMachine(const MachineSources& machine, CZor& rows) {
    MachineCapture capture{machine, rows};
    captureSystem(capture);
    captureNetwork(capture);
    captureDisks(capture);
    captureVolumes(capture);
    captureFileSystems(capture);
    captureBootLoader(capture);
    return capture.leftOut;
}

} // namespace Zorvane
