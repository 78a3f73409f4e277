// SPDX-License-Identifier: Apache-2.0
// The disks of a Windows client: which hold a volume, which boots, and which carry what can't be converted.
//
// "Boot" and "system" are meant in the Windows sense: the boot volume holds the system's files, the system
// volume the loader. Records returned are borrowed from the container; yes-or-no functions give 1 for yes and
// 0 for no.
#pragma once

#include "model/CZor.h"

#include <string>
#include <vector>

namespace Zorvane {

/// The disks that a volume lies on, each once, in the order of its plexes and their regions.
std::vector<CWindowsDisk*> FindWindowsDisksOfVolume(const CZor& zor, const CWindowsVolume& volume);
std::vector<CQuswDisk*> FindQuswDisksOfVolume(const CZor& zor, const CQuswVolume& volume);
/// The volumes that have a region on a disk, each once.
std::vector<CWindowsVolume*> FindWindowsVolumesOfDisk(const CZor& zor, const CWindowsDisk& disk);

/// The disk of the first system (boot) volume; of several the one with the lowest arc name, unless the first
/// has none. Null if there is no such volume or it lies on no disk.
CWindowsDisk* FindWindowsSystemDisk(const CZor& zor);
CWindowsDisk* FindWindowsBootDisk(const CZor& zor);
CQuswDisk* FindQuswSystemDisk(const CZor& zor);
CQuswDisk* FindQuswBootDisk(const CZor& zor);

/// The name of that disk for the client's volume manager; empty if there is none or the manager is another.
std::string FindSystemDiskName(const CZor& zor);
std::string FindBootDiskName(const CZor& zor);

/// The disk that the firmware tries first, by the numbers in the arc names; null if no arc name counts. Logs
/// either.
CWindowsDisk* FindFirstBootableDisk(const RecordRows<CWindowsDisk>& disks);

/// Whether the system disk is the one that the firmware tries first; 1 for layouts that are not native
/// Windows.
int IsSystemDiskInBootOrder(const CZor& zor);

/// The volumes of disks that aren't restricted whose first file system is ReFS, each once.
std::vector<CWindowsVolume*> FindReFsVolumes(const CZor& zor);
/// Whether there is such a volume.
int IsReFsPresent(const CZor& zor);

/// Whether the disk's device type, 6 or 7, is one that no virtual machine has.
bool HasUnconvertibleDeviceType(const CWindowsDisk& disk);
/// The disks with bus type 7 that aren't restricted.
std::vector<CWindowsDisk*> FindUnrestrictedDisksOnBus7(const CZor& zor);

} // namespace Zorvane
