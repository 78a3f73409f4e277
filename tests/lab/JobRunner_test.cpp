// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/JobRunner.h"

namespace Zorvane {
namespace {

using std::chrono::milliseconds;

constexpr std::int64_t NOW = 1'800'000'000;

class JobRunnerTest : public StoreTest {
  protected:
    JobRunnerTest() {
        CZor rows;
        for (ID id = 1; id <= 2; ++id) {
            auto& task = add(rows.m_vP2VRestoreTask, id);
            task.setState(TaskState::QUEUED);
            task.setClientName("client" + std::to_string(id));
            task.setVmName("vm" + std::to_string(id));
            task.setCreateTime(1234);
            add(rows.m_vDiskToDataStoreMap, id).setP2VRestoreTaskId(id);
            rows.m_vDiskToDataStoreMap[id - 1]->setDiskName("disk" + std::to_string(id));
        }
        EXPECT_TRUE(m_store->load(rows).ok());
    }
    // Waits for the runner's thread, in a time that only a fault uses up.
    template <class Condition>
    static bool comesTrue(const Condition& condition) {
        for (int i = 0; i < 2000 && !condition(); ++i)
            std::this_thread::sleep_for(milliseconds(5));
        return condition();
    }
    void expectLogOf(ID task, bool atFixedTime = true) {
        const auto logs = m_store->taskLogs();
        ASSERT_EQ(logs.size(), 1U);
        EXPECT_EQ(logs[0].getVmName(), "vm" + std::to_string(task));
        EXPECT_EQ(logs[0].getState(), TaskState::DONE);
        EXPECT_EQ(logs[0].getStatus(), 0);
        EXPECT_EQ(logs[0].getCreateTime(), 1234);
        EXPECT_EQ(logs[0].getEndTime() == NOW, atFixedTime);
        EXPECT_GT(logs[0].getEndTime(), 1'700'000'000);
        EXPECT_EQ(found(CDiskToDataStoreMapLog::TableName,
                        "P2VRestoreTaskLogId=1 AND DiskName='disk" + std::to_string(task) + "'"),
                  "DiskToDataStoreMapLog 1");
        EXPECT_EQ(m_store->tasks().size(), 1U) << "the other task waits for its submission";
        EXPECT_EQ(found(CDiskToDataStoreMap::TableName), "DiskToDataStoreMap " + std::to_string(3 - task));
        EXPECT_TRUE(m_store->submittedTasks().empty());
    }
};

TEST_F(JobRunnerTest, ATaskGoesThroughItsStates) {
    EXPECT_TRUE(m_store->submitTask(2).ok());
    EXPECT_EQ(m_store->submitTask(9).status, STORE_NO_SUCH_ROW);
    EXPECT_EQ(m_store->findTask(2)->getState(), TaskState::QUEUED);
    for (const TaskState state : {TaskState::ACTIVE, TaskState::DONE}) {
        EXPECT_EQ(m_store->advanceTasks({1, 2}, NOW), std::vector<ID>{2}) << "1 was not submitted";
        EXPECT_EQ(m_store->findTask(2)->getState(), state);
    }
    EXPECT_TRUE(m_store->advanceTasks({2}, NOW).empty());
    expectLogOf(2);
}

TEST_F(JobRunnerTest, TakesSubmittedTasksToTheirEnd) {
    JobRunner runner(*m_store, milliseconds(5), {}, NOW);
    EXPECT_EQ(runner.submit(9).status, STORE_NO_SUCH_ROW);
    EXPECT_TRUE(runner.submit(1).ok());
    EXPECT_TRUE(runner.submit(1).ok());
    EXPECT_TRUE(comesTrue([&] { return !m_store->taskLogs().empty(); }));
    expectLogOf(1);
}

TEST_F(JobRunnerTest, TakesUpWhatAnEarlierProcessLeft) {
    {
        JobRunner runner(*m_store, std::chrono::hours(1));
        EXPECT_TRUE(runner.submit(2).ok());
    } // stops at once, with the job on its way
    EXPECT_EQ(m_store->findTask(2)->getState(), TaskState::QUEUED);
    open();
    const JobRunner runner(*m_store, milliseconds(0));
    EXPECT_TRUE(comesTrue([&] { return !m_store->taskLogs().empty(); }));
    expectLogOf(2, false);
}

TEST_F(JobRunnerTest, ATaskThatIsDeletedIsForgotten) {
    ASSERT_TRUE(m_store->submitTask(1).ok());
    CZor rows;
    add(rows.m_vP2VRestoreTask, 1).setFromDb();
    ASSERT_TRUE(m_store->del(document(rows)).ok());
    EXPECT_TRUE(m_store->advanceTasks({1}, NOW).empty());
    EXPECT_TRUE(m_store->submittedTasks().empty());
    EXPECT_TRUE(m_store->taskLogs().empty());
}

} // namespace
} // namespace Zorvane
