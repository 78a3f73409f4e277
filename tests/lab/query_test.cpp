// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"

namespace Zorvane {
namespace {

class QueryTest : public StoreTest {
  protected:
    QueryTest() {
        CZor rows;
        const char* const names[] = {"current", "O'Brien; DROP TABLE \"x\" --", "third"};
        for (ID id = 1; id <= 3; ++id) {
            auto& config = add(rows.m_vConfig, id);
            config.setName(names[id - 1]);
            config.setClientName(id == 1 ? "Alpha" : "beta");
            config.setType(id == 1 ? ConfigType::SAVED : ConfigType::PIT);
            config.setManual(id == 3);
            auto& system = add(rows.m_vSystem, id);
            system.setHostname("host" + std::to_string(id));
            system.setConfigId(id);
        }
        EXPECT_TRUE(m_store->load(rows).ok());
    }
};

constexpr const char* CONFIG = CConfig::TableName;
constexpr const char* BOTH = "ZorDba.ZOR_Config, ZorDba.ZOR_System";

TEST_F(QueryTest, ClausesSelectRows) {
    const struct {
        const char* columns;
        const char* table;
        const char* where;
        const char* found;
    } cases[] = {
        {"*", CONFIG, "", "Config 1, Config 2, Config 3"},
        {"*", CONFIG, "lower(ZorDba.ZOR_Config.ClientName) = lower('BETA')", "Config 2, Config 3"},
        {"*", CONFIG, "(ZorDba.ZOR_Config.Type = 2)AND (Manual = 0)", "Config 1"},
        {"*", CONFIG, "Name = 'O''Brien; DROP TABLE \"x\" --'", "Config 2"},
        {"*", CONFIG, "Name = 'no such'", ""},
        {"*", CONFIG, "Name LIKE 'T%' ORDER BY Id DESC", "Config 3"},
        {"*", CONFIG, "'50%' LIKE '50!%' ESCAPE '!' AND Name NOT LIKE '%r%' AND NULL LIKE '' IS NULL", ""},
        {"Id, Name -- the name", CONFIG, "Id = 3 -- and no more", "Config 3"},
        {"*", BOTH, "ZorDba.ZOR_System.ConfigId = ZorDba.ZOR_Config.Id AND Hostname = 'host2'",
         "Config 2, System 2"},
        {"ZOR_System.*", BOTH, "ZorDba.ZOR_Config.Manual = 1 OR ClientName = 'Alpha'",
         "System 1, System 2, System 3"},
        {"a.*, b.*", "ZorDba.ZOR_Config a LEFT JOIN ZorDba.ZOR_Config b ON b.Id = a.Id + 2", "",
         "Config 1, Config 3, Config 2"},
        {"*", CONFIG, "Id IN (SELECT max(ConfigId) FROM ZorDba.ZOR_System)", "Config 3"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.where);
        StoreResult result = query(each.columns, each.table, each.where);
        ASSERT_EQ(result.status, STORE_OK) << result.text;
        EXPECT_EQ(contents(result.reply), each.found);
    }
}

TEST_F(QueryTest, RowsAreWholeAndTheDatabases) {
    StoreResult result = query("*", CSystem::TableName, "Id = 2");
    CZor rows;
    read(result.reply, rows);
    ASSERT_EQ(rows.m_vSystem.size(), 1U);
    EXPECT_EQ(rows.m_vSystem[0]->getHostname(), "host2");
    EXPECT_TRUE(rows.m_vSystem[0]->isFromDb());
    EXPECT_EQ(rows.m_vSystem[0]->getConfigId(), 2U);
    EXPECT_TRUE(rows.m_vSystem[0]->isConfigIdFromDb());

    StoreResult part = query("Id, Hostname", CSystem::TableName, "Id = 2");
    CZor partial;
    read(part.reply, partial);
    EXPECT_EQ(partial.m_vSystem.first()->getHostname(), "host2");
    EXPECT_EQ(partial.m_vSystem.first()->getConfigId(), 0U);
}

// Column constants go into clauses as they are: no field may have a name that SQL keeps for itself.
TEST_F(QueryTest, EveryColumnCanBeNamed) {
    for (const VectorDescriptor& vector : allVectors()) {
        std::string columns;
        for (const Field& field : vector.table().fields)
            columns += (columns.empty() ? "" : ", ") + vector.table().column(field);
        const StoreResult result = query(columns, vector.table().tableName, "");
        EXPECT_EQ(result.status, STORE_OK) << result.text;
    }
}

TEST_F(QueryTest, ClausesDoNothingButRead) {
    const struct {
        const char* columns;
        const char* table;
        const char* where;
    } cases[] = {
        {"*", CONFIG, "1; DELETE FROM ZorDba.ZOR_Config"},
        {"*", CONFIG, "1; ATTACH '/tmp/zorlab-attached' AS x"},
        {"1; DELETE FROM ZorDba.ZOR_Config; SELECT *", CONFIG, ""},
        {"*", "ZorDba.ZOR_Config; PRAGMA ZorDba.user_version=9; --", ""},
        {"*", CONFIG, "Id IN (DELETE FROM ZorDba.ZOR_Config RETURNING Id)"},
        {"*", CONFIG, "load_extension('/tmp/x.so') IS NULL"},
        {"*", CONFIG, "Id IN (SELECT rootpage FROM main.sqlite_master)"},
        {"*", CONFIG, "Id IN (SELECT rootpage FROM ZorDba.sqlite_master)"},
        {"*", CONFIG, "Id IN (SELECT TaskId FROM ZorDba.LAB_SubmittedJob)"},
        {"*", CONFIG, "Id IN (SELECT seq FROM ZorDba.sqlite_sequence)"},
        {"*", CONFIG, "Id IN (SELECT cid FROM pragma_table_info('ZOR_Config'))"},
        {"*", CONFIG, "zeroblob(900000000) IS NOT NULL"},
        {"*", CONFIG, "instr(Name, 'x') = 0"},
        {"*", CONFIG,
         "Id IN (WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) SELECT i FROM n)"},
        {"*", "main.ZOR_Config", ""},
        {"*", "ZorDba.ZOR_Nothing", ""},
        {"*", "", ""},
        {"", CONFIG, ""},
        {"count(*)", CONFIG, ""},
        {"*", CONFIG, "Name = 'unfinished"},
        {"*", CONFIG, "Name = ?1 /* never closed"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.columns) + " | " + each.table + " | " + each.where);
        const StoreResult result = query(each.columns, each.table, each.where);
        // An unfinished comment ends with the text, and an unset parameter is NULL: neither does harm.
        EXPECT_TRUE(result.status == STORE_BAD_QUERY || contents(result.reply).empty());
        EXPECT_EQ(result.ok(), result.text.empty());
    }
    EXPECT_EQ(found(CONFIG), "Config 1, Config 2, Config 3");
    EXPECT_FALSE(std::filesystem::exists("/tmp/zorlab-attached"));
}

TEST_F(QueryTest, TimeAndSizeAreBounded) {
    CZor rows;
    add(rows.m_vConfig, 0).setZorVersion(std::string(1'000'000, 'x'));
    ASSERT_EQ(m_store->insert(document(rows)).status, STORE_OK);
    open({std::chrono::milliseconds(100), 20'000});
    // Each of them is too few steps for a look at the clock, and has a long text to work on.
    std::string terms = "Id = 4 AND ZorVersion = ''";
    for (int i = 0; i < 100; ++i)
        terms += " OR lower(ZorVersion) = ''";
    CZor many;
    for (int i = 0; i < 20; ++i) {
        auto& one = add(many.m_vQueryRequest, 0);
        one.setColumnClause("*");
        one.setTableClause(CONFIG);
        one.setWhereClause(terms);
    }
    EXPECT_EQ(m_store->query(document(many, FOR_QUERY)).status, STORE_TOO_MUCH);
    std::string join = "ZorDba.ZOR_Config a";
    for (int i = 0; i < 40; ++i)
        join += ", ZorDba.ZOR_Config t" + std::to_string(i);
    EXPECT_EQ(query("a.*", join, "").status, STORE_TOO_MUCH);
    // Rows without an Id can't be told apart, so all of them come.
    EXPECT_EQ(query("a.Name", join, "").status, STORE_TOO_MUCH);
    EXPECT_EQ(query("*", CONFIG, "Name = '" + std::string(100'000, 'x') + "'").status, STORE_TOO_MUCH);
    // Six hundred terms that stand for ten thousand million, in a text that is as long.
    std::string hundred = "n";
    for (int i = 0; i < 99; ++i)
        hundred += "||n";
    std::string grown = "(SELECT Name AS n FROM ZorDba.ZOR_Config)";
    for (int i = 0; i < 5; ++i)
        grown = "(SELECT " + hundred + " AS n FROM " + grown + ")";
    EXPECT_EQ(query("*", CONFIG, "Name IN (SELECT n FROM " + grown + ")").status, STORE_TOO_MUCH);
    EXPECT_EQ(found(CONFIG, "Id < 4"), "Config 1, Config 2, Config 3") << "the connection serves on";
    CZor one;
    add(one.m_vQueryRequest, 0).setTableClause(CONFIG);
    one.m_vQueryRequest[0]->setTreeId(1);
    const auto isGone = [] { return true; };
    EXPECT_EQ(m_store->query(document(one, FOR_QUERY), always, isGone).status, STORE_TOO_MUCH);
}

// What one request may take of the library's memory, no other one lacks.
TEST_F(QueryTest, MemoryIsBoundedForEachRequest) {
    open({.libraryBytes = 1'200'000});
    CZor rows;
    add(rows.m_vConfig, 1).setZorVersion(std::string(900'000, 'x'));
    EXPECT_EQ(m_store->insert(document(rows)).status, STORE_OK) << "a writer has no bound";
    const std::string joined = std::string(BOTH) + ", ZorDba.ZOR_System b";
    EXPECT_EQ(query("ZOR_Config.Id, ZorVersion||'1', ZorVersion||'2'", CONFIG, "").status, STORE_TOO_MUCH);
    EXPECT_EQ(query("b.Id", joined, "1 ORDER BY substr(ZorVersion||b.Id, 1, 600000)").status, STORE_TOO_MUCH);
    EXPECT_EQ(found(CONFIG, "Id < 4 ORDER BY Id"), "Config 1, Config 2, Config 3");
}

// Many rows, of a request or of its reply, wait for a turn; few don't ask for one.
TEST_F(QueryTest, LargeRequestsNeedATurn) {
    std::string rows = "<ZorData>";
    for (int i = 0; i < 500; ++i)
        rows += "<VmwareProfileOptions/>"; // a few bytes that become many
    rows += "</ZorData>";
    const Store::Document document(reinterpret_cast<const unsigned char*>(rows.data()), rows.size());
    std::string asked;
    const auto turn = [&](bool isThereOne) {
        return [&, isThereOne](Wait wait) {
            asked += wait == Wait::Yes ? 'y' : 'n';
            return isThereOne && asked != "n";
        };
    };
    EXPECT_EQ(m_store->insert(document, turn(false)).status, STORE_TOO_MUCH);
    EXPECT_EQ(std::exchange(asked, ""), "y");
    EXPECT_EQ(m_store->insert(document, turn(true)).status, STORE_OK);
    EXPECT_EQ(std::exchange(asked, ""), "y");

    CZor request;
    add(request.m_vQueryRequest, 0).setColumnClause("*");
    request.m_vQueryRequest[0]->setTableClause(CVmwareProfileOptions::TableName);
    const Bytes large = StoreTest::document(request, FOR_QUERY);
    EXPECT_EQ(m_store->query(large, turn(false)).status, STORE_TOO_MUCH);
    EXPECT_EQ(std::exchange(asked, ""), "ny");
    CZor reply;
    StoreResult result = m_store->query(large, turn(true)); // the first time there is none
    read(result.reply, reply);
    EXPECT_EQ(reply.m_vVmwareProfileOptions.size(), 500U);
    EXPECT_EQ(std::exchange(asked, ""), "nyn");

    request.m_vQueryRequest[0]->setWhereClause("Id < 20");
    EXPECT_EQ(m_store->query(StoreTest::document(request, FOR_QUERY), turn(false)).status, STORE_OK);
    EXPECT_EQ(asked, "");
}

TEST_F(QueryTest, ADocumentMayAskSeveralThings) {
    CZor request;
    add(request.m_vQueryRequest, 0).setTableClause(CONFIG);
    request.m_vQueryRequest[0]->setColumnClause("*");
    request.m_vQueryRequest[0]->setWhereClause("Id = 1");
    add(request.m_vQueryRequest, 0).setTableClause(CSystem::TableName);
    request.m_vQueryRequest[1]->setTreeId(2);
    StoreResult result = m_store->query(document(request, FOR_QUERY));
    EXPECT_EQ(contents(result.reply), "Config 1, System 2");

    CZor nothing;
    result = m_store->query(document(nothing));
    EXPECT_EQ(result.status, STORE_OK);
    EXPECT_EQ(contents(result.reply), "");
}

TEST_F(QueryTest, WhatIsNoDocumentIsRefused) {
    for (const std::string text : {"", "no xml", "<ZorData><Config>", "<!DOCTYPE a><ZorData/>"}) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
        EXPECT_EQ(m_store->query({bytes, text.size()}).status, STORE_BAD_DOCUMENT) << text;
        EXPECT_EQ(m_store->insert({bytes, text.size()}).status, STORE_BAD_DOCUMENT) << text;
    }
}

class TreeTest : public StoreTest {};

// Two configurations whose drivers are in the same package, each row reached by a road of its own.
TEST_F(TreeTest, HoldsOneConfigurationExactly) {
    CZor rows;
    auto& package = add(rows.m_vPackage, 1);
    package.setName("shared driver");
    add(rows.m_vPackageFileList, 1).setPackageId(1); // the package's, no configuration's
    add(rows.m_vFileContent, 1);
    add(rows.m_vFileContent, 2);
    add(rows.m_vFileContent, 3); // nobody's
    add(rows.m_vDeviceIds, 1);
    for (ID id = 1; id <= 2; ++id) {
        add(rows.m_vConfig, id).setClientName("client" + std::to_string(id));
        add(rows.m_vNetwork, id).setConfigId(id);
        add(rows.m_vNetworkInterface, id).setNetworkId(id);
        add(rows.m_vGateway, id).setNetworkInterfaceId(id);
        auto& link = add(rows.m_vConfigPackage, id);
        link.setConfigId(id);
        link.setPackageId(1);
        auto& device = add(rows.m_vWindowsDevice, id);
        device.setConfigId(id);
        device.setConfigPackageId(id); // a second road to the same row
        auto& ids = add(rows.m_vWindowsDeviceToDeviceIds, id);
        ids.setWindowsDeviceId(id);
        ids.setDeviceIdsId(1);
        auto& file = add(rows.m_vRestoreConfigFile, id);
        file.setConfigId(id);
        file.setFileContentId(id);
        add(rows.m_vRegistryKey, 10 * id).setConfigId(id);
        for (ID child = 10 * id + 1; child < 10 * id + 4; ++child)
            add(rows.m_vRegistryKey, child).setRegistryKeyId(child - 1); // a chain
        auto& task = add(rows.m_vP2VRestoreTask, id);
        task.setConfigId(id);
    }
    ASSERT_TRUE(m_store->load(rows).ok());

    EXPECT_EQ(contents(tree(CConfig::TableName, 2).reply),
              "Config 2, RegistryKey 5, RegistryKey 6, RegistryKey 7, RegistryKey 8, Package 1, Network 2, "
              "ConfigPackage 2, NetworkInterface 2, Gateway 2, FileContent 2, RestoreConfigFile 2, "
              "WindowsDevice 2, DeviceIds 1, WindowsDeviceToDeviceIds 2, P2VRestoreTask 2");
    EXPECT_EQ(contents(tree(CNetwork::TableName, 1).reply), "Network 1, NetworkInterface 1, Gateway 1");
    EXPECT_EQ(contents(tree(CConfig::TableName, 3).reply), "");
    EXPECT_EQ(tree("ZorDba.ZOR_Nothing", 1).status, STORE_BAD_QUERY);

    CZor exported;
    EXPECT_TRUE(m_store->exportTree("CLIENT1", "", exported).ok());
    EXPECT_TRUE(exported.m_vP2VRestoreTask.empty()) << "a job belongs to this lab";
    EXPECT_EQ(exported.m_vRegistryKey.size(), 4U);
    EXPECT_EQ(m_store->exportTree("client3", "", exported).status, STORE_NO_SUCH_ROW);
    EXPECT_EQ(m_store->exportTree("client1", "other", exported).status, STORE_NO_SUCH_ROW);

    // What was exported loads as a configuration of its own, with the same shape.
    ASSERT_TRUE(m_store->load(exported).ok());
    StoreResult copy = tree(CConfig::TableName, 3);
    CZor copied;
    read(copy.reply, copied);
    EXPECT_EQ(copied.m_vRegistryKey.size(), 4U);
    EXPECT_EQ(copied.m_vPackage.first()->getName(), "shared driver");
    EXPECT_EQ(m_store->configurations().size(), 3U);
}

} // namespace
} // namespace Zorvane
