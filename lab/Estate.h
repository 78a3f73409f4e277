// SPDX-License-Identifier: Apache-2.0
// Sites of a size for a new lab: many invented clients and targets, with names as they are met. The same
// options give the same site.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

namespace Zorvane {

class Store;

enum class EstateSize { None, Small, Medium, Large };

struct EstateOptions {
    EstateSize size = EstateSize::None; ///< None: nothing beside the sample clients and the default inventory
    std::uint64_t seed = 1;             ///< what names and sizes are drawn from
    std::optional<std::int64_t> clock{}; ///< when the latest configurations were saved; else now
};

/// What a size adds up to, the sample clients and the default inventory included.
struct EstateExtent {
    std::size_t clients = 0;
    std::size_t machines = 0; ///< virtual machines of the inventory
    std::size_t disks = 0;    ///< of the client with the most
};
EstateExtent extentOf(EstateSize size);
/// All sizes in words, for a help page.
std::string estateSizes();

/// Loads the clients that the estate lacks, made from the sample documents in the folder and those of its
/// subfolder "families", and tells their number. Returns what the catalogue says of them. LabError.
std::string loadEstate(Store& store, const EstateOptions& options, const std::filesystem::path& samples,
                       std::ostream& out);

/// The servers that stand behind those of the default inventory, in its format.
std::string estateInventory(const EstateOptions& options);

} // namespace Zorvane
