// SPDX-License-Identifier: Apache-2.0
// A row of any table, read by the names of its fields.
#pragma once

#include "model/TableDescriptor.h"

#include <optional>
#include <string>

namespace Zorvane {

/// Borrows the row. A field that the table does not have reads as one that is not told.
class RowView {
  public:
    RowView(const TableDescriptor& table, const BaseTable& row) : m_table(&table), m_row(&row) {}

    [[nodiscard]] const TableDescriptor& table() const { return *m_table; }
    [[nodiscard]] ID id() const { return m_row->getId(); }
    /// A text, or the name of an enumeration's value; empty for one that is unset.
    [[nodiscard]] std::string text(const char* field) const;
    /// A whole number that is not negative.
    [[nodiscard]] std::optional<std::int64_t> number(const char* field) const;
    [[nodiscard]] bool flag(const char* field) const;
    /// The identifier of the other table's row; 0 if there is none.
    [[nodiscard]] ID reference(std::string_view target) const;

  private:
    const TableDescriptor* m_table;
    const BaseTable* m_row;
};

/// The table's reference to the other, or null.
const Field* findReference(const TableDescriptor& table, std::string_view target);

} // namespace Zorvane
