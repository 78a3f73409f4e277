// SPDX-License-Identifier: Apache-2.0
#include "lab/DocumentTurns.h"

#include <algorithm>
#include <chrono>

#include <malloc.h>

namespace Zorvane {

namespace {

// How often a waiting connection looks whether it is cut, or for whom it waits.
constexpr std::chrono::milliseconds LOOK_INTERVAL{100};

} // namespace

bool DocumentTurns::hasMore(std::string_view document, std::ptrdiff_t tags) {
    return document.size() > static_cast<std::size_t>(tags) &&
           std::count(document.begin(), document.end(), '<') > tags;
}

bool DocumentTurns::Turn::take(Wait wait) {
    m_taken = m_taken || m_turns.enter(m_connection, wait);
    return m_taken;
}

DocumentTurns::Turn::~Turn() {
    if (!m_taken)
        return;
    ::malloc_trim(0); // the next one's memory may be another thread's, which this thread's would add to
    m_turns.leave(m_connection);
}

bool DocumentTurns::enter(Connection& connection, Wait wait) {
    std::unique_lock lock(m_lock);
    const auto isFree = [&] { return m_working.size() < AT_ONCE; };
    if (!isFree() && (wait == Wait::No || m_waiting >= WAITING))
        return false;
    ++m_waiting;
    while (!m_left.wait_for(lock, LOOK_INTERVAL, isFree) && !connection.isCut())
        for (Connection* working : m_working)
            if (working->isOverdue(Connection::Clock::now(), true))
                working->cut();
    --m_waiting;
    if (!isFree())
        return false;
    m_working.push_back(&connection);
    return true;
}

void DocumentTurns::leave(const Connection& connection) {
    {
        const std::lock_guard lock(m_lock);
        std::erase(m_working, &connection);
    }
    m_left.notify_one();
}

} // namespace Zorvane
