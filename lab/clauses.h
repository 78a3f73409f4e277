// SPDX-License-Identifier: Apache-2.0
// Queries by clause: SQL that clients write, on connections that can do nothing but read rows.
#pragma once

#include "lab/Database.h"
#include "lab/RequestBudget.h"
#include "model/CZor.h"

namespace Zorvane {

/// Makes a connection one for readers, for good: from here on it compiles reads of ZorDba's tables with plain
/// functions and nothing else. No write, no other schema, no pragma, attachment or extension.
void restrictToReading(Database& database);

/// Adds the rows that a query's clauses select: for each table whose columns are selected, the fields that
/// are. A row stands in the reply once, if its Id is among them. Throws RequestError.
void selectByClauses(Database& database, const CQueryRequest& query, RequestBudget& budget, CZor& reply);

} // namespace Zorvane
