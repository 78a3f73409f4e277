// SPDX-License-Identifier: Apache-2.0
// The client's disks held against the disk map and the free space of the data stores.
#pragma once

#include "resources/B2VInput.h"
#include "resources/Finding.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zorvane {

/// A disk that a conversion takes over.
struct ClientDisk {
    std::string name;  ///< as the disk map calls it: "Harddisk0"
    std::int64_t size; ///< MB
};

/// The disks that are taken over: not the restricted ones, and only those of the system with -systemOnly.
std::vector<ClientDisk> convertedDisks(const B2VInput& input);

/// A line of the sheet: a data store and what its disks take of it, in MB.
struct StoreSpace {
    std::string store;
    std::int64_t needed = 0;
    std::optional<std::int64_t> free; ///< nothing if the inventory did not tell
};

/// "1.2 TiB", as all sizes are shown.
std::string megabytesText(std::int64_t megabytes);

/// The free space that stands for "not told" in an input; validation overwrites it.
inline constexpr std::int64_t SPACE_UNKNOWN = -1;

/// The sheet, in the order of the disks; reports disks, lines and stores that don't fit.
std::vector<StoreSpace> spaceSheet(const B2VInput& input, Findings& findings);

} // namespace Zorvane
