// SPDX-License-Identifier: Apache-2.0
// Rows of the recovery database, or the reason why there are none.
#pragma once

#include "info/Session.h"
#include "model/CZor.h"

#include <string>
#include <vector>

namespace Zorvane {

/// The host whose daemons are asked, for texts: the master server of the suite's configuration.
std::string masterServerName();

/// Throws InfoFailure for a code of a request that is not 0. `what` was asked for: "the configurations".
void requireAnswer(int code, const std::string& what);

/// The rows that a condition selects, or all of them if it is empty. Throws InfoFailure.
template <class Record>
std::vector<Record> queryRows(RecordRows<Record> CZor::*rows, const std::string& condition,
                              const std::string& what) {
    CZor zor;
    const std::string all = std::string(Record::Column::Id) + " > 0";
    requireAnswer(zor.queryRequest("*", Record::TableName, condition.empty() ? all : condition), what);
    std::vector<Record> found;
    for (const Record* row : zor.*rows)
        if (row)
            found.push_back(*row);
    return found;
}

/// Ends the run for a client that nobody knows, with the names nearest to it. To be called when nothing was
/// found; returns if the client has a configuration.
void requireClient(const std::string& client);

} // namespace Zorvane
