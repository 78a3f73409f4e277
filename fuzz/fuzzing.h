// SPDX-License-Identifier: Apache-2.0
// What the targets share: their input as text, cut where they need it, and what must hold of a result.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane::Fuzz {

/// The bytes of one run, taken from the front.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}

    /// A choice among `count`; 0 at the end.
    unsigned choice(unsigned count) {
        if (m_rest.empty())
            return 0;
        const auto byte = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte % count;
    }
    /// The text up to a line feed, which is dropped, or to the end.
    std::string line() {
        const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
        const std::string taken(m_rest.substr(0, end));
        m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
        return taken;
    }
    std::vector<std::string> lines() {
        std::vector<std::string> all;
        while (!m_rest.empty())
            all.push_back(line());
        return all;
    }
    [[nodiscard]] std::string rest() const { return std::string(m_rest); }

  private:
    std::string_view m_rest;
};

/// A finding, if it does not hold.
inline void require(bool holds) {
    if (!holds)
        __builtin_trap();
}

} // namespace Zorvane::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
