// SPDX-License-Identifier: Apache-2.0
#include "model/TableDescriptor.h"

#include "model/records.h"

#include <array>

namespace Zorvane {

namespace {

// clang-format off: the order of these includes is their meaning
constexpr std::array tableGetters = std::to_array<const TableDescriptor& (*)()>({
#define TABLE(T) &C##T::table,
#include "model/records/rows.inc"
#include "model/records/all.def"
#include "model/records/end.inc"
});

// The number of fields of each table, the base's included. The macros are terms of a sum.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define TABLE(T) constexpr std::size_t fieldsOf##T = 0
#define END_TABLE(T) ;
#define KEY(F) +1
#define FIELD(type, F) +1
#define ENUM(E, F) +1
#define REF(F, T) +1
#define BINARY(F) +1
#define BASE_FIELDS(B) +fieldsOf##B
#include "model/records/rows.inc"
#include "model/records/all.def"
#include "model/records/end.inc"

constexpr std::size_t fieldCount = 0
#define TABLE(T) +fieldsOf##T
#include "model/records/rows.inc"
#include "model/records/all.def"
#include "model/records/end.inc"
    ;
// NOLINTEND(bugprone-macro-parentheses)
// clang-format on

static_assert(tableGetters.size() == 246);
static_assert(fieldCount == 2411);

} // namespace

TableDescriptor::TableDescriptor(const char* tag, const char* sqlName, const TableDescriptor* baseTable,
                                 std::span<const Field> ownFields, BaseTable* (*creator)(),
                                 BaseTable* (*copier)(const BaseTable&),
                                 void (*assigner)(BaseTable&, const BaseTable&))
    : name(tag), tableName(sqlName), base(baseTable), create(creator), clone(copier), assign(assigner) {
    for (const Field& row : ownFields) {
        if (row.kind == FieldKind::BaseFields)
            fields.insert(fields.end(), base->fields.begin(), base->fields.end());
        else
            fields.push_back(row);
    }
    for (const Field& field : fields)
        m_index.try_emplace(field.name, &field);
}

const Field* TableDescriptor::find(std::string_view tag) const {
    const auto found = m_index.find(tag);
    return found == m_index.end() ? nullptr : found->second;
}

std::string TableDescriptor::column(const Field& field) const {
    return std::string(tableName) + "." + field.name;
}

std::span<const TableDescriptor* const> allTables() {
    static const auto& tables = *new std::vector<const TableDescriptor*>([] {
        std::vector<const TableDescriptor*> made;
        made.reserve(tableGetters.size());
        for (const auto getter : tableGetters)
            made.push_back(&getter());
        return made;
    }());
    return tables;
}

const TableDescriptor* findTable(std::string_view name) {
    static const auto& index = *new std::unordered_map<std::string_view, const TableDescriptor*>([] {
        std::unordered_map<std::string_view, const TableDescriptor*> made;
        for (const TableDescriptor* table : allTables())
            made.emplace(table->name, table);
        return made;
    }());
    const auto found = index.find(name);
    return found == index.end() ? nullptr : found->second;
}

} // namespace Zorvane
