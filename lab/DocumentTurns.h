// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lab/Connection.h"
#include "lab/Store.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string_view>
#include <vector>

namespace Zorvane {

/// Keeps the memory of a lab in bounds: a document of small elements takes fifty times its size while it is
/// worked on, and every connection may send one or ask for one. Few large ones are held, fewer are worked on,
/// by turns; small ones, which nearly all are, go straight on.
class DocumentTurns {
  public:
    static constexpr std::size_t SMALL = std::size_t{256} << 10;
    static constexpr std::size_t AT_ONCE = 2;
    static constexpr std::size_t HELD = 8;
    /// So many wait for a room or a turn; one more is refused, so that some places are left for small
    /// requests.
    static constexpr std::size_t WAITING = 54;
    /// What takes the memory is the elements. Rows have one in twenty bytes and more.
    static constexpr std::ptrdiff_t MAX_TAGS = 1'000'000;
    static constexpr std::ptrdiff_t SMALL_TAGS = SMALL / 16;

    [[nodiscard]] static bool isTooFull(std::string_view document) { return hasMore(document, MAX_TAGS); }
    /// Whether a document is worked on in a turn only.
    [[nodiscard]] static bool isLarge(std::string_view document) {
        return document.size() > SMALL || hasMore(document, SMALL_TAGS);
    }

    /// Room for a document that is going to be read. There may be none, and then the peer is refused after a
    /// moment: waiting for slow peers would give them power over the others. One whose document doesn't come
    /// loses the connection meanwhile.
    class Room {
      public:
        Room(DocumentTurns& turns, Connection& connection, std::size_t size);
        Room(const Room&) = delete;
        Room& operator=(const Room&) = delete;
        ~Room();
        [[nodiscard]] bool isGranted() const { return m_granted; }

      private:
        DocumentTurns& m_turns;
        Connection& m_connection;
        const bool m_isNeeded;
        const bool m_granted;
    };

    /// A connection's turn, once it is taken, until the end of the scope: from the rows to the last byte of
    /// their reply. Whoever keeps others waiting with a peer that doesn't take its reply loses the
    /// connection.
    class Turn {
      public:
        Turn(DocumentTurns& turns, Connection& connection) : m_turns(turns), m_connection(connection) {}
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn();
        /// True if it has one, now or already; false if it may not wait, if too many wait, or if the
        /// connection is cut meanwhile.
        [[nodiscard]] bool take(Wait wait);

      private:
        DocumentTurns& m_turns;
        Connection& m_connection;
        bool m_taken = false;
    };

  private:
    [[nodiscard]] static bool hasMore(std::string_view document, std::ptrdiff_t tags);
    struct Places {
        std::size_t count;
        std::vector<Connection*> taken{};
    };
    [[nodiscard]] bool enter(Places& places, Connection& connection, std::chrono::milliseconds patience);
    void leave(Places& places, const Connection& connection);

    std::mutex m_lock;
    std::condition_variable m_left;
    Places m_held{HELD};
    Places m_working{AT_ONCE};
    std::size_t m_waiting = 0;
};

} // namespace Zorvane
