// SPDX-License-Identifier: Apache-2.0
// Characters of texts in UTF-8, and texts that come into it or leave it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Zorvane::Suite {

/// What stands at a place of a text: a character, or a byte that is none of UTF-8.
struct Utf8Character {
    char32_t code = 0;      ///< the byte, if it is no character
    std::size_t length = 1; ///< bytes
    bool isValid = false;   ///< well-formed: of the shortest form, no surrogate, not beyond the last code
};

/// `at` has to lie within the text.
[[nodiscard]] Utf8Character utf8CharacterAt(std::string_view text, std::size_t at);

/// A byte behind the first one of a character.
[[nodiscard]] constexpr bool isUtf8Continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The text in another code set, by iconv's names of them. Nothing if it isn't in the first, if the second
/// has no such character or only a similar one, or if either is unknown.
[[nodiscard]] std::optional<std::string> inCodeSet(std::string_view text, const char* from, const char* to);

} // namespace Zorvane::Suite
