// SPDX-License-Identifier: Apache-2.0
#include "platform/commandParser.h"

#include "logging/Trace.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>

namespace Zorvane {

namespace {

constexpr const char* BLANKS = " \t";

bool isQuote(char character) {
    return character == '"' || character == '\'';
}

} // namespace

int ParseCommand(const std::string& command, char**& arguments) {
    Trace trace(g_libLog, "commandParser:ParseCommand()");
    const auto failed = [&trace](const char* why) {
        trace.write(LEVEL_FAILURE, why);
        return 0;
    };

    std::size_t count = 0;
    std::size_t capacity = 0;
    std::size_t at = 0;
    while ((at = command.find_first_not_of(BLANKS, at)) != std::string::npos) {
        const std::size_t begin = at;
        char quote = 0;
        for (; at < command.size(); ++at) {
            const char character = command[at];
            if (quote) {
                if (character == quote)
                    quote = 0;
            } else if (character == '\\') {
                if (++at == command.size())
                    return failed("Missing character. Exiting");
            } else if (isQuote(character)) {
                quote = character;
            } else if (character == ' ' || character == '\t') {
                break;
            }
        }
        if (quote)
            return failed("Unmatched quote character. Exiting");
        if (!AddArgument(command.data() + begin, at - begin, count, capacity, arguments))
            return failed("AddArgument failed. Exiting");
    }
    if (count == 0)
        return failed("No arguments. Exiting");
    return AddArgument(nullptr, 0, count, capacity, arguments);
}

int AddArgument(const char* raw, std::size_t length, std::size_t& count, std::size_t& capacity,
                char**& arguments) {
    Trace trace(g_libLog, "commandParser:AddArgument()");
    constexpr std::size_t GROWTH = 10;
    if (count == capacity) {
        // One entry above the capacity, and all of them null: the list is ended wherever the parser gives up.
        const std::size_t size = (capacity + GROWTH + 1) * sizeof(char*);
        auto* const grown = static_cast<char**>(std::realloc(static_cast<void*>(arguments), size));
        if (!grown) {
            trace.write(LEVEL_FAILURE, "Exiting. realloc(", size, ") failed, errno ", errno);
            return 0;
        }
        arguments = grown;
        std::fill_n(arguments + count, GROWTH + 1, nullptr);
        capacity += GROWTH;
    }
    if (!raw) {
        arguments[count] = nullptr;
        trace.write(LEVEL_TRACE, "Exiting. Last argument");
        return 1;
    }

    char* out = new (std::nothrow) char[length + 1]{};
    if (!out) {
        trace.write(LEVEL_FAILURE, "Exiting. new[", length + 1, "] failed, errno ", errno);
        return 0;
    }
    arguments[count++] = out;

    char quote = 0;
    for (const char *at = raw, *const end = raw + length; at != end; ++at) {
        if (quote ? *at == quote : isQuote(*at)) {
            quote = quote ? '\0' : *at;
        } else if (!quote && *at == '\\') {
            if (++at == end) {
                trace.write(LEVEL_FAILURE, "Missing character. Exiting");
                return 0;
            }
            *out++ = *at;
        } else {
            *out++ = *at;
        }
    }
    return 1;
}

void FreeArguments(char** arguments) noexcept {
    if (!arguments)
        return;
    for (char** argument = arguments; *argument; ++argument)
        delete[] * argument;
    std::free(static_cast<void*>(arguments));
}

} // namespace Zorvane
