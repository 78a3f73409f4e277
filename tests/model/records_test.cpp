// SPDX-License-Identifier: Apache-2.0
// Every table of the database, held against a list of its own.
#include "model/RecordCodec.h"
#include "model/TableDescriptor.h"
#include "model/XmlParser.h"
#include "model/records.h"

#include <fstream>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

struct ListedTable {
    std::string name, base;
    std::vector<std::pair<std::string, std::string>> fields;
};

std::vector<ListedTable> listedTables() {
    std::ifstream file(ZOR_TABLES_FILE);
    std::vector<ListedTable> tables;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#'))
            continue;
        std::istringstream words(line);
        std::string first, second, third;
        words >> first >> second >> third;
        if (line.starts_with(' '))
            tables.back().fields.emplace_back(first, second);
        else
            tables.push_back({first, third, {}});
    }
    return tables;
}

std::string kindOf(const Field& field) {
    switch (field.kind) {
    case FieldKind::Id:
        return "id";
    case FieldKind::Text:
        return "string";
    case FieldKind::Flag:
        return "bool";
    case FieldKind::UInt32:
        return "uint32";
    case FieldKind::Ipv4:
        return "ipv4";
    case FieldKind::Int32:
        return "int32";
    case FieldKind::Long:
        return "long";
    case FieldKind::Int64:
        return "int64";
    case FieldKind::Enumeration:
        return std::string("enum:") + field.names->enumeration;
    case FieldKind::Reference:
        return std::string("ref:") + field.target;
    case FieldKind::Binary:
        return "binary";
    case FieldKind::BaseFields:
        break;
    }
    return "?";
}

// A value for a field that no neighbour has, as a document and a dump show it.
std::string distinctValue(const Field& field, int number) {
    switch (field.kind) {
    case FieldKind::Text:
        return "text " + std::to_string(number);
    case FieldKind::Flag:
        return "1";
    case FieldKind::Int32:
        return std::to_string(-number);
    case FieldKind::Long:
    case FieldKind::Int64:
        return std::to_string(5000000000 + number);
    case FieldKind::Enumeration:
        return field.names->names[static_cast<std::size_t>(number) % field.names->names.size()];
    case FieldKind::Binary: // no line ends: of three bytes
        return std::string("AA") + static_cast<char>('A' + number % 26) +
               static_cast<char>('A' + number / 26 % 26);
    default:
        return std::to_string(number);
    }
}

std::string shown(const Field& field, const std::string& value) {
    if (field.kind != FieldKind::Ipv4)
        return value;
    const unsigned long address = std::stoul(value);
    return std::to_string(address >> 24) + "." + std::to_string(address >> 16 & 255) + "." +
           std::to_string(address >> 8 & 255) + "." + std::to_string(address & 255);
}

// As a dump shows a field without a value.
const char* unset(const Field& field) {
    switch (field.kind) {
    case FieldKind::Text:
        return "";
    case FieldKind::Enumeration:
        return "EMPTY";
    case FieldKind::Ipv4:
        return "0.0.0.0";
    default:
        return "0";
    }
}

bool hasFlag(const Field& field) {
    return field.kind == FieldKind::Id || field.kind == FieldKind::Reference;
}

// The row's fields, first to last or last to first, in an element of the table.
std::string elementOf(const TableDescriptor& table, bool reversed) {
    std::vector<std::string> children;
    int number = 1000;
    for (const Field& field : table.fields) {
        children.push_back(std::string("<") + field.name + (hasFlag(field) ? " fromDb='1'>" : ">") +
                           distinctValue(field, ++number) + "</" + field.name + ">");
    }
    if (reversed)
        std::reverse(children.begin(), children.end());
    std::string text = std::string("<") + table.name + "><Unknown>x</Unknown>";
    for (const std::string& child : children)
        text += child;
    return text + "</" + table.name + ">";
}

std::unique_ptr<BaseTable> readRow(const TableDescriptor& table, const std::string& element) {
    const std::string document = "<ZorData>" + element + "</ZorData>";
    XmlParser parser(reinterpret_cast<const unsigned char*>(document.data()),
                     static_cast<int>(document.size()));
    parser.initChildren();
    parser.firstObjectTag();
    std::unique_ptr<BaseTable> row(table.create());
    RecordCodec::read(table, *row, parser);
    return row;
}

std::string written(const TableDescriptor& table, const BaseTable& row) {
    XmlParser writer;
    RecordCodec::write(table, row, writer);
    return {reinterpret_cast<const char*>(writer.getBuffer()),
            static_cast<std::size_t>(writer.getBufferLen())};
}

std::string dumped(const TableDescriptor& table, const BaseTable& row) {
    std::ostringstream out;
    out << std::hex;
    RecordCodec::dump(table, row, out);
    return out.str();
}

TEST(Tables, AreTheDatabasesTables) {
    const auto listed = listedTables();
    ASSERT_EQ(listed.size(), 246U);
    ASSERT_EQ(allTables().size(), listed.size());
    for (const ListedTable& expected : listed) {
        const TableDescriptor* table = findTable(expected.name);
        ASSERT_NE(table, nullptr) << expected.name;
        EXPECT_EQ(table->tableName, "ZorDba.ZOR_" + expected.name);
        EXPECT_EQ(table->base ? table->base->name : "", expected.base) << expected.name;
        std::vector<std::pair<std::string, std::string>> fields;
        for (const Field& field : table->fields)
            fields.emplace_back(field.name, kindOf(field));
        EXPECT_EQ(fields, expected.fields) << expected.name;
    }
}

TEST(Tables, ReferToTablesThatExist) {
    for (const TableDescriptor* table : allTables())
        for (const Field& field : table->fields)
            if (field.kind == FieldKind::Reference) {
                EXPECT_NE(findTable(field.target), nullptr) << table->column(field);
            }
}

TEST(Records, StartEmpty) {
    for (const TableDescriptor* table : allTables()) {
        const std::unique_ptr<BaseTable> row(table->create());
        EXPECT_EQ(row->getId(), 0U);
        EXPECT_EQ(row->getOldId(), 0U);
        EXPECT_FALSE(row->isChanged() || row->isFromDb());
        EXPECT_EQ(row->tableHook1() + row->tableHook2() + row->tableHook3(), 0);
        std::string expected;
        for (const Field& field : table->fields)
            if (field.kind != FieldKind::Binary)
                expected += std::string("    ") + field.name + " = " + unset(field) + "\n";
        EXPECT_EQ(dumped(*table, *row), expected) << table->name;
        const auto read = readRow(*table, std::string("<") + table->name + "/>");
        EXPECT_EQ(dumped(*table, *read), expected) << table->name << " without children";
    }
}

TEST(Records, EveryFieldIsWrittenReadCopiedAndDumped) {
    for (const TableDescriptor* table : allTables()) {
        const auto row = readRow(*table, elementOf(*table, false));
        const auto reversed = readRow(*table, elementOf(*table, true));
        const std::string document = written(*table, *row);
        EXPECT_EQ(document, written(*table, *reversed)) << "the order of children counts nothing";
        EXPECT_TRUE(row->isFromDb()) << table->name;

        std::string expectedDump;
        std::size_t place = 0;
        int number = 1000;
        for (const Field& field : table->fields) {
            const std::string value = distinctValue(field, ++number);
            const std::string start = std::string("<") + field.name + (hasFlag(field) ? " " : ">");
            const std::size_t at = document.find(start, place);
            ASSERT_NE(at, std::string::npos) << table->column(field) << " in " << document;
            place = at;
            EXPECT_EQ(document.compare(document.find('>', at) + 1, value.size(), value), 0)
                << table->column(field) << " in " << document;
            if (field.kind != FieldKind::Binary)
                expectedDump += std::string("    ") + field.name + " = " + shown(field, value) + "\n";
        }
        EXPECT_EQ(dumped(*table, *row), expectedDump);

        const std::unique_ptr<BaseTable> copy(table->clone(*row));
        EXPECT_EQ(written(*table, *copy), document) << table->name;
        RecordCodec::setFromDb(*table, *copy, false);
        EXPECT_EQ(written(*table, *copy).find("fromDb=\"1\""), std::string::npos) << table->name;
        EXPECT_EQ(written(*table, *row), document) << "the copy is another object";
        table->assign(*copy, *row);
        EXPECT_EQ(written(*table, *copy), document) << table->name;
    }
}

TEST(Records, DoNotWriteToTheDatabaseThemselves) {
    for (const TableDescriptor* table : allTables()) {
        const std::unique_ptr<BaseTable> row(table->create());
        testing::internal::CaptureStdout();
        EXPECT_EQ(row->insertDb() + row->updateDb(), 2 * ZOR_NOT_IMPLEMENTED);
        const std::string name = std::string("C") + table->name;
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "::insertDb is not Implemented from the " + name + " class. Use the " + name +
                      "Db class instead.\n::updateDb is not Implemented from the " + name +
                      " class. Use the " + name + "Db class instead.\n");
    }
}

TEST(Records, FlagsTellWhatTheDatabaseKnows) {
    CNetworkInterface row;
    row.setName("eth0");
    EXPECT_TRUE(row.isChanged());
    row.clearChanged();
    row.setNetworkId(7, false);
    EXPECT_TRUE(row.isChanged());
    row.setFromDb();
    EXPECT_TRUE(row.isFromDb());
    EXPECT_FALSE(row.isNetworkIdFromDb()) << "without an argument only the row itself is marked";
    row.setFromDb(true);
    EXPECT_TRUE(row.isNetworkIdFromDb());
    row.clearFromDb();
    EXPECT_FALSE(row.isFromDb() || row.isNetworkIdFromDb());

    row.setId(3);
    row.clearChanged();
    row.changeId(10);
    row.changeId(20);
    EXPECT_EQ(row.getId(), 20U);
    EXPECT_EQ(row.getOldId(), 10U);
    EXPECT_TRUE(row.isFromDb());
    EXPECT_FALSE(row.isChanged());
}

TEST(Records, ColumnsBearTheirOwnTable) {
    EXPECT_EQ(std::string(CConfig::Column::ClientName), "ZorDba.ZOR_Config.ClientName");
    EXPECT_EQ(std::string(CNetworkIdentity::Column::fqdn), "ZorDba.ZOR_NetworkIdentity.fqdn");
    EXPECT_EQ(std::string(CLinuxDisk::Column::DMPName), "ZorDba.ZOR_LinuxDisk.DMPName")
        << "a field of the base";
    EXPECT_STREQ(CWindowsSystem::TableName, "ZorDba.ZOR_WindowsSystem");
}

TEST(Records, UnknownEnumerationNamesAreUnset) {
    const auto row = readRow(CConfig::table(), "<Config><Type>saved</Type></Config>");
    EXPECT_NE(written(CConfig::table(), *row).find("<Type>EMPTY</Type>"), std::string::npos);
}

} // namespace
} // namespace Zorvane
