// SPDX-License-Identifier: Apache-2.0
// Texts as UTF-8: how they become it, and what stands in them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Zorvane {

/// The locale that the environment asks for, whatever the process has.
struct EnvironmentLocale {
    std::string name; ///< empty: it is not installed
    std::string codeSet;
};
const EnvironmentLocale& environmentLocale();

/// Lines that are no UTF-8 are taken as in the code set of the environment, and where that does not fit as in
/// those of the languages of the messages, of which the last, ISO 8859-1, has a character for every byte.
std::string toUtf8(std::string_view text);

/// In small letters, each in its place: a letter whose small one takes another number of bytes stays.
std::string folded(std::string_view text);

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Whether a letter or a digit ends before a place, or begins there. Letters of three bytes count as none:
// their scripts set no blanks between words.
bool isWordBefore(std::string_view text, std::size_t at);
bool isWordAt(std::string_view text, std::size_t at);

std::string replaced(std::string_view text, std::string_view what, std::string_view by);

} // namespace Zorvane
