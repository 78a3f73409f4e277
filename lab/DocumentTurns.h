// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <semaphore>

namespace Zorvane {

/// Keeps the memory of a lab in bounds: a document of small elements takes fifty times its size while it is
/// worked on, and every connection may send one. Large ones are worked on by turns; small ones, which nearly
/// all are, go straight on.
class DocumentTurns {
  public:
    static constexpr std::size_t SMALL = std::size_t{256} << 10;
    static constexpr std::ptrdiff_t AT_ONCE = 2;

    /// Waits for a turn, and has it until the end of the scope. Not to be held while a peer is waited for.
    class Turn {
      public:
        Turn(DocumentTurns& turns, std::size_t size) : m_free(size > SMALL ? &turns.m_free : nullptr) {
            if (m_free)
                m_free->acquire();
        }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn() {
            if (m_free)
                m_free->release();
        }

      private:
        std::counting_semaphore<AT_ONCE>* m_free;
    };

  private:
    std::counting_semaphore<AT_ONCE> m_free{AT_ONCE};
};

} // namespace Zorvane
