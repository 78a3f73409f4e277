// SPDX-License-Identifier: Apache-2.0
// Records as rows of the database, by their descriptors, and documents as containers of rows.
#pragma once

#include "lab/Database.h"
#include "lab/RowAllowance.h"
#include "model/CZor.h"
#include "model/TableDescriptor.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace Zorvane {

/// "SELECT" of all columns in field order; a condition may follow behind it.
const std::string& selectSql(const TableDescriptor& table);

/// One field from a column.
void readField(const Field& field, BaseTable& row, const Statement& statement, int column);
/// All fields from a row of selectSql; the record counts as unchanged and from the database.
void readRow(const TableDescriptor& table, BaseTable& row, const Statement& statement);
/// Marks a record as the database's: it and all its references.
void markFromDb(const TableDescriptor& table, BaseTable& row);

/// Bytes that the record takes in a document, roughly; at least what its elements do.
std::size_t sizeOf(const TableDescriptor& table, const BaseTable& row);

/// Under the record's own Id.
void insertRow(Database& database, const TableDescriptor& table, const BaseTable& row);
/// False if there is no row of that Id.
bool updateRow(Database& database, const TableDescriptor& table, const BaseTable& row);
bool deleteRow(Database& database, const TableDescriptor& table, ID id);

/// The records of a table: `tail` is what follows the select, with ?1, ?2 ... for the values.
template <class Record, class... Values>
std::vector<Record> selectRecords(Database& database, const std::string& tail, const Values&... values) {
    const KeptStatement statement = database.kept(selectSql(Record::table()) + tail);
    statement->with(values...);
    std::vector<Record> found;
    while (statement->step())
        readRow(Record::table(), found.emplace_back(), *statement);
    return found;
}

using RowVisitor = std::function<void(const TableDescriptor& table, BaseTable& row)>;
/// Every row of the container, in the order of its vectors.
void forEachRow(CZor& rows, const RowVisitor& visit);

using RowFilter = bool (*)(const BaseTable& row);
/// Adds the rows of a document that the filter accepts. Unlike CZor::readXml this keeps every one of them:
/// new rows may all have the number 0. Throws RequestError for what is no document or more than is allowed.
void readDocument(std::span<const unsigned char> document, CZor& rows, RowFilter accepts,
                  RowAllowance& allowance);
/// The document of the container, whole. Unlike CZor::writeXml this throws when there is no memory for it, or
/// when a text has no place in a document.
std::vector<unsigned char> writeDocument(CZor& rows);

} // namespace Zorvane
