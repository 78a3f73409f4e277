// SPDX-License-Identifier: Apache-2.0
// Plays the servers that run submitted conversions: takes each task through its states at a steady pace.
#pragma once

#include "lab/Store.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace Zorvane {

class JobRunner {
  public:
    using Report = std::function<void(const std::string& text)>;

    /// Starts with the tasks that an earlier process left. A task stands in each state for the time of
    /// `pace`. `report` is told of a database failure, on the runner's thread; the step is tried again a pace
    /// later. Jobs end at the time of `clock`, seconds since 1970; without one at the machine's.
    JobRunner(Store& store, std::chrono::milliseconds pace, Report report = {},
              std::optional<std::int64_t> clock = {});
    JobRunner(const JobRunner&) = delete;
    JobRunner& operator=(const JobRunner&) = delete;
    /// Waits for a step under way, not for the jobs: the next process takes them up.
    ~JobRunner();

    /// Takes a task on; it is kept in the database before this returns. STORE_NO_SUCH_ROW if there is none.
    StoreResult submit(ID task);

  private:
    using Clock = std::chrono::steady_clock;

    void run(const std::stop_token& stop);

    Store& m_store;
    const std::chrono::milliseconds m_pace;
    const Report m_report;
    const std::optional<std::int64_t> m_clock;
    std::mutex m_lock;
    std::condition_variable_any m_wake;
    std::map<ID, Clock::time_point> m_due; ///< when each task takes its next step
    std::jthread m_thread;                 ///< last: stopped before the rest goes
};

} // namespace Zorvane
