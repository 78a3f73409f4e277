// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace Mirathi::L10N {

/// One value of a log statement, borrowed from the caller for the length of the statement.
class LogValue {
  public:
    enum class Kind { Null, Text, Signed, Unsigned };

    LogValue(std::nullptr_t) noexcept {}
    LogValue(const char* text) noexcept
        : m_kind(text ? Kind::Text : Kind::Null),
          m_text(text ? std::string_view(text) : std::string_view()) {}
    LogValue(const unsigned char* text) noexcept : LogValue(reinterpret_cast<const char*>(text)) {}
    LogValue(std::string_view text) noexcept : m_kind(Kind::Text), m_text(text) {}
    LogValue(const std::string& text) noexcept : m_kind(Kind::Text), m_text(text) {}
    LogValue(std::signed_integral auto value) noexcept
        : m_kind(Kind::Signed), m_bits(static_cast<std::uint64_t>(static_cast<std::int64_t>(value))) {}
    LogValue(std::unsigned_integral auto value) noexcept : m_kind(Kind::Unsigned), m_bits(value) {}

    [[nodiscard]] Kind kind() const noexcept { return m_kind; }
    [[nodiscard]] std::string_view text() const noexcept { return m_text; }
    [[nodiscard]] std::uint64_t number() const noexcept { return m_bits; }

  private:
    Kind m_kind = Kind::Null;
    std::string_view m_text;
    std::uint64_t m_bits = 0;
};

} // namespace Mirathi::L10N
