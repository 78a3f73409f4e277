// SPDX-License-Identifier: Apache-2.0
// What the rows of one request may take. A few thousand rows are free for everyone; more of them need a turn,
// which few requests have at the same time, since rows, their tree and their document take twenty times what
// the rows themselves do.
#pragma once

#include "lab/RequestError.h"
#include "lab/Store.h"

#include <cstddef>
#include <utility>

namespace Zorvane {

/// There may be a turn later. Whoever meets it lets go of what others need, waits for the turn, and begins
/// again.
struct TurnNeeded {};

class RowAllowance {
  public:
    /// What the rows of a request take without a turn, by their sizeOf.
    static constexpr std::size_t SMALL = std::size_t{256} << 10;

    static constexpr const char* NO_TURN = "there are too many large requests";

    RowAllowance(std::size_t most, LargeTurn turn, Wait wait)
        : m_most(most), m_turn(std::move(turn)), m_wait(wait) {}

    /// Throws RequestError when the rows have become too many, and TurnNeeded when it may not wait.
    void take(std::size_t bytes) {
        m_taken += bytes;
        if (m_taken > m_most)
            throw RequestError(STORE_TOO_MUCH, "the rows are too many");
        if (m_taken <= SMALL || m_hasTurn)
            return;
        m_hasTurn = m_turn(m_wait);
        if (!m_hasTurn && m_wait == Wait::No)
            throw TurnNeeded();
        if (!m_hasTurn)
            throw RequestError(STORE_TOO_MUCH, NO_TURN);
    }

  private:
    std::size_t m_most;
    LargeTurn m_turn;
    Wait m_wait;
    std::size_t m_taken = 0;
    bool m_hasTurn = false;
};

} // namespace Zorvane
