// SPDX-License-Identifier: Apache-2.0
#include "info/check/record.h"

#include "model/TableDescriptor.h"

namespace Zorvane {

namespace {

std::string valueOf(const Field& field, const BaseTable& row) {
    switch (field.kind) {
    case FieldKind::Text:
        return row.*field.text;
    case FieldKind::Flag:
        return row.*field.flag ? "yes" : "no";
    case FieldKind::UInt32:
        return std::to_string(row.*field.uint32);
    case FieldKind::Int32:
        return std::to_string(row.*field.int32);
    case FieldKind::Long:
        return std::to_string(row.*field.long64);
    case FieldKind::Int64:
        return std::to_string(row.*field.int64);
    case FieldKind::Enumeration:
        return field.names->name(row.*field.int32);
    default:
        return {};
    }
}

} // namespace

std::vector<std::pair<std::string, std::string>> recordedValues(const TableDescriptor& table,
                                                                const BaseTable& row) {
    std::vector<std::pair<std::string, std::string>> values;
    for (const Field& field : table.fields)
        if (std::string value = valueOf(field, row); !value.empty())
            values.emplace_back(field.name, std::move(value));
    return values;
}

} // namespace Zorvane
