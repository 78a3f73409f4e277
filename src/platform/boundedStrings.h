// SPDX-License-Identifier: Apache-2.0
// Copies into buffers of a fixed size. The result always ends with NUL, unless the size is 0.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace Zorvane {

/// Copies what fits into `size` bytes. The source's length, so that a result of `size` or more means a cut.
std::size_t V_strlcpy(char* target, const char* source, std::size_t size) noexcept;

/// Appends what fits. The length that the whole would have; a target without NUL in `size` is left alone.
std::size_t V_strlcat(char* target, const char* source, std::size_t size) noexcept;

/// V_strlcpy of at most `count` characters of the source, which need not end with NUL then.
std::size_t V_strlncpy(char* target, const char* source, std::size_t size, std::size_t count) noexcept;

/// V_strlcat of at most `count` characters of the source.
std::size_t V_strlncat(char* target, const char* source, std::size_t size, std::size_t count) noexcept;

/// Formatted print, cut to the buffer; the length that the whole would have, below 0 on an encoding error.
int V_vsnprintf(char* target, std::size_t size, const char* format, std::va_list arguments) noexcept
    __attribute__((format(printf, 3, 0)));

} // namespace Zorvane
