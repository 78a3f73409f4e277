// SPDX-License-Identifier: Apache-2.0
#include "platform/boundedStrings.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Zorvane {

std::size_t V_strlcpy(char* target, const char* source, std::size_t size) noexcept {
    return V_strlncpy(target, source, size, std::strlen(source));
}

std::size_t V_strlcat(char* target, const char* source, std::size_t size) noexcept {
    return V_strlncat(target, source, size, std::strlen(source));
}

std::size_t V_strlncpy(char* target, const char* source, std::size_t size, std::size_t count) noexcept {
    const std::size_t length = strnlen(source, count);
    if (size > 0) {
        const std::size_t copied = std::min(length, size - 1);
        std::memcpy(target, source, copied);
        target[copied] = '\0';
    }
    return length;
}

std::size_t V_strlncat(char* target, const char* source, std::size_t size, std::size_t count) noexcept {
    const std::size_t used = strnlen(target, size);
    return used + V_strlncpy(target + used, source, size - used, count);
}

int V_vsnprintf(char* target, std::size_t size, const char* format, std::va_list arguments) noexcept {
    return std::vsnprintf(target, size, format, arguments);
}

} // namespace Zorvane
