// SPDX-License-Identifier: Apache-2.0
#include "storage/volfind.h"

#include "logging/Trace.h"
#include "model/aix_hpux_records.h"
#include "model/core_records.h"
#include "model/linux_records.h"
#include "model/solaris_records.h"
#include "model/storage_records.h"
#include "model/volume_manager_records.h"
#include "model/windows_records.h"
#include "platform/stringManipulation.h"
#include "storage/linuxStorage.h"
#include "storage/lookup.h"
#include "storage/readUnsigned.h"

#include <algorithm>
#include <string_view>

namespace Zorvane {

namespace {

/// In the order in which they are tested; some managers have two bits.
constexpr struct {
    std::uint32_t bits;
    VolumeManager manager;
} managerBits[] = {
    {0x201, VolumeManager::Windows}, {2, VolumeManager::Qusw},      {4, VolumeManager::Aix},
    {8, VolumeManager::Hpux},        {16, VolumeManager::Solaris},  {32, VolumeManager::Quvm},
    {64, VolumeManager::Svm},        {0x180, VolumeManager::Linux},
};

template <class... Records>
void clearMappedFromId(const RecordRows<Records>&... vectors) {
    const auto clear = [](const auto& rows) {
        for (auto* row : rows)
            if (row)
                row->setMappedFromId(0);
    };
    (clear(vectors), ...);
}

template <class Volume>
int hasSystemAndBoot(const RecordRows<Volume>& volumes) {
    return FindByFlag(volumes, &Volume::getIsSystem) && FindByFlag(volumes, &Volume::getIsBoot) ? 1 : 0;
}

int quvmVersionStartsWith(const CZor& zor, const char* start, Located label) {
    Trace trace(g_libLog, label);
    const CVolumeInfo* info = zor.m_vVolumeInfo.first();
    if (!info) {
        trace.write(LEVEL_FAILURE, "QuVM version information missing in the configuration.");
        return 0;
    }
    return trace.leave(info->getQuvmVersion().starts_with(start) ? 1 : 0,
                       ", version=", info->getQuvmVersion());
}

} // namespace

VolumeManager FindVolumeManager(const CZor& zor) {
    const CVolumeInfo* info = zor.m_vVolumeInfo.first();
    if (info)
        for (const auto& [bits, manager] : managerBits)
            if (info->getManagers() & bits)
                return manager;
    return VolumeManager::None;
}

int ClearAllMappedFromId(CZor& zor) {
    Trace trace(g_libLog, "volfind:ClearAllMappedFromId()");
    switch (FindVolumeManager(zor)) {
    case VolumeManager::Windows:
        clearMappedFromId(zor.m_vWindowsDiskGroup, zor.m_vWindowsRegion, zor.m_vWindowsVolume);
        break;
    case VolumeManager::Qusw:
        clearMappedFromId(zor.m_vQuswDiskGroup, zor.m_vQuswSubDisk, zor.m_vQuswVolume);
        break;
    case VolumeManager::Aix:
        clearMappedFromId(zor.m_vAixVolumeGroup, zor.m_vAixSubDisk, zor.m_vAixLogicalVolume);
        break;
    case VolumeManager::Hpux:
        clearMappedFromId(zor.m_vHpuxVolumeGroup, zor.m_vHpuxSubDisk, zor.m_vHpuxLogicalVolume);
        break;
    case VolumeManager::Solaris:
        clearMappedFromId(zor.m_vSolarisDiskGroup, zor.m_vSolarisSlice, zor.m_vSolarisVolume);
        break;
    case VolumeManager::Quvm:
        clearMappedFromId(zor.m_vQuvmDiskGroup, zor.m_vQuvmSubDisk, zor.m_vQuvmVolume);
        break;
    case VolumeManager::Svm:
        clearMappedFromId(zor.m_vSvmDiskSet, zor.m_vSvmSubDisk, zor.m_vSvmVolume);
        break;
    case VolumeManager::Linux:
        clearMappedFromId(zor.m_vLinuxVolumeGroup, zor.m_vLinuxLogicalVolume, zor.m_vLinuxMultiDevice,
                          zor.m_vLinuxPartition);
        break;
    case VolumeManager::None:
        break;
    }
    const CSystem* system = zor.m_vSystem.first();
    if (system && system->getArchitecture() == "i86pc")
        clearMappedFromId(zor.m_vSolarisNativePartition);
    return 0;
}

int IsBootAndSystemMapped(const CZor& zor) {
    Trace trace(g_libLog, "volfind:IsBootAndSystemMapped()");
    const VolumeManager manager = FindVolumeManager(zor);
    if (manager == VolumeManager::Windows)
        return hasSystemAndBoot(zor.m_vWindowsVolume);
    if (manager == VolumeManager::Qusw)
        return hasSystemAndBoot(zor.m_vQuswVolume);
    const CSystem* system = zor.m_vSystem.first();
    return system && system->getOs() == OsType::LINUX ? VerifyESPisMapped(zor) : 1;
}

int isQuvmVersion3(const CZor& zor) {
    return quvmVersionStartsWith(zor, "3.", "volfind:isQuvmVersion3()");
}

int isQuvmVersion5(const CZor& zor) {
    return quvmVersionStartsWith(zor, "5.", "volfind:isQuvmVersion5()");
}

int IsDnsHostsMapped(const CZor& zor) {
    return zor.m_vWindowsDNSToNetworkInterface.empty() ? 0 : 1;
}

int MultipleHpuxPartitionsExist(const CZor& zor) {
    Trace trace(g_libLog, "volfind:MultipleHpuxPartitionsExist()");
    const bool exist = FindIf(zor.m_vHpuxPhysicalVolume, [&](const CHpuxPhysicalVolume& disk) {
        const auto partitions = FindReferring<CHpuxPhysicalVolumePartition>(zor, disk);
        return std::ranges::count(partitions, HpuxPartitionType::HPUX,
                                  &CHpuxPhysicalVolumePartition::getType) > 1;
    });
    return exist ? 1 : 0;
}

int IsVendor(int partitionType) {
    constexpr int hidden = 32; // a maker's partition of type 222 is 254 when hidden
    return (partitionType & ~hidden) == 222 || partitionType == 238 || partitionType == 18 ||
                   partitionType == 99
               ? 1
               : 0;
}

int IsCdromName(const std::string& diskName) {
    return StrToLower(diskName).find("cdrom") != std::string::npos ? 1 : 0;
}

int GetDiskNumber(const CDisk& disk, unsigned int& number) {
    Trace trace(g_libLog, "volfind:GetDiskNumber()", ", name=", disk.getName());
    constexpr std::string_view prefix = "\\Device\\Harddisk";
    number = 0;
    if (!disk.getName().starts_with(prefix)) {
        trace.write(LEVEL_WARNING, "Malformed disk path ", disk.getName(), ".");
        return 1;
    }
    number = readUnsigned(disk.getName().substr(prefix.size()));
    return trace.leave(0, ", number=", number);
}

} // namespace Zorvane
