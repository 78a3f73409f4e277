// SPDX-License-Identifier: Apache-2.0
#include "info/layout/LayoutRows.h"
#include "info/layout/families.h"
#include "model/linux_records.h"
#include "storage/linuxStorage.h"

#include <algorithm>
#include <array>
#include <string>

namespace Zorvane {

namespace {

using enum LayoutFlag;

struct FlagMark {
    const char* field;
    LayoutFlag flag;
};

// Windows says "system" of the volume that the loader is on, and "boot" of the one with the system on it.
constexpr FlagMark FLAG_MARKS[] = {
    {"IsSystem", Boots},    {"Boot", Boots},          {"IsBoot", System},
    {"Root", System},       {"System", System},       {"Swap", Swap},
    {"ReadOnly", ReadOnly}, {"IsReadOnly", ReadOnly}, {"Restricted", Restricted},
};

struct TextMark {
    const char* table;
    const char* field;
    const char* value;
    LayoutFlag flag;
};

constexpr TextMark TEXT_MARKS[] = {
    {"AixLogicalVolume", "Type", "boot", Boots}, {"HpuxPhysicalVolumePartition", "Type", "EFI", Boots},
    {"LinuxFileSystem", "Type", "SWAP", Swap},   {"LinuxPartition", "Type", "FREE", Free},
    {"WindowsRegion", "Type", "FREE", Free},     {"WindowsRegion", "Type", "EXTENDED_FREE", Free},
};

void markByFields(LayoutRows& rows) {
    auto& nodes = rows.layout().nodes;
    for (std::size_t node = 0; node < nodes.size(); ++node) {
        const RowView& row = rows.rowOf(node);
        for (const FlagMark& mark : FLAG_MARKS)
            if (row.flag(mark.field))
                nodes[node].set(mark.flag);
        for (const TextMark& mark : TEXT_MARKS)
            if (row.table().name == std::string_view(mark.table) && row.text(mark.field) == mark.value)
                nodes[node].set(mark.flag);
        if (!row.text("Dump").empty())
            nodes[node].set(Dump);
    }
}

void mark(LayoutRows& rows, std::optional<std::size_t> node, LayoutFlag flag) {
    if (node)
        rows.layout().nodes[*node].set(flag);
}

void markLinuxBoot(LayoutRows& rows) {
    for (const CLinuxPartition* partition : FindLinuxBootPartitions(rows.zor()))
        mark(rows, rows.node("LinuxPartition", partition->getId()), Boots);
    for (const RowView& row : rows.rows("LinuxBootLoaderToDisk"))
        mark(rows, rows.node("LinuxDisk", row.reference("LinuxDisk")), Boots);
    for (const RowView& row : rows.rows("LinuxBootLoaderToPartition"))
        mark(rows, rows.node("LinuxPartition", row.reference("LinuxPartition")), Boots);
}

// The swap table names its volume, or a ZFS volume by path.
void markSolarisSwap(LayoutRows& rows) {
    constexpr std::string_view ZFS_VOLUMES = "/dev/zvol/dsk/";
    for (const RowView& swap : rows.rows("SolarisSwap")) {
        mark(rows, rows.node("SolarisVolume", swap.reference("SolarisVolume")), Swap);
        const std::string path = swap.text("Path");
        for (const std::size_t volume : rows.nodesOf("ZfsVolume"))
            if (path.starts_with(ZFS_VOLUMES) &&
                rows.layout().nodes[volume].name == path.substr(ZFS_VOLUMES.size()))
                rows.layout().nodes[volume].set(Swap);
    }
}

void addMount(LayoutNode& node, const std::string& place) {
    // ZFS keeps words where others have a path.
    if (place.empty() || place == "legacy" || place == "none" || place == "-")
        return;
    if (std::find(node.mountedAt.begin(), node.mountedAt.end(), place) == node.mountedAt.end())
        node.mountedAt.push_back(place);
    if (place == "/")
        node.set(System);
}

// The node that a row refers to: a file system rather than the volume under it.
std::optional<std::size_t> referredNode(const LayoutRows& rows, const RowView& row) {
    const auto tables = layoutTables();
    for (auto table = tables.rbegin(); table != tables.rend(); ++table)
        if (const ID id = row.reference(table->table))
            if (const auto node = rows.node(table->table, id))
                return node;
    return std::nullopt;
}

void addMounts(LayoutRows& rows) {
    for (const LayoutMounts& mounts : layoutMounts()) {
        // A ZFS file system tells its own place; other tables refer to what they mount.
        const bool isNode = !rows.nodesOf(mounts.table).empty();
        for (const RowView& row : rows.rows(mounts.table))
            if (const auto node = isNode ? rows.node(mounts.table, row.id()) : referredNode(rows, row))
                addMount(rows.layout().nodes[*node], row.text(mounts.place));
    }
}

// What a zone was given of the machine's storage.
void addZones(LayoutRows& rows) {
    static constexpr std::array<std::array<const char*, 3>, 2> uses = {
        {{"SolarisZoneFileSystem", "Dir", ""}, {"SolarisZoneDevice", "DMatch", "device "}}};
    for (const auto& [table, place, word] : uses)
        for (const char* target : {"SolarisSlice", "SvmVolume", "QuvmVolume"})
            for (const RowView& pair : rows.rows(std::string(table) + "To" + target)) {
                const auto use = rows.row(table, pair.reference(table));
                const auto zone = use ? rows.row("SolarisZone", use->reference("SolarisZone")) : std::nullopt;
                if (const auto node = rows.node(target, pair.reference(target)); node && zone)
                    addMount(rows.layout().nodes[*node],
                             "zone " + zone->text("Name") + ": " + word + use->text(place));
            }
}

// The cluster's tables of shared disks, groups and volumes refer to the native rows.
void markShared(LayoutRows& rows) {
    auto& nodes = rows.layout().nodes;
    const auto share = [&](std::size_t node, const RowView& row) {
        nodes[node].set(Shared);
        if (const auto resource = rows.row("ClusterResource", row.reference("ClusterResource")))
            if (const auto group = rows.row("ClusterGroup", resource->reference("ClusterGroup")))
                nodes[node].cluster = group->text("Name");
    };
    for (const VectorDescriptor& vector : allVectors()) {
        const TableDescriptor& table = vector.table();
        const std::string_view base = table.base ? table.base->name : "";
        if (base != "SharedPhysicalVolume" && base != "SharedLogicalVolume" && base != "SharedMount")
            continue;
        for (const RowView& row : rows.rows(table.name)) {
            auto node = referredNode(rows, row);
            if (base == "SharedMount") {
                // By way of the shared volume.
                for (const Field& field : table.fields)
                    if (field.kind == FieldKind::Reference &&
                        std::string_view(field.target).starts_with("Shared"))
                        if (const auto volume = rows.row(field.target, row.reference(field.target)))
                            node = referredNode(rows, *volume);
                if (!node)
                    continue;
                // The volume's own file system says the same, if it is mounted now.
                const std::string place = row.text("MountPoint");
                const auto& uppers = nodes[*node].upper;
                if (std::none_of(uppers.begin(), uppers.end(), [&](const LayoutEdge& edge) {
                        const auto& at = nodes[edge.node].mountedAt;
                        return std::find(at.begin(), at.end(), place) != at.end();
                    }))
                    addMount(nodes[*node], place);
            }
            if (node)
                share(*node, row);
        }
    }
}

// A Unix without a boot volume of its own starts from what its root lies on; ZFS names the file system.
void markRootBoots(LayoutRows& rows) {
    auto& nodes = rows.layout().nodes;
    for (const std::size_t pool : rows.nodesOf("ZfsStoragePool"))
        for (const LayoutEdge& edge : nodes[pool].upper)
            if (const std::string boot = rows.rowOf(pool).text("Bootfs");
                !boot.empty() && nodes[edge.node].name == boot)
                nodes[edge.node].set(Boots);
    if (std::any_of(nodes.begin(), nodes.end(), [](const LayoutNode& node) { return node.has(Boots); }))
        return;
    for (LayoutNode& node : nodes)
        if (std::find(node.mountedAt.begin(), node.mountedAt.end(), "/") != node.mountedAt.end())
            node.set(Boots);
}

} // namespace

void markNodes(LayoutRows& rows) {
    markByFields(rows);
    markLinuxBoot(rows);
    markSolarisSwap(rows);
    addMounts(rows);
    addZones(rows);
    markShared(rows);
    markRootBoots(rows);
}

} // namespace Zorvane
