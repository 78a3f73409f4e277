// SPDX-License-Identifier: Apache-2.0
#include "bundle/Mask.h"

#include "bundle/utf8.h"

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

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}
// Of a user's name, where signs end it.
bool isOfUser(char c) {
    return isDigit(c) || isLetter(c) || c == '.' || c == '-' || c == '_';
}

std::string_view trimmed(std::string_view text) {
    const auto isEdge = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '.'; };
    while (!text.empty() && isEdge(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isEdge(text.back()))
        text.remove_suffix(1);
    return text;
}

bool isNoName(const std::string& lower) {
    const auto address = addressAt(lower, 0);
    const bool isNumber = lower.find_first_not_of("0123456789.:") == lower.npos;
    return lower.size() < 2 || isIn(NO_NAMES, lower) || lower.starts_with("localhost.") ||
           (address && address->length == lower.size()) ||
           (isNumber && (lower.size() < 5 || lower.find_first_of(".:") != lower.npos));
}

// "ledger01" and "corp.example" are no words, so that they are found inside of words as well; "Gold" and
// "Production" are.
bool isDistinct(std::string_view name) {
    return name.size() > 4 && std::ranges::any_of(name, isLetter) &&
           std::ranges::any_of(name, [](char c) { return isDigit(c) || c == '.' || c == '-'; });
}

// The log spells control characters out: "n" of "\n" and "b" of "\x1b" end no word.
bool startsWord(std::string_view text, size_t at) {
    const std::string_view before = text.substr(0, at);
    return !isWordBefore(text, at) || before.ends_with("\\n") || before.ends_with("\\t") ||
           before.ends_with("\\r") || (at >= 4 && before.substr(at - 4, 2) == "\\x");
}

// What a name is indexed by: its first two bytes.
std::uint16_t startOf(std::string_view text, size_t at) {
    return static_cast<std::uint16_t>(static_cast<unsigned char>(text[at]) << 8 |
                                      static_cast<unsigned char>(text[at + 1]));
}

std::string_view userAt(std::string_view text, size_t begin) {
    const std::string_view rest = text.substr(std::min(begin, text.size()));
    return trimmed({rest.begin(), std::ranges::find_if_not(rest, isOfUser)});
}

// A host's name, where a Japanese word may go on behind it.
std::string_view hostAt(std::string_view text, size_t begin) {
    size_t end = begin;
    while (isWordAt(text, end) || (end < text.size() && std::string_view(".-_").find(text[end]) != text.npos))
        end += static_cast<unsigned char>(text[end]) < 0x80 ? 1 : 2;
    std::string_view host = text.substr(std::min(begin, text.size()), end - begin);
    while (host.ends_with('-') || host.ends_with('_') || host.ends_with('.'))
        host.remove_suffix(1);
    return host;
}

bool isPublicDomain(std::string_view lower) {
    const auto isAscii = [](char c) { return c >= 'a' && c <= 'z'; };
    return (lower.size() == 2 && std::ranges::all_of(lower, isAscii) && !isIn(FILE_ENDINGS, lower)) ||
           isIn(DOMAIN_ENDINGS, lower);
}

// The length of a host name with a domain at a place, in small letters; 0 if there is none.
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

} // namespace

void Mask::learn(NameKind kind, std::string_view name) {
    const std::string utf8 = toUtf8(trimmed(name));
    if (kind == NameKind::Host || kind == NameKind::Client)
        learnHost(kind, utf8, true);
    else if (utf8.find_first_of("/[") != utf8.npos)
        learnPath(kind, utf8);
    else if (const size_t slash = utf8.rfind('\\'); slash != utf8.npos && kind == NameKind::User)
        add(utf8, add(kind, std::string_view(utf8).substr(slash + 1))); // behind a domain of Windows
    else
        add(kind, utf8);
}

void Mask::learnHost(NameKind kind, std::string_view name, bool isSure) {
    const size_t dot = name.find('.');
    const std::string lower = folded(name);
    if (dot == name.npos || isNoName(lower) || m_standIns.contains(lower)) {
        add(kind, name);
        return;
    }
    // "time" of "time.maker.example" is a word that stands in many places; but a server's own name is known.
    const std::string_view first = name.substr(0, dot), rest = name.substr(dot + 1);
    const bool isWord = !isSure && !isDistinct(first) && !m_standIns.contains(folded(first));
    const std::string domain = isPublicDomain(folded(rest)) ? std::string(rest) : add(NameKind::Domain, rest);
    add(name, (isWord ? nextStandIn(kind) : add(kind, first)) + "." + domain);
}

// The mailbox around an "@". Its first part is a word more often than not: it is masked by itself only if it
// is distinct.
void Mask::learnMailbox(std::string_view text, size_t at) {
    size_t begin = at;
    while (begin > 0 && (isOfUser(text[begin - 1]) || text[begin - 1] == '+'))
        --begin;
    const std::string_view person = trimmed(text.substr(begin, at - begin));
    const std::string_view host = hostAt(text, at + 1);
    if (person.empty() || host.find('.') == host.npos ||
        !std::ranges::all_of(host.substr(host.rfind('.') + 1), isLetter))
        return; // "VER@6.1"
    learnHost(NameKind::Host, host, false);
    const std::string user = isDistinct(person) ? add(NameKind::User, person) : nextStandIn(NameKind::User);
    add(std::string(person) + "@" + std::string(host), user + "@" + add(NameKind::Host, host));
}

// "/Northgate/vm/Production", "[store1] iso/tools.iso"
void Mask::learnPath(NameKind kind, std::string_view path) {
    while (!path.empty()) {
        const size_t end = std::min(path.find_first_of("/[]"), path.size());
        add(kind, trimmed(path.substr(0, end)));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
}

std::string Mask::nextStandIn(NameKind kind) {
    const auto number = static_cast<size_t>(kind);
    return std::string(KIND_NAMES[number]) + "-" + std::to_string(++m_counts[number]);
}

std::string Mask::add(NameKind kind, std::string_view name) {
    const std::string lower = folded(name);
    if (isNoName(lower))
        return std::string(name);
    if (const auto known = m_standIns.find(lower); known != m_standIns.end())
        return known->second;
    std::string standIn = nextStandIn(kind);
    add(name, standIn);
    return standIn;
}

void Mask::add(std::string_view name, const std::string& standIn) {
    if (!addSpelling(name, standIn))
        return;
    m_legend.emplace_back(standIn, name);
    addSpelling(replaced(std::string(name), "'", "''"), standIn);
    std::string xml = replaced(std::string(name), "&", "&amp;");
    xml = replaced(replaced(xml, "<", "&lt;"), ">", "&gt;");
    addSpelling(xml, standIn);
    addSpelling(replaced(replaced(xml, "\"", "&quot;"), "'", "&apos;"), standIn);
}

bool Mask::addSpelling(std::string_view name, const std::string& standIn) {
    const auto [place, isNew] = m_standIns.try_emplace(folded(name), standIn);
    if (isNew && name.size() > 1) {
        std::vector<size_t>& lengths = m_lengths[startOf(place->first, 0)];
        const auto at = std::ranges::lower_bound(lengths, name.size(), std::greater<>());
        if (at == lengths.end() || *at != name.size())
            lengths.insert(at, name.size());
    }
    return isNew;
}

void Mask::survey(std::string_view text) {
    const std::string lower = folded(text);
    for (size_t at = lower.find('@'); at != lower.npos; at = lower.find('@', at + 1))
        learnMailbox(text, at);
    for (size_t at = 0; at < lower.size(); ++at)
        if (const size_t length = hostLength(lower, at)) {
            learnHost(NameKind::Host, text.substr(at, length), false);
            at += length;
        }
    for (const std::string_view folder : {"home/", "users/", "users\\"})
        for (size_t at = lower.find(folder); at != lower.npos; at = lower.find(folder, at + 1)) {
            const size_t begin = lower.find_first_not_of('\\', at + folder.size());
            if (startsWord(lower, at))
                learn(NameKind::User, userAt(text, begin));
        }
    // "\\server\share", the backslashes doubled where a text is quoted
    for (size_t at = lower.find("\\\\"); at != lower.npos; at = lower.find("\\\\", at)) {
        const bool isFirst = !isWordBefore(lower, at) && (at == 0 || lower[at - 1] != ':');
        at = std::min(lower.find_first_not_of('\\', at), lower.size());
        const std::string_view server = hostAt(text, at);
        if (isFirst && isWordAt(lower, at) && lower.substr(at + server.size()).starts_with('\\')) {
            learnHost(NameKind::Host, server, true);
            learn(NameKind::Folder, userAt(text, lower.find_first_not_of('\\', at + server.size())));
        }
    }
}

std::string Mask::masked(std::string_view text) {
    const std::string lower = folded(text);
    std::string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        Found found = nameAt(lower, at);
        if (found.length == 0)
            if (const auto address = addressAt(lower, at))
                found = {address->length, spelledLike(*address, addressStandIn(*address))};
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

Mask::Found Mask::nameAt(std::string_view lower, std::size_t at) const {
    if (at + 2 > lower.size())
        return {};
    const auto lengths = m_lengths.find(startOf(lower, at));
    if (lengths == m_lengths.end())
        return {};
    for (const size_t length : lengths->second) {
        const std::string_view name = lower.substr(at, length);
        const auto known = m_standIns.find(name);
        if (known != m_standIns.end() &&
            (isDistinct(name) || (startsWord(lower, at) && !isWordAt(lower, at + length))))
            return {length, known->second};
    }
    return {};
}

std::string Mask::addressStandIn(const Address& address) {
    const auto [known, isNew] = m_addresses.try_emplace(address.text);
    if (isNew) {
        static constexpr std::array forms = {"0.%u.%u.%u", "100::%02x%02x:%02x", "02:00:00:%02x:%02x:%02x"};
        const auto number = static_cast<size_t>(address.kind);
        const unsigned count = ++m_addressCounts[number];
        std::array<char, 32> text;
        std::snprintf(text.data(), text.size(), forms[number], count >> 16 & 255U, count >> 8 & 255U,
                      count & 255U);
        known->second = text.data();
        m_legend.emplace_back(known->second, address.text);
    }
    return known->second;
}

std::string Mask::legend() const {
    std::string text;
    for (const auto& [standIn, name] : m_legend)
        text += standIn + '\t' + name + '\n';
    return text;
}

} // namespace Zorvane
