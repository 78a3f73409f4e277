// SPDX-License-Identifier: Apache-2.0
#include "suite/printable.h"

#include "suite/utf8.h"

#include <cwchar>
#include <cwctype>

namespace Zorvane::Suite {

namespace {

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
        out += code > 0xFFFF ? "\\U" : code > 0xFF ? "\\u" : "\\x";
        for (int shift = code > 0xFFFF ? 28 : code > 0xFF ? 12 : 4; shift >= 0; shift -= 4)
            out += digits[code >> shift & 15];
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
        const auto [code, length, isValid] = utf8CharacterAt(text, 0);
        if (isControl(code) || (length > 1 && isInvisible(code)))
            appendEscape(out, code);
        else
            out += text.substr(0, length);
        text.remove_prefix(length);
    }
    return out;
}

} // namespace Zorvane::Suite
