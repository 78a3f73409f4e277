// SPDX-License-Identifier: Apache-2.0
#include "logging/getMessage.h"

#include "logging/Trace.h"

#include <array>
#include <cstdlib>
#include <memory>

namespace Zorvane {

namespace {

struct Free {
    void operator()(char* text) const { std::free(text); }
};

[[noreturn]] void throwCatalogFailure(Trace& trace, std::uint64_t number, mrthLogResult_t result) {
    const char* text = mrthLogGetErrorMessage(result);
    const std::string shown = text ? text : std::to_string(result);
    trace.write(LEVEL_TRACE, "message catalog failure: mrthLis(mssgId=", number, ") returned status ", shown);
    throw CatalogFailure();
}

} // namespace

std::string GetQuULMessageBottom(std::uint64_t originator, std::uint64_t number, std::int32_t status,
                                 mrthLisArgs_t& arguments) {
    Trace trace(g_libLog, "getMessage:GetQuULMessageBottom()", ", originator=", originator,
                ", number=", number);
    const std::unique_ptr<mrthLisArgs_t, void (*)(mrthLisArgs_t*)> release(&arguments, &mrthLisFree);
    if (status != 0)
        throwCatalogFailure(trace, number, mrthLogMapLisResToLoggingRes(status));
    char* out = nullptr;
    const std::int32_t result = xlatemsg(originator, number, &out, &arguments);
    const std::unique_ptr<char, Free> text(out);
    if (result != 0 || !text)
        throwCatalogFailure(trace, number, mrthLogMapLisResToLoggingRes(result));
    return text.get();
}

std::string getMessage(std::uint64_t originator, std::uint64_t number,
                       std::span<const std::string> parameters) {
    // The library takes the parameters as a variable list; those beyond the format's places are not read.
    static constexpr std::array formats = {"", "%s", "%s %s", "%s %s %s", "%s %s %s %s", "%s %s %s %s %s"};
    std::array<const char*, formats.size() - 1> texts{};
    if (parameters.size() > texts.size())
        throw std::logic_error("a catalogue message has at most five parameters");
    for (std::size_t i = 0; i < parameters.size(); ++i)
        texts[i] = parameters[i].c_str();
    mrthLisArgs_t arguments{};
    const std::int32_t status = mrthLis(&arguments, number, formats[parameters.size()], texts[0], texts[1],
                                        texts[2], texts[3], texts[4]);
    return GetQuULMessageBottom(originator, number, status, arguments);
}

} // namespace Zorvane
