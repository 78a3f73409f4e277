// SPDX-License-Identifier: Apache-2.0
#include "model/RecordCodec.h"

#include "logging/Trace.h"
#include "model/TableDescriptor.h"
#include "model/XmlParser.h"

#include <iostream>
#include <sstream>

namespace Zorvane {

namespace {

std::string dottedQuad(std::uint32_t address) {
    return std::to_string(address >> 24) + '.' + std::to_string(address >> 16 & 255) + '.' +
           std::to_string(address >> 8 & 255) + '.' + std::to_string(address & 255);
}

void appendField(const Field& field, const BaseTable& row, XmlParser& xml) {
    switch (field.kind) {
    case FieldKind::Id:
        xml.AppendValue(field.name, row.getId(), row.isFromDb());
        break;
    case FieldKind::Reference:
        xml.AppendValue(field.name, (row.*field.reference).id, (row.*field.reference).fromDb);
        break;
    case FieldKind::Text:
        xml.AppendValue(field.name, row.*field.text);
        break;
    case FieldKind::Flag:
        xml.AppendValue(field.name, row.*field.flag);
        break;
    case FieldKind::UInt32:
    case FieldKind::Ipv4:
        xml.AppendValue(field.name, row.*field.uint32);
        break;
    case FieldKind::Int32:
        xml.AppendValue(field.name, row.*field.int32);
        break;
    case FieldKind::Long:
        xml.AppendValue(field.name, row.*field.long64);
        break;
    case FieldKind::Int64:
        xml.AppendValue(field.name, row.*field.int64);
        break;
    case FieldKind::Enumeration:
        xml.AppendValue(field.name, field.names->name(row.*field.int32));
        break;
    case FieldKind::Binary: {
        const auto& bytes = row.*field.binary;
        xml.AppendValue(field.name, bytes.empty() ? nullptr : bytes.data(),
                        static_cast<unsigned int>(bytes.size()));
        break;
    }
    case FieldKind::BaseFields:
        break;
    }
}

void dumpField(const Field& field, const BaseTable& row, std::ostream& out) {
    if (field.kind == FieldKind::Binary || field.kind == FieldKind::BaseFields)
        return;
    out << "    " << field.name << " = " << std::dec;
    switch (field.kind) {
    case FieldKind::Id:
        out << row.getId();
        break;
    case FieldKind::Reference:
        out << (row.*field.reference).id;
        break;
    case FieldKind::Text:
        out << row.*field.text;
        break;
    case FieldKind::Flag:
        out << (row.*field.flag ? 1 : 0);
        break;
    case FieldKind::UInt32:
        out << row.*field.uint32;
        break;
    case FieldKind::Ipv4:
        out << dottedQuad(row.*field.uint32);
        break;
    case FieldKind::Int32:
        out << row.*field.int32;
        break;
    case FieldKind::Long:
        out << row.*field.long64;
        break;
    case FieldKind::Int64:
        out << row.*field.int64;
        break;
    case FieldKind::Enumeration:
        out << field.names->name(row.*field.int32);
        break;
    case FieldKind::Binary:
    case FieldKind::BaseFields:
        break;
    }
    out << '\n';
}

} // namespace

BaseTable::~BaseTable() = default;

int RecordCodec::write(const TableDescriptor& table, const BaseTable& row, XmlParser& xml) {
    Trace trace(g_libLog, "RecordCodec:RecordCodec::write()", ", table=", table.name);
    if (const int rc = xml.AppendElement(table.name)) {
        trace.write(LEVEL_FAILURE, "Exiting AppendElement Failed in WriteXml. rc=", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    for (const Field& field : table.fields)
        appendField(field, row, xml);
    return trace.leave(0, ", return rc=", 0);
}

int RecordCodec::read(const TableDescriptor& table, BaseTable& row, XmlParser& xml) {
    FieldNames names;
    return read(table, row, xml, names);
}

int RecordCodec::read(const TableDescriptor& table, BaseTable& row, XmlParser& xml, FieldNames& names) {
    Trace trace(g_libLog, "RecordCodec:RecordCodec::read()", ", table=", table.name);
    xml.initChildren();
    for (const XmlName* name = xml.firstValueName(); name; name = xml.nextValueName()) {
        const Field* field =
            names.of(name, [&](const Field*& made) { made = table.find(xml.nameText(name)); });
        if (!field)
            continue;
        switch (field->kind) {
        case FieldKind::Id:
            xml.CopyNodeValue(&row.m_id, &row.m_fromDb);
            break;
        case FieldKind::Reference:
            xml.CopyNodeValue(&(row.*field->reference).id, &(row.*field->reference).fromDb);
            break;
        case FieldKind::Text:
            xml.CopyNodeValue(&(row.*field->text));
            break;
        case FieldKind::Flag:
            xml.CopyNodeValue(&(row.*field->flag));
            break;
        case FieldKind::UInt32:
        case FieldKind::Ipv4:
            xml.CopyNodeValue(&(row.*field->uint32));
            break;
        case FieldKind::Int32:
            xml.CopyNodeValue(&(row.*field->int32));
            break;
        case FieldKind::Long:
            xml.CopyNodeValue(&(row.*field->long64));
            break;
        case FieldKind::Int64:
            xml.CopyNodeValue(&(row.*field->int64));
            break;
        case FieldKind::Enumeration: {
            std::string value;
            xml.CopyNodeValue(&value);
            if (!value.empty())
                row.*field->int32 = field->names->value(value);
            break;
        }
        case FieldKind::Binary:
            xml.CopyNodeValue(&(row.*field->binary));
            break;
        case FieldKind::BaseFields:
            break;
        }
    }
    return trace.leave(0, ", return rc=", 0);
}

void RecordCodec::dump(const TableDescriptor& table, const BaseTable& row, std::ostream& out) {
    for (const Field& field : table.fields)
        dumpField(field, row, out);
}

void RecordCodec::dump(const TableDescriptor& table, const BaseTable& row) {
    std::ostringstream text;
    dump(table, row, text);
    std::cout << text.str();
}

void RecordCodec::setFromDb(const TableDescriptor& table, BaseTable& row, bool fromDb) {
    row.m_fromDb = fromDb;
    for (const Field& field : table.fields)
        if (field.kind == FieldKind::Reference)
            (row.*field.reference).fromDb = fromDb;
}

int RecordCodec::notImplemented(const char* operation, const char* className) {
    std::cout << "::" << operation << " is not Implemented from the " << className << " class. Use the "
              << className << "Db class instead." << std::endl;
    return ZOR_NOT_IMPLEMENTED;
}

} // namespace Zorvane
