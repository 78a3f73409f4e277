// SPDX-License-Identifier: Apache-2.0
#include "storage/deviceNames.h"

#include "logging/Trace.h"
#include "model/CZor.h"
#include "model/core_records.h"
#include "model/linux_records.h"
#include "platform/sVersion.h"

#include <cctype>
#include <cstdlib>
#include <string_view>

namespace Zorvane {

namespace {

constexpr const char* DIGITS = "1234567890";

bool contains(const std::string& text, const char* word) {
    return text.find(word) != std::string::npos;
}

/// Where the partition part begins; npos for a disk's name.
std::size_t findCut(const std::string& name) {
    if (IsScsiDeviceName(name) || IsIdeDeviceName(name))
        return name.find_first_of(DIGITS, contains(name, "/dev/xvd") ? 8 : 7);
    std::size_t end = 10; // behind "/dev/cciss", so that the search begins at the controller's letter
    for (int number = 0; number < 2 && end != std::string::npos; ++number) { // the controller's, the disk's
        const std::size_t begin = name.find_first_of(DIGITS, end + 1);
        end = begin == std::string::npos ? begin : name.find_first_not_of(DIGITS, begin);
    }
    return end;
}

bool hasPartitions(const std::string& name) {
    return IsScsiDeviceName(name) || IsIdeDeviceName(name) || IsCcissDeviceName(name);
}

} // namespace

int IsScsiDeviceName(const std::string& name) {
    return contains(name, "/dev/sd") || contains(name, "/dev/xvd") ? 1 : 0;
}

int IsIdeDeviceName(const std::string& name) {
    return contains(name, "/dev/hd") ? 1 : 0;
}

int IsCcissDeviceName(const std::string& name) {
    return contains(name, "/dev/cciss") ? 1 : 0;
}

std::string GetDiskPartOfDeviceName(const std::string& name) {
    return hasPartitions(name) ? name.substr(0, findCut(name)) : std::string();
}

std::string GetPartitionPartOfDeviceName(const std::string& name) {
    return hasPartitions(name) ? name.substr(findCut(name)) : std::string();
}

int ParseSizeString(const std::string& text, std::uint64_t& number) {
    Trace trace(g_libLog, "deviceNames:ParseSizeString()", ", text=", text);
    constexpr std::string_view SUFFIXES = "KMGTPE";
    if (text.empty() || std::string_view(DIGITS).find(text[0]) == std::string_view::npos ||
        text.find_first_not_of("1234567890kKmMgGtTpPeE.") != std::string::npos)
        return trace.leave(1, ", return 1");

    const std::size_t dot = text.find('.');
    const std::size_t suffix = text.find_first_of("kKmMgGtTpPeE");
    std::uint64_t multiplier = 1;
    if (suffix != std::string::npos) {
        const auto letter = static_cast<char>(std::toupper(static_cast<unsigned char>(text[suffix])));
        multiplier <<= 10 * (SUFFIXES.find(letter) + 1);
    }
    std::uint64_t tenths = 0;
    if (dot != std::string::npos) {
        if (suffix == std::string::npos || suffix != dot + 2 || text[dot + 1] == '.')
            return trace.leave(1, ", return 1");
        tenths = static_cast<std::uint64_t>(text[dot + 1] - '0');
    }
    number = std::strtoull(text.c_str(), nullptr, 10) * multiplier + tenths * multiplier / 10;
    return trace.leave(0, ", number=", number);
}

namespace {

/// A multipath name taken apart.
struct DeviceName {
    std::string directory; ///< with its "/"; may be empty
    std::string base;
    std::string partition;
};

DeviceName splitDirectory(const std::string& name) {
    const std::size_t baseAt = name.rfind('/') + 1; // 0 without a directory
    return {name.substr(0, baseAt), name.substr(baseAt), {}};
}

/// Cuts the partition off the base name, npos for none; a marker of `dropped` characters between the two
/// goes.
void cutPartition(DeviceName& name, std::size_t at, std::size_t dropped = 0) {
    if (at == std::string::npos)
        return;
    name.partition = name.base.substr(at + dropped);
    name.base.resize(at);
}

/// The Linux disk of that multipath name, which clients record with or without its directory.
const CLinuxDisk* findDisk(const CZor& container, const DeviceName& name) {
    if (name.base.empty()) // as the multipath name of a disk that has none
        return nullptr;
    for (const std::string& sought : {name.base, name.directory + name.base})
        for (const CLinuxDisk* disk : container.m_vLinuxDisk)
            if (disk && disk->getDMPName() == sought)
                return disk;
    return nullptr;
}

/// How the device mapper names partitions depends on the distribution.
void cutMapperName(const CZor& container, DeviceName& name) {
    const CSystem* system = container.m_vSystem.first();
    if (!system)
        return;
    const std::string qualifier = system->getOsQualifier();
    if (qualifier == "SLES") {
        const std::string_view marker = contains(name.base, "_part") ? "_part" : "-part";
        cutPartition(name, name.base.find(marker), marker.size());
    } else if (qualifier == "RHEL") {
        if (CompareLevels(system->getOsLevel(), "7") == 1) {
            DeviceName atDigit = name;
            cutPartition(atDigit, atDigit.base.find_first_of(DIGITS));
            if (findDisk(container, atDigit)) {
                name = atDigit;
                return;
            }
        }
        // It stays that a "p" is taken for the marker also where it belongs to the name of a whole disk.
        cutPartition(name, name.base.rfind('p'), 1);
    }
}

} // namespace

std::string GenerateLinuxDeviceNameByDMPName(const CZor& container, const std::string& name) {
    Trace trace(g_libLog, "deviceNames:GenerateLinuxDeviceNameByDMPName()", ", name=", name);
    DeviceName device = splitDirectory(name);
    if (contains(name, "emcpower")) {
        cutPartition(device, device.base.find_first_of(DIGITS));
    } else if (IsScsiDeviceName(name)) {
        device = splitDirectory(GetDiskPartOfDeviceName(name));
        device.partition = name.substr(device.directory.size() + device.base.size());
    } else if (contains(name, "/dev/mapper") || contains(name, "/dev/mpath")) {
        cutMapperName(container, device);
    }
    const CLinuxDisk* disk = findDisk(container, device);
    std::string result = disk ? disk->getName() + device.partition : name;
    trace.exitLine(", returning with Devicename=", result);
    return result;
}

} // namespace Zorvane
