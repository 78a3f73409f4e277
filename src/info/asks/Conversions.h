// SPDX-License-Identifier: Apache-2.0
// Conversions that were recorded: those that run, and those that are over.
#pragma once

#include "model/task_records.h"

#include <string>
#include <vector>

namespace Zorvane {

struct Conversions {
    std::vector<CP2VRestoreTask> running;     ///< the oldest first; zorb2v refuses a client that has one
    std::vector<CP2VRestoreTaskLog> finished; ///< the last one to end first
};

/// Those of a client, whatever its case, or of all if it is empty. Throws InfoFailure.
std::vector<CP2VRestoreTask> runningConversions(const std::string& client);
Conversions allConversions(const std::string& client);
/// The newest log entry of a task that is gone from the running ones; null if there is none.
const CP2VRestoreTaskLog* logOf(const CP2VRestoreTask& task, const std::vector<CP2VRestoreTaskLog>& finished);

/// Whether there is still something to wait for: a task that failed stays until somebody takes it away.
bool isUnderWay(const CP2VRestoreTask& task);

/// "alpha/current"
template <class Task>
std::string taskName(const Task& task) {
    return task.getClientName() + "/" + task.getConfigName();
}
/// "done", or "failed (status 5)".
std::string resultOf(const CP2VRestoreTaskLog& log);

} // namespace Zorvane
