// SPDX-License-Identifier: Apache-2.0
// The text fields of packets.
#pragma once

#include "ops/pack.h"

#include <array>
#include <string_view>

namespace Zorvane {

/// One text. `Bound` is what a sender keeps to, the NUL included, but nothing holds a peer to it: the storage
/// takes whatever the budget of a packet lets through. So records are larger in memory than their bounds add
/// up to, and the maxima for RecvPacket are constants of the records and not their sizes in memory.
template <std::size_t Bound>
struct TextSlot {
    std::array<char, PACKET_BUFFER_SIZE> text{};

    /// A text that is too long is cut.
    void set(std::string_view value) { text[value.copy(text.data(), Bound - 1)] = '\0'; }
    [[nodiscard]] const char* c_str() const { return text.data(); }
    [[nodiscard]] PacketField field() { return text.data(); }
};

inline constexpr std::size_t PARAMETER_AREA_SIZE = 4060;

/// A run of texts, one behind the other, each with its NUL. On the wire an empty text ends it.
using ParameterArea = TextSlot<PARAMETER_AREA_SIZE>;

/// Fills an empty area from its start. What does not fit is cut.
class ParameterWriter {
  public:
    explicit ParameterWriter(ParameterArea& area) : m_area(area) {}

    void append(std::string_view value) {
        if (m_used < PARAMETER_AREA_SIZE)
            value.copy(m_area.text.data() + m_used, PARAMETER_AREA_SIZE - m_used - 1);
        m_used += value.size() + 1;
    }

  private:
    ParameterArea& m_area;
    std::size_t m_used = 0; ///< by the texts as they came, cut or not
};

} // namespace Zorvane
