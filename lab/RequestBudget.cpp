// SPDX-License-Identifier: Apache-2.0
#include "lab/RequestBudget.h"

#include <ctime>
#include <utility>

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
                             const LargeTurn& turn, IsGone isGone)
    : m_database(database),
      m_deadline(processorTime() + time),
      m_rows(bytes, turn, Wait::No),
      m_isGone(std::move(isGone)) {
    const auto look = [](void* self) { return static_cast<const RequestBudget*>(self)->isSpent() ? 1 : 0; };
    sqlite3_progress_handler(database.handle(), STEPS_PER_LOOK, look, this);
}

RequestBudget::~RequestBudget() {
    sqlite3_progress_handler(m_database.handle(), 0, nullptr, nullptr);
}

void RequestBudget::check() const {
    if (isSpent())
        throw RequestError(STORE_TOO_MUCH, "the time for the request is used up, or its client is gone");
}

bool RequestBudget::isSpent() const {
    return processorTime() > m_deadline || m_isGone();
}

} // namespace Zorvane
