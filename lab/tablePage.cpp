// SPDX-License-Identifier: Apache-2.0
#include "lab/tablePage.h"

#include "lab/schema.h"
#include "model/CZor.h"

#include <algorithm>
#include <cctype>

namespace Zorvane {

namespace {

constexpr std::string_view HEAD = R"md(# Tables

The tables of the recovery database: their rows are the elements of a configuration's document, and their fields the
elements in a row. Made by `zorlab schema --md`; `--xsd` and `--sql` print the same as schemas.

| kind | value |
| --- | --- |
| id | the row's own number, from 1 |
| row of T | the number of a row of T; 0 is no row |
| text | any characters |
| flag | 0 or 1 |
| int32, uint32, int64 | whole numbers |
| IPv4 | an address as a number in host order; dumps show it with dots |
| one of E | a name of the enumeration E or EMPTY; the database has its number, and 0 for EMPTY |
| bytes | base64 in documents |

A table "like B" has B's fields among its own. One that is "no rows of a document" lends its fields to others only.
)md";

// The part of a link behind "#", as renderers make it from a heading.
std::string anchor(std::string_view heading) {
    std::string text;
    std::ranges::transform(heading, std::back_inserter(text),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string link(std::string_view heading) {
    return '[' + std::string(heading) + "](#" + anchor(heading) + ')';
}

// Enumerations and tables may have the same name; a heading has it once.
std::string enumerationHeading(const EnumNames& enumeration) {
    return std::string("enum-") + enumeration.enumeration;
}

std::string kindText(const Field& field) {
    switch (field.kind) {
    case FieldKind::Id:
        return "id";
    case FieldKind::Text:
        return "text";
    case FieldKind::Flag:
        return "flag";
    case FieldKind::UInt32:
        return "uint32";
    case FieldKind::Ipv4:
        return "IPv4";
    case FieldKind::Int32:
        return "int32";
    case FieldKind::Long:
    case FieldKind::Int64:
        return "int64";
    case FieldKind::Enumeration:
        return std::string("one of [") + field.names->enumeration + "](#" +
               anchor(enumerationHeading(*field.names)) + ')';
    case FieldKind::Reference:
        return "row of " + link(field.target);
    case FieldKind::Binary:
        return "bytes";
    case FieldKind::BaseFields:
        break;
    }
    return {};
}

std::string tableSection(const TableDescriptor& table) {
    std::string text = std::string("\n### ") + table.name + "\n\n`" + table.tableName + '`';
    if (table.base)
        text += ", like " + link(table.base->name);
    if (!findVector(table.name))
        text += "; no rows of a document";
    text += "\n\n| field | kind |\n| --- | --- |\n";
    for (const Field& field : table.fields)
        text += std::string("| ") + field.name + " | " + kindText(field) + " |\n";
    std::string referring;
    for (const ReferenceColumn& column : referencesTo(table))
        referring += (referring.empty() ? "" : ", ") + link(column.table->name);
    return referring.empty() ? text : text + "\nReferred to by " + referring + ".\n";
}

} // namespace

std::string tablePage() {
    std::string text(HEAD);
    text += "\n## Tables by name\n";
    std::vector<const TableDescriptor*> tables(allTables().begin(), allTables().end());
    std::ranges::sort(tables, {}, [](const TableDescriptor* table) { return std::string_view(table->name); });
    for (const TableDescriptor* table : tables)
        text += tableSection(*table);
    text += "\n## Enumerations\n";
    for (const EnumNames* enumeration : allEnumerations()) {
        text += "\n### " + enumerationHeading(*enumeration) + "\n\n";
        int number = 0;
        for (const char* name : enumeration->names)
            text += std::to_string(++number) + ". " + name + "\n";
    }
    return text;
}

} // namespace Zorvane
