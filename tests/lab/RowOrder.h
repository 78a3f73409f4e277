// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lab/rows.h"

#include <map>
#include <string>

namespace Zorvane {

/// The document with its rows numbered by their order, and every reference resolved: the database gives rows
/// its own numbers, but keeps their order.
inline std::string documentByOrder(CZor& rows) {
    std::map<std::string_view, std::map<ID, ID>> order;
    forEachRow(rows, [&](const TableDescriptor& table, const BaseTable& row) {
        auto& ids = order[table.name];
        ids.emplace(row.getId(), static_cast<ID>(ids.size() + 1));
    });
    forEachRow(rows, [&](const TableDescriptor& table, BaseTable& row) {
        row.setId(order[table.name].at(row.getId()));
        for (const Field& field : table.fields)
            if (field.kind == FieldKind::Reference && (row.*field.reference).id != 0)
                (row.*field.reference).id = order[field.target].at((row.*field.reference).id); // none dangles
        markFromDb(table, row);
    });
    const std::vector<unsigned char> document = writeDocument(rows);
    return {document.begin(), document.end()};
}

} // namespace Zorvane
