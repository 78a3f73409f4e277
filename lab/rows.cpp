// SPDX-License-Identifier: Apache-2.0
#include "lab/rows.h"

#include "lab/RequestError.h"
#include "lab/Store.h"
#include "lab/schema.h"
#include "model/RecordCodec.h"
#include "model/XmlParser.h"

#include <limits>
#include <memory>
#include <new>
#include <unordered_map>

namespace Zorvane {

namespace {

struct TableSql {
    std::string select;
    std::string insert;
    std::string update;
    std::string remove;

    explicit TableSql(const TableDescriptor& table) {
        // Parameter n is field n in each of them.
        std::string names;
        std::string parameters;
        std::string changes;
        std::string key;
        int number = 0;
        for (const Field& field : table.fields) {
            const std::string name = quotedName(field.name);
            const std::string parameter = '?' + std::to_string(++number);
            appendItem(names, name);
            appendItem(parameters, parameter);
            const std::string pair = name + '=' + parameter;
            if (field.kind == FieldKind::Id)
                key = " WHERE " + pair;
            else
                appendItem(changes, pair);
        }
        select = "SELECT " + names + " FROM " + table.tableName;
        insert = std::string("INSERT INTO ") + table.tableName + '(' + names + ") VALUES(" + parameters + ')';
        update = std::string("UPDATE ") + table.tableName + " SET " + changes + key;
        remove = std::string("DELETE FROM ") + table.tableName + R"( WHERE "Id"=?1)";
    }
};

const TableSql& sqlOf(const TableDescriptor& table) {
    using Texts = std::unordered_map<const TableDescriptor*, TableSql>;
    static const Texts& texts = *new Texts([] {
        Texts made;
        for (const TableDescriptor* each : allTables())
            made.emplace(each, TableSql(*each));
        return made;
    }());
    return texts.at(&table);
}

void bindField(Statement& statement, int parameter, const Field& field, const BaseTable& row) {
    switch (field.kind) {
    case FieldKind::Id:
        statement.bind(parameter, std::int64_t{row.getId()});
        break;
    case FieldKind::Reference:
        statement.bind(parameter, std::int64_t{(row.*field.reference).id});
        break;
    case FieldKind::Text:
        statement.bind(parameter, std::string_view(row.*field.text));
        break;
    case FieldKind::Flag:
        statement.bind(parameter, std::int64_t{row.*field.flag});
        break;
    case FieldKind::UInt32:
    case FieldKind::Ipv4:
        statement.bind(parameter, std::int64_t{row.*field.uint32});
        break;
    case FieldKind::Int32:
    case FieldKind::Enumeration:
        statement.bind(parameter, std::int64_t{row.*field.int32});
        break;
    case FieldKind::Long:
        statement.bind(parameter, std::int64_t{row.*field.long64});
        break;
    case FieldKind::Int64:
        statement.bind(parameter, static_cast<std::int64_t>(row.*field.int64));
        break;
    case FieldKind::Binary:
        statement.bind(parameter, row.*field.binary);
        break;
    case FieldKind::BaseFields:
        break;
    }
}

void runWithFields(Statement& statement, const TableDescriptor& table, const BaseTable& row) {
    int parameter = 0;
    for (const Field& field : table.fields)
        bindField(statement, ++parameter, field, row);
    statement.step();
}

} // namespace

const std::string& selectSql(const TableDescriptor& table) {
    return sqlOf(table).select;
}

void readField(const Field& field, BaseTable& row, const Statement& statement, int column) {
    switch (field.kind) {
    case FieldKind::Id:
        row.setId(static_cast<ID>(statement.integer(column)));
        break;
    case FieldKind::Reference:
        (row.*field.reference).id = static_cast<ID>(statement.integer(column));
        break;
    case FieldKind::Text:
        (row.*field.text) = statement.text(column);
        break;
    case FieldKind::Flag:
        row.*field.flag = statement.integer(column) != 0;
        break;
    case FieldKind::UInt32:
    case FieldKind::Ipv4:
        row.*field.uint32 = static_cast<std::uint32_t>(statement.integer(column));
        break;
    case FieldKind::Int32:
    case FieldKind::Enumeration:
        row.*field.int32 = static_cast<std::int32_t>(statement.integer(column));
        break;
    case FieldKind::Long:
        row.*field.long64 = static_cast<long>(statement.integer(column));
        break;
    case FieldKind::Int64:
        row.*field.int64 = statement.integer(column);
        break;
    case FieldKind::Binary: {
        const std::string_view bytes = statement.bytes(column);
        (row.*field.binary).assign(bytes.begin(), bytes.end());
        break;
    }
    case FieldKind::BaseFields:
        break;
    }
}

void markFromDb(const TableDescriptor& table, BaseTable& row) {
    RecordCodec::setFromDb(table, row, true);
    row.clearChanged();
}

void readRow(const TableDescriptor& table, BaseTable& row, const Statement& statement) {
    int column = 0;
    for (const Field& field : table.fields)
        readField(field, row, statement, column++);
    markFromDb(table, row);
}

std::size_t sizeOf(const TableDescriptor& table, const BaseTable& row) {
    constexpr std::size_t element = 32;
    std::size_t size = element * table.fields.size();
    for (const Field& field : table.fields)
        size += field.kind == FieldKind::Text     ? (row.*field.text).size()
                : field.kind == FieldKind::Binary ? (row.*field.binary).size()
                                                  : 0;
    return size;
}

void insertRow(Database& database, const TableDescriptor& table, const BaseTable& row) {
    runWithFields(*database.kept(sqlOf(table).insert), table, row);
}

bool updateRow(Database& database, const TableDescriptor& table, const BaseTable& row) {
    runWithFields(*database.kept(sqlOf(table).update), table, row);
    return database.changes() > 0;
}

bool deleteRow(Database& database, const TableDescriptor& table, ID id) {
    database.kept(sqlOf(table).remove)->with(std::int64_t{id}).step();
    return database.changes() > 0;
}

void forEachRow(CZor& rows, const RowVisitor& visit) {
    for (const VectorDescriptor& vector : allVectors())
        for (BaseTable* row : vector.rows(rows).records())
            if (row)
                visit(vector.table(), *row);
}

void readDocument(std::span<const unsigned char> document, CZor& rows, RowFilter accepts,
                  RowAllowance& allowance) {
    if (document.size() > std::numeric_limits<int>::max())
        throw RequestError(STORE_BAD_DOCUMENT, "the document is too long");
    XmlParser parser(document.data(), static_cast<int>(document.size()));
    if (parser.lackedMemory())
        throw std::bad_alloc();
    if (parser.initChildren() != 0 || parser.getRootName() != ZOR_XML_ROOT)
        throw RequestError(STORE_BAD_DOCUMENT,
                           "the request's " + std::to_string(document.size()) + " bytes are no document");
    for (const std::string* tag = parser.firstObjectTag(); tag; tag = parser.nextObjectTag()) {
        const VectorDescriptor* vector = findVector(*tag);
        if (!vector)
            continue;
        const TableDescriptor& table = vector->table();
        std::unique_ptr<BaseTable> row(table.create());
        RecordCodec::read(table, *row, parser);
        if (!accepts(*row))
            continue;
        allowance.take(sizeOf(table, *row));
        vector->rows(rows).records().push_back(row.get());
        static_cast<void>(row.release());
    }
}

std::vector<unsigned char> writeDocument(CZor& rows) {
    XmlParser parser;
    forEachRow(rows, [&](const TableDescriptor& table, const BaseTable& row) {
        if (RecordCodec::write(table, row, parser) != 0)
            throw std::runtime_error("a row can't be written");
    });
    if (parser.write() != 0)
        throw std::runtime_error("the document of the rows can't be written");
    const unsigned char* const xml = parser.getBuffer();
    return {xml, xml + parser.getBufferLen()};
}

} // namespace Zorvane
