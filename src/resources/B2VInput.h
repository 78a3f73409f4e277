// SPDX-License-Identifier: Apache-2.0
// Everything that one run is told, and the rows that it reads and makes.
#pragma once

#include "model/CZor.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zorvane {

/// Kinds of conversion target.
inline constexpr std::uint32_t VMWARE_VE_TYPE = 1;
inline constexpr std::uint32_t HYPERV_VE_TYPE = 2;

/// Disk formats of the target; 0 is none of them.
inline constexpr std::uint32_t DISK_FORMAT_INVALID = 0;
inline constexpr std::uint32_t DISK_FORMAT_THICK = 1;
inline constexpr std::uint32_t DISK_FORMAT_THIN = 2;
inline constexpr std::uint32_t DISK_FORMAT_THICK_LAZY = 3;

/// The data store that takes one of the client's disks.
struct DiskDataStoreEntry {
    std::string diskName;
    std::string dataStoreName;
    std::int64_t availableSize = 0; ///< MB free, as the inventory reports it
};

/// The input of a run. Every resource operation receives it.
struct B2VInput {
    std::string clientName;
    std::string masterServer;
    std::string configName;
    std::string vmServer;
    std::string vmProxy;
    std::uint32_t veType = VMWARE_VE_TYPE;
    bool powerOn = false;
    bool stripNetwork = false;
    bool overwriteVm = false;
    std::string toolsIsoPath;
    std::string vmDisplayName;
    std::uint32_t diskFormat = DISK_FORMAT_THIN;
    std::string vmFolder;
    std::string dataCenter;
    std::string cluster;
    std::string esxHost;
    std::string vmNetwork;
    std::string resourcePool;
    std::string dataStore;
    std::int64_t dataStoreSize = 0; ///< MB free, as the inventory reports it
    std::vector<DiskDataStoreEntry> diskMap;
    std::uint32_t profileId = 0;
    std::string profileName;
    CZor clientConfig; ///< what was read
    CZor veRecords;    ///< what is to be inserted
    bool guiJob = false;
    bool systemOnly = false;
};

} // namespace Zorvane
