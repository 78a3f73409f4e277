// SPDX-License-Identifier: Apache-2.0
// A target for a client, made of names that exist and of a disk map that fits.
#pragma once

#include "info/check/diskSpace.h"
#include "resources/B2VInput.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Zorvane {

/// A disk with the data store that takes it.
struct PlacedDisk {
    ClientDisk disk;
    std::string store;
};

/// First fit, decreasing: the largest disks first, each into the roomiest store that still has room. Nothing
/// if they don't fit.
std::optional<std::vector<PlacedDisk>> placeDisks(std::vector<ClientDisk> disks,
                                                  const std::map<std::string, long long>& freeMegabytes);

/// A value of the configuration file, and what else there is to choose from.
struct DraftValue {
    std::string key;
    std::string value; ///< empty: the inventory's default is left in place
    std::string note;
    std::vector<std::string> others{};
};

struct TargetDraft {
    std::vector<DraftValue> values;
    std::vector<PlacedDisk> disks;
};

/// Whether a value can stand in the configuration file and be read back as it is.
bool isWritable(const std::string& value);

/// Drafts the target for the client, server and backup host that the input names; its configuration has been
/// read. Asks the inventory. Throws InfoFailure if it doesn't answer or no ESX host has room.
TargetDraft draftTarget(const B2VInput& input);

/// The configuration file.
std::string fileOf(const TargetDraft& draft, const B2VInput& input);

} // namespace Zorvane
