// SPDX-License-Identifier: Apache-2.0
// A client's storage as a graph of what lies on what, the same for every platform.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane {

class CZor;
struct B2VInput;

enum class LayoutKind : std::uint8_t {
    Hardware,  ///< what the client's own disks are made of: a physical disk, a disk below its slice label
    Disk,      ///< what a conversion maps to a data store
    Partition, ///< a part of a disk with a place: partition, region, slice
    Array,     ///< made of several parts, or holding several: multi-device, pool, physical volume
    Piece,     ///< a stretch of a disk that a volume manager gave away
    Plex,
    Volume,
    FileSystem,
};
/// "hardware", "disk", "partition", "array", "piece", "plex", "volume", "filesystem".
const char* nameOf(LayoutKind kind);

enum class LayoutFlag : std::uint8_t {
    Boots,  ///< the machine starts from it: loader, boot partition
    System, ///< belongs to the operating system
    Swap,
    Dump,
    ReadOnly,
    Restricted, ///< left out of a restore
    Shared,     ///< with the other nodes of a cluster
    Free,       ///< unused space that has a row of its own
};
inline constexpr std::size_t LAYOUT_FLAGS = 8;
/// "boots", "system", "swap", "dump", "read-only", "restricted", "shared", "free".
const char* nameOf(LayoutFlag flag);

/// From one object to another that lies on it, or that it lies on.
struct LayoutEdge {
    std::size_t node;
    std::optional<std::int64_t> extent; ///< bytes of the lower one that the upper one takes, where told
};

struct LayoutNode {
    std::string key; ///< "WindowsVolume:1002", stable over runs
    LayoutKind kind = LayoutKind::Disk;
    std::string sort;                   ///< what its platform calls it: "region", "slice", "logical volume"
    std::string name;                   ///< may be empty
    std::string detail;                 ///< "GPT_BASIC_DATA", "MIRROR", "NTFS"; empty if not told
    std::string group;                  ///< disk or volume group
    std::string cluster;                ///< the cluster's group that a shared object belongs to
    std::optional<std::int64_t> size;   ///< bytes; never negative
    std::optional<std::int64_t> offset; ///< bytes from the start of what it lies on; never negative
    std::vector<std::string> mountedAt;
    std::vector<LayoutEdge> lower; ///< what it lies on
    std::vector<LayoutEdge> upper; ///< what lies on it, by place
    std::string dataStore;         ///< of a disk, with a target
    bool isDefaultStore = false;   ///< no line of the target names the disk; the default takes it

    [[nodiscard]] bool has(LayoutFlag flag) const { return m_flags[static_cast<std::size_t>(flag)]; }
    void set(LayoutFlag flag) { m_flags[static_cast<std::size_t>(flag)] = true; }

  private:
    std::array<bool, LAYOUT_FLAGS> m_flags{};
};

struct LayoutInterface {
    std::string name;
    std::string mac;
    std::vector<std::string> addresses;
};

/// Where a configuration file sends the client.
struct LayoutTarget {
    std::string machine;
    std::string network;
    std::vector<std::string> unknownDisks; ///< named by the file, but the client has none of that name
};

struct Layout {
    std::string client;
    std::string configuration;
    std::string system; ///< "NT WIN10_1809_SP0_X64"
    std::vector<LayoutNode> nodes;
    std::vector<LayoutInterface> interfaces;
    std::optional<LayoutTarget> target;
    std::size_t dangling = 0; ///< references that lead to no row
    std::size_t leftOut = 0;  ///< rows beyond MAX_LAYOUT_NODES
};

/// Far above any client; a document of a hundred thousand rows shall not become a picture of as many boxes.
inline constexpr std::size_t MAX_LAYOUT_NODES = 20'000;
/// How deep a walk upwards goes. Real stacks have ten levels; a chain of a damaged document has no end.
inline constexpr unsigned MAX_LAYOUT_DEPTH = 32;
/// A machine has a dozen at most, and each is held against all addresses.
inline constexpr std::size_t MAX_LAYOUT_INTERFACES = 256;

/// Reads the container's rows and keeps nothing of it. Rows may refer to nothing, or in circles.
Layout buildLayout(CZor& zor);
/// Adds where the disks and interfaces go.
void addTarget(Layout& layout, const B2VInput& input);

/// The node's uppers as shown: a plex that is its volume's only one, and a nameless piece of one part, say
/// nothing, and what lies on them takes their place.
std::vector<LayoutEdge> shownUppers(const Layout& layout, std::size_t node);
/// Whether shownUppers() passes it over.
bool isTransparent(const Layout& layout, std::size_t node);
/// The nodes that lie on nothing, in the order of the nodes.
std::vector<std::size_t> rootsOf(const Layout& layout);
/// For each node whether it has the flag, or carries something that has it.
std::vector<bool> carriersOf(const Layout& layout, LayoutFlag flag);
/// The disks under anything that boots, in the order of the nodes.
std::vector<std::size_t> bootDisks(const Layout& layout);

} // namespace Zorvane
