// SPDX-License-Identifier: Apache-2.0
// A target for a client, made of names that exist and of a disk map that fits.
#pragma once

#include "info/asks/TargetTree.h"
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

/// Where disks go, as far as they have a place.
struct DiskPlacement {
    std::vector<PlacedDisk> placed;
    std::optional<ClientDisk> homeless; ///< the first that fits nowhere; the ones behind it are not tried
    std::string roomiest;               ///< the store with the most room left; empty if there is none
    long long most = 0;                 ///< that room, in MB
};

/// First fit, decreasing: the largest disks first, each into the first store, in the order of their free
/// space, that still has room.
DiskPlacement placeDisks(std::vector<ClientDisk> disks,
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
    std::vector<UnansweredListing> unanswered; ///< the hosts that were left out for it
};

/// Whether a value can stand in the configuration file and be read back as it is.
bool isWritable(const std::string& value);
/// A name for the client's machine that is none of those taken, whatever their case.
std::string freeName(const std::string& client, const std::vector<std::string>& taken);

/// Drafts the target for the client, server and backup host that the input names; its configuration has been
/// read. Asks the inventory. Throws InfoFailure if it doesn't answer or no ESX host has room. A host of which
/// a listing fails is left out.
TargetDraft draftTarget(const B2VInput& input);

/// The configuration file.
std::string fileOf(const TargetDraft& draft, const B2VInput& input);

} // namespace Zorvane
