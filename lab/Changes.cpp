// SPDX-License-Identifier: Apache-2.0
#include "lab/Changes.h"

#include "lab/RequestError.h"
#include "lab/Store.h"
#include "lab/rows.h"

namespace Zorvane {

namespace {

bool isNew(const BaseTable& row) {
    return !row.isFromDb();
}

bool isOld(const BaseTable& row) {
    return row.isFromDb();
}

} // namespace

void Changes::readInserts(Document document) {
    readDocument(document, m_inserted, isNew);
    forEachRow(m_inserted,
               [this](const TableDescriptor& table, BaseTable& row) { m_insertion.add(table, row); });
    m_insertion.connectAll();
}

void Changes::readUpdates(Document document) {
    readDocument(document, m_updated, isOld);
    forEachRow(m_updated,
               [this](const TableDescriptor& table, BaseTable& row) { m_insertion.connect(table, row); });
}

void Changes::readDeletes(Document document) {
    readDocument(document, m_deleted, isOld);
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

std::vector<unsigned char> Changes::reply() {
    forEachRow(m_inserted, markFromDb);
    return writeDocument(m_inserted);
}

} // namespace Zorvane
