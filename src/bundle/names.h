// SPDX-License-Identifier: Apache-2.0
// What names something of a site, and where that stands in a text. Texts are UTF-8; `lower` is one in small
// letters.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace Zorvane {

/// A mailbox's 64 bytes, "@" and a host's 255: in bytes, more than hosts, users, groups and files are called.
/// Every place of a text is held against the names; longer ones would make that a matter of hours.
inline constexpr std::size_t LONGEST_NAME = 320;

/// Without white space and dots around it.
std::string_view trimmed(std::string_view text);
/// Single characters, small numbers, addresses, "localhost", "root", "current", and what is too long.
bool isNoName(std::string_view lower);
/// "ledger01" and "corp.example" are no words, so that they are found inside of words as well; "Gold" and
/// "Production" are.
bool isDistinct(std::string_view name);
/// "com" and "de" belong to nobody.
bool isPublicDomain(std::string_view lower);

/// The log spells control characters out: "n" of "\n" and "b" of "\x1b" end no word.
bool startsWord(std::string_view text, std::size_t at);
/// The user's name that begins at a place; one beyond the end is the end.
std::string_view userAt(std::string_view text, std::size_t begin);
/// The same for a host's, where a Japanese word may go on behind it.
std::string_view hostAt(std::string_view text, std::size_t begin);
/// The length of the host name with a domain that begins at a place; 0 if there is none.
std::size_t hostLength(std::string_view lower, std::size_t at);

struct Mailbox {
    std::string_view person, host;
};
/// The one around an "@".
std::optional<Mailbox> mailboxAround(std::string_view text, std::size_t at);

} // namespace Zorvane
