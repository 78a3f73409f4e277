// SPDX-License-Identifier: Apache-2.0
// A machine's multiple devices and logical volumes.
#include "lab/MachineCapture.h"

#include <algorithm>
#include <cstdlib>

namespace Zorvane {

namespace {

// What the kernel counts the layouts of a parity device by.
constexpr MultiDeviceParity parities[] = {
    MultiDeviceParity::LEFT_ASYMMETRIC,
    MultiDeviceParity::RIGHT_ASYMMETRIC,
    MultiDeviceParity::LEFT_SYMMETRIC,
    MultiDeviceParity::RIGHT_SYMMETRIC,
};

void addMember(MachineCapture& capture, const BlockDevice& member, const std::string& state, ID multiDevice) {
    const auto fill = [&](auto& row) {
        row.setActive(state.find("in_sync") != std::string::npos);
        row.setFaulty(state.find("faulty") != std::string::npos);
        row.setLinuxMultiDeviceId(multiDevice);
    };
    if (member.type == "part" && member.row != 0) {
        auto& row = capture.add(capture.rows.m_vLinuxPartitionToMultiDevice);
        row.setLinuxPartitionId(member.row);
        fill(row);
    } else if (member.type == "disk" && member.row != 0) {
        auto& row = capture.add(capture.rows.m_vLinuxDiskToMultiDevice);
        row.setLinuxDiskId(member.row);
        fill(row);
    } else {
        capture.leftOut.push_back(member.path() +
                                  ": a multiple device's member that is no disk and no partition");
    }
}

void addMultiDevice(MachineCapture& capture, BlockDevice& device) {
    const std::string folder = "sys/class/block/" + device.kernelName + "/md/";
    auto& row = capture.add(capture.rows.m_vLinuxMultiDevice);
    device.row = row.getId();
    std::string level = device.type;
    std::ranges::transform(level, level.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    row.setName(device.path());
    row.setLevel(static_cast<MultiDeviceLevel>(enumNames::MultiDeviceLevel.value(level)));
    if (row.getLevel() == MultiDeviceLevel::EMPTY)
        capture.leftOut.push_back(device.path() + ": the level " + device.type +
                                  ", which the model doesn't have");
    row.setNumberOfDevices(static_cast<std::int32_t>(capture.told(
        capture.number(folder + "raid_disks"),
        device.path() + ": how it is made of its members, since /" + folder + " can't be read")));
    row.setChunkLength(capture.number(folder + "chunk_size"));
    const auto layout = static_cast<std::size_t>(capture.number(folder + "layout"));
    if ((device.type == "raid5" || device.type == "raid6") && layout < std::size(parities))
        row.setParity(parities[layout]);
    row.setLength(device.size());
    row.setMajor(device.deviceNumber().first);
    row.setMinor(device.deviceNumber().second);
    row.setWriteable(!device.flag("ro"));
    const std::string metadata = capture.file(folder + "metadata_version");
    row.setHasDeviceSuperBlock(!metadata.empty() && metadata != "none");
    row.setVolumeInfoId(capture.volumeInfo);

    int spares = 0;
    std::string uuid;
    for (const BlockDevice* member : device.parents) {
        const std::string state = capture.file(folder + "dev-" + member->kernelName + "/state");
        spares += state.find("spare") != std::string::npos;
        if (uuid.empty())
            uuid = member->text("uuid"); // the superblock's, the same in all members
        addMember(capture, *member, state, device.row);
    }
    row.setSpareDevices(spares);
    row.setUuid(
        capture.told(uuid, device.path() + ": its identifier, which lsblk tells of none of its members"));
}

// The names in a mapped device's name: "group-volume", where a hyphen of a name is doubled.
std::pair<std::string, std::string> volumeName(const std::string& mapped) {
    std::string parts[2];
    std::size_t part = 0;
    for (std::size_t i = 0; i < mapped.size(); ++i) {
        if (mapped[i] != '-')
            parts[part] += mapped[i];
        else if (mapped.substr(i + 1, 1) == "-")
            parts[part] += mapped[i++];
        else if (part == 0)
            part = 1;
    }
    return {parts[0], parts[1]};
}

// "q7Xb1c-3kPz-...": how the volume manager writes its identifiers of 32 characters.
std::string groupUuid(const std::string& mappedUuid) {
    constexpr std::string_view prefix = "LVM-";
    if (!mappedUuid.starts_with(prefix) || mappedUuid.size() < prefix.size() + 32)
        return {};
    std::string text;
    std::size_t at = prefix.size();
    for (const std::size_t length : {6, 4, 4, 4, 4, 4, 6}) {
        text += (text.empty() ? "" : "-") + mappedUuid.substr(at, length);
        at += length;
    }
    return text;
}

// The sum of the values of "key = number" in the volume manager's own description of a group.
std::int64_t sumOf(const MachineCapture& capture, const std::string& group, std::string_view key) {
    std::int64_t sum = 0;
    for (const std::string& line : capture.lines("etc/lvm/backup/" + group))
        if (const auto words = wordsOf(line); words.size() >= 3 && words[0] == key && words[1] == "=")
            sum += std::strtoll(words[2].c_str(), nullptr, 10);
    return sum;
}

void linkPhysicalVolume(MachineCapture& capture, const BlockDevice& device, ID physicalVolume) {
    if (device.row == 0) {
        capture.leftOut.push_back(device.path() + ": what the physical volume lies on");
    } else if (device.type == "part") {
        auto& row = capture.add(capture.rows.m_vLinuxPartitionToPhysicalVolume);
        row.setLinuxPartitionId(device.row);
        row.setLinuxPhysicalVolumeId(physicalVolume);
    } else if (device.type == "disk") {
        auto& row = capture.add(capture.rows.m_vLinuxDiskToPhysicalVolume);
        row.setLinuxDiskId(device.row);
        row.setLinuxPhysicalVolumeId(physicalVolume);
    } else {
        auto& row = capture.add(capture.rows.m_vLinuxMultiDeviceToPhysicalVolume);
        row.setLinuxMultiDeviceId(device.row);
        row.setLinuxPhysicalVolumeId(physicalVolume);
    }
}

class VolumeGroups {
  public:
    explicit VolumeGroups(MachineCapture& capture) : m_capture(capture) {}

    void addVolume(BlockDevice& device) {
        const std::string folder = "sys/class/block/" + device.kernelName + "/dm/";
        std::string mapped = m_capture.file(folder + "name");
        if (mapped.empty())
            mapped = device.text("name");
        const auto [group, volume] = volumeName(mapped);
        CLinuxVolumeGroup& owner = groupOf(group, m_capture.file(folder + "uuid"));

        auto& row = m_capture.add(m_capture.rows.m_vLinuxLogicalVolume);
        device.row = row.getId();
        row.setAvailable(true);
        row.setWriteable(!device.flag("ro"));
        row.setNumber(m_numbers[group]++);
        row.setMajor(device.deviceNumber().first);
        row.setMinor(device.deviceNumber().second);
        row.setReadAhead(static_cast<std::int32_t>(2 * device.number("ra"))); // sectors of KiB
        row.setName("/dev/" + group + "/" + volume);
        row.setLength(device.size());
        row.setSwap(device.text("fstype") == "swap");
        row.setLinuxVolumeGroupId(owner.getId());
        if (const std::int64_t extent = std::int64_t{owner.getPhysicalExtentSize()} * 1024) {
            const auto extents = static_cast<std::int32_t>(device.size() / extent);
            row.setCurrentLogicalExtents(extents);
            row.setAllocatedLogicalExtents(extents);
            owner.setAllocatedPhysicalExtents(owner.getAllocatedPhysicalExtents() + extents);
            owner.setAvailablePhysicalExtents(std::max(0, owner.getAvailablePhysicalExtents() - extents));
        }
        addExtents(device, owner, row);
    }

    // Those that no volume lies on belong to a group that nothing tells of.
    void leaveOutUnusedDevices() {
        for (const auto& device : m_capture.devices)
            if (device->text("fstype") == "LVM2_member" && !m_physicalVolumes.contains(device.get()))
                m_capture.leftOut.push_back(
                    device->path() + ": a physical volume without logical ones, whose group isn't known");
    }

  private:
    CLinuxVolumeGroup& groupOf(const std::string& name, const std::string& mappedUuid) {
        if (const auto known = m_groups.find(name); known != m_groups.end())
            return *known->second;
        auto& row = m_capture.add(m_capture.rows.m_vLinuxVolumeGroup);
        m_groups[name] = &row;
        row.setName(name);
        row.setUuid(m_capture.told(groupUuid(mappedUuid),
                                   "volume group " + name + ": its identifier, which /sys doesn't tell"));
        row.setNumber(static_cast<std::int32_t>(row.getId()) - 1);
        row.setWriteable(true);
        row.setAvailable(true);
        row.setVolumeInfoId(m_capture.volumeInfo);
        const std::int64_t extent = sumOf(m_capture, name, "extent_size") * 512;
        const std::int64_t count = sumOf(m_capture, name, "pe_count");
        if (extent > 0) {
            row.setPhysicalExtentSize(static_cast<std::int32_t>(extent / 1024));
            row.setAvailablePhysicalExtents(static_cast<std::int32_t>(count));
            row.setLength(extent * count);
            row.setAutoBackup(true); // which wrote this description
            row.setMaxPhysicalVolumes(static_cast<std::int32_t>(sumOf(m_capture, name, "max_pv")));
            row.setMaxLogicalVolumes(static_cast<std::int32_t>(sumOf(m_capture, name, "max_lv")));
        } else {
            m_capture.leftOut.push_back("volume group " + name +
                                        ": its extents, limits and automatic backup, since /etc/lvm/backup/" +
                                        name + " can't be read");
        }
        return row;
    }

    ID physicalVolume(const BlockDevice& device, const CLinuxVolumeGroup& group) {
        auto& known = m_physicalVolumes[&device];
        if (known != 0)
            return known;
        auto& row = m_capture.add(m_capture.rows.m_vLinuxPhysicalVolume);
        known = row.getId();
        row.setName(device.path());
        row.setLinuxVolumeGroupId(group.getId());
        linkPhysicalVolume(m_capture, device, known);
        return known;
    }

    void addExtents(const BlockDevice& device, const CLinuxVolumeGroup& group, CLinuxLogicalVolume& volume) {
        std::vector<ID> physical;
        bool isPlain = true;
        for (const BlockDevice* parent : device.parents) {
            isPlain &= parent->type != "lvm";
            if (parent->type != "lvm")
                physical.push_back(physicalVolume(*parent, group));
        }
        if (!isPlain || physical.size() != 1) {
            m_capture.leftOut.push_back(
                device.path() + ": how the volume is spread over its group: its extents, layout and copies");
            return;
        }
        volume.setLayout(VolumeLayout::CONCATENATED);
        volume.setColumns(1);
        volume.setCopies(1);
        auto& row = m_capture.add(m_capture.rows.m_vLinuxLogicalExtent);
        row.setLength(device.size());
        row.setLinuxPhysicalVolumeId(physical.front());
        row.setLinuxLogicalVolumeId(device.row);
    }

    MachineCapture& m_capture;
    std::map<std::string, CLinuxVolumeGroup*> m_groups;
    std::map<std::string, int> m_numbers; ///< of volumes, by group
    std::map<const BlockDevice*, ID> m_physicalVolumes;
};

} // namespace

void captureVolumes(MachineCapture& capture) {
    for (const auto& device : capture.devices)
        if (device->isMultiDevice())
            addMultiDevice(capture, *device);
    VolumeGroups groups(capture);
    for (const auto& device : capture.devices)
        if (device->type == "lvm")
            groups.addVolume(*device);
    groups.leaveOutUnusedDevices();
}

} // namespace Zorvane
