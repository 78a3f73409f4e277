// SPDX-License-Identifier: Apache-2.0
#include "info/asks/Conversions.h"

#include "info/asks/recoveryQueries.h"
#include "resources/sqlConditions.h"

#include <algorithm>

namespace Zorvane {

std::vector<CP2VRestoreTask> runningConversions(const std::string& client) {
    std::vector<CP2VRestoreTask> running =
        queryRows(&CZor::m_vP2VRestoreTask,
                  client.empty() ? "" : equalsIgnoringCase(CP2VRestoreTask::Column::ClientName, client),
                  "the running conversions");
    std::stable_sort(running.begin(), running.end(),
                     [](const auto& a, const auto& b) { return a.getCreateTime() < b.getCreateTime(); });
    return running;
}

Conversions allConversions(const std::string& client) {
    Conversions conversions;
    // In this order, so that a task that ends meanwhile is not missed in both.
    conversions.running = runningConversions(client);
    conversions.finished =
        queryRows(&CZor::m_vP2VRestoreTaskLog,
                  client.empty() ? "" : equalsIgnoringCase(CP2VRestoreTaskLog::Column::ClientName, client),
                  "the finished conversions");
    std::stable_sort(conversions.finished.begin(), conversions.finished.end(),
                     [](const auto& a, const auto& b) { return a.getEndTime() > b.getEndTime(); });
    std::erase_if(conversions.running,
                  [&](const auto& task) { return logOf(task, conversions.finished) != nullptr; });
    return conversions;
}

const CP2VRestoreTaskLog* logOf(const CP2VRestoreTask& task,
                                const std::vector<CP2VRestoreTaskLog>& finished) {
    const auto log = std::find_if(finished.begin(), finished.end(), [&](const CP2VRestoreTaskLog& each) {
        return taskName(each) == taskName(task) && each.getCreateTime() == task.getCreateTime();
    });
    return log == finished.end() ? nullptr : &*log;
}

bool isUnderWay(const CP2VRestoreTask& task) {
    return task.getOperation() != TaskSubState::FAILED &&
           task.getOperation() != TaskSubState::RESTORE_ABORTED;
}

std::string resultOf(const CP2VRestoreTaskLog& log) {
    return log.getStatus() == 0 ? "done" : "failed (status " + std::to_string(log.getStatus()) + ")";
}

} // namespace Zorvane
