// SPDX-License-Identifier: Apache-2.0
#include "info/layout/LayoutRows.h"
#include "info/layout/families.h"
#include "logging/Trace.h"
#include "model/core_records.h"
#include "platform/ipConvert.h"
#include "resources/clientConfiguration.h"
#include "storage/lookup.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace Zorvane {

namespace {

using Node = std::size_t;

std::optional<std::int64_t> positive(std::optional<std::int64_t> number) {
    return number.value_or(0) > 0 ? number : std::nullopt;
}

std::string nameOfRow(const RowView& row, LayoutKind kind) {
    // A disk's label is its partition table's kind, a file system's label is its name.
    if (kind == LayoutKind::FileSystem && row.table().find("Label"))
        return row.text("Label");
    for (const char* field : {"FriendlyName", "Name", "SubvolumePath"})
        if (std::string name = row.text(field); !name.empty())
            return name;
    return {};
}

std::optional<std::int64_t> sizeOfRow(const RowView& row) {
    const std::int64_t units = row.number("TotalUnits").value_or(0);
    std::int64_t bytes = 0;
    if (units > 0 && !__builtin_mul_overflow(units, row.number("UnitSize").value_or(0), &bytes) && bytes > 0)
        return bytes;
    if (const auto start = row.number("StartP"), end = row.number("EndP"); start && end && *end > *start)
        return *end - *start + (*end - *start < INT64_MAX ? 1 : 0);
    const auto length = positive(row.number("Length"));
    // An AIX file system counts its size in blocks; it has units as well.
    return length || row.table().find("TotalUnits") ? length : positive(row.number("Size"));
}

std::string groupOfRow(const LayoutRows& rows, const RowView& row) {
    for (const char* table : layoutGroups())
        if (const auto group = rows.row(table, row.reference(table)))
            return group->text("Name");
    return {};
}

LayoutNode makeNode(const LayoutRows& rows, const LayoutTable& table, const RowView& row) {
    LayoutNode node;
    node.key = std::string(table.table) + ':' + std::to_string(row.id());
    node.kind = table.kind;
    node.sort = table.sort;
    node.name = nameOfRow(row, table.kind);
    if (table.detail)
        node.detail = row.text(table.detail);
    node.group = groupOfRow(rows, row);
    node.size = sizeOfRow(row);
    node.offset = row.number(row.table().find("StartP") ? "StartP" : "Offset");
    return node;
}

void addNodes(LayoutRows& rows) {
    Layout& layout = rows.layout();
    for (const LayoutTable& table : layoutTables())
        for (const RowView& row : rows.rows(table.table)) {
            if (layout.nodes.size() < MAX_LAYOUT_NODES)
                rows.addNode(makeNode(rows, table, row), row);
            else
                ++layout.leftOut;
        }
}

// Collects the edges of one relation; the same pair twice is one edge with both extents.
class Edges {
  public:
    void add(std::optional<Node> upper, std::optional<Node> lower, std::optional<std::int64_t> extent) {
        if (!upper || !lower || upper == lower)
            return;
        std::int64_t& sum = m_extents[{*upper, *lower}];
        if (__builtin_add_overflow(sum, extent.value_or(0), &sum))
            sum = INT64_MAX;
    }
    void moveTo(Layout& layout) const {
        for (const auto& [pair, extent] : m_extents)
            layout.nodes[pair.first].lower.push_back(
                {pair.second, extent > 0 ? std::optional(extent) : std::nullopt});
    }

  private:
    std::map<std::pair<Node, Node>, std::int64_t> m_extents;
};

void addEdges(LayoutRows& rows, const LayoutRelation& relation) {
    const auto nodeOf = [&](const RowView& row, const char* table) {
        // The row is either the node itself or refers to it.
        return rows.node(table,
                         row.table().name == std::string_view(table) ? row.id() : row.reference(table));
    };
    const TableDescriptor* upper = findTable(relation.upper);
    const char* holder = relation.pairs                          ? relation.pairs
                         : findReference(*upper, relation.lower) ? relation.upper
                                                                 : relation.lower;
    Edges edges;
    for (const RowView& row : rows.rows(holder))
        if (!relation.onlyIf || row.flag(relation.onlyIf))
            edges.add(nodeOf(row, relation.upper), nodeOf(row, relation.lower),
                      relation.pairs ? positive(row.number("Length")) : std::nullopt);
    edges.moveTo(rows.layout());
}

// The slice label of a disk of a PC lies in its Solaris partition. No row tells so: it is the same place in
// the machine.
void joinSolarisLabels(LayoutRows& rows) {
    constexpr std::int64_t SOLARIS = 130, SOLARIS2 = 191;
    Layout& layout = rows.layout();
    std::map<std::string, Node> places;
    for (const Node disk : rows.nodesOf("SolarisNativeDisk"))
        if (std::string place = rows.rowOf(disk).text("Location"); !place.empty())
            places.emplace(place, disk);
    for (const Node partition : rows.nodesOf("SolarisNativePartition")) {
        const std::int64_t type = rows.rowOf(partition).number("PartitionIdentifier").value_or(0);
        const auto& lower = layout.nodes[partition].lower;
        if ((type == SOLARIS || type == SOLARIS2) && !lower.empty())
            if (const std::string place = rows.rowOf(lower.front().node).text("Location"); !place.empty())
                places[place] = partition;
    }
    for (const Node disk : rows.nodesOf("SolarisDisk"))
        if (const auto found = places.find(rows.rowOf(disk).text("Location")); found != places.end())
            layout.nodes[disk].lower.push_back({found->second, std::nullopt});
}

// On a partitioned HP-UX disk the pieces name the disk but lie in its HP-UX partition.
void movePiecesIntoHpuxPartitions(LayoutRows& rows) {
    Layout& layout = rows.layout();
    std::map<Node, std::vector<Node>> partitionsOf;
    for (const Node partition : rows.nodesOf("HpuxPhysicalVolumePartition"))
        if (layout.nodes[partition].detail == "HPUX")
            for (const LayoutEdge& edge : layout.nodes[partition].lower)
                partitionsOf[edge.node].push_back(partition);
    for (const Node piece : rows.nodesOf("HpuxSubDisk"))
        for (LayoutEdge& edge : layout.nodes[piece].lower)
            if (const auto found = partitionsOf.find(edge.node);
                found != partitionsOf.end() && found->second.size() == 1)
                edge.node = found->second.front();
}

// A logical volume whose extents were not recorded lies somewhere on its group.
void placeVolumesOnTheirGroup(LayoutRows& rows) {
    Layout& layout = rows.layout();
    std::map<ID, std::vector<LayoutEdge>> members;
    for (const Node member : rows.nodesOf("LinuxPhysicalVolume"))
        members[rows.rowOf(member).reference("LinuxVolumeGroup")].push_back({member, std::nullopt});
    for (const Node volume : rows.nodesOf("LinuxLogicalVolume"))
        if (const ID group = rows.rowOf(volume).reference("LinuxVolumeGroup");
            layout.nodes[volume].lower.empty() && group != 0)
            layout.nodes[volume].lower = members[group];
}

// A virtual disk refers to its tier, its pool and its physical disks: what another one stands between is no
// edge of its own.
void dropRoundabouts(Layout& layout) {
    std::vector<std::vector<LayoutEdge>> kept(layout.nodes.size());
    for (Node node = 0; node < layout.nodes.size(); ++node) {
        const auto& lower = layout.nodes[node].lower;
        std::set<Node> below;
        if (lower.size() > 1)
            for (const LayoutEdge& edge : lower)
                for (const LayoutEdge& second : layout.nodes[edge.node].lower)
                    below.insert(second.node);
        std::copy_if(lower.begin(), lower.end(), std::back_inserter(kept[node]),
                     [&](const LayoutEdge& edge) { return !below.contains(edge.node); });
    }
    for (Node node = 0; node < layout.nodes.size(); ++node)
        layout.nodes[node].lower = std::move(kept[node]);
}

// A table of pairs puts disks into sets; the group that they refer to is the platform's own.
void nameDiskSets(LayoutRows& rows) {
    for (const RowView& pair : rows.rows("SvmDisk"))
        if (const auto set = rows.row("SvmDiskSet", pair.reference("SvmDiskSet"));
            set && !set->text("Name").empty())
            if (const auto disk = rows.node("SolarisDisk", pair.reference("SolarisDisk")))
                rows.layout().nodes[*disk].group = set->text("Name");
}

void addUppers(Layout& layout) {
    for (Node node = 0; node < layout.nodes.size(); ++node)
        for (const LayoutEdge& edge : layout.nodes[node].lower)
            layout.nodes[edge.node].upper.push_back({node, edge.extent});
    for (LayoutNode& node : layout.nodes)
        std::stable_sort(node.upper.begin(), node.upper.end(), [&](const LayoutEdge& a, const LayoutEdge& b) {
            return layout.nodes[a.node].offset.value_or(-1) < layout.nodes[b.node].offset.value_or(-1);
        });
}

void addInterfaces(const CZor& zor, Layout& layout) {
    for (const CNetworkInterface* row : zor.m_vNetworkInterface) {
        if (!row || layout.interfaces.size() == MAX_LAYOUT_INTERFACES)
            continue;
        LayoutInterface made{row->getName(), row->getMacAddress(), {}};
        for (const CNetworkIdentity* identity : FindReferring<CNetworkIdentity>(zor, *row))
            if (const std::uint32_t address = identity->getIPAddress(); address != 0)
                made.addresses.push_back(ConvertIp2Dec(address));
        layout.interfaces.push_back(std::move(made));
    }
}

// "Windows 10.0", "RHEL 8.6".
std::string describeSystem(const CSystem& system) {
    static constexpr const char* names[] = {"", "Windows", "Solaris", "HP-UX", "AIX", "Linux"};
    const auto os = static_cast<std::size_t>(system.getOs());
    const std::string version =
        system.getOs() == OsType::NT ? windowsVersion(system.getOsLevel()) : system.getOsLevel();
    const std::string qualifier = system.getOs() == OsType::LINUX ? system.getOsQualifier() : "";
    return (!qualifier.empty() ? qualifier : os < std::size(names) ? names[os] : "") + ' ' + version;
}

} // namespace

Layout buildLayout(CZor& zor) {
    ClassTrace trace(g_appLog, "buildLayout:buildLayout()");
    Layout layout;
    LayoutRows rows(zor, layout);
    if (const CConfig* config = zor.m_vConfig.first()) {
        layout.client = config->getClientName();
        layout.configuration = config->getName();
    }
    if (const CSystem* system = zor.m_vSystem.first())
        layout.system = describeSystem(*system);
    addNodes(rows);
    for (const LayoutRelation& relation : layoutRelations())
        addEdges(rows, relation);
    joinSolarisLabels(rows);
    movePiecesIntoHpuxPartitions(rows);
    placeVolumesOnTheirGroup(rows);
    dropRoundabouts(layout);
    addUppers(layout);
    nameDiskSets(rows);
    markNodes(rows);
    for (const Node disk : bootDisks(layout))
        layout.nodes[disk].set(LayoutFlag::Boots);
    addInterfaces(zor, layout);
    trace.write(LEVEL_TRACE, "nodes=", layout.nodes.size(), ", dangling=", layout.dangling);
    return layout;
}

} // namespace Zorvane
