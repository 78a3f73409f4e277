// SPDX-License-Identifier: Apache-2.0
// One accepted connection, as the thread that serves it sees it: blocking calls under a time limit.
#pragma once

#include "suite/descriptor.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Zorvane {

class Connection {
  public:
    using Clock = std::chrono::steady_clock;

    /// Takes the descriptor over. There is no time limit until allow() sets one.
    explicit Connection(int descriptor) : m_descriptor(descriptor) {}

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }

    /// What follows has this long in all, however it is split up; the calls fail behind it. Whoever watches
    /// the connection sees to it (the calls themselves would wait for a byte without end).
    void allow(std::chrono::milliseconds time) {
        m_deadline = m_deadlineIfOthersWait = (Clock::now() + time).time_since_epoch().count();
    }
    /// With a shorter time for when others wait for a place. From then on, it also is what the peer has for
    /// each piece of a document that is read or written, if others wait.
    void allow(std::chrono::milliseconds time, std::chrono::milliseconds timeIfOthersWait) {
        m_pieceTime = timeIfOthersWait;
        m_deadline = (Clock::now() + time).time_since_epoch().count();
        m_deadlineIfOthersWait = (Clock::now() + timeIfOthersWait).time_since_epoch().count();
    }
    [[nodiscard]] bool isOverdue(Clock::time_point now, bool othersWait) const {
        const Clock::rep deadline =
            othersWait ? std::min(m_deadline.load(), m_deadlineIfOthersWait.load()) : m_deadline.load();
        return now.time_since_epoch().count() > deadline;
    }
    /// Waits, or until the connection is cut; its time limit is so much later.
    void pause(std::chrono::milliseconds time);
    /// Makes every call fail from now on. The one operation for other threads than the one that serves.
    void cut();
    [[nodiscard]] bool isCut() const { return m_isCut; }

    /// A line without its line feed; nothing at the end of the stream or if it is longer than a line may be.
    std::optional<std::string> readLine();
    /// Exactly that many bytes, or nothing.
    std::optional<std::string> read(std::size_t count);
    /// Adds what comes until the end of the stream; false, and not all of it, once there are more bytes than
    /// that.
    bool readToEnd(std::string& bytes, std::size_t most);
    bool write(std::string_view bytes);
    /// What is sent from now on goes out in as few pieces as it fits, the last of them with finish().
    void gather();
    /// Waits for the end of the stream, however long it takes.
    void waitForPeer();
    /// Ends the answer and waits a moment for the peer to take it: a connection that is closed with unread
    /// input loses what was sent last.
    void finish();

  private:
    void awaitPiece();
    void endWait() { m_deadlineIfOthersWait = m_deadline.load(); }
    void discardToEnd();

    static constexpr Clock::rep NEVER = Clock::duration::max().count();

    Suite::Descriptor m_descriptor;
    std::atomic<Clock::rep> m_deadline = NEVER;
    std::atomic<Clock::rep> m_deadlineIfOthersWait = NEVER;
    std::chrono::milliseconds m_pieceTime = std::chrono::hours(24);
    std::atomic<bool> m_isCut = false;
};

} // namespace Zorvane
