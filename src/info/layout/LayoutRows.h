// SPDX-License-Identifier: Apache-2.0
// A layout in the making: its nodes beside the rows that they come from.
#pragma once

#include "info/layout/Layout.h"
#include "info/layout/RowView.h"
#include "model/CZor.h"

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Zorvane {

/// The rows of a container by table and identifier, and the node of each that has one.
class LayoutRows {
  public:
    LayoutRows(CZor& zor, Layout& layout) : m_zor(zor), m_layout(layout) {}

    /// The rows of a table, null elements left out; none for a table that the container does not hold.
    [[nodiscard]] std::vector<RowView> rows(std::string_view table) const;
    [[nodiscard]] std::optional<RowView> row(std::string_view table, ID id) const;

    void addNode(LayoutNode node, const RowView& row);
    /// The node of a row; a reference to a row that is not there is counted.
    [[nodiscard]] std::optional<std::size_t> node(std::string_view table, ID id) const;
    /// The row that a node was made of.
    [[nodiscard]] const RowView& rowOf(std::size_t node) const { return m_rowOf[node]; }
    [[nodiscard]] Layout& layout() const { return m_layout; }
    [[nodiscard]] CZor& zor() const { return m_zor; }
    /// The nodes made of a table's rows.
    [[nodiscard]] std::vector<std::size_t> nodesOf(std::string_view table) const;

  private:
    using Index = std::unordered_map<ID, std::size_t>;

    CZor& m_zor;
    Layout& m_layout;
    std::vector<RowView> m_rowOf;
    std::unordered_map<std::string_view, Index> m_nodes;
    mutable std::unordered_map<std::string_view, std::unordered_map<ID, const BaseTable*>> m_records;
};

/// What boots and swaps, what the operating system needs, what is mounted where, and what a cluster shares.
void markNodes(LayoutRows& rows);

} // namespace Zorvane
