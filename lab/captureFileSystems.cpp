// SPDX-License-Identifier: Apache-2.0
// A machine's file systems and where they are mounted, and how it is started.
#include "lab/MachineCapture.h"

#include <algorithm>
#include <cstdlib>

#include <sys/statvfs.h>

namespace Zorvane {

namespace {

// A line of fstab or of the kernel's list of mounts.
struct Mount {
    std::string device, place, type, options;
    int frequency = 0, pass = 0;
    std::string root{}; ///< what of the file system is mounted there; only the kernel tells
};

// Blanks in names are written as "\040".
std::string unescaped(const std::string& text) {
    std::string plain;
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && std::all_of(&text[i + 1], &text[i + 1] + 3, isOctal)) {
            plain += static_cast<char>(std::strtol(text.substr(i + 1, 3).c_str(), nullptr, 8));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

std::vector<Mount> tableOfMounts(MachineCapture& capture) {
    std::vector<Mount> mounts;
    for (const std::string& line :
         capture.told(capture.lines("etc/fstab"),
                      "what is mounted when the machine starts: /etc/fstab tells nothing")) {
        const std::vector<std::string> words = wordsOf(line);
        if (words.size() < 4 || words[0].starts_with('#'))
            continue;
        const auto number = [&](std::size_t word) {
            return words.size() > word ? leadingNumber(words[word]) : 0;
        };
        mounts.push_back(
            {unescaped(words[0]), unescaped(words[1]), words[2], words[3], number(4), number(5)});
    }
    return mounts;
}

// "26 22 9:0 /part /place rw,relatime shared:1 - ext4 /dev/md0 rw,discard": the options of the place, then
// those of the file system, which begin with "rw" or "ro" both.
std::vector<Mount> kernelMounts(MachineCapture& capture) {
    std::vector<Mount> mounts;
    for (const std::string& line : capture.told(capture.lines("proc/self/mountinfo"),
                                                "what is mounted now: /proc/self/mountinfo can't be read")) {
        const std::vector<std::string> words = wordsOf(line);
        const auto dash = std::ranges::find(words, "-");
        if (dash - words.begin() < 6 || words.end() - dash < 4)
            continue;
        std::string options = words[5];
        if (dash[3].starts_with("ro"))
            options.replace(0, 2, "ro");
        options += dash[3].substr(std::min<std::size_t>(dash[3].size(), 2));
        mounts.push_back(
            {unescaped(dash[2]), unescaped(words[4]), dash[1], options, 0, 0, unescaped(words[3])});
    }
    return mounts;
}

std::vector<std::string> split(std::string options) {
    std::ranges::replace(options, ',', ' ');
    return wordsOf(options);
}

bool hasOption(const std::string& options, const std::string& name) {
    const std::vector<std::string> all = split(options);
    return std::ranges::find(all, name) != all.end();
}

// The value of a mount option; empty without it.
std::string optionValue(const std::string& options, const std::string& name) {
    for (const std::string& option : split(options))
        if (option.starts_with(name + "="))
            return option.substr(name.size() + 1);
    return {};
}

// "ext4" and the like; 0 for what is no file system, and for those that the model doesn't have.
FileSystemType typeOf(std::string name) {
    std::ranges::transform(name, name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return static_cast<FileSystemType>(enumNames::FileSystemType.value(name));
}

class FileSystems {
  public:
    explicit FileSystems(MachineCapture& capture)
        : m_capture(capture), m_table(tableOfMounts(capture)), m_mounted(kernelMounts(capture)) {}

    void run() {
        for (const auto& device : m_capture.devices)
            addFileSystem(*device);
        for (const Mount& mount : m_table)
            addMount(mount);
        for (const Mount& mount : m_mounted)
            if (std::ranges::find(m_table, mount.place, &Mount::place) == m_table.end())
                addMount(mount);
    }

  private:
    // Without root's rights the block device tells no type, but the list of mounts does.
    std::string typeNameOf(const BlockDevice& device) const {
        if (std::string name = device.text("fstype"); !name.empty())
            return name;
        const Mount* mount = mounted(device);
        return mount ? mount->type : "";
    }

    [[nodiscard]] const Mount* mounted(const BlockDevice& device) const {
        const auto mount =
            std::ranges::find_if(m_mounted, [&](const Mount& line) { return isOn(line.device, device); });
        return mount == m_mounted.end() ? nullptr : &*mount;
    }

    void addFileSystem(BlockDevice& device) {
        const std::string name = typeNameOf(device);
        // What others are built of is no file system.
        if (name.empty() || name.ends_with("_member") || name == "crypto_LUKS")
            return;
        const FileSystemType type = typeOf(name);
        if (type == FileSystemType::EMPTY) {
            m_capture.leftOut.push_back(device.path() + ": a file system of type " + name +
                                        ", which the model doesn't have");
            return;
        }
        auto& row = m_capture.add(m_capture.rows.m_vLinuxFileSystem);
        device.fileSystem = row.getId();
        row.setType(type);
        row.setLabel(device.text("label"));
        row.setLength(device.size());
        row.setUuid(m_capture.told(device.text("uuid"),
                                   device.path() +
                                       ": its file system's identifier and label, which lsblk doesn't tell"));
        row.setRestoreFileSystem(true);
        row.setVolumeInfoId(m_capture.volumeInfo);
        if (type != FileSystemType::SWAP)
            measure(device, row);
        link(device);
    }

    // Only a mounted file system tells of its room.
    void measure(const BlockDevice& device, CLinuxFileSystem& row) {
        const Mount* mount = mounted(device);
        struct statvfs counts {};
        if (!mount || ::statvfs((m_capture.machine.root / mount->place.substr(1)).c_str(), &counts) != 0) {
            m_capture.leftOut.push_back(
                device.path() + ": the free space and the inodes of its file system, which isn't mounted");
            return;
        }
        row.setAvailableSpace(static_cast<std::int64_t>(counts.f_bavail * counts.f_frsize));
        row.setInodes(static_cast<std::int64_t>(counts.f_files));
        row.setFreeInodes(static_cast<std::int64_t>(counts.f_ffree));
    }

    void link(const BlockDevice& device) {
        CZor& rows = m_capture.rows;
        if (device.row != 0 && device.type == "part") {
            auto& row = m_capture.add(rows.m_vLinuxFileSystemToPartition);
            row.setLinuxPartitionId(device.row);
            row.setLinuxFileSystemId(device.fileSystem);
        } else if (device.row != 0 && device.type == "lvm") {
            auto& row = m_capture.add(rows.m_vLinuxFileSystemToLogicalVolume);
            row.setLinuxLogicalVolumeId(device.row);
            row.setLinuxFileSystemId(device.fileSystem);
        } else if (device.row != 0 && device.isMultiDevice()) {
            auto& row = m_capture.add(rows.m_vLinuxFileSystemToMultiDevice);
            row.setLinuxMultiDeviceId(device.row);
            row.setLinuxFileSystemId(device.fileSystem);
        } else {
            m_capture.leftOut.push_back(device.path() +
                                        ": that its file system lies on it, since no table ties the two");
        }
    }

    // Whether the name of a device, as in fstab, means this one.
    static bool isOn(const std::string& name, const BlockDevice& device) {
        const std::size_t equals = name.find('=');
        if (equals == std::string::npos)
            return name == device.path() || name == "/dev/" + device.kernelName ||
                   name == "/dev/mapper/" + device.text("name") || isVolume(name, device);
        const auto tag = name.substr(0, equals);
        std::string value = name.substr(equals + 1);
        std::erase(value, '"');
        const char* column = tag == "UUID"        ? "uuid"
                             : tag == "LABEL"     ? "label"
                             : tag == "PARTUUID"  ? "partuuid"
                             : tag == "PARTLABEL" ? "partlabel"
                                                  : nullptr;
        return column && !value.empty() && device.text(column) == value;
    }

    // "/dev/group/volume" means the mapped device "group-volume", where a hyphen of a name is doubled.
    static bool isVolume(const std::string& name, const BlockDevice& device) {
        if (device.type != "lvm" || !name.starts_with("/dev/"))
            return false;
        std::string mapped;
        for (const char c : name.substr(5))
            mapped += c == '-' ? "--" : std::string(1, c == '/' ? '-' : c);
        return mapped == device.text("name");
    }

    // The path and number of what of a btrfs is mounted there. Without an option in fstab it is the file
    // system's default, which only the kernel tells.
    [[nodiscard]] std::pair<std::string, std::string> subvolumeOf(const Mount& mount) const {
        const Mount* told = &mount;
        for (const Mount& line : m_mounted)
            if (mount.root.empty() && line.place == mount.place && line.type == "btrfs")
                told = &line;
        const std::string path = unescaped(optionValue(told->options, "subvol"));
        return {path.empty() ? told->root : path, optionValue(told->options, "subvolid")};
    }

    // Whether a folder or a file is mounted there once more: no place of the file system that it is in.
    [[nodiscard]] bool isPart(const Mount& mount) const {
        if (mount.root.empty())
            return hasOption(mount.options, "bind") || hasOption(mount.options, "rbind");
        return mount.root != (mount.type == "btrfs" ? subvolumeOf(mount).first : "/");
    }

    void addMount(const Mount& mount) {
        const auto found = std::ranges::find_if(m_capture.devices, [&](const auto& device) {
            return device->fileSystem != 0 && isOn(mount.device, *device);
        });
        if (isPart(mount) && (found != m_capture.devices.end() || mount.root.empty())) {
            m_capture.leftOut.push_back(mount.place + ": a part of a file system mounted a second time");
            return;
        }
        if (found == m_capture.devices.end()) {
            // Not one of the kernel's own: those are no one's to restore.
            if (mount.device.starts_with("/dev/") || mount.device.find('=') != std::string::npos ||
                mount.type.starts_with("nfs"))
                m_capture.leftOut.push_back(mount.place + ": mounted from " + mount.device +
                                            ", which is no file system of this machine's disks");
            return;
        }
        const BlockDevice& device = **found;
        const auto fill = [&](auto& row) {
            row.setName(mount.type == "swap" ? "swap" : mount.place);
            row.setMountOptions(mount.options);
            row.setFsFreq(mount.frequency);
            row.setFsPassNumber(mount.pass);
            row.setMountFileSystem(true);
        };
        if (const auto [path, number] = subvolumeOf(mount);
            mount.type == "btrfs" && !path.empty() && path != "/") {
            auto& row = m_capture.add(m_capture.rows.m_vSubvolumeMountPoint);
            fill(row);
            row.setSubvolumeId(subvolume(path, number, device.fileSystem));
        } else {
            auto& row = m_capture.add(m_capture.rows.m_vLinuxMountPoint);
            fill(row);
            row.setLinuxFileSystemId(device.fileSystem);
        }
        if (mount.place == "/" && device.type == "lvm")
            m_capture.rows.m_vLinuxLogicalVolume[device.row - 1]->setSystem(true);
    }

    ID subvolume(const std::string& path, const std::string& number, ID fileSystem) {
        for (const CSubvolume* row : m_capture.rows.m_vSubvolume)
            if (row->getSubvolumePath() == path && row->getLinuxFileSystemId() == fileSystem)
                return row->getId();
        auto& row = m_capture.add(m_capture.rows.m_vSubvolume);
        row.setSubvolumePath(path);
        row.setSubvolumeNum(static_cast<std::uint32_t>(std::strtoul(number.c_str(), nullptr, 10)));
        row.setLinuxFileSystemId(fileSystem);
        return row.getId();
    }

    MachineCapture& m_capture;
    std::vector<Mount> m_table, m_mounted;
};

BootLoaderType bootLoaderOf(const MachineCapture& capture, bool isX64) {
    if (capture.exists("boot/grub2/grub.cfg") || capture.exists("boot/grub/grub.cfg"))
        return !capture.isUefi() ? BootLoaderType::GRUB2
               : isX64           ? BootLoaderType::EFIGRUBX64
                                 : BootLoaderType::EFIGRUB;
    if (capture.exists("boot/grub/menu.lst"))
        return BootLoaderType::GRUB;
    return capture.exists("etc/lilo.conf") ? BootLoaderType::LILO : BootLoaderType::EMPTY;
}

// Whether the firmware, or a loader that it starts, looks for the boot loader in this partition.
bool isStarting(const CLinuxPartition& partition, bool isUefi) {
    const std::string flags = "," + partition.getFlags() + ",";
    const auto has = [&flags](const char* flag) { return flags.find(flag) != std::string::npos; };
    return isUefi ? has(",esp,") : has(",bios_grub,") || (has(",boot,") && !has(",esp,"));
}

} // namespace

void captureFileSystems(MachineCapture& capture) {
    FileSystems(capture).run();
}

void captureBootLoader(MachineCapture& capture) {
    const bool isX64 = capture.rows.m_vSystem.front()->getArchitecture() == "x86_64";
    const BootLoaderType type = bootLoaderOf(capture, isX64);
    if (type == BootLoaderType::EMPTY) {
        capture.leftOut.push_back("the boot loader: no configuration of one was found in /boot and /etc");
        return;
    }
    auto& row = capture.add(capture.rows.m_vLinuxBootLoader);
    row.setType(type);
    row.setVolumeInfoId(capture.volumeInfo);
    std::vector<ID> disks;
    for (const CLinuxPartition* partition : capture.rows.m_vLinuxPartition) {
        if (!isStarting(*partition, capture.isUefi()))
            continue;
        auto& link = capture.add(capture.rows.m_vLinuxBootLoaderToPartition);
        link.setLinuxPartitionId(partition->getId());
        link.setLinuxBootLoaderId(row.getId());
        if (partition->getLinuxDiskId() != 0 &&
            std::ranges::find(disks, partition->getLinuxDiskId()) == disks.end())
            disks.push_back(partition->getLinuxDiskId());
    }
    for (const ID disk : disks) {
        auto& link = capture.add(capture.rows.m_vLinuxBootLoaderToDisk);
        link.setLinuxDiskId(disk);
        link.setLinuxBootLoaderId(row.getId());
    }
    if (disks.empty())
        capture.leftOut.push_back("the boot loader's place: no partition is marked for it");
}

} // namespace Zorvane
