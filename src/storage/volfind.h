// SPDX-License-Identifier: Apache-2.0
// Questions over a client's configuration that the lookups of storage/lookup.h don't answer by themselves:
// which volume manager owns the layout, and the small rules that go with it.
//
// Containers and vectors are read only, if not told otherwise, and records returned are borrowed from them.
// Yes-or-no functions give 1 for yes and 0 for no.
#pragma once

#include "model/CZor.h"
#include "model/enumerations.h"
#include "storage/lookup.h"

#include <cstdint>
#include <string>

namespace Zorvane {

class CDisk;

/// Whose volumes make up a configuration's layout.
enum class VolumeManager : std::uint8_t { None, Windows, Qusw, Aix, Hpux, Solaris, Quvm, Svm, Linux };

/// The manager of the mask in the first volume info; if the mask has the bits of several, the first of them
/// in the order of VolumeManager. None without a volume info.
VolumeManager FindVolumeManager(const CZor& zor);

/// Forgets the mapping of the layout: MappedFromId becomes 0 in the manager's groups, volumes and their
/// parts, and for a Solaris client on PC hardware in the native partitions. Always 0.
int ClearAllMappedFromId(CZor& zor);

/// Whether the client's rows mark a boot and a system volume (Windows), or the EFI partition (Linux). 1 for
/// other clients.
int IsBootAndSystemMapped(const CZor& zor);

/// Whether the first volume info tells version 3 or 5 of the QuVM software. Logs that there is no volume
/// info.
int isQuvmVersion3(const CZor& zor);
int isQuvmVersion5(const CZor& zor);

/// Whether a name server of the client is tied to one of its network interfaces.
int IsDnsHostsMapped(const CZor& zor);

/// Whether an HP-UX physical volume has more than one partition of its own type.
int MultipleHpuxPartitionsExist(const CZor& zor);

/// Whether a partition type number is one that makers of hardware use for their own tools.
int IsVendor(int partitionType);

/// Whether the name, in any case, holds "cdrom".
int IsCdromName(const std::string& diskName);

/// The number in a Windows disk's name, "\Device\Harddisk<number>"; 0 if no digits follow. 0, or 1 for
/// another name, and then the number is 0 too.
int GetDiskNumber(const CDisk& disk, unsigned int& number);

/// The SCSI disk of that name, or else the first SCSI disk that has no name yet; null if there is neither.
template <Named Disk>
Disk* FindNextFreeScsiDisk(const std::string& name, const RecordRows<Disk>& disks) {
    const auto scsiDisk = [&](const std::string& wanted) {
        return FindBy(disks, &Disk::getName, wanted, &Disk::getDiskType, DiskBusType::SCSI);
    };
    Disk* named = scsiDisk(name);
    return named ? named : scsiDisk("");
}

} // namespace Zorvane
