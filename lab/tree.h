// SPDX-License-Identifier: Apache-2.0
// Queries by tree: a row and all that hangs from it.
#pragma once

#include "lab/Database.h"
#include "lab/RequestBudget.h"
#include "model/CZor.h"
#include "model/TableDescriptor.h"

namespace Zorvane {

/// Adds the row of that Id, every row that refers to it, directly or through others, and the file contents,
/// packages and device identifiers that these name. The latter are shared by configurations: what refers to
/// them is not followed from there. The rows of each table are in order of Id.
void selectTree(Database& database, const TableDescriptor& table, ID id, RequestBudget& budget, CZor& reply);

} // namespace Zorvane
