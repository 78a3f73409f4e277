// SPDX-License-Identifier: Apache-2.0
#include "bundle/names.h"

#include "bundle/addresses.h"
#include "bundle/utf8.h"

#include <algorithm>
#include <array>

namespace Zorvane {

namespace {

using std::size_t;

// Words that stand where names do and name nothing of this site; folders that every system has among them.
constexpr auto NO_NAMES = std::to_array<std::string_view>({"administrator",
                                                           "administrators",
                                                           "all users",
                                                           "bin",
                                                           "current",
                                                           "data",
                                                           "datacenter",
                                                           "datacenters",
                                                           "datastore",
                                                           "default",
                                                           "dev",
                                                           "etc",
                                                           "everyone",
                                                           "false",
                                                           "folder",
                                                           "ha-folder",
                                                           "home",
                                                           "host",
                                                           "images",
                                                           "iso",
                                                           "kelvarion",
                                                           "lib",
                                                           "linux",
                                                           "locale",
                                                           "localhost",
                                                           "log",
                                                           "mnt",
                                                           "n/a",
                                                           "network",
                                                           "no",
                                                           "none",
                                                           "null",
                                                           "opt",
                                                           "other",
                                                           "public",
                                                           "resources",
                                                           "root",
                                                           "server",
                                                           "share",
                                                           "srv",
                                                           "system",
                                                           "tarnv",
                                                           "tmp",
                                                           "true",
                                                           "unknown",
                                                           "users",
                                                           "usr",
                                                           "var",
                                                           "vm",
                                                           "windows",
                                                           "yes",
                                                           "zorvane",
                                                           "_none_"});

// Behind a dot: what files are called, not hosts.
constexpr auto FILE_ENDINGS = std::to_array<std::string_view>(
    {"bin", "cab", "cat",  "cfg", "conf", "cpp", "dat", "db",   "def",  "dll", "drv",  "exe",
     "gz",  "htm", "html", "inf", "ini",  "iso", "js",  "json", "log",  "md",  "msi",  "mui",
     "nls", "png", "py",   "sh",  "so",   "svg", "sys", "tar",  "toml", "txt", "vmdk", "xml"});

// The last parts of host names of two parts, beside those of two letters, which are countries; anything else
// with one dot is as likely a file or a member.
constexpr auto DOMAIN_ENDINGS = std::to_array<std::string_view>(
    {"biz",    "cloud",    "com",      "corp",    "edu", "example", "gmbh", "gov", "group",  "home", "info",
     "intern", "internal", "intranet", "invalid", "lan", "local",   "mil",  "net", "online", "org",  "test"});

bool isIn(const auto& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}
// Of a user's name, where signs end it.
bool isOfUser(char c) {
    return isDigit(c) || isLetter(c) || c == '.' || c == '-' || c == '_';
}

} // namespace

std::string_view trimmed(std::string_view text) {
    const auto isEdge = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '.'; };
    while (!text.empty() && isEdge(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isEdge(text.back()))
        text.remove_suffix(1);
    return text;
}

bool isNoName(std::string_view lower) {
    const auto address = addressAt(lower, 0);
    const bool isNumber = lower.find_first_not_of("0123456789.:") == lower.npos;
    return lower.size() < 2 || lower.size() > LONGEST_NAME || isIn(NO_NAMES, lower) ||
           lower.starts_with("localhost.") || (address && address->length == lower.size()) ||
           (isNumber && (lower.size() < 5 || lower.find_first_of(".:") != lower.npos));
}

bool isDistinct(std::string_view name) {
    return name.size() > 4 && std::ranges::any_of(name, isLetter) &&
           std::ranges::any_of(name, [](char c) { return isDigit(c) || c == '.' || c == '-'; });
}

bool isPublicDomain(std::string_view lower) {
    const auto isAscii = [](char c) { return c >= 'a' && c <= 'z'; };
    return (lower.size() == 2 && std::ranges::all_of(lower, isAscii) && !isIn(FILE_ENDINGS, lower)) ||
           isIn(DOMAIN_ENDINGS, lower);
}

bool startsWord(std::string_view text, size_t at) {
    const std::string_view before = text.substr(0, at);
    return !isWordBefore(text, at) || before.ends_with("\\n") || before.ends_with("\\t") ||
           before.ends_with("\\r") || (at >= 4 && before.substr(at - 4, 2) == "\\x");
}

std::string_view userAt(std::string_view text, size_t begin) {
    const std::string_view rest = text.substr(std::min(begin, text.size()));
    return trimmed({rest.begin(), std::ranges::find_if_not(rest, isOfUser)});
}

std::string_view hostAt(std::string_view text, size_t begin) {
    size_t end = begin;
    while (isWordAt(text, end) || (end < text.size() && std::string_view(".-_").find(text[end]) != text.npos))
        end += static_cast<unsigned char>(text[end]) < 0x80 ? 1 : 2;
    std::string_view host = text.substr(std::min(begin, text.size()), end - begin);
    while (host.ends_with('-') || host.ends_with('_') || host.ends_with('.'))
        host.remove_suffix(1);
    return host;
}

size_t hostLength(std::string_view lower, size_t at) {
    if (!isWordAt(lower, at) || !startsWord(lower, at) ||
        (at > 0 && std::string_view("_-.").find(lower[at - 1]) != std::string_view::npos))
        return 0;
    const std::string_view token = hostAt(lower, at);
    const auto dots = std::ranges::count(token, '.');
    // "ZorDba.ZOR_Config.ClientName" is a column: only a host's own part has an underscore.
    if (dots == 0 || token.find('_', token.find('.')) != token.npos || token.find("..") != token.npos ||
        std::ranges::none_of(token, isLetter))
        return 0;
    const std::string_view last = token.substr(token.rfind('.') + 1);
    if (last.size() < 2 || !std::ranges::all_of(last, isLetter) || isIn(FILE_ENDINGS, last))
        return 0;
    return dots > 1 || isPublicDomain(last) ? token.size() : 0;
}

std::optional<Mailbox> mailboxAround(std::string_view text, size_t at) {
    size_t begin = at;
    while (begin > 0 && (isOfUser(text[begin - 1]) || text[begin - 1] == '+'))
        --begin;
    const Mailbox mailbox{trimmed(text.substr(begin, at - begin)), hostAt(text, at + 1)};
    const size_t dot = mailbox.host.rfind('.');
    if (mailbox.person.empty() || dot == mailbox.host.npos ||
        !std::ranges::all_of(mailbox.host.substr(dot + 1), isLetter))
        return std::nullopt; // "VER@6.1"
    return mailbox;
}

} // namespace Zorvane
