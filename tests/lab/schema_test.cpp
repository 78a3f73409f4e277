// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/schema.h"
#include "lab/tablePage.h"
#include "lab/xmlSchema.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace Zorvane {
namespace {

namespace fs = std::filesystem;

const fs::path root = ZOR_SOURCE_DIR;

std::string textOf(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

class SchemaTest : public testing::Test {
  protected:
    SchemaTest() { std::ofstream(m_scratch.file("zordata.xsd")) << xmlSchema(); }

    bool accepts(const fs::path& document) {
        const std::string command = "xmllint --noout --schema '" + m_scratch.file("zordata.xsd").string() +
                                    "' '" + document.string() + "' > /dev/null 2>&1";
        return std::system(command.c_str()) == 0;
    }
    bool acceptsRows(const std::string& rows) {
        const fs::path file = m_scratch.file("rows.xml");
        std::ofstream(file) << "<ZorData xmlns=\"urn:zorvane:zordata:1\">" << rows << "</ZorData>";
        return accepts(file);
    }

    ScratchDirectory m_scratch;
};

} // namespace

TEST_F(SchemaTest, TheSamplesAreValid) {
    int count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root / "share/samples"))
        if (entry.path().extension() == ".xml") {
            EXPECT_TRUE(accepts(entry.path())) << entry.path();
            ++count;
        }
    EXPECT_GE(count, 6);
}

TEST_F(SchemaTest, OneRowOfEachVectorIsValidAsItIsWritten) {
    CZor rows;
    for (const VectorDescriptor& vector : allVectors())
        vector.rows(rows).records().push_back(vector.table().create());
    const std::vector<unsigned char> document = writeDocument(rows);
    std::ofstream(m_scratch.file("all.xml"))
        .write(reinterpret_cast<const char*>(document.data()), static_cast<std::streamsize>(document.size()));
    EXPECT_TRUE(accepts(m_scratch.file("all.xml")));
}

TEST_F(SchemaTest, TellsDocumentsFromOthers) {
    const struct {
        const char* rows;
        bool valid;
    } cases[] = {
        {"", true},
        {"<System><Os>LINUX</Os></System><Config/><System><Os>EMPTY</Os></System>", true}, // any order
        {"<System><ConfigId fromDb=\"1\">7</ConfigId><Id>3</Id></System>", true},
        {"<FileContent><Content>AAEC</Content></FileContent>", true},
        {"<FileContent><Content>A*EC</Content></FileContent>", false},
        {"<System><Os>BEOS</Os></System>", false},
        {"<System><NumberOfCPUs>many</NumberOfCPUs></System>", false},
        {"<System><NumberOfCPUs fromDb=\"1\">2</NumberOfCPUs></System>", false},
        {"<System><Id/></System>", false},
        {"<System><Id>1</Id><Id>2</Id></System>", false},
        {"<Config><Manual>true</Manual></Config>", false}, // which readers take for 0
        {"<Network><DefaultGateway>10.20.0.1</DefaultGateway></Network>", false},
        {"<Disk/>", false}, // lends its fields only
        {"<Nothing/>", false},
    };
    for (const auto& row : cases)
        EXPECT_EQ(acceptsRows(row.rows), row.valid) << row.rows;
}

TEST_F(SchemaTest, TheStatementsMakeTheDatabase) {
    const std::string sql = schemaText();
    std::size_t references = 0;
    for (const TableDescriptor* table : allTables())
        references +=
            static_cast<std::size_t>(std::ranges::count(table->fields, FieldKind::Reference, &Field::kind));
    const auto count = [&sql](std::string_view text) {
        std::size_t found = 0;
        for (std::size_t at = sql.find(text); at != std::string::npos; at = sql.find(text, at + 1))
            ++found;
        return found;
    };
    EXPECT_EQ(count("CREATE TABLE"), 246U);
    EXPECT_EQ(count("CREATE INDEX"), references);
    EXPECT_EQ(count(" REFERENCES "), references);
    Database database(m_scratch.file("recovery.db"));
    const Transaction once(database, Transaction::Kind::Write); // a commit for each statement takes a minute
    database.execute(sql);
    Statement referred =
        database.prepare("SELECT \"table\" FROM pragma_foreign_key_list('ZOR_Gateway', 'ZorDba')");
    ASSERT_TRUE(referred.step());
    EXPECT_EQ(referred.text(0), "ZOR_NetworkInterface");
}

TEST_F(SchemaTest, ThePageInTheDocumentationIsCurrent) {
    EXPECT_TRUE(textOf(root / "docs/tables.md") == tablePage())
        << "make it again: zorlab schema --md > docs/tables.md";
}

} // namespace Zorvane
