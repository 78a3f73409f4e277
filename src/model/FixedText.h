// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Zorvane {

/// A text that is known at compile time and can be a template's argument.
template <std::size_t N>
struct FixedText {
    char chars[N]{};

    constexpr FixedText() = default;
    constexpr FixedText(const char (&literal)[N]) { std::copy_n(literal, N, chars); }

    constexpr operator std::string_view() const { return {chars, N - 1}; }
    operator std::string() const { return {chars, N - 1}; }
    [[nodiscard]] constexpr const char* c_str() const { return chars; }
};

template <std::size_t A, std::size_t B>
constexpr auto operator+(const FixedText<A>& left, const FixedText<B>& right) {
    FixedText<A + B - 1> joined;
    std::copy_n(left.chars, A - 1, joined.chars);
    std::copy_n(right.chars, B, joined.chars + A - 1);
    return joined;
}

} // namespace Zorvane
