// SPDX-License-Identifier: Apache-2.0
#include "lab/schema.h"

#include <set>
#include <unordered_map>

namespace Zorvane {

namespace {

const char* columnType(FieldKind kind) {
    switch (kind) {
    case FieldKind::Id:
        // Numbers are never given out a second time: a client may still hold that of a row that is gone.
        return "INTEGER PRIMARY KEY AUTOINCREMENT";
    case FieldKind::Text:
        return "TEXT NOT NULL DEFAULT ''";
    case FieldKind::Binary:
        return "BLOB NOT NULL DEFAULT x''";
    default:
        return "INTEGER NOT NULL DEFAULT 0";
    }
}

std::string columnDefinition(const Field& field) {
    std::string definition = quotedName(field.name) + ' ' + columnType(field.kind);
    // Told, not checked: 0 is no row, and a document's rows come in any order.
    if (field.kind == FieldKind::Reference)
        definition +=
            std::string(" REFERENCES ") + quotedName(std::string("ZOR_") + field.target) + " (\"Id\")";
    return definition;
}

std::string tableDefinition(const TableDescriptor& table) {
    std::string columns;
    for (const Field& field : table.fields)
        appendItem(columns, "\n    " + columnDefinition(field));
    return std::string("CREATE TABLE IF NOT EXISTS ") + table.tableName + " (" + columns + ");\n";
}

std::string indexDefinition(const TableDescriptor& table, const Field& field) {
    return std::string("CREATE INDEX IF NOT EXISTS ") + DATABASE_SCHEMA + '.' +
           quotedName(std::string(table.name) + '_' + field.name) + " ON " +
           quotedName(std::string("ZOR_") + table.name) + " (" + quotedName(field.name) + ");\n";
}

std::string tableDefinitions() {
    std::string sql;
    for (const TableDescriptor* table : allTables())
        sql += tableDefinition(*table);
    return sql;
}

std::string indexDefinitions() {
    std::string sql;
    for (const TableDescriptor* table : allTables())
        for (const Field& field : table->fields)
            if (field.kind == FieldKind::Reference)
                sql += indexDefinition(*table, field);
    return sql;
}

// A number for the schema's text, the same in every process (FNV-1a); never 0, which is an empty file's.
std::int32_t fingerprint(std::string_view text) {
    std::uint32_t hash = 2166136261;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
    return static_cast<std::int32_t>(hash | 1);
}

// A file of an earlier release lacks the fields that were added since.
void addMissingColumns(Database& database) {
    for (const TableDescriptor* table : allTables()) {
        std::set<std::string, std::less<>> present;
        Statement columns = database.prepare("SELECT name FROM pragma_table_info(?1, ?2)");
        columns.with(std::string_view(table->tableName).substr(std::string_view("ZorDba.").size()),
                     std::string_view(DATABASE_SCHEMA));
        while (columns.step())
            present.emplace(columns.text(0));
        for (const Field& field : table->fields)
            if (!present.contains(field.name))
                database.execute(std::string("ALTER TABLE ") + table->tableName + " ADD COLUMN " +
                                 columnDefinition(field));
    }
}

} // namespace

void createSchema(Database& database) {
    const std::string tables = std::string("CREATE TABLE IF NOT EXISTS ") + SUBMITTED_JOBS +
                               " (TaskId INTEGER PRIMARY KEY);\n" + tableDefinitions();
    const std::string indexes = indexDefinitions();
    const std::int32_t version = fingerprint(tables + indexes);
    const std::string pragma = std::string("PRAGMA ") + DATABASE_SCHEMA + ".user_version";
    const auto isCurrent = [&] {
        Statement current = database.prepare(pragma);
        return current.step() && current.integer(0) == version;
    };
    if (isCurrent())
        return;
    Transaction transaction(database, Transaction::Kind::Write);
    if (isCurrent())
        return; // made by another process while this one waited
    database.execute(tables);
    addMissingColumns(database);
    database.execute(indexes);
    database.execute(pragma + '=' + std::to_string(version));
    transaction.commit();
}

std::string schemaText() {
    return std::string("-- The recovery database. To make one: sqlite3 :memory: \"ATTACH 'recovery.db' AS ") +
           DATABASE_SCHEMA +
           "\" \".read FILE\"\n-- References are told and not checked: 0 stands for no row.\n\n" +
           tableDefinitions() + '\n' + indexDefinitions();
}

std::span<const ReferenceColumn> referencesTo(const TableDescriptor& table) {
    using Columns = std::unordered_map<std::string_view, std::vector<ReferenceColumn>>;
    static const Columns& columns = *new Columns([] {
        Columns made;
        for (const TableDescriptor* referring : allTables())
            for (const Field& field : referring->fields)
                if (field.kind == FieldKind::Reference)
                    made[field.target].push_back({referring, &field});
        return made;
    }());
    const auto found = columns.find(table.name);
    return found == columns.end() ? std::span<const ReferenceColumn>() : found->second;
}

std::string quotedName(std::string_view identifier) {
    return '"' + std::string(identifier) + '"';
}

void appendItem(std::string& list, std::string_view item) {
    if (!list.empty())
        list += ',';
    list += item;
}

} // namespace Zorvane
