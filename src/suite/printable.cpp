// SPDX-License-Identifier: Apache-2.0
#include "suite/printable.h"

#include <cwchar>
#include <cwctype>

namespace Zorvane::Suite {

namespace {

// The length of the UTF-8 character at the front of a text, or 0 if its bytes are none.
std::size_t utf8Length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xc2 ? 0
                               : lead < 0xe0 ? 2
                               : lead < 0xf0 ? 3
                               : lead < 0xf5 ? 4
                                             : 0;
    if (length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80)
            return 0;
    const bool overlong = (lead == 0xe0 && byte(1) < 0xa0) || (lead == 0xf0 && byte(1) < 0x90);
    return overlong ? 0 : length;
}

// The length of the character at the front of a text in the process's locale, if it is a printable one of
// several bytes, else 0. In Japanese and Chinese code sets such bytes look like controls.
std::size_t wideCharacterLength(std::string_view text) {
    std::mbstate_t state{};
    wchar_t character = 0;
    const std::size_t length = std::mbrtowc(&character, text.data(), text.size(), &state);
    const bool isPrintable = length > 1 && length <= text.size() &&
                             !std::iswcntrl(static_cast<std::wint_t>(character)) &&
                             !isInvisible(static_cast<char32_t>(character));
    return isPrintable ? length : 0;
}

// The code of a well-formed character of UTF-8.
char32_t codeOf(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character[0]);
    char32_t code = character.size() == 1 ? lead : lead & (0xFFU >> (character.size() + 1));
    for (const char next : character.substr(1))
        code = code << 6 | (static_cast<unsigned char>(next) & 0x3FU);
    return code;
}

bool isControl(char32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0);
}

void appendEscape(std::string& out, char32_t code) {
    static constexpr char digits[] = "0123456789abcdef";
    switch (code) {
    case '\n':
        out += "\\n";
        break;
    case '\r':
        out += "\\r";
        break;
    case '\t':
        out += "\\t";
        break;
    default:
        if (code > 0xFF)
            out += {'\\', 'u', digits[code >> 12 & 15], digits[code >> 8 & 15]};
        else
            out += "\\x";
        out += {digits[code >> 4 & 15], digits[code & 15]};
    }
}

} // namespace

bool isInvisible(char32_t code) {
    return (code >= 0x80 && code < 0xA0) || (code >= 0x200B && code <= 0x200F) ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF ||
           (code & 0xFFFE) == 0xFFFE;
}

std::string printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        if (const std::size_t length = wideCharacterLength(text)) {
            out += text.substr(0, length);
            text.remove_prefix(length);
            continue;
        }
        // The second control set is one byte in an 8-bit code and C2 with that byte in UTF-8.
        const std::size_t length = utf8Length(text);
        const std::size_t taken = length == 0 ? 1 : length;
        const char32_t code = length == 0 ? static_cast<unsigned char>(text[0]) : codeOf(text.substr(0, taken));
        if (isControl(code) || (taken > 1 && isInvisible(code)))
            appendEscape(out, code);
        else
            out += text.substr(0, taken);
        text.remove_prefix(taken);
    }
    return out;
}

} // namespace Zorvane::Suite
