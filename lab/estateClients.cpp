// SPDX-License-Identifier: Apache-2.0
#include "lab/estateClients.h"

#include "lab/rows.h"
#include "model/records.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <array>

namespace Zorvane {

namespace {

constexpr std::int64_t MIB = std::int64_t{1} << 20;
constexpr std::int64_t GIB = std::int64_t{1} << 30;
constexpr std::int64_t TIB = std::int64_t{1} << 40;
constexpr std::array DISK_SIZES = {40 * GIB,  60 * GIB, 100 * GIB, 200 * GIB,
                                   500 * GIB, TIB,      2 * TIB,   4 * TIB};
constexpr std::int64_t FIRST_OFFSET = MIB; ///< where the first partition of a disk starts
constexpr std::int64_t CLUSTER_SIZE = 4096;
constexpr std::uint32_t NTFS_PARTITION = 7;

template <class Record>
void drop(RecordRows<Record>& rows) {
    for (const Record* row : rows)
        delete row;
    rows.clear();
}

template <class Record>
Record& add(RecordRows<Record>& rows) {
    ID highest = 0;
    for (const Record* row : rows)
        highest = std::max(highest, row->getId());
    auto* row = new Record;
    row->setId(highest + 1);
    rows.push_back(row);
    return *row;
}

// Every text that holds the template's host name holds the client's.
void rename(CZor& rows, const std::string& from, const std::string& to) {
    forEachRow(rows, [&](const TableDescriptor& table, BaseTable& row) {
        for (const Field& field : table.fields)
            if (field.kind == FieldKind::Text && !(row.*field.text).empty())
                StrReplace(row.*field.text, from, to, true);
    });
}

void setAddresses(CZor& rows, std::size_t number) {
    constexpr std::uint32_t NETWORK = 10U << 24;
    constexpr std::uint32_t PER_CLIENT = 8;
    const std::uint32_t first = NETWORK + static_cast<std::uint32_t>(number + 32) * PER_CLIENT;
    std::uint32_t next = first;
    for (CNetworkIdentity* identity : rows.m_vNetworkIdentity)
        identity->setIPAddress(++next);
    for (CEsm* esm : rows.m_vEsm)
        esm->setNodeIpAddress(first + 1);
    for (CNetworkInterface* interface : rows.m_vNetworkInterface) {
        std::array<char, 24> mac{};
        std::snprintf(mac.data(), mac.size(), "00:1B:21:%02X:%02X:%02X",
                      static_cast<unsigned>(number >> 8 & 0xFF), static_cast<unsigned>(number & 0xFF),
                      static_cast<unsigned>(interface->getId() & 0xFF));
        interface->setMacAddress(mac.data());
    }
}

// Data disks of a Windows server, beside those of the sample.
class DataDisks {
  public:
    DataDisks(CZor& rows, Dice& dice) : m_rows(rows), m_dice(dice) {}

    void growTo(std::size_t disks) {
        while (m_rows.m_vWindowsDisk.size() < disks)
            addDisk(m_rows.m_vWindowsDisk.size());
    }

  private:
    void addDisk(std::size_t number) {
        const CWindowsDisk sample = *m_rows.m_vWindowsDisk.back();
        const std::int64_t length = m_dice.pick(DISK_SIZES);
        const std::string digits = std::to_string(number);
        CWindowsDisk& disk = add(m_rows.m_vWindowsDisk);
        const ID id = disk.getId();
        disk = sample;
        disk.setId(id);
        disk.setName("\\Device\\Harddisk" + digits);
        disk.setArcName("multi(0)disk(0)rdisk(" + digits + ")");
        disk.setTargetId(static_cast<std::int32_t>(number));
        disk.setLocation("Bus Number 0, Target Id " + digits + ", LUN 0");
        disk.setLength(length);
        disk.setUnAlignedLength(length);
        if (number % 9 == 8)
            addRegion(disk, 0, 0, length, nullptr); // empty, not yet used
        else
            fill(disk, digits, length);
    }

    void fill(const CWindowsDisk& disk, const std::string& digits, std::int64_t length) {
        const std::size_t count = 1 + m_dice.roll(3);
        std::int64_t offset = FIRST_OFFSET;
        for (std::size_t i = 0; i < count; ++i) {
            // The last one leaves a little of the disk free.
            const std::int64_t part = (length - offset) / static_cast<std::int64_t>(count - i) / GIB * GIB -
                                      (i + 1 == count ? GIB : 0);
            CWindowsPlex& plex = addVolume(disk, digits + "-" + std::to_string(i + 1), part);
            addRegion(disk, i + 1, offset, part, &plex);
            offset += part;
        }
        addRegion(disk, 0, offset, length - offset, nullptr);
    }

    CWindowsPlex& addVolume(const CWindowsDisk& disk, const std::string& name, std::int64_t length) {
        CWindowsVolume& volume = add(m_rows.m_vWindowsVolume);
        const std::string letter = freeLetter();
        volume.setName(letter.empty() ? "Volume" + name : letter);
        volume.setDriveLetter(letter);
        volume.setType(WindowsVolumeType::BASIC);
        volume.setMemberCount(1);
        volume.setStatus(WindowsVolumeStatus::HEALTHY);
        volume.setWindowsDiskGroupId(disk.getWindowsDiskGroupId());
        volume.setLength(length);
        volume.setLayout(VolumeLayout::SIMPLE);
        volume.setColumns(1);
        volume.setCopies(1);

        CWindowsFileSystem& fileSystem = add(m_rows.m_vWindowsFileSystem);
        const std::int64_t units = length / CLUSTER_SIZE;
        fileSystem.setLabel("Data " + name);
        fileSystem.setType(FileSystemType::NTFS);
        fileSystem.setUnitSize(CLUSTER_SIZE);
        fileSystem.setBlockSize(512);
        fileSystem.setTotalUnits(units);
        fileSystem.setFreeUnits(units / 100 * static_cast<std::int64_t>(1 + m_dice.roll(98)));
        fileSystem.setUsedUnits(units - fileSystem.getFreeUnits());
        fileSystem.setRestoreFileSystem(true);
        fileSystem.setWindowsVolumeId(volume.getId());

        CWindowsMountPoint& mountPoint = add(m_rows.m_vWindowsMountPoint);
        mountPoint.setLocation(letter.empty() ? "C:\\Mounts\\Data " + name + "\\" : letter + ":\\");
        mountPoint.setDeviceName(volume.getName());
        mountPoint.setMountFileSystem(true);
        mountPoint.setWindowsVolumeId(volume.getId());
        mountPoint.setWindowsFileSystemId(fileSystem.getId());

        CWindowsPlex& plex = add(m_rows.m_vWindowsPlex);
        plex.setLayout(VolumeLayout::SIMPLE);
        plex.setType(PlexType::DATA);
        plex.setColumns(1);
        plex.setWindowsVolumeId(volume.getId());
        return plex;
    }

    // A partition, or without a plex what is free.
    void addRegion(const CWindowsDisk& disk, std::size_t partition, std::int64_t offset, std::int64_t length,
                   const CWindowsPlex* plex) {
        CWindowsRegion& region = add(m_rows.m_vWindowsRegion);
        region.setType(plex ? WindowsRegionType::PRIMARY : WindowsRegionType::FREE);
        region.setPartitionType(plex ? NTFS_PARTITION : 0);
        region.setStatus(WindowsRegionStatus::OK);
        region.setCurrentPartitionNumber(static_cast<std::uint32_t>(partition));
        region.setName("Region" + std::to_string(m_rows.m_vWindowsDisk.size() - 1) + "-" +
                       std::to_string(partition));
        region.setOffset(offset);
        region.setLength(length);
        region.setWindowsPlexId(plex ? plex->getId() : 0);
        region.setWindowsDiskId(disk.getId());
    }

    std::string freeLetter() {
        for (char letter = 'D'; letter <= 'Z'; ++letter) {
            const auto isTaken = [letter](const CWindowsVolume* volume) {
                return volume->getDriveLetter().starts_with(letter);
            };
            if (std::none_of(m_rows.m_vWindowsVolume.begin(), m_rows.m_vWindowsVolume.end(), isTaken))
                return {letter};
        }
        return {};
    }

    CZor& m_rows;
    Dice& m_dice;
};

} // namespace

std::unique_ptr<CZor> makeEstateClient(const EstateTemplate& from, const EstateClient& client, Dice& dice) {
    auto rows = std::make_unique<CZor>(from.rows);
    rename(*rows, from.shortName, client.shortName);
    setAddresses(*rows, client.number);
    CConfig& config = *rows->m_vConfig.front();
    config.setClientName(client.clientName);
    config.setName(client.configuration);
    config.setType(client.pointInTime ? ConfigType::PIT : ConfigType::SAVED);
    config.setRetrievalTime(client.saved);
    config.setCreateTime(client.saved + 40);
    config.setSaveTime(client.saved + 55);
    if (!rows->m_vWindowsDisk.empty())
        DataDisks(*rows, dice).growTo(client.disks);
    return rows;
}

void prune(CZor& rows) {
    drop(rows.m_vRegistryValue);
    drop(rows.m_vRegistryKey);
    drop(rows.m_vEsmConf);
    drop(rows.m_vConfigFileList);
    drop(rows.m_vSaveConfigFile);
    drop(rows.m_vFileContent);
    drop(rows.m_vHostList);
    drop(rows.m_vWindowsDNSToNetworkInterface);
}

} // namespace Zorvane
