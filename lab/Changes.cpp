// SPDX-License-Identifier: Apache-2.0
#include "lab/Changes.h"

#include "lab/RequestError.h"
#include "lab/Store.h"
#include "lab/rows.h"

#include <string>
#include <string_view>

namespace Zorvane {

namespace {

bool isNew(const BaseTable& row) {
    return !row.isFromDb();
}

bool isOld(const BaseTable& row) {
    return row.isFromDb();
}

// The number of an Id or a reference stands behind it, in the order of rows and fields, and nothing else
// does: in a text the bracket is spelled out.
constexpr std::string_view BEFORE_NUMBER = "fromDb=\"1\">";

} // namespace

void Changes::readInserts(Document document) {
    readDocument(document, m_inserted, isNew, m_allowance);
    forEachRow(m_inserted,
               [this](const TableDescriptor& table, BaseTable& row) { m_insertion.add(table, row); });
    m_insertion.connectAll();
}

void Changes::readUpdates(Document document) {
    readDocument(document, m_updated, isOld, m_allowance);
    forEachRow(m_updated,
               [this](const TableDescriptor& table, BaseTable& row) { m_insertion.connect(table, row); });
}

void Changes::readDeletes(Document document) {
    readDocument(document, m_deleted, isOld, m_allowance);
}

void Changes::run(Database& database) {
    m_insertion.run(database);
    forEachRow(m_updated, [&](const TableDescriptor& table, const BaseTable& row) {
        if (!updateRow(database, table, row))
            throw RequestError(STORE_NO_SUCH_ROW, std::string(table.tableName) + " has no row " +
                                                      std::to_string(row.getId()) + " to update");
    });
    forEachRow(m_deleted, [&](const TableDescriptor& table, const BaseTable& row) {
        deleteRow(database, table, row.getId());
    });
}

void Changes::prepareReply() {
    forEachRow(m_inserted, markFromDb);
    m_prepared = writeDocument(m_inserted);
}

std::vector<unsigned char> Changes::reply() {
    std::vector<unsigned char> filled;
    filled.reserve(m_prepared.size() + m_prepared.size() / 8);
    std::string_view rest(reinterpret_cast<const char*>(m_prepared.data()), m_prepared.size());
    const auto append = [&](std::string_view text) { filled.insert(filled.end(), text.begin(), text.end()); };
    const auto fill = [&](ID number) {
        const std::size_t place = rest.find(BEFORE_NUMBER) + BEFORE_NUMBER.size();
        append(rest.substr(0, place));
        append(std::to_string(number));
        rest.remove_prefix(rest.find('<', place));
    };
    forEachRow(m_inserted, [&](const TableDescriptor& table, const BaseTable& row) {
        for (const Field& field : table.fields)
            if (field.kind == FieldKind::Id)
                fill(row.getId());
            else if (field.kind == FieldKind::Reference)
                fill((row.*field.reference).id);
    });
    append(rest);
    return filled;
}

} // namespace Zorvane
