// SPDX-License-Identifier: Apache-2.0
#include "lab/capture.h"

#include "lab/MachineCapture.h"
#include "lab/rows.h"
#include "platform/zorSystemCommon.h"

#include <algorithm>
#include <charconv>
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

// EMPTY where the machine doesn't tell.
FirmwareType firmware(const MachineCapture& capture) {
    if (!capture.exists("sys/firmware"))
        return FirmwareType::EMPTY;
    return capture.isUefi() ? FirmwareType::UEFI : FirmwareType::BIOS;
}

// What XML has no place for: it would break off the document.
bool replaceControlCharacters(std::string& text) {
    const std::string original = text;
    for (const std::string_view none : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) // U+FFFE, U+FFFF
        for (std::size_t at = 0; (at = text.find(none, at)) != std::string::npos;)
            text.replace(at, none.size(), "_");
    std::ranges::replace_if(
        text, [](unsigned char c) { return (c < ' ' && c != '\t' && c != '\n') || c == 0x7f; }, '_');
    return text != original;
}

void replaceControlCharacters(MachineCapture& capture) {
    forEachRow(capture.rows, [&capture](const TableDescriptor& table, BaseTable& row) {
        for (const Field& field : table.fields)
            if (field.kind == FieldKind::Text && replaceControlCharacters(row.*field.text))
                capture.leftOut.push_back(std::string(table.name) + " " + field.name +
                                          ": control characters, which are \"_\" in " + row.*field.text);
    });
}

} // namespace

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

int leadingNumber(std::string_view text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
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
    config.setClientName(capture.told(capture.file("proc/sys/kernel/hostname"),
                                      "the client's name: /proc/sys/kernel/hostname tells none"));
    config.setType(ConfigType::DISCOVERED);
    config.setRetrievalTime(capture.machine.time);
    config.setCreateTime(capture.machine.time);
    config.setSaveTime(capture.machine.time);

    auto& system = capture.add(capture.rows.m_vSystem);
    system.setConfigId(config.getId());
    system.setHostname(capture.hostName());
    system.setOs(OsType::LINUX);
    system.setOsLevel(capture.told(capture.setting("etc/os-release", "VERSION_ID"),
                                   "the system's level: /etc/os-release tells no VERSION_ID"));
    system.setOsQualifier(capture.told(capture.setting("etc/os-release", "ID"),
                                       "the system's kind: /etc/os-release tells no ID"));
    system.setKernelVersion(capture.told(capture.file("proc/sys/kernel/osrelease"),
                                         "the kernel's version: /proc/sys/kernel/osrelease tells none"));
    system.setArchitecture(capture.told(architecture(capture), "the architecture: the kernel tells none"));
    system.setConsole(capture.told(capture.file("sys/class/tty/console/active"),
                                   "the console: /sys/class/tty/console/active tells none"));
    std::string language = capture.setting("etc/locale.conf", "LANG");
    if (language.empty())
        language = capture.setting("etc/default/locale", "LANG");
    system.setLanguage(
        capture.told(language, "the language: /etc/locale.conf and /etc/default/locale tell no LANG"));
    system.setFirmware(capture.told(firmware(capture), "the firmware: /sys/firmware can't be read"));
    system.setNumberOfCPUs(
        capture.told(processorCount(capture), "the number of processors: /proc/cpuinfo tells none"));
    system.setTotalPhysicalMemorySize(
        capture.told(memorySize(capture), "the memory's size: /proc/meminfo tells none"));

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
    replaceControlCharacters(capture);
    return capture.leftOut;
}

} // namespace Zorvane
