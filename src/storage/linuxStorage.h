// SPDX-License-Identifier: Apache-2.0
// The storage of a Linux client: what it boots from, and its logical volumes.
//
// Records returned are borrowed from the container.
#pragma once

#include "model/CZor.h"

#include <string>
#include <vector>

namespace Zorvane {

/// 0 if the client boots by UEFI and no partition is mounted on "/boot/efi", which is logged; else 1.
int VerifyESPisMapped(const CZor& zor);

/// The partitions that the client boots from: the EFI partition, and that of "/boot" or else of "/", or the
/// members of the multi-device that this file system lies on.
std::vector<CLinuxPartition*> FindLinuxBootPartitions(const CZor& zor);

/// The logical volume of a device name; "/dev/mapper/group-volume", with the hyphens of the names doubled, is
/// understood as "/dev/group/volume" too. Null if there is none.
CLinuxLogicalVolume* Find(const RecordRows<CLinuxLogicalVolume>& volumes, const std::string& deviceName);

} // namespace Zorvane
