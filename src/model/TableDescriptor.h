// SPDX-License-Identifier: Apache-2.0
// A table as data: what generic code walks instead of knowing record classes.
#pragma once

#include "model/BaseTable.h"
#include "model/enumerations.h"

#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>

namespace Zorvane {

enum class FieldKind : std::uint8_t {
    Id,
    Text,
    Flag,
    UInt32,
    Ipv4, ///< a UInt32 in host order that is shown as a dotted quad
    Int32,
    Long,
    Int64,
    Enumeration,
    Reference,
    Binary,
    BaseFields, ///< not a field: the place of the base's fields among a derived table's own
};

/// One field: its name is also its column, its XML element and its dump label.
struct Field {
    const char* name = nullptr;
    FieldKind kind = FieldKind::Id;
    const EnumNames* names = nullptr; ///< of an Enumeration
    const char* target = nullptr;     ///< table of a Reference

    // Where the value lies; the kind says which. Enumerations are held as their number.
    union {
        std::string BaseTable::*text = nullptr;
        bool BaseTable::*flag;
        std::uint32_t BaseTable::*uint32;
        std::int32_t BaseTable::*int32;
        long BaseTable::*long64;
        __int64 BaseTable::*int64;
        Reference BaseTable::*reference;
        std::vector<unsigned char> BaseTable::*binary;
    };
};

/// A table. One object per record class, made at its first use and never freed.
struct TableDescriptor {
    const char* name;            ///< "Gateway": the XML element, and the class without its prefix
    const char* tableName;       ///< "ZorDba.ZOR_Gateway"
    const TableDescriptor* base; ///< null for a table of its own
    std::vector<Field> fields;   ///< in field order, the base's included
    BaseTable* (*create)();      ///< a new record, owned by the caller
    BaseTable* (*clone)(const BaseTable&);
    void (*assign)(BaseTable& target, const BaseTable& source);

    /// The field of a tag, or null; the first of the table if a name stood twice.
    [[nodiscard]] const Field* find(std::string_view tag) const;
    /// "ZorDba.ZOR_Gateway.Metric"
    [[nodiscard]] std::string column(const Field& field) const;

    TableDescriptor(const char* tag, const char* sqlName, const TableDescriptor* baseTable,
                    std::span<const Field> ownFields, BaseTable* (*creator)(),
                    BaseTable* (*copier)(const BaseTable&), void (*assigner)(BaseTable&, const BaseTable&));

  private:
    std::unordered_map<std::string_view, const Field*> m_index;
};

/// Every table of the database, in the order of declaration.
std::span<const TableDescriptor* const> allTables();
/// The table of a name without prefix, or null.
const TableDescriptor* findTable(std::string_view name);

} // namespace Zorvane
