// SPDX-License-Identifier: Apache-2.0
#include "bundle/utf8.h"

#include "suite/utf8.h"

#include <algorithm>
#include <clocale>
#include <cwctype>
#include <optional>

#include <langinfo.h>

namespace Zorvane {

namespace {

unsigned char byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

bool isAsciiWord(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The first byte of a letter of two: Latin, Greek, Cyrillic. Behind C2 are signs.
bool startsLetter(unsigned char c) {
    return c >= 0xC3 && c <= 0xDF;
}

std::string lineToUtf8(std::string_view line) {
    for (const char* codeSet : {"UTF-8", environmentLocale().codeSet.c_str(), "EUC-JP", "ISO-8859-1"})
        if (auto text = Suite::inCodeSet(line, codeSet, "UTF-8"))
            return *std::move(text);
    return {};
}

// Puts the small form of the letter of two or three bytes there, if it takes as many.
void foldLetter(std::string& text, std::size_t at, const Suite::Utf8Character& letter) {
    static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const auto [code, size, isValid] = letter;
    std::wint_t small = locale ? ::towlower_l(code, locale) : code;
    if (small == code || (size == 2 ? small < 0x80 || small > 0x7FF : small < 0x800 || small > 0xFFFF))
        return;
    for (std::size_t i = size; --i > 0; small >>= 6)
        text[at + i] = static_cast<char>(0x80 | (small & 0x3F));
    text[at] = static_cast<char>((size == 2 ? 0xC0 : 0xE0) | small);
}

} // namespace

const EnvironmentLocale& environmentLocale() {
    static const EnvironmentLocale asked = [] {
        const std::string before = std::setlocale(LC_ALL, nullptr);
        const char* const name = std::setlocale(LC_ALL, "");
        EnvironmentLocale locale{name ? name : "", ::nl_langinfo(CODESET)};
        std::setlocale(LC_ALL, before.c_str());
        return locale;
    }();
    return asked;
}

std::string toUtf8(std::string_view text) {
    if (auto whole = Suite::inCodeSet(text, "UTF-8", "UTF-8"))
        return *std::move(whole);
    std::string out;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        out += lineToUtf8(text.substr(0, size));
        text.remove_prefix(size);
    }
    return out;
}

std::string folded(std::string_view text) {
    std::string small(text);
    for (std::size_t at = 0; at < small.size();) {
        const Suite::Utf8Character letter = Suite::utf8CharacterAt(small, at);
        if (letter.code >= 'A' && letter.code <= 'Z')
            small[at] = static_cast<char>(letter.code - 'A' + 'a');
        else if (letter.length == 2 || letter.length == 3)
            foldLetter(small, at, letter);
        at += letter.length;
    }
    return small;
}

bool isWordBefore(std::string_view text, std::size_t at) {
    return at > 0 && (isAsciiWord(text[at - 1]) || (at > 1 && Suite::isUtf8Continuation(text[at - 1]) &&
                                                    startsLetter(byteAt(text, at - 2))));
}

bool isWordAt(std::string_view text, std::size_t at) {
    return at < text.size() && (isAsciiWord(text[at]) || startsLetter(byteAt(text, at)));
}

std::string replaced(std::string_view text, std::string_view what, std::string_view by) {
    std::string out;
    for (std::size_t at = text.find(what); at != text.npos; at = text.find(what)) {
        out.append(text.substr(0, at)).append(by);
        text.remove_prefix(at + what.size());
    }
    return out.append(text);
}

} // namespace Zorvane
