// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/rows.h"
#include "lab/schema.h"
#include "model/RecordCodec.h"

#include <limits>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace Zorvane {
namespace {

// A value for each field that no other field has, at the edges of its type in the second of two rows.
void fill(const TableDescriptor& table, BaseTable& row, bool extreme) {
    int number = 0;
    for (const Field& field : table.fields) {
        ++number;
        switch (field.kind) {
        case FieldKind::Id:
            row.setId(extreme ? std::numeric_limits<ID>::max() : 7);
            break;
        case FieldKind::Text:
            row.*field.text = extreme ? "'; DROP TABLE \"x\" -- \xc3\xbc\n" + std::to_string(number)
                                      : "text " + std::to_string(number);
            break;
        case FieldKind::Flag:
            row.*field.flag = (number % 2 == 0) != extreme;
            break;
        case FieldKind::UInt32:
        case FieldKind::Ipv4:
            row.*field.uint32 = (extreme ? 0xFFFFFF00U : 0U) + static_cast<std::uint32_t>(number);
            break;
        case FieldKind::Int32:
            row.*field.int32 = (extreme ? std::numeric_limits<std::int32_t>::min() : 100) + number;
            break;
        case FieldKind::Enumeration:
            row.*field.int32 = 1 + number % static_cast<int>(field.names->names.size());
            break;
        case FieldKind::Long:
            row.*field.long64 = (extreme ? std::numeric_limits<long>::min() : 1000) + number;
            break;
        case FieldKind::Int64:
            row.*field.int64 = (extreme ? std::numeric_limits<__int64>::max() : 2000) - number;
            break;
        case FieldKind::Reference:
            row.*field.reference = {extreme ? 0xFFFFFF00U + static_cast<ID>(number) : static_cast<ID>(number),
                                    true};
            break;
        case FieldKind::Binary:
            if (!extreme)
                row.*field.binary = {0, 255, static_cast<unsigned char>(number), 0};
            break;
        case FieldKind::BaseFields:
            break;
        }
    }
}

// A record as text, binary fields included.
std::string textOf(const TableDescriptor& table, const BaseTable& row) {
    std::ostringstream text;
    RecordCodec::dump(table, row, text);
    for (const Field& field : table.fields)
        if (field.kind == FieldKind::Binary)
            for (const unsigned char byte : row.*field.binary)
                text << int{byte} << ' ';
    return text.str();
}

class RowsTest : public testing::Test {
  protected:
    // Null if there is no such row.
    std::unique_ptr<BaseTable> stored(const TableDescriptor& table, ID id) {
        Statement statement = m_database.prepare(selectSql(table) + " WHERE Id=?1");
        if (!statement.with(id).step())
            return nullptr;
        std::unique_ptr<BaseTable> row(table.create());
        readRow(table, *row, statement);
        return row;
    }

    ScratchDirectory m_scratch;
    Database m_database{m_scratch.file("recovery.db")};
};

TEST_F(RowsTest, EveryTableKeepsEveryValue) {
    createSchema(m_database);
    const Transaction once(m_database, Transaction::Kind::Write);
    for (const TableDescriptor* table : allTables()) {
        SCOPED_TRACE(table->name);
        std::unique_ptr<BaseTable> row(table->create());
        for (const bool extreme : {false, true}) {
            fill(*table, *row, extreme);
            insertRow(m_database, *table, *row);
            const auto read = stored(*table, row->getId());
            ASSERT_TRUE(read);
            EXPECT_EQ(textOf(*table, *read), textOf(*table, *row));
            EXPECT_TRUE(read->isFromDb());
            EXPECT_FALSE(read->isChanged());
        }
        row->setId(7);
        EXPECT_TRUE(updateRow(m_database, *table, *row));
        EXPECT_EQ(textOf(*table, *stored(*table, 7)), textOf(*table, *row));
        EXPECT_TRUE(deleteRow(m_database, *table, 7));
        EXPECT_FALSE(stored(*table, 7));
        EXPECT_FALSE(updateRow(m_database, *table, *row));
        EXPECT_FALSE(deleteRow(m_database, *table, 7));
    }
}

TEST_F(RowsTest, FilesAreForTheirOwnerOnly) {
    const mode_t old = ::umask(0);
    createSchema(m_database);
    ::umask(old);
    for (const char* name : {"recovery.db", "recovery.db-wal", "recovery.db-shm"}) {
        struct stat status {};
        ASSERT_EQ(::stat(m_scratch.file(name).c_str(), &status), 0) << name;
        EXPECT_EQ(status.st_mode & 0777, 0600U) << name;
    }
}

TEST_F(RowsTest, AnOlderSchemaIsCompleted) {
    m_database.execute("CREATE TABLE ZorDba.ZOR_EsmConf (Id INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT)");
    m_database.execute("INSERT INTO ZorDba.ZOR_EsmConf VALUES(3,'kept')");
    createSchema(m_database);
    createSchema(m_database);
    const auto rows = selectRecords<CEsmConf>(m_database, "");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].getName(), "kept");
    EXPECT_EQ(rows[0].getValue(), "");
}

TEST_F(RowsTest, ReferencesAreFoundByIndex) {
    createSchema(m_database);
    int columns = 0;
    for (const TableDescriptor* target : allTables())
        for (const ReferenceColumn& column : referencesTo(*target)) {
            Statement plan = m_database.prepare("EXPLAIN QUERY PLAN SELECT * FROM " +
                                                std::string(column.table->tableName) + " WHERE " +
                                                column.field->name + "=1");
            ASSERT_TRUE(plan.step());
            EXPECT_NE(plan.text(3).find("USING INDEX"), std::string_view::npos) << plan.text(3);
            ++columns;
        }
    EXPECT_GT(columns, 280);
}

// Half of it would pass for the whole.
TEST_F(RowsTest, WhatNoDocumentHoldsIsNotWritten) {
    CZor rows;
    rows.m_vConfig.push_back(new CConfig);
    rows.m_vConfig[0]->setName("a control \x01 character");
    EXPECT_THROW(writeDocument(rows), std::runtime_error);
}

TEST_F(RowsTest, AnUnusableFileIsRefused) {
    EXPECT_THROW(Database(m_scratch.file("missing/recovery.db")), DatabaseError);
    EXPECT_THROW(Database("/proc/self/status"), std::runtime_error);
}

} // namespace
} // namespace Zorvane
