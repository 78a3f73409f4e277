// SPDX-License-Identifier: Apache-2.0
#include "storage/solarisSlices.h"

#include "logging/Trace.h"
#include "model/solaris_records.h"
#include "model/volume_manager_records.h"
#include "storage/lookup.h"

#include <map>
#include <utility>

namespace Zorvane {

namespace {

constexpr std::int32_t PUBLIC_REGION = 14; ///< the tag of the slice that holds a disk's public region

bool isBlock0(const CQuvmSubDisk* subdisk) {
    return subdisk->getName().find("Block0") != std::string::npos;
}

CSolarisDisk* solarisDiskOf(const CZor& zor, const CQuvmSubDisk& subdisk) {
    const CQuvmDisk* disk = FindReferred<CQuvmDisk>(zor, subdisk);
    const auto* access = disk ? FindFirstReferring<CQuvmSolarisDiskAccess>(zor, *disk) : nullptr;
    return access ? FindReferred<CSolarisDisk>(zor, *access) : nullptr;
}

/// Where a slice lies that holds the subdisk. The sums wrap: the figures are a peer's.
struct Extent {
    std::uint64_t offset;
    std::uint64_t length;

    static Extent of(const CSolarisSlice& slice) {
        return {static_cast<std::uint64_t>(slice.getOffset()), static_cast<std::uint64_t>(slice.getLength())};
    }
    /// `block0` is the length of the block that the plex keeps in front of its data, 0 if it has none.
    static Extent around(const CQuvmSubDisk& subdisk, __int64 block0, __int64 publicOffset) {
        const auto offset = static_cast<std::uint64_t>(subdisk.getDevOffset());
        const auto length = static_cast<std::uint64_t>(subdisk.getLength());
        const auto block = static_cast<std::uint64_t>(block0);
        if (block)
            return {offset - block, length + block};
        return {offset + static_cast<std::uint64_t>(publicOffset), length};
    }
    bool operator==(const Extent&) const = default;
};

} // namespace

int IsSliceInUse(const CZor& zor, const CSolarisSlice& slice) {
    Trace trace(g_libLog, "solarisSlices:IsSliceInUse()", ", name=", slice.getName());
    const CSolarisPlex* plex = FindReferred<CSolarisPlex>(zor, slice);
    const CSolarisVolume* volume = plex ? FindReferred<CSolarisVolume>(zor, *plex) : nullptr;
    const bool used = (volume && (FindFirstReferring<CSolarisMountPoint>(zor, *volume) ||
                                  FindFirstReferring<CSolarisSwap>(zor, *volume))) ||
                      FindFirstReferring<CZfsStoragePoolDeviceToSolarisSlice>(zor, slice);
    return trace.leave(used ? 1 : 0, ", used=", used);
}

std::vector<CSolarisSlice*> FindEncapsulatedQuVMVolumeSlice(CZor& zor, const CQuvmVolume& volume,
                                                            bool marked) {
    Trace trace(g_libLog, "solarisSlices:FindEncapsulatedQuVMVolumeSlice()", ", name=", volume.getName());
    std::vector<CSolarisSlice*> found;
    const auto subdisks = FindReferring<CQuvmSubDisk>(zor, FindReferring<CQuvmPlex>(zor, volume));
    // By plex, up to the first block. It stays that a plex which has all its subdisks behind the block has no
    // length here, not even 0, so that none of them corresponds to a slice.
    std::map<ID, __int64> blockLengths;
    bool hasBlock0 = false;
    for (auto subdisk = subdisks.begin(); subdisk != subdisks.end() && !hasBlock0; ++subdisk) {
        hasBlock0 = isBlock0(*subdisk);
        blockLengths[(*subdisk)->getQuvmPlexId()] = hasBlock0 ? (*subdisk)->getLength() : 0;
    }
    if (volume.getColumns() > 1 || std::cmp_not_equal(volume.getCopies(), subdisks.size() - hasBlock0))
        return found;

    for (const CQuvmSubDisk* subdisk : subdisks) {
        if (isBlock0(subdisk) || subdisk->getQuvmDiskId() == 0)
            continue;
        const CSolarisDisk* disk = solarisDiskOf(zor, *subdisk);
        if (!disk)
            break;
        const auto blockLength = blockLengths.find(subdisk->getQuvmPlexId());
        if (blockLength == blockLengths.end())
            continue;
        const auto slices = FindReferring<CSolarisSlice>(zor, *disk);
        const auto publicRegion = std::ranges::find(slices, PUBLIC_REGION, &CSolarisSlice::getTag);
        const Extent wanted = Extent::around(*subdisk, blockLength->second,
                                             publicRegion == slices.end() ? 0 : (*publicRegion)->getOffset());
        for (CSolarisSlice* slice : slices) {
            if (Extent::of(*slice) != wanted)
                continue;
            if (!marked) {
                slice->setEncapsulated(true);
            } else if (slice->getEncapsulated()) {
                trace.write(LEVEL_TRACE, "Adding slice ", slice->getName(), " at line ", __LINE__);
                found.push_back(slice);
            }
        }
    }
    trace.exitLine(", slices=", found.size());
    return found;
}

} // namespace Zorvane
