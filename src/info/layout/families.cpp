// SPDX-License-Identifier: Apache-2.0
#include "info/layout/families.h"

namespace Zorvane {

namespace {

using enum LayoutKind;

// The disks first: the order of the tables is that of the roots.
constexpr LayoutTable TABLES[] = {
    {"WindowsPhysicalDisk", Hardware, "physical disk", "Model"},
    {"SolarisNativeDisk", Hardware, "physical disk", "LabelType"},
    {"WindowsDisk", Disk, "disk", "LabelType"},
    {"LinuxDisk", Disk, "disk", "Label"},
    {"SolarisDisk", Disk, "disk", "LabelType"},
    {"AixPhysicalVolume", Disk, "disk", "LabelType"},
    {"HpuxPhysicalVolume", Disk, "disk", "LabelType"},
    {"QuswDisk", Disk, "disk", "LabelType"},

    {"WindowsRegion", Partition, "region", "Type"},
    {"LinuxPartition", Partition, "partition", "Type"},
    {"SolarisNativePartition", Partition, "partition"},
    {"SolarisSlice", Partition, "slice"},
    {"HpuxPhysicalVolumePartition", Partition, "partition", "Type"},

    {"WindowsStoragePool", Array, "storage pool", "ResiliencySettingNameDefault"},
    {"WindowsStorageTierTemplate", Array, "storage tier"},
    {"WindowsVirtualDisk", Array, "virtual disk", "ResiliencySettingName"},
    {"LinuxMultiDevice", Array, "multi-device", "Level"},
    {"LinuxPhysicalVolume", Array, "physical volume"},
    {"QuvmDisk", Array, "managed disk"},
    {"SvmHotSparePool", Array, "hot spare pool"},
    {"ZfsDeviceToStoragePool", Array, "device group", "DeviceType"},
    {"ZfsStoragePool", Array, "pool", "Health"},

    {"ZfsStoragePoolDevice", Piece, "device"},
    {"AixSubDisk", Piece, "subdisk"},
    {"HpuxSubDisk", Piece, "subdisk"},
    {"QuswSubDisk", Piece, "subdisk"},
    {"QuvmSubDisk", Piece, "subdisk"},
    {"SvmSubDisk", Piece, "subdisk"},

    {"WindowsPlex", Plex, "plex", "Layout"},
    {"SolarisPlex", Plex, "plex", "Layout"},
    {"AixPlex", Plex, "plex", "Layout"},
    {"HpuxPlex", Plex, "plex", "Layout"},
    {"QuswPlex", Plex, "plex", "Layout"},
    {"QuvmPlex", Plex, "plex", "Layout"},
    {"SvmPlex", Plex, "plex", "Layout"},

    {"WindowsVolume", Volume, "volume", "Layout"},
    {"LinuxLogicalVolume", Volume, "logical volume", "Layout"},
    {"SolarisVolume", Volume, "volume", "Layout"},
    {"AixLogicalVolume", Volume, "logical volume", "Layout"},
    {"HpuxLogicalVolume", Volume, "logical volume", "Layout"},
    {"QuswVolume", Volume, "volume", "Layout"},
    {"QuvmVolume", Volume, "volume", "Layout"},
    {"SvmVolume", Volume, "volume", "Layout"},
    {"ZfsVolume", Volume, "ZFS volume"},

    {"WindowsFileSystem", FileSystem, "file system", "Type"},
    {"LinuxFileSystem", FileSystem, "file system", "Type"},
    {"Subvolume", FileSystem, "subvolume"},
    {"SolarisFileSystem", FileSystem, "file system", "Type"},
    {"AixFileSystem", FileSystem, "file system", "Type"},
    {"HpuxFileSystem", FileSystem, "file system", "Type"},
    {"QuswFileSystem", FileSystem, "file system", "Type"},
    {"QuvmFileSystem", FileSystem, "file system", "Type"},
    {"SvmFileSystem", FileSystem, "file system", "Type"},
    {"ZfsFileSystem", FileSystem, "ZFS file system"},
};

constexpr LayoutRelation RELATIONS[] = {
    // Windows, from the storage spaces up
    {"WindowsStoragePool", "WindowsPhysicalDisk", "WindowsStoragePoolToPhysicalDisk"},
    {"WindowsStorageTierTemplate", "WindowsStoragePool"},
    {"WindowsVirtualDisk", "WindowsStorageTierTemplate", "WindowsVirtualDiskToStorageTier"},
    {"WindowsVirtualDisk", "WindowsStoragePool"},
    {"WindowsVirtualDisk", "WindowsPhysicalDisk", "WindowsVirtualDiskToPhysicalDisk"},
    {"WindowsDisk", "WindowsVirtualDisk", "WindowsVirtualDiskToWindowsDisk"},
    {"WindowsDisk", "WindowsPhysicalDisk", "WindowsPhysicalDiskToWindowsDisk"},
    {"WindowsRegion", "WindowsDisk"},
    {"WindowsPlex", "WindowsRegion"},
    {"WindowsVolume", "WindowsPlex"},
    {"WindowsFileSystem", "WindowsVolume"},

    // Linux
    {"LinuxPartition", "LinuxDisk"},
    {"LinuxMultiDevice", "LinuxDisk", "LinuxDiskToMultiDevice"},
    {"LinuxMultiDevice", "LinuxPartition", "LinuxPartitionToMultiDevice"},
    {"LinuxPhysicalVolume", "LinuxDisk", "LinuxDiskToPhysicalVolume"},
    {"LinuxPhysicalVolume", "LinuxPartition", "LinuxPartitionToPhysicalVolume"},
    {"LinuxPhysicalVolume", "LinuxMultiDevice", "LinuxMultiDeviceToPhysicalVolume"},
    {"LinuxLogicalVolume", "LinuxPhysicalVolume", "LinuxLogicalExtent"},
    {"LinuxFileSystem", "LinuxPartition", "LinuxFileSystemToPartition"},
    {"LinuxFileSystem", "LinuxMultiDevice", "LinuxFileSystemToMultiDevice"},
    {"LinuxFileSystem", "LinuxLogicalVolume", "LinuxFileSystemToLogicalVolume"},
    {"Subvolume", "LinuxFileSystem"},

    // Solaris and ZFS
    {"SolarisNativePartition", "SolarisNativeDisk"},
    {"SolarisSlice", "SolarisDisk"},
    {"SolarisPlex", "SolarisSlice"},
    {"SolarisVolume", "SolarisPlex"},
    {"SolarisFileSystem", "SolarisVolume"},
    {"ZfsStoragePoolDevice", "SolarisDisk", "ZfsStoragePoolDeviceToSolarisDisk"},
    {"ZfsStoragePoolDevice", "SolarisSlice", "ZfsStoragePoolDeviceToSolarisSlice"},
    {"ZfsDeviceToStoragePool", "ZfsStoragePoolDevice"},
    {"ZfsStoragePool", "ZfsDeviceToStoragePool"},
    {"ZfsFileSystem", "ZfsStoragePool"},
    {"ZfsVolume", "ZfsStoragePool"},

    // AIX and HP-UX
    {"AixSubDisk", "AixPhysicalVolume"},
    {"AixPlex", "AixSubDisk"},
    {"AixLogicalVolume", "AixPlex"},
    {"AixFileSystem", "AixLogicalVolume"},
    {"HpuxPhysicalVolumePartition", "HpuxPhysicalVolume"},
    {"HpuxSubDisk", "HpuxPhysicalVolume"},
    {"HpuxPlex", "HpuxSubDisk"},
    {"HpuxLogicalVolume", "HpuxPlex"},
    {"HpuxFileSystem", "HpuxLogicalVolume"},

    // Solaris Volume Manager. The subdisks of a soft partition name their slice, not the volume between.
    {"SvmSubDisk", "SolarisSlice"},
    {"SvmHotSparePool", "SolarisSlice", "SvmHotSpareUsage"},
    {"SvmPlex", "SvmSubDisk"},
    {"SvmVolume", "SvmPlex"},
    {"SvmFileSystem", "SvmVolume"},

    // The managers that run on several platforms
    {"QuswSubDisk", "QuswDisk"},
    {"QuswPlex", "QuswSubDisk"},
    {"QuswVolume", "QuswPlex"},
    {"QuswFileSystem", "QuswVolume"},
    {"QuvmDisk", "SolarisDisk", "QuvmSolarisDiskAccess"},
    {"QuvmDisk", "SolarisSlice", "QuvmSolarisSliceAccess"},
    {"QuvmDisk", "AixPhysicalVolume", "QuvmAixDiskAccess"},
    {"QuvmDisk", "HpuxPhysicalVolume", "QuvmHpuxDiskAccess"},
    {"QuvmSubDisk", "QuvmDisk"},
    {"QuvmSubDisk", "QuvmVolume", nullptr, "SubVolume"}, // a layered volume's parts are volumes themselves
    {"QuvmPlex", "QuvmSubDisk"},
    {"QuvmVolume", "QuvmPlex"},
    {"QuvmFileSystem", "QuvmVolume"},
};

constexpr LayoutMounts MOUNTS[] = {
    {"WindowsMountPoint", "Location"}, {"LinuxMountPoint", "Name"},      {"SubvolumeMountPoint", "Name"},
    {"SolarisMountPoint", "Location"}, {"AixMountPoint", "Location"},    {"HpuxMountPoint", "Location"},
    {"QuswMountPoint", "Location"},    {"QuvmMountPoint", "Location"},   {"SvmMountPoint", "Location"},
    {"ZfsFileSystem", "MountPoint"},   {"ZfsStoragePool", "MountPoint"},
};

constexpr const char* GROUPS[] = {
    "WindowsDiskGroup", "LinuxVolumeGroup", "SolarisDiskGroup", "AixVolumeGroup",
    "HpuxVolumeGroup",  "QuswDiskGroup",    "QuvmDiskGroup",    "SvmDiskSet",
};

} // namespace

std::span<const LayoutTable> layoutTables() {
    return TABLES;
}
std::span<const LayoutRelation> layoutRelations() {
    return RELATIONS;
}
std::span<const LayoutMounts> layoutMounts() {
    return MOUNTS;
}
std::span<const char* const> layoutGroups() {
    return GROUPS;
}

} // namespace Zorvane
