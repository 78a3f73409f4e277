// SPDX-License-Identifier: Apache-2.0
#include "lab/JobRunner.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <utility>
#include <vector>

namespace Zorvane {

namespace {

constexpr std::chrono::milliseconds RETRY_WAIT{1000};

} // namespace

JobRunner::JobRunner(Store& store, std::chrono::milliseconds pace, Report report,
                     std::optional<std::int64_t> clock)
    : m_store(store), m_pace(pace), m_report(std::move(report)), m_clock(clock) {
    for (const ID task : store.submittedTasks())
        m_due.emplace(task, Clock::now() + pace);
    m_thread = std::jthread([this](const std::stop_token& stop) { run(stop); });
}

JobRunner::~JobRunner() = default;

StoreResult JobRunner::submit(ID task) {
    StoreResult result = m_store.submitTask(task);
    if (result.ok()) {
        const std::lock_guard lock(m_lock);
        m_due.try_emplace(task, Clock::now() + m_pace); // submitted again, it goes no faster
        m_wake.notify_one();
    }
    return result;
}

void JobRunner::run(const std::stop_token& stop) {
    std::unique_lock lock(m_lock);
    while (m_wake.wait(lock, stop, [this] { return !m_due.empty(); })) {
        // A task that comes meanwhile is due a pace from then, and that is later.
        const auto first = std::min_element(m_due.begin(), m_due.end(),
                                            [](const auto& a, const auto& b) { return a.second < b.second; });
        m_wake.wait_until(lock, stop, first->second, [] { return false; });
        if (stop.stop_requested())
            return;
        std::vector<ID> tasks;
        for (const auto& [task, due] : m_due)
            if (due <= Clock::now())
                tasks.push_back(task);
        lock.unlock();
        std::vector<ID> left = tasks;
        std::chrono::milliseconds wait = m_pace;
        try {
            left = m_store.advanceTasks(tasks, m_clock.value_or(std::time(nullptr)));
        } catch (const std::exception& error) {
            wait = std::max(m_pace, RETRY_WAIT);
            if (m_report)
                m_report(error.what());
        }
        lock.lock();
        for (const ID task : tasks)
            m_due.erase(task);
        for (const ID task : left)
            m_due.emplace(task, Clock::now() + wait);
    }
}

} // namespace Zorvane
