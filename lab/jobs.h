// SPDX-License-Identifier: Apache-2.0
// Submitted tasks in the database: each operation works in the write transaction that is under way.
#pragma once

#include "lab/Database.h"
#include "model/BaseTable.h"

#include <cstdint>
#include <vector>

namespace Zorvane {

/// False if there is no such task.
bool submitTask(Database& database, ID id);
std::vector<ID> submittedTasks(Database& database);
/// Takes a submitted task a step further, the last one being its move to the log with its disk map, where it
/// ended `now` (seconds since 1970). False if that was it, or if the task is gone.
bool advanceTask(Database& database, ID id, std::int64_t now);

} // namespace Zorvane
