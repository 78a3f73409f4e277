// SPDX-License-Identifier: Apache-2.0
// The argument lists of the localisation layer.
#include "suite/quul.h"

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

std::int32_t setText(mrthLisAny_t* any, std::int32_t kind, const char* text) {
    if (!any || !text)
        return MRTH_LIS_BAD_ARGUMENT;
    char* copy = ::strdup(text);
    if (!copy)
        return MRTH_LIS_NO_MEMORY;
    std::free(any->text);
    *any = {kind, 0, copy, 0, 0};
    return 0; // cppcheck-suppress memleak ; the cell has it
}

std::int32_t addText(mrthLisArgs_t* list, const char* text) {
    auto* any = static_cast<mrthLisAny_t*>(std::calloc(1, sizeof(mrthLisAny_t)));
    if (!any)
        return MRTH_LIS_NO_MEMORY;
    std::int32_t result = mrthLisAny_string(any, text ? text : "");
    if (result == 0)
        result = mrthLisAddArg(list, any);
    if (result != 0) {
        std::free(any->text);
        std::free(any);
    }
    return result;
}

} // namespace

extern "C" {

std::int32_t mrthLisAny_string(mrthLisAny_t* any, const char* text) {
    return setText(any, 1, text);
}

std::int32_t mrthLisAny_utf8string(mrthLisAny_t* any, const char* text) {
    return setText(any, 2, text);
}

std::int32_t mrthLisAny_ulong(mrthLisAny_t* any, std::uint64_t value) {
    if (!any)
        return MRTH_LIS_BAD_ARGUMENT;
    std::free(any->text);
    *any = {3, 0, nullptr, value, 0};
    return 0;
}

std::int32_t mrthLisAddArg(mrthLisArgs_t* list, mrthLisAny_t* any) {
    if (!list || !any)
        return MRTH_LIS_BAD_ARGUMENT;
    if (list->count == list->capacity) {
        const std::uint32_t capacity = list->capacity == 0 ? 8 : 2 * list->capacity;
        // NOLINTNEXTLINE(bugprone-sizeof-expression): the cells are pointers
        auto* cells = static_cast<mrthLisAny_t**>(std::realloc(list->cells, capacity * sizeof list->cells[0]));
        if (!cells)
            return MRTH_LIS_NO_MEMORY;
        list->cells = cells;
        list->capacity = capacity;
    }
    list->cells[list->count++] = any;
    return 0;
}

void mrthLisFree(mrthLisArgs_t* list) {
    if (!list)
        return;
    for (std::uint32_t i = 0; i < list->count; ++i) {
        std::free(list->cells[i]->text);
        std::free(list->cells[i]);
    }
    std::free(list->cells);
    *list = {};
}

std::int32_t mrthLis(mrthLisArgs_t* list, std::uint64_t, const char* format, ...) {
    std::va_list texts;
    va_start(texts, format);
    std::int32_t result = 0;
    std::string_view rest = format;
    for (auto place = rest.find("%s"); result == 0 && place != rest.npos; place = rest.find("%s")) {
        rest.remove_prefix(place + 2);
        result = addText(list, va_arg(texts, const char*));
    }
    va_end(texts);
    return result;
}

// Texts come in the code of the process's locale, as they stand in the program.
std::int32_t GetMrthLisGlobalUtf8Setting() {
    return 0;
}

mrthLogResult_t mrthLogMapLisResToLoggingRes(std::int32_t lisResult) {
    switch (lisResult) {
    case 0:
        return 0;
    case MRTH_LIS_NO_MEMORY:
        return ENOMEM;
    case MRTH_LIS_NO_MESSAGE:
        return ENOENT;
    default:
        return EINVAL;
    }
}

} // extern "C"
