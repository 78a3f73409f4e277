// SPDX-License-Identifier: Apache-2.0
// How rows that are inserted together get numbers of the database, and references among them follow.
#pragma once

#include "lab/Database.h"
#include "model/TableDescriptor.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace Zorvane {

class Insertion {
  public:
    /// Which references are meant to be among the rows.
    enum class Mode {
        MadeUpOnly, ///< those that are not from the database; one that leads nowhere is refused
        Whole,      ///< all, whatever their flags; one that leads elsewhere becomes 0
    };

    explicit Insertion(Mode mode) : m_mode(mode) {}

    /// A row to insert; borrowed for the life of this object.
    void add(const TableDescriptor& table, BaseTable& row);
    /// Finds what the references of a row mean, an inserted or an updated one, once all rows were added.
    /// Throws RequestError for a made-up number that no row has, or two have.
    void connect(const TableDescriptor& table, BaseTable& row);
    /// connect() for each added row.
    void connectAll();

    /// Numbers the rows and inserts them, in the write transaction that is under way. May be run again when
    /// that one was undone.
    void run(Database& database);

    /// References that became 0.
    [[nodiscard]] std::size_t clearedReferences() const { return m_cleared; }

  private:
    struct Row {
        const TableDescriptor* table;
        BaseTable* record;
    };
    struct Link {
        Reference* reference;
        std::size_t target; ///< index in m_rows
    };

    Mode m_mode;
    std::vector<Row> m_rows;
    /// By table and made-up number.
    std::unordered_map<const TableDescriptor*, std::unordered_map<ID, std::size_t>> m_byId;
    std::vector<Link> m_links;
    std::size_t m_cleared = 0;
};

} // namespace Zorvane
