// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

namespace Zorvane {

/// Draws that are the same for a seed on every machine, which the library's distributions are not.
class Dice {
  public:
    explicit Dice(std::uint64_t seed) : m_engine(seed) {}

    /// From 0 to one less than the sides.
    std::size_t roll(std::size_t sides) { return static_cast<std::size_t>(m_engine() % sides); }
    template <class Value, std::size_t Count>
    const Value& pick(const std::array<Value, Count>& values) {
        return values[roll(Count)];
    }

  private:
    std::mt19937_64 m_engine;
};

} // namespace Zorvane
