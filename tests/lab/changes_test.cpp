// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"

namespace Zorvane {
namespace {

class ChangesTest : public StoreTest {
  protected:
    // The request of a submission: a task and its disks, with numbers made up by the client.
    static void addTask(CZor& rows, ID task, int disks) {
        auto& row = add(rows.m_vP2VRestoreTask, task);
        row.setClientName("client");
        row.setConfigId(77, true);
        for (int disk = 1; disk <= disks; ++disk) {
            auto& map = add(rows.m_vDiskToDataStoreMap, static_cast<ID>(disk));
            map.setDiskName("Disk" + std::to_string(disk));
            map.setP2VRestoreTaskId(task, false);
        }
    }
    StoreResult transact(const Bytes& insert, const Bytes& update, const Bytes& remove) {
        CZor envelope;
        auto& request = add(envelope.m_vTransactionRequest, 1);
        request.setInsertXml(insert.data(), static_cast<unsigned>(insert.size()));
        request.setUpdateXml(update.data(), static_cast<unsigned>(update.size()));
        request.setDeleteXml(remove.data(), static_cast<unsigned>(remove.size()));
        return m_store->transaction(document(envelope, FOR_TRANSACTION));
    }
};

TEST_F(ChangesTest, InsertedRowsGetNumbersAndReferencesFollow) {
    for (int round = 0; round < 2; ++round) {
        CZor rows;
        addTask(rows, 1, 3);
        rows.m_vP2VRestoreTask[0]->setVmName("fromDb=\"1\">8</Id>"); // as the numbers stand in a document
        StoreResult result = m_store->insert(document(rows, FOR_INSERT));
        ASSERT_EQ(result.status, STORE_OK) << result.text;
        CZor reply;
        read(result.reply, reply);
        const ID task = static_cast<ID>(round) + 1;
        ASSERT_EQ(reply.m_vP2VRestoreTask.size(), 1U);
        EXPECT_EQ(reply.m_vP2VRestoreTask[0]->getId(), task);
        EXPECT_TRUE(reply.m_vP2VRestoreTask[0]->isFromDb());
        EXPECT_EQ(reply.m_vP2VRestoreTask[0]->getVmName(), rows.m_vP2VRestoreTask[0]->getVmName());
        EXPECT_EQ(reply.m_vP2VRestoreTask[0]->getConfigId(), 77U) << "a number of the database stays";
        ASSERT_EQ(reply.m_vDiskToDataStoreMap.size(), 3U);
        for (const auto* map : reply.m_vDiskToDataStoreMap) {
            EXPECT_EQ(map->getP2VRestoreTaskId(), task);
            EXPECT_TRUE(map->isP2VRestoreTaskIdFromDb());
            EXPECT_TRUE(map->isConfigIdFromDb());
        }
    }
    EXPECT_EQ(found(CDiskToDataStoreMap::TableName),
              "DiskToDataStoreMap 1, DiskToDataStoreMap 2, DiskToDataStoreMap 3, DiskToDataStoreMap 4, "
              "DiskToDataStoreMap 5, DiskToDataStoreMap 6");
}

TEST_F(ChangesTest, ReferencesMayPointAnywhereAmongTheRows) {
    CZor rows;
    add(rows.m_vRegistryKey, 5).setRegistryKeyId(6); // forward, and in a circle
    add(rows.m_vRegistryKey, 6).setRegistryKeyId(5);
    add(rows.m_vRegistryKey, 0); // several rows without a number are several rows
    add(rows.m_vRegistryKey, 0);
    add(rows.m_vRegistryKey, 4).setFromDb(); // in the database already
    StoreResult result = m_store->insert(document(rows));
    CZor reply;
    read(result.reply, reply);
    ASSERT_EQ(reply.m_vRegistryKey.size(), 4U);
    EXPECT_EQ(reply.m_vRegistryKey[0]->getRegistryKeyId(), 2U);
    EXPECT_EQ(reply.m_vRegistryKey[1]->getRegistryKeyId(), 1U);
    EXPECT_EQ(reply.m_vRegistryKey[2]->getRegistryKeyId(), 0U);
}

TEST_F(ChangesTest, ReferencesThatMeanNothingAreRefused) {
    CZor dangling;
    addTask(dangling, 1, 1);
    dangling.m_vDiskToDataStoreMap[0]->setP2VRestoreTaskId(9, false);
    EXPECT_EQ(m_store->insert(document(dangling)).status, STORE_BAD_REFERENCE);

    CZor ambiguous;
    addTask(ambiguous, 1, 1);
    addTask(ambiguous, 1, 0);
    EXPECT_EQ(m_store->insert(document(ambiguous)).status, STORE_BAD_REFERENCE);
    EXPECT_EQ(found(CP2VRestoreTask::TableName), "");
}

TEST_F(ChangesTest, UpdateAndDeleteGoById) {
    CZor rows;
    for (ID id = 1; id <= 3; ++id)
        add(rows.m_vEventLog, id).setName("first");
    ASSERT_TRUE(m_store->load(rows).ok());

    CZor changed;
    add(changed.m_vEventLog, 2).setFromDb();
    changed.m_vEventLog[0]->setName("it's \"second\"; --");
    add(changed.m_vEventLog, 3).setName("made up, so no row of the database");
    EXPECT_EQ(m_store->update(document(changed)).status, STORE_OK);
    EXPECT_EQ(m_store->del(document(changed)).status, STORE_OK);
    EXPECT_EQ(m_store->del(document(changed)).status, STORE_OK) << "gone already";
    EXPECT_EQ(m_store->update(document(changed)).status, STORE_NO_SUCH_ROW);
    EXPECT_EQ(found(CEventLog::TableName), "EventLog 1, EventLog 3");
    EXPECT_EQ(found(CEventLog::TableName, "Name <> 'first'"), "");

    // A number is not given out again.
    CZor last;
    add(last.m_vEventLog, 3).setFromDb();
    ASSERT_TRUE(m_store->del(document(last)).ok());
    CZor another;
    add(another.m_vEventLog, 1);
    EXPECT_EQ(contents(m_store->insert(document(another)).reply), "EventLog 4");
}

TEST_F(ChangesTest, ATransactionIsAllOrNothing) {
    CZor old;
    addTask(old, 1, 2);
    ASSERT_TRUE(m_store->insert(document(old)).ok());

    CZor inserted;
    addTask(inserted, 5, 1);
    CZor updated; // an old row that is to belong to the new task
    auto& map = add(updated.m_vDiskToDataStoreMap, 2);
    map.setFromDb();
    map.setP2VRestoreTaskId(5, false);
    CZor removed;
    add(removed.m_vP2VRestoreTask, 1).setFromDb();
    add(removed.m_vDiskToDataStoreMap, 1).setFromDb();

    CZor missing; // an update that can't be
    add(missing.m_vP2VRestoreTask, 99).setFromDb();
    EXPECT_EQ(transact(document(inserted), document(missing), document(removed)).status, STORE_NO_SUCH_ROW);
    EXPECT_EQ(transact(document(inserted), document(updated), {'<', 'x'}).status, STORE_BAD_DOCUMENT);
    EXPECT_EQ(m_store->transaction(document(inserted)).status, STORE_BAD_DOCUMENT) << "no transaction";
    EXPECT_EQ(found(CP2VRestoreTask::TableName), "P2VRestoreTask 1");
    EXPECT_EQ(found(CDiskToDataStoreMap::TableName), "DiskToDataStoreMap 1, DiskToDataStoreMap 2");

    const StoreResult result = transact(document(inserted), document(updated), document(removed));
    ASSERT_EQ(result.status, STORE_OK) << result.text;
    EXPECT_EQ(found(CP2VRestoreTask::TableName), "P2VRestoreTask 2");
    EXPECT_EQ(found(CDiskToDataStoreMap::TableName, "P2VRestoreTaskId = 2"),
              "DiskToDataStoreMap 2, DiskToDataStoreMap 3");
    EXPECT_EQ(found(CDiskToDataStoreMap::TableName, "Id > 3"), "");
    EXPECT_TRUE(transact({}, {}, {}).ok());
}

TEST_F(ChangesTest, LoadKeepsTheShapeWhateverTheFlags) {
    CZor rows;
    for (ID id = 100; id <= 101; ++id) {
        add(rows.m_vConfig, id);
        auto& system = add(rows.m_vSystem, id + 50);
        system.setConfigId(id, id == 100); // one reference from the database, one made up
        system.setHostname("host" + std::to_string(id));
    }
    rows.m_vConfig[1]->setFromDb();
    add(rows.m_vConfigPackage, 1).setPackageId(9); // outside the document
    const StoreResult result = m_store->load(rows);
    ASSERT_TRUE(result.ok());
    EXPECT_NE(result.text.find("1 reference"), std::string::npos) << result.text;
    EXPECT_EQ(rows.m_vSystem[1]->getConfigId(), 2U);
    EXPECT_EQ(found(CSystem::TableName, "ConfigId = 2 AND Hostname = 'host101'"), "System 2");
    EXPECT_EQ(found(CConfigPackage::TableName, "PackageId = 0"), "ConfigPackage 1");
}

TEST_F(ChangesTest, ProfilesAreFoundAndDeletedByName) {
    CZor rows;
    add(rows.m_vVmwareProfileOptions, 1).setProfileName("Profile'; --");
    add(rows.m_vVmwareProfileOptions, 2).setProfileName("used");
    add(rows.m_vP2VRestoreTask, 1).setProfileName("Used");
    ASSERT_TRUE(m_store->load(rows).ok());
    EXPECT_EQ(m_store->findProfile("profile'; --")->getId(), 1U);
    EXPECT_EQ(m_store->findProfile(ID{2})->getProfileName(), "used");
    EXPECT_EQ(m_store->findTask(1)->getProfileName(), "Used");
    EXPECT_FALSE(m_store->findTask(2));
    EXPECT_EQ(m_store->deleteProfile("PROFILE'; --").status, STORE_OK);
    EXPECT_EQ(m_store->deleteProfile("profile'; --").status, STORE_NO_SUCH_ROW);
    EXPECT_EQ(m_store->deleteProfile("used").status, STORE_IN_USE);
    EXPECT_TRUE(m_store->findProfile("used"));
}

} // namespace
} // namespace Zorvane
