// SPDX-License-Identifier: Apache-2.0
#include "suite/utf8.h"

#include <iconv.h>

namespace Zorvane::Suite {

Utf8Character utf8CharacterAt(std::string_view text, std::size_t at) {
    static constexpr char32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000}; // by length
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x80)
        return {first, 1, true};
    const Utf8Character none{first, 1, false};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || length > text.size() - at)
        return none;
    char32_t code = first & (0xFFU >> (length + 1));
    for (const char next : text.substr(at + 1, length - 1)) {
        if (!isUtf8Continuation(next))
            return none;
        code = code << 6 | (static_cast<unsigned char>(next) & 0x3FU);
    }
    if (code < LEAST[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return none;
    return {code, length, true};
}

std::optional<std::string> inCodeSet(std::string_view text, const char* from, const char* to) {
    constexpr std::size_t MOST_GROWTH = 4; // of a byte
    const iconv_t conversion = ::iconv_open(to, from);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv's failure
    if (conversion == reinterpret_cast<iconv_t>(-1))
        return std::nullopt;
    std::string out(MOST_GROWTH * text.size(), '\0');
    char* input = const_cast<char*>(text.data()); // iconv's prototype; it only reads
    char* output = out.data();
    std::size_t left = text.size(), room = out.size();
    // The result counts characters that were replaced by similar ones.
    const bool isWhole = ::iconv(conversion, &input, &left, &output, &room) == 0;
    ::iconv_close(conversion);
    out.resize(out.size() - room);
    return isWhole ? std::optional(std::move(out)) : std::nullopt;
}

} // namespace Zorvane::Suite
