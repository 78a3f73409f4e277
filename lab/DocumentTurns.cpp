// SPDX-License-Identifier: Apache-2.0
#include "lab/DocumentTurns.h"

#include <algorithm>

#include <malloc.h>

namespace Zorvane {

namespace {

// How often a waiting connection looks whether it is cut, or for whom it waits.
constexpr std::chrono::milliseconds LOOK_INTERVAL{100};
// Longer than a peer gets for a piece of its document when others wait: a silent one has gone by then.
constexpr std::chrono::milliseconds ROOM_PATIENCE{3000};
constexpr std::chrono::milliseconds NO_PATIENCE{0};
constexpr std::chrono::milliseconds UNTIL_CUT = std::chrono::hours(24);

} // namespace

bool DocumentTurns::hasMore(std::string_view document, std::ptrdiff_t tags) {
    return document.size() > static_cast<std::size_t>(tags) &&
           std::count(document.begin(), document.end(), '<') > tags;
}

DocumentTurns::Room::Room(DocumentTurns& turns, Connection& connection, std::size_t size)
    : m_turns(turns),
      m_connection(connection),
      m_isNeeded(size > SMALL),
      m_granted(!m_isNeeded || turns.enter(turns.m_held, connection, ROOM_PATIENCE)) {}

DocumentTurns::Room::~Room() {
    if (m_isNeeded && m_granted)
        m_turns.leave(m_turns.m_held, m_connection);
}

bool DocumentTurns::Turn::take(Wait wait) {
    m_taken = m_taken ||
              m_turns.enter(m_turns.m_working, m_connection, wait == Wait::Yes ? UNTIL_CUT : NO_PATIENCE);
    return m_taken;
}

DocumentTurns::Turn::~Turn() {
    if (!m_taken)
        return;
    ::malloc_trim(0); // the next one's memory may be another thread's, which this thread's would add to
    m_turns.leave(m_turns.m_working, m_connection);
}

bool DocumentTurns::enter(Places& places, Connection& connection, std::chrono::milliseconds patience) {
    using Clock = Connection::Clock;
    std::unique_lock lock(m_lock);
    const auto isFree = [&] { return places.taken.size() < places.count; };
    if (!isFree() && (patience == NO_PATIENCE || m_waiting >= WAITING))
        return false;
    ++m_waiting;
    const Clock::time_point end = Clock::now() + patience;
    while (!m_left.wait_for(lock, LOOK_INTERVAL, isFree) && !connection.isCut() && Clock::now() < end)
        for (Connection* other : places.taken)
            if (other->isOverdue(Clock::now(), true))
                other->cut();
    --m_waiting;
    if (!isFree())
        return false;
    places.taken.push_back(&connection);
    return true;
}

void DocumentTurns::leave(Places& places, const Connection& connection) {
    {
        const std::lock_guard lock(m_lock);
        std::erase(places.taken, &connection);
    }
    m_left.notify_all(); // some wait for a room, some for a turn
}

} // namespace Zorvane
