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
    return length > 1 && length <= text.size() && !std::iswcntrl(static_cast<std::wint_t>(character)) ? length
                                                                                                      : 0;
}

bool isControl(unsigned char code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0);
}

void appendEscape(std::string& out, unsigned char code) {
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
        out += {'\\', 'x', digits[code >> 4], digits[code & 15]};
    }
}

} // namespace

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
        const auto code = static_cast<unsigned char>(text[taken - 1]);
        if (isControl(code) && (taken == 1 || (taken == 2 && text[0] == '\xc2')))
            appendEscape(out, code);
        else
            out += text.substr(0, taken);
        text.remove_prefix(taken);
    }
    return out;
}

} // namespace Zorvane::Suite
