// SPDX-License-Identifier: Apache-2.0
// What one request may take of the machine while it reads.
#pragma once

#include "lab/Database.h"
#include "lab/RowAllowance.h"

#include <chrono>
#include <cstddef>

namespace Zorvane {

/// Stands for the length of a request on a connection: statements that run on this thread end with a
/// DatabaseError whose isLimit() is true once the processor time is used up or the client is gone. Processor
/// time, so that a busy machine refuses no query.
class RequestBudget {
  public:
    RequestBudget(Database& database, std::chrono::nanoseconds time, std::size_t bytes,
                  const LargeTurn& turn = always, IsGone isGone = never);
    RequestBudget(const RequestBudget&) = delete;
    RequestBudget& operator=(const RequestBudget&) = delete;
    ~RequestBudget();

    /// Throws RequestError when that is so: before each statement, since the library counts the
    /// steps of every statement by itself, and a short one has too few for a look at the clock.
    void check() const;
    /// Throws RequestError when the rows have become too many, and TurnNeeded when they need a turn that
    /// isn't free.
    void takeBytes(std::size_t bytes) { m_rows.take(bytes); }

  private:
    [[nodiscard]] bool isSpent() const;

    Database& m_database;
    std::chrono::nanoseconds m_deadline;
    RowAllowance m_rows;
    IsGone m_isGone;
};

} // namespace Zorvane
