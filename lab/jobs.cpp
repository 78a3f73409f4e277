// SPDX-License-Identifier: Apache-2.0
#include "lab/jobs.h"

#include "lab/rows.h"
#include "lab/schema.h"
#include "model/task_records.h"

#include <string>

namespace Zorvane {

namespace {

const std::string SUBMITTED = SUBMITTED_JOBS;

// The columns that a log table has in common with the table whose rows move to it.
std::string commonColumns(const TableDescriptor& log, const TableDescriptor& table) {
    std::string columns;
    for (const Field& field : log.fields)
        if (field.kind != FieldKind::Id && table.find(field.name))
            appendItem(columns, quotedName(field.name));
    return columns;
}

void moveToLog(Database& database, ID id, std::int64_t now) {
    using Task = CP2VRestoreTask;
    using TaskLog = CP2VRestoreTaskLog;
    using Map = CDiskToDataStoreMap;
    using MapLog = CDiskToDataStoreMapLog;
    const std::string taskColumns = commonColumns(TaskLog::table(), Task::table());
    const std::string mapColumns = commonColumns(MapLog::table(), Map::table());
    database
        .kept("INSERT INTO " + std::string(TaskLog::TableName) + '(' + taskColumns +
              ",Status,EndTime) SELECT " + taskColumns + ",0,?2 FROM " + Task::TableName + " WHERE Id=?1")
        ->with(id, now)
        .step();
    database
        .kept("INSERT INTO " + std::string(MapLog::TableName) + '(' + mapColumns +
              ",P2VRestoreTaskLogId) SELECT " + mapColumns + ",?2 FROM " + Map::TableName +
              " WHERE P2VRestoreTaskId=?1 ORDER BY Id")
        ->with(id, database.lastInsertedId())
        .step();
    database.kept("DELETE FROM " + std::string(Map::TableName) + " WHERE P2VRestoreTaskId=?1")
        ->with(id)
        .step();
    deleteRow(database, Task::table(), id);
}

} // namespace

bool submitTask(Database& database, ID id) {
    database
        .kept("INSERT OR IGNORE INTO " + SUBMITTED + " SELECT Id FROM " + CP2VRestoreTask::TableName +
              " WHERE Id=?1")
        ->with(id)
        .step();
    const KeptStatement known = database.kept("SELECT 1 FROM " + SUBMITTED + " WHERE TaskId=?1");
    return known->with(id).step();
}

std::vector<ID> submittedTasks(Database& database) {
    Statement statement = database.prepare("SELECT TaskId FROM " + SUBMITTED + " ORDER BY TaskId");
    std::vector<ID> ids;
    while (statement.step())
        ids.push_back(static_cast<ID>(statement.integer(0)));
    return ids;
}

bool advanceTask(Database& database, ID id, std::int64_t now) {
    const auto found = selectRecords<CP2VRestoreTask>(
        database, " WHERE Id=?1 AND Id IN (SELECT TaskId FROM " + SUBMITTED + ")", id);
    const TaskState state = found.empty() ? TaskState::EMPTY : found.front().getState();
    if (!found.empty() && state != TaskState::DONE) {
        CP2VRestoreTask task = found.front();
        const bool isRunning = state == TaskState::ACTIVE;
        task.setState(isRunning ? TaskState::DONE : TaskState::ACTIVE);
        task.setOperation(isRunning ? TaskSubState::FINALIZING : TaskSubState::VM_CREATING);
        updateRow(database, CP2VRestoreTask::table(), task);
        return true;
    }
    if (!found.empty())
        moveToLog(database, id, now);
    database.kept("DELETE FROM " + SUBMITTED + " WHERE TaskId=?1")->with(id).step();
    return false;
}

} // namespace Zorvane
