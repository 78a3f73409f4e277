// SPDX-License-Identifier: Apache-2.0
#include "bundle/Mask.h"

#include <algorithm>
#include <cstdio>

#include <arpa/inet.h>

namespace Zorvane {

namespace {

using std::size_t;

constexpr std::array<const char*, NAME_KINDS> KIND_NAMES = {
    "host", "client",  "domain",     "user",    "group",   "machine", "store", "folder",
    "pool", "network", "datacenter", "cluster", "profile", "serial",  "name",
};

// Words that stand where names do and name nothing of this site.
constexpr std::array<std::string_view, 33> NO_NAMES = {
    "administrator", "administrators", "all users",  "current",   "datacenters", "default",
    "everyone",      "false",          "datacenter", "datastore", "folder",      "network",
    "host",          "linux",          "localhost",  "n/a",       "no",          "none",
    "null",          "other",          "public",     "resources", "root",        "server",
    "system",        "true",           "unknown",    "users",     "vm",          "windows",
    "yes",           "ha-folder",      "_none_"};

// Behind a dot: what files are called, not hosts.
constexpr std::array<std::string_view, 32> FILE_ENDINGS = {
    "bin", "cab", "cat", "cfg",  "conf", "cpp", "dat",  "db",   "def",  "dll", "drv",
    "exe", "gz",  "htm", "html", "inf",  "ini", "iso",  "json", "log",  "msi", "mui",
    "nls", "png", "so",  "svg",  "sys",  "tar", "toml", "txt",  "vmdk", "xml"};

// The last parts of host names of two parts; anything else with one dot is as likely a file or a member.
constexpr std::array<std::string_view, 12> DOMAIN_ENDINGS = {"com",      "corp",     "example", "home",
                                                             "internal", "intranet", "invalid", "lan",
                                                             "local",    "net",      "org",     "test"};

bool isIn(const auto& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isWord(char c) {
    return isDigit(c) || isLetter(c);
}
bool isHex(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f');
}

std::string lowered(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string_view trimmed(std::string_view text) {
    const auto isEdge = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '.'; };
    while (!text.empty() && isEdge(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isEdge(text.back()))
        text.remove_suffix(1);
    return text;
}

bool isAddress(const std::string& text) {
    std::array<unsigned char, sizeof(in6_addr)> bytes;
    return ::inet_pton(AF_INET, text.c_str(), bytes.data()) == 1 ||
           ::inet_pton(AF_INET6, text.c_str(), bytes.data()) == 1;
}

bool isNoName(const std::string& lower) {
    return lower.size() < 2 || isIn(NO_NAMES, lower) || lower.starts_with("localhost.") || isAddress(lower) ||
           (lower.size() < 5 && std::ranges::all_of(lower, isDigit));
}

// "ledger01" and "corp.example" are no words; "Gold" and "Production" are.
bool isDistinct(std::string_view name) {
    return name.size() > 4 && std::ranges::any_of(name, isLetter) &&
           std::ranges::any_of(name, [](char c) { return isDigit(c) || c == '.'; });
}

// The log spells control characters out: "n" of "\n" and "b" of "\x1b" end no word.
bool startsWord(std::string_view text, size_t at) {
    if (at == 0 || !isWord(text[at - 1]))
        return true;
    const std::string_view before = text.substr(0, at);
    return before.ends_with("\\n") || before.ends_with("\\t") || before.ends_with("\\r") ||
           (at >= 4 && before.substr(at - 4, 2) == "\\x");
}

bool endsWord(std::string_view text, size_t at) {
    return at >= text.size() || !isWord(text[at]);
}

// What a name is indexed by: its first two bytes.
std::uint16_t startOf(std::string_view text, size_t at) {
    return static_cast<std::uint16_t>(static_cast<unsigned char>(text[at]) << 8 |
                                      static_cast<unsigned char>(text[at + 1]));
}

size_t runOf(std::string_view text, size_t at, auto isPart) {
    size_t end = at;
    while (end < text.size() && isPart(text[end]))
        ++end;
    return end - at;
}

// The length of a host name with a domain at a place, in small letters; 0 if there is none.
size_t hostLength(std::string_view lower, size_t at) {
    if (!startsWord(lower, at) ||
        (at > 0 && std::string_view("_-.").find(lower[at - 1]) != std::string_view::npos))
        return 0;
    size_t length = runOf(lower, at, [](char c) { return isWord(c) || c == '.' || c == '-' || c == '_'; });
    while (length > 0 && !isWord(lower[at + length - 1]))
        --length;
    const std::string_view token = lower.substr(at, length);
    const auto dots = std::ranges::count(token, '.');
    if (dots == 0 || token.find('_') != token.npos || token.find("..") != token.npos ||
        !std::ranges::any_of(token, isLetter))
        return 0;
    const std::string_view last = token.substr(token.rfind('.') + 1);
    if (last.size() < 2 || !std::ranges::all_of(last, isLetter) || isIn(FILE_ENDINGS, last))
        return 0;
    return dots > 1 || isIn(DOMAIN_ENDINGS, last) ? length : 0;
}

} // namespace

void Mask::learn(NameKind kind, std::string_view name) {
    name = trimmed(name);
    if (kind == NameKind::Host || kind == NameKind::Client)
        learnHost(kind, name, true);
    else if (name.find('/') != name.npos)
        learnPath(kind, name);
    else if (const size_t slash = name.rfind('\\'); slash != name.npos && kind == NameKind::User)
        add(name, add(kind, name.substr(slash + 1))); // behind a domain of Windows
    else
        add(kind, name);
}

void Mask::learnHost(NameKind kind, std::string_view name, bool isSure) {
    const size_t dot = name.find('.');
    const std::string lower = lowered(name);
    if (isTailed(lower))
        return;
    if (dot == name.npos || isNoName(lower) || m_standIns.contains(lower)) {
        add(kind, name);
        return;
    }
    // "time" of "time.maker.example" is a word that stands in many places; but a server's own name is known.
    const std::string_view first = name.substr(0, dot);
    const bool isFirstKnown = m_standIns.contains(lowered(first));
    const std::string domain = add(NameKind::Domain, name.substr(dot + 1));
    if (isSure || isDistinct(first) || isFirstKnown) {
        add(name, add(kind, first) + "." + domain);
        return;
    }
    add(name, std::string(KIND_NAMES[static_cast<size_t>(kind)]) + "-" +
                  std::to_string(++m_counts[static_cast<size_t>(kind)]) + "." + domain);
}

bool Mask::isTailed(std::string_view lower) const {
    for (size_t length = lower.rfind('.') + 1; length > 0 && length < lower.size(); ++length)
        if (isWord(lower[length]) && m_standIns.contains(lower.substr(0, length)))
            return true;
    return false;
}

void Mask::learnPath(NameKind kind, std::string_view path) {
    while (!path.empty()) {
        const size_t end = std::min(path.find('/'), path.size());
        add(kind, trimmed(path.substr(0, end)));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
}

std::string Mask::add(NameKind kind, std::string_view name) {
    const std::string lower = lowered(name);
    if (isNoName(lower))
        return std::string(name);
    if (const auto known = m_standIns.find(lower); known != m_standIns.end())
        return known->second;
    const auto number = static_cast<size_t>(kind);
    std::string standIn = std::string(KIND_NAMES[number]) + "-" + std::to_string(++m_counts[number]);
    add(name, standIn);
    return standIn;
}

void Mask::add(std::string_view name, const std::string& standIn) {
    if (m_standIns.try_emplace(lowered(name), standIn).second)
        m_legend.emplace_back(standIn, name);
}

void Mask::survey(std::string_view text) {
    const std::string lower = lowered(text);
    for (size_t at = 0; at < lower.size(); ++at)
        if (const size_t length = isWord(lower[at]) ? hostLength(lower, at) : 0) {
            learnHost(NameKind::Host, text.substr(at, length), false);
            at += length;
        }
    for (const std::string_view folder : {"/home/", "/users/", "\\users\\", "\\\\users\\\\"})
        for (size_t at = lower.find(folder); at != lower.npos; at = lower.find(folder, at + 1)) {
            const size_t begin = at + folder.size();
            const size_t length = runOf(lower, begin, [](char c) {
                return isWord(c) || c == '.' || c == '-' || c == '_' || static_cast<unsigned char>(c) >= 0x80;
            });
            learn(NameKind::User, text.substr(begin, length));
        }
}

std::string Mask::masked(std::string_view text) {
    makeIndex();
    const std::string lower = lowered(text);
    std::string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        Found found = nameAt(lower, at);
        if (found.length == 0)
            found = cardAt(lower, at);
        if (found.length == 0)
            found = addressAt(lower, at);
        if (found.length == 0) {
            out += text[at++];
            continue;
        }
        out += found.standIn;
        at += found.length;
    }
    return out;
}

std::uint32_t Mask::masked(std::uint32_t address) {
    const in_addr network{htonl(address)};
    std::array<char, INET_ADDRSTRLEN> text;
    ::inet_ntop(AF_INET, &network, text.data(), text.size());
    in_addr standIn{};
    ::inet_pton(AF_INET, masked(std::string_view(text.data())).c_str(), &standIn);
    return ntohl(standIn.s_addr);
}

Mask::Found Mask::nameAt(std::string_view lower, std::size_t at) {
    if (at + 2 > lower.size())
        return {};
    const auto candidates = m_index.find(startOf(lower, at));
    if (candidates == m_index.end())
        return {};
    for (const Known& known : candidates->second)
        if (lower.compare(at, known.name.size(), known.name) == 0 &&
            (known.isDistinct || (startsWord(lower, at) && endsWord(lower, at + known.name.size()))))
            return {known.name.size(), known.standIn};
    return {};
}

Mask::Found Mask::cardAt(std::string_view lower, std::size_t at) {
    constexpr size_t SIZE = 17;
    if (at + SIZE > lower.size() || !startsWord(lower, at) || !endsWord(lower, at + SIZE))
        return {};
    const char between = lower[at + 2];
    if (between != ':' && between != '-')
        return {};
    std::string digits;
    for (size_t i = 0; i < SIZE; ++i) {
        const char c = lower[at + i];
        if (i % 3 == 2 ? c != between : !isHex(c))
            return {};
        if (c != between)
            digits += c;
    }
    std::string standIn = addressStandIn(AddressKind::Card, digits);
    std::ranges::replace(standIn, ':', between);
    return {SIZE, standIn};
}

Mask::Found Mask::addressAt(std::string_view lower, std::size_t at) {
    const auto isPart = [](char c) { return isHex(c) || c == ':' || c == '.'; };
    if (!isPart(lower[at]) || !startsWord(lower, at) ||
        (at > 0 && isPart(lower[at - 1]) && !isHex(lower[at - 1])))
        return {};
    std::string token(lower.substr(at, runOf(lower, at, isPart)));
    if (!endsWord(lower, at + token.size()))
        return {};
    // A port may stand behind an IPv4 address, and a sentence may end behind any.
    if (std::ranges::count(token, ':') == 1)
        token.resize(token.find(':'));
    while (token.ends_with('.') || (token.ends_with(':') && !token.ends_with("::")))
        token.pop_back();
    std::array<unsigned char, sizeof(in6_addr)> bytes;
    if (::inet_pton(AF_INET, token.c_str(), bytes.data()) == 1) {
        const bool isPublic = bytes[0] == 0 || bytes[0] == 127 || bytes[0] == 255;
        return {token.size(), isPublic ? token : addressStandIn(AddressKind::Ipv4, token)};
    }
    if (std::ranges::any_of(token, isDigit) && token != "::1" &&
        ::inet_pton(AF_INET6, token.c_str(), bytes.data()) == 1)
        return {token.size(), addressStandIn(AddressKind::Ipv6, token)};
    return {};
}

std::string Mask::addressStandIn(AddressKind kind, const std::string& address) {
    const auto [known, isNew] = m_addresses.try_emplace(address);
    if (isNew) {
        static constexpr std::array forms = {"0.%u.%u.%u", "100::%02x%02x:%02x", "02:00:00:%02x:%02x:%02x"};
        const auto number = static_cast<size_t>(kind);
        const unsigned count = ++m_addressCounts[number];
        std::array<char, 32> text;
        std::snprintf(text.data(), text.size(), forms[number], count >> 16 & 255U, count >> 8 & 255U,
                      count & 255U);
        known->second = text.data();
        m_legend.emplace_back(known->second, address);
    }
    return known->second;
}

void Mask::makeIndex() {
    if (m_indexed == m_standIns.size())
        return;
    m_index.clear();
    for (const auto& [name, standIn] : m_standIns)
        m_index[startOf(name, 0)].push_back({name, standIn, isDistinct(name)});
    for (auto& [start, names] : m_index)
        std::ranges::sort(names,
                          [](const Known& a, const Known& b) { return a.name.size() > b.name.size(); });
    m_indexed = m_standIns.size();
}

std::string Mask::legend() const {
    std::string text;
    for (const auto& [standIn, name] : m_legend)
        text += standIn + '\t' + name + '\n';
    return text;
}

} // namespace Zorvane
