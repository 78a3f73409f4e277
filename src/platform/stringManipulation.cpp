// SPDX-License-Identifier: Apache-2.0
#include "platform/stringManipulation.h"

#include "logging/Trace.h"
#include "platform/codeSetCommon.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>

namespace Zorvane {

namespace {

std::optional<std::wstring> toWide(const std::string& text) {
    const std::unique_ptr<wchar_t[]> wide(ZorMbsToWcsCommon(text));
    return wide ? std::optional<std::wstring>(wide.get()) : std::nullopt;
}

std::string toNative(const std::string& text) {
    return text;
}
std::string toNative(const std::wstring& text) {
    return ZorWcsToMbsCommon(text);
}

// Works on the wide forms of the texts. If one has none, it works on the bytes of all of them: names and
// values from foreign systems need not be valid in this locale, and must not turn into empty text for that.
template <class Work, class... Texts>
auto inWideForm(Work work, const Texts&... texts) {
    const auto wide = std::make_tuple(toWide(texts)...);
    return std::apply([&](const auto&... forms) { return (forms && ...) ? work(*forms...) : work(texts...); },
                      wide);
}

// Only what tolower knows is folded, so letters that take several bytes keep their case in every search.
template <class Text>
Text folded(Text text) {
    for (auto& character : text) {
        // NOLINTNEXTLINE(bugprone-signed-char-misuse,cert-str34-c): wchar_t is taken for a char
        const auto value = static_cast<std::make_unsigned_t<typename Text::value_type>>(character);
        if (value <= UCHAR_MAX)
            character = static_cast<typename Text::value_type>(std::tolower(static_cast<int>(value)));
    }
    return text;
}

bool isAscii(unsigned char byte) {
    return byte != 0 && byte <= 127;
}
bool isControl(unsigned char byte) {
    return isAscii(byte) && std::iscntrl(byte);
}

} // namespace

int StrContains(const std::string& text, const std::string& set) {
    Trace trace(g_libLog, "stringManipulation:StrContains()");
    return inWideForm([](const auto& in, const auto& any) { return in.find_first_of(any) != in.npos; }, text,
                      set);
}

int StrContains(const std::string& text, char character) {
    Trace trace(g_libLog, "stringManipulation:StrContains()");
    return ZorMbsToDbCommon(text).find(character) != std::string::npos;
}

int StrContainsOnly(const std::string& text, const std::string& set) {
    Trace trace(g_libLog, "stringManipulation:StrContainsOnly()");
    return inWideForm([](const auto& in, const auto& any) { return in.find_first_not_of(any) == in.npos; },
                      text, set);
}

int StrContainsSubstring(const std::string& text, const std::string& word, bool caseSensitive) {
    Trace trace(g_libLog, "stringManipulation:StrContainsSubstring()");
    return inWideForm(
        [caseSensitive](const auto& in, const auto& what) {
            return (caseSensitive ? in.find(what) : folded(in).find(folded(what))) != in.npos;
        },
        text, word);
}

int HasControlCharacters(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:HasControlCharacters()");
    const std::string db = ZorMbsToDbCommon(text);
    return std::any_of(db.begin(), db.end(), isControl);
}

int HasNonAsciiCharacters(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:HasNonAsciiCharacters()");
    const std::string db = ZorMbsToDbCommon(text);
    return std::any_of(db.begin(), db.end(), [](unsigned char byte) { return byte > 127; });
}

int StrCaseCmp(const char* first, const char* second) {
    Trace trace(g_libLog, "stringManipulation:StrCaseCmp()");
    return StrToLower(first ? first : "").compare(StrToLower(second ? second : ""));
}

const char* StrCaseStr(const char* haystack, const char* needle) {
    Trace trace(g_libLog, "stringManipulation:StrCaseStr()");
    if (!haystack || !needle)
        return nullptr;
    const std::size_t at = StrToLower(haystack).find(StrToLower(needle));
    return at == std::string::npos ? nullptr : haystack + at;
}

std::string StrToLower(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:StrToLower()");
    return folded(text);
}

std::string StrToUpper(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:StrToUpper()");
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::toupper(byte)); });
    return upper;
}

namespace {

template <class Text>
std::optional<std::string> replaced(const Text& text, const Text& search, const Text& replacement, bool all,
                                    bool ignoreCase) {
    const Text where = ignoreCase ? folded(text) : text;
    const Text what = ignoreCase ? folded(search) : search;
    Text result;
    std::size_t behind = 0;
    for (std::size_t at = where.find(what); at != where.npos;
         at = all ? where.find(what, behind) : where.npos) {
        result.append(text, behind, at - behind).append(replacement);
        behind = at + what.size();
    }
    if (behind == 0)
        return std::nullopt;
    return toNative(result.append(text, behind));
}

} // namespace

int StrReplace(std::string& text, const std::string& search, const std::string& replacement, bool all,
               bool ignoreCase) {
    Trace trace(g_libLog, "stringManipulation:StrReplace()");
    if (search.empty()) // would be found at every place, for ever
        return ZOR_FAIL;
    auto result = inWideForm([=](const auto& in, const auto& what,
                                 const auto& by) { return replaced(in, what, by, all, ignoreCase); },
                             text, search, replacement);
    if (!result)
        return ZOR_FAIL;
    text = std::move(*result);
    return ZOR_SUCCESS;
}

std::string StripLeading(const std::string& text, const std::string& set) {
    Trace trace(g_libLog, "stringManipulation:StripLeading()");
    return inWideForm(
        [](const auto& in, const auto& any) {
            return toNative(in.substr(std::min(in.find_first_not_of(any), in.size())));
        },
        text, set);
}

std::string StripTrailing(const std::string& text, const std::string& set) {
    Trace trace(g_libLog, "stringManipulation:StripTrailing()");
    // npos + 1 is 0: nothing is left of a text made only of the set.
    return inWideForm(
        [](const auto& in, const auto& any) { return toNative(in.substr(0, in.find_last_not_of(any) + 1)); },
        text, set);
}

std::string StripTrailingChar(const std::string& text, char character, bool convert) {
    Trace trace(g_libLog, "stringManipulation:StripTrailingChar()");
    std::string stripped = convert ? ZorMbsToDbCommon(text) : text;
    stripped.resize(stripped.find_last_not_of(character == '\n' ? "\r\n" : std::string(1, character)) + 1);
    return convert ? ZorDbToMbsCommon(stripped) : stripped;
}

std::string RemoveControlCharacters(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:RemoveControlCharacters()");
    std::string db = ZorMbsToDbCommon(text);
    std::erase_if(db, [](unsigned char byte) { return !isAscii(byte) || isControl(byte); });
    return ZorDbToMbsCommon(db);
}

char* zor_strdup(const char* text) {
    Trace trace(g_libLog, "stringManipulation:zor_strdup()");
    if (!text)
        return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(new char[size], text, size));
}

namespace {

std::string enclosed(const std::string& text, char quote, const char* escapedQuote) {
    std::string quoted(1, quote);
    for (const char character : text) {
        if (character == quote)
            quoted += escapedQuote;
        else
            quoted += character;
    }
    return quoted += quote;
}

} // namespace

std::string ShellQuoteSingle(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:ShellQuoteSingle()");
    return enclosed(text, '\'', R"('"'"')");
}

std::string ShellQuoteDouble(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:ShellQuoteDouble()");
    return enclosed(text, '"', R"(\")");
}

std::string QuoteSqlLiteral(const std::string& text) {
    Trace trace(g_libLog, "stringManipulation:QuoteSqlLiteral()");
    return ZorDbToMbsCommon(enclosed(ZorMbsToDbCommon(text), '\'', "''"));
}

} // namespace Zorvane
