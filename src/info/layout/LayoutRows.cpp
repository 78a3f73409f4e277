// SPDX-License-Identifier: Apache-2.0
#include "info/layout/LayoutRows.h"

#include <utility>

namespace Zorvane {

std::vector<RowView> LayoutRows::rows(std::string_view table) const {
    std::vector<RowView> found;
    if (const VectorDescriptor* vector = findVector(table))
        for (const BaseTable* record : vector->rows(m_zor).records())
            if (record)
                found.emplace_back(vector->table(), *record);
    return found;
}

std::optional<RowView> LayoutRows::row(std::string_view table, ID id) const {
    const VectorDescriptor* vector = id ? findVector(table) : nullptr;
    if (!vector)
        return std::nullopt;
    auto [index, isNew] = m_records.try_emplace(vector->name);
    if (isNew)
        for (const BaseTable* record : vector->rows(m_zor).records())
            if (record)
                index->second.try_emplace(record->getId(), record);
    const auto found = index->second.find(id);
    return found == index->second.end() ? std::nullopt
                                        : std::optional(RowView(vector->table(), *found->second));
}

void LayoutRows::addNode(LayoutNode node, const RowView& row) {
    m_nodes[row.table().name].try_emplace(row.id(), m_layout.nodes.size());
    m_layout.nodes.push_back(std::move(node));
    m_rowOf.push_back(row);
}

std::optional<std::size_t> LayoutRows::node(std::string_view table, ID id) const {
    if (id == 0)
        return std::nullopt;
    if (const auto index = m_nodes.find(table); index != m_nodes.end())
        if (const auto found = index->second.find(id); found != index->second.end())
            return found->second;
    ++m_layout.dangling;
    return std::nullopt;
}

std::vector<std::size_t> LayoutRows::nodesOf(std::string_view table) const {
    std::vector<std::size_t> found;
    for (std::size_t node = 0; node < m_rowOf.size(); ++node)
        if (table == m_rowOf[node].table().name)
            found.push_back(node);
    return found;
}

} // namespace Zorvane
