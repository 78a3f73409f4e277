// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lab/Connection.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <semaphore>
#include <string_view>

namespace Zorvane {

/// Keeps the memory of a lab in bounds: a document of small elements takes fifty times its size while it is
/// worked on, and every connection may send one. Few large ones are held, fewer are worked on, by turns;
/// small ones, which nearly all are, go straight on.
class DocumentTurns {
  public:
    static constexpr std::size_t SMALL = std::size_t{256} << 10;
    static constexpr std::ptrdiff_t AT_ONCE = 2;
    static constexpr std::ptrdiff_t HELD = 8;
    /// What takes the memory is the elements. Rows have one in twenty bytes and more.
    static constexpr std::ptrdiff_t MAX_TAGS = 1'000'000;

    [[nodiscard]] static bool isTooFull(std::string_view document) {
        return std::count(document.begin(), document.end(), '<') > MAX_TAGS;
    }

    /// Room for a document that is going to be read. There may be none, and then the peer is refused: waiting
    /// for slow peers would give them power over the others.
    class Room {
      public:
        Room(DocumentTurns& turns, std::size_t size)
            : m_room(size > SMALL ? &turns.m_room : nullptr), m_granted(!m_room || m_room->try_acquire()) {}
        Room(const Room&) = delete;
        Room& operator=(const Room&) = delete;
        ~Room() {
            if (m_room && m_granted)
                m_room->release();
        }
        [[nodiscard]] bool isGranted() const { return m_granted; }

      private:
        std::counting_semaphore<HELD>* m_room;
        bool m_granted;
    };

    /// Waits for a turn, and has it until the end of the scope. Not to be held while a peer is waited for.
    class Turn {
      public:
        Turn(DocumentTurns& turns, std::size_t size, const Connection& connection)
            : m_free(size > SMALL ? &turns.m_free : nullptr) {
            // In steps, so that a connection that is cut gives up.
            while (m_free && !m_free->try_acquire_for(std::chrono::milliseconds(100)))
                if (connection.isCut()) {
                    m_free = nullptr;
                    m_granted = false;
                }
        }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn() {
            if (m_free)
                m_free->release();
        }
        /// False if the connection was cut before its turn came.
        [[nodiscard]] bool isGranted() const { return m_granted; }

      private:
        std::counting_semaphore<AT_ONCE>* m_free;
        bool m_granted = true;
    };

  private:
    std::counting_semaphore<HELD> m_room{HELD};
    std::counting_semaphore<AT_ONCE> m_free{AT_ONCE};
};

} // namespace Zorvane
