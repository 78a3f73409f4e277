// SPDX-License-Identifier: Apache-2.0
#include "info/layout/RowView.h"

namespace Zorvane {

std::string RowView::text(const char* name) const {
    const Field* field = m_table->find(name);
    if (field && field->kind == FieldKind::Text)
        return m_row->*field->text;
    if (field && field->kind == FieldKind::Enumeration && m_row->*field->int32 != 0)
        return field->names->name(m_row->*field->int32);
    return {};
}

std::optional<std::int64_t> RowView::number(const char* name) const {
    const Field* field = m_table->find(name);
    if (!field)
        return std::nullopt;
    std::int64_t value = -1;
    if (field->kind == FieldKind::Int64)
        value = m_row->*field->int64;
    else if (field->kind == FieldKind::Int32)
        value = m_row->*field->int32;
    else if (field->kind == FieldKind::UInt32)
        value = m_row->*field->uint32;
    return value < 0 ? std::nullopt : std::optional(value);
}

bool RowView::flag(const char* name) const {
    const Field* field = m_table->find(name);
    return field && field->kind == FieldKind::Flag && m_row->*field->flag;
}

ID RowView::reference(std::string_view target) const {
    const Field* field = findReference(*m_table, target);
    return field ? (m_row->*field->reference).id : 0;
}

const Field* findReference(const TableDescriptor& table, std::string_view target) {
    for (const Field& field : table.fields)
        if (field.kind == FieldKind::Reference && target == field.target)
            return &field;
    return nullptr;
}

} // namespace Zorvane
