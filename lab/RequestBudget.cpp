// SPDX-License-Identifier: Apache-2.0
#include "lab/RequestBudget.h"

#include <ctime>

#include <sqlite3.h>

namespace Zorvane {

namespace {

// Steps of SQLite's machine between two looks at the clock, which cost about as much as twenty steps.
constexpr int STEPS_PER_LOOK = 1000;

std::chrono::nanoseconds processorTime() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

} // namespace

RequestBudget::RequestBudget(Database& database, std::chrono::nanoseconds time, std::size_t bytes,
                             const LargeTurn& turn)
    : m_database(database), m_deadline(processorTime() + time), m_rows(bytes, turn, Wait::No) {
    sqlite3_progress_handler(database.handle(), STEPS_PER_LOOK, isSpent, this);
}

RequestBudget::~RequestBudget() {
    sqlite3_progress_handler(m_database.handle(), 0, nullptr, nullptr);
}

int RequestBudget::isSpent(void* self) {
    return processorTime() > static_cast<const RequestBudget*>(self)->m_deadline ? 1 : 0;
}

} // namespace Zorvane
