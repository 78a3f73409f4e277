// SPDX-License-Identifier: Apache-2.0
// A machine's block devices: the tree of them, and the disks and partitions in it.
#include "lab/MachineCapture.h"

#include <algorithm>
#include <cstdlib>

namespace Zorvane {

namespace {

using Json = nlohmann::json;

// Far more than devices are stacked.
constexpr int MAX_DEPTH = 32;

constexpr int HEADS = 255;
constexpr int SECTORS_PER_TRACK = 63;

// The flags of a partition by its type: a number in DOS tables, an identifier in GUID tables.
constexpr struct {
    std::string_view type;
    const char* flags;
} partitionFlags[] = {
    {"0x82", "swap"},
    {"0x8e", "lvm"},
    {"0xfd", "raid"},
    {"0xef", "esp"},
    {"c12a7328-f81f-11d2-ba4b-00a0c93ec93b", "boot,esp"},
    {"21686148-6449-6e6f-744e-656564454649", "bios_grub"},
    {"0657fd6d-a4ab-43c4-84e5-0933c84b4f4f", "swap"},
    {"e6d6d379-f507-44c2-a23c-238f2a3df928", "lvm"},
    {"a19d880f-05fc-4d3b-a006-743f0f84911e", "raid"},
};

// The device of a node, made when the node is met first: what lies on several devices stands below each.
BlockDevice* deviceOf(MachineCapture& capture, const Json& node) {
    const std::string name = jsonText(node, "kname");
    if (name.empty())
        return nullptr;
    const auto known =
        std::ranges::find(capture.devices, name, [](const auto& device) { return device->kernelName; });
    if (known != capture.devices.end())
        return known->get();
    auto device = std::make_unique<BlockDevice>();
    device->kernelName = name;
    device->type = jsonText(node, "type");
    for (const auto& [column, value] : node.items())
        if (value.is_primitive())
            device->values[column] = value;
    if (device->path().empty())
        device->values["path"] = "/dev/" + name;
    return capture.devices.emplace_back(std::move(device)).get();
}

void addTree(MachineCapture& capture, const Json& nodes, BlockDevice* parent, int depth) {
    if (!nodes.is_array() || depth > MAX_DEPTH)
        return;
    for (const Json& node : nodes) {
        BlockDevice* device = deviceOf(capture, node);
        if (!device)
            continue;
        if (parent && parent != device && std::ranges::find(device->parents, parent) == device->parents.end())
            device->parents.push_back(parent);
        if (const auto children = node.find("children"); children != node.end())
            addTree(capture, *children, device, depth + 1);
    }
}

DiskBusType busOf(const BlockDevice& disk) {
    if (disk.kernelName.starts_with("cciss"))
        return DiskBusType::CCISS;
    if (disk.kernelName.starts_with("hd"))
        return DiskBusType::IDE;
    return disk.text("hctl").empty() ? DiskBusType::EMPTY : DiskBusType::SCSI;
}

std::string locationOf(const MachineCapture& capture, const BlockDevice& disk) {
    const std::string folder = "dev/disk/by-path";
    for (const std::string& name : capture.names(folder)) {
        std::error_code error;
        if (std::filesystem::read_symlink(capture.machine.root / folder / name, error).filename() ==
            disk.kernelName)
            return name;
    }
    return {};
}

void addDisk(MachineCapture& capture, BlockDevice& disk) {
    auto& row = capture.add(capture.rows.m_vLinuxDisk);
    disk.row = row.getId();
    const std::string table = disk.text("pttype");
    const bool hasPartitions = std::ranges::any_of(capture.devices, [&disk](const auto& device) {
        return device->type == "part" && std::ranges::find(device->parents, &disk) != device->parents.end();
    });
    if (table.empty() && hasPartitions)
        capture.leftOut.push_back(disk.path() + ": its partition table's kind, which lsblk doesn't tell");
    row.setType("disk");
    row.setDiskType(busOf(disk));
    row.setLabel(table);
    // host:channel:id:lun
    std::string address = disk.text("hctl");
    std::ranges::replace(address, ':', ' ');
    if (const auto parts = wordsOf(address); parts.size() == 4) {
        row.setScsiHost(parts[0]);
        row.setScsiChannel(parts[1]);
        row.setScsiId(parts[2]);
        row.setScsiLun(parts[3]);
    }
    row.setHasPartitionTable(!table.empty() || hasPartitions);
    // The geometry that partition tables have counted by since disks have none of their own.
    const auto sector = static_cast<int>(std::clamp<std::int64_t>(disk.number("log-sec"), 512, 4096));
    row.setHeads(HEADS);
    row.setBytesPerSector(sector);
    row.setSectorsPerTrack(SECTORS_PER_TRACK);
    row.setSectorsPerCylinder(HEADS * SECTORS_PER_TRACK);
    row.setCylinders(
        static_cast<std::int32_t>(disk.size() / (std::int64_t{sector} * HEADS * SECTORS_PER_TRACK)));
    row.setName(disk.path());
    row.setLocation(locationOf(capture, disk));
    row.setLength(disk.size());
    row.setReadOnly(disk.flag("ro"));
    row.setLabelType(table == "gpt"   ? DiskLabelType::EFI
                     : table == "dos" ? DiskLabelType::SMI
                                      : DiskLabelType::EMPTY);
    row.setVolumeInfoId(capture.volumeInfo);
}

void addPartition(MachineCapture& capture, BlockDevice& partition) {
    const auto disk = std::ranges::find_if(partition.parents, [](const BlockDevice* parent) {
        return parent->type == "disk" && parent->row != 0;
    });
    if (disk == partition.parents.end()) {
        capture.leftOut.push_back(partition.path() + ": a part of what is no disk of this machine");
        return;
    }
    const std::string folder = "sys/class/block/" + partition.kernelName;
    if (!capture.exists(folder + "/start")) {
        capture.leftOut.push_back(partition.path() + ": a partition that /sys tells no place of");
        return;
    }
    const std::string type = capture.told(
        partition.text("parttype"), partition.path() + ": its type and flags, which lsblk doesn't tell");
    const bool isDos = type.starts_with("0x");
    const std::int64_t identifier = isDos ? std::strtoll(type.c_str(), nullptr, 16) : 0;
    const std::int64_t start =
        capture.number(folder + "/start") * 512; // in sectors of 512, whatever the disk's
    const auto number = static_cast<std::int32_t>(capture.number(folder + "/partition"));

    auto& row = capture.add(capture.rows.m_vLinuxPartition);
    partition.row = row.getId();
    row.setName(partition.path());
    row.setNumber(number);
    row.setStartP(start);
    row.setEndP(start + partition.size() - 1);
    row.setMajor(partition.deviceNumber().first);
    row.setMinor(partition.deviceNumber().second);
    const bool isExtended = identifier == 0x05 || identifier == 0x0f || identifier == 0x85;
    row.setType(isExtended             ? LinuxPartitionType::EXTENDED
                : isDos && number >= 5 ? LinuxPartitionType::LOGICAL
                                       : LinuxPartitionType::PRIMARY);
    row.setSwap(partition.text("fstype") == "swap");
    std::string flags = partition.text("partflags") == "0x80" ? "boot" : "";
    for (const auto& known : partitionFlags)
        if (known.type == type)
            flags += (flags.empty() ? "" : ",") + std::string(known.flags);
    row.setFlags(flags);
    row.setPartitionIdentifier(static_cast<std::int32_t>(identifier));
    row.setLinuxDiskId((*disk)->row);
}

// The drivers of the hosts that disks hang from, in the hosts' order.
void addDrivers(MachineCapture& capture) {
    std::vector<std::string> known;
    for (const std::string& host : capture.names("sys/class/scsi_host")) {
        const std::string driver = capture.file("sys/class/scsi_host/" + host + "/proc_name");
        if (driver.empty() || driver == "<NULL>" || std::ranges::find(known, driver) != known.end())
            continue;
        known.push_back(driver);
        auto& row = capture.add(capture.rows.m_vLinuxScsiDriver);
        row.setLoadOrder(static_cast<std::int32_t>(known.size()));
        row.setDriverName(driver);
        row.setVolumeInfoId(capture.volumeInfo);
    }
}

} // namespace

std::string jsonText(const Json& object, const char* key) {
    const auto found = object.is_object() ? object.find(key) : object.end();
    if (found == object.end() || !found->is_primitive() || found->is_null())
        return {};
    return found->is_string() ? found->get<std::string>() : found->dump();
}

std::int64_t jsonNumber(const Json& object, const char* key) {
    const std::string text = jsonText(object, key);
    return text == "true" ? 1 : std::strtoll(text.c_str(), nullptr, 10);
}

std::string BlockDevice::text(const char* column) const {
    return jsonText(values, column);
}

std::int64_t BlockDevice::number(const char* column) const {
    return jsonNumber(values, column);
}

bool BlockDevice::flag(const char* column) const {
    return jsonNumber(values, column) != 0;
}

std::pair<int, int> BlockDevice::deviceNumber() const {
    const std::string numbers = text("maj:min");
    const std::size_t colon = numbers.find(':');
    return {leadingNumber(numbers),
            colon == std::string::npos ? 0 : leadingNumber(numbers.substr(colon + 1))};
}

void captureDisks(MachineCapture& capture) {
    const Json tree = Json::parse(capture.machine.blockDevices, nullptr, false);
    if (tree.is_object() && tree.contains("blockdevices"))
        addTree(capture, tree["blockdevices"], nullptr, 0);
    if (capture.devices.empty())
        capture.leftOut.push_back("the disks and all that lies on them: \"lsblk --json\" told none");
    for (const auto& device : capture.devices) {
        // A disk of memory or without a medium is none.
        const bool isDisk = device->type == "disk" && device->size() > 0 &&
                            !device->kernelName.starts_with("zram") && !device->kernelName.starts_with("ram");
        if (isDisk)
            addDisk(capture, *device);
        else if (device->type == "part")
            addPartition(capture, *device);
        else if (device->type == "disk" || (!device->isMultiDevice() && device->type != "lvm"))
            capture.leftOut.push_back(device->path() + ": a device of type " + device->type +
                                      ", which no table is for");
    }
    addDrivers(capture);
}

} // namespace Zorvane
