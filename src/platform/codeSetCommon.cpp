// SPDX-License-Identifier: Apache-2.0
#include "platform/codeSetCommon.h"

#include "logging/Trace.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>
#include <type_traits>

#include <iconv.h>
#include <langinfo.h>

namespace Zorvane {

wchar_t* ZorMbsToWcsCommon(const std::string& text) {
    Trace trace(g_libLog, "codeSetCommon:ZorMbsToWcsCommon()");
    const auto failed = [&trace](int error) {
        trace.write(LEVEL_FAILURE, "mbstowcs() failed: ", std::strerror(error));
        return nullptr;
    };

    std::size_t count = 0;
    std::mbstate_t state{};
    for (std::size_t at = 0; at < text.size(); ++count) {
        const std::size_t rest = text.size() - at;
        const std::size_t step = std::mbrlen(text.data() + at, rest, &state);
        if (step == 0 || step > rest) // a NUL, or one of the two large values for bytes that are no character
            return failed(EILSEQ);
        at += step;
    }

    auto wide = std::make_unique<wchar_t[]>(text.empty() ? 1 : count + 2);
    const char* source = text.c_str();
    state = {};
    if (std::mbsrtowcs(wide.get(), &source, count + 1, &state) == static_cast<std::size_t>(-1))
        return failed(errno);
    return wide.release();
}

std::string ZorWcsToMbsCommon(const std::wstring& text) {
    Trace trace(g_libLog, "codeSetCommon:ZorWcsToMbsCommon()");
    constexpr auto FAILED = static_cast<std::size_t>(-1);
    std::size_t size = 0;
    std::mbstate_t state{};
    for (const wchar_t* at = text.c_str(); *at; ++at) {
        std::array<char, MB_LEN_MAX> bytes{};
        const std::size_t step = std::wcrtomb(bytes.data(), *at, &state);
        if (step == FAILED) {
            trace.write(LEVEL_FAILURE, "wctomb() failed: ", std::strerror(errno));
            return {};
        }
        size += step;
    }

    std::string native(size, '\0');
    const wchar_t* source = text.c_str();
    state = {};
    if (std::wcsrtombs(native.data(), &source, size, &state) == FAILED) {
        trace.write(LEVEL_FAILURE, "wcstombs() failed: ", std::strerror(errno));
        return {};
    }
    return native;
}

namespace {

constexpr const char* DB_CODE_SET = "UTF-8";

const std::string& nativeCodeSet(Trace& trace) {
    static const std::string name = [&trace]() -> std::string {
        const char* const asked = nl_langinfo(CODESET);
        if (asked && *asked)
            return asked;
        trace.write(LEVEL_WARNING, "Using default codeset");
        return DB_CODE_SET;
    }();
    return name;
}

struct CloseIconv {
    void operator()(iconv_t conversion) const noexcept { iconv_close(conversion); }
};
using Conversion = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseIconv>;

// `growth` is the most bytes that one byte of the text may turn into.
std::string convert(Trace& trace, const std::string& text, const std::string& from, const std::string& to,
                    std::size_t growth) {
    const iconv_t opened = iconv_open(to.c_str(), from.c_str());
    // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv's failure
    if (opened == reinterpret_cast<iconv_t>(-1)) {
        trace.write(LEVEL_FAILURE, "Call to iconv_open failed. Returning MBS string");
        return text;
    }
    const Conversion conversion(opened);

    std::string converted(text.size() * growth, '\0');
    char* input = const_cast<char*>(text.data()); // iconv's prototype; it only reads
    std::size_t inputLeft = text.size();
    char* output = converted.data();
    std::size_t outputLeft = converted.size();
    iconv(opened, nullptr, nullptr, nullptr, nullptr);
    const std::size_t result = iconv(opened, &input, &inputLeft, &output, &outputLeft);
    if (result == static_cast<std::size_t>(-1) || inputLeft != 0) {
        // The same words for both directions stay: support staff search for them.
        trace.write(LEVEL_FAILURE, "Error converting from code set: ", nativeCodeSet(trace), " to ",
                    DB_CODE_SET);
        return text;
    }
    converted.resize(converted.size() - outputLeft);
    return converted;
}

} // namespace

std::string ZorMbsToDbCommon(const std::string& text) {
    Trace trace(g_libLog, "codeSetCommon:ZorMbsToDbCommon()");
    const std::string& native = nativeCodeSet(trace);
    return native == DB_CODE_SET ? text : convert(trace, text, native, DB_CODE_SET, 3);
}

std::string ZorDbToMbsCommon(const std::string& text) {
    Trace trace(g_libLog, "codeSetCommon:ZorDbToMbsCommon()");
    const std::string& native = nativeCodeSet(trace);
    return native == DB_CODE_SET ? text : convert(trace, text, DB_CODE_SET, native, 2);
}

} // namespace Zorvane
