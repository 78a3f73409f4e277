// SPDX-License-Identifier: Apache-2.0
#include "bundle/Mask.h"

#include "bundle/names.h"
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

} // namespace

void Mask::learn(NameKind kind, std::string_view name) {
    const std::string utf8 = toUtf8(trimmed(name));
    if (kind == NameKind::Host || kind == NameKind::Client)
        learnHost(kind, utf8, true);
    else if (utf8.find_first_of("/[") != utf8.npos)
        learnPath(kind, utf8);
    else if (const size_t slash = utf8.rfind('\\'); slash < utf8.size() - 1 && kind == NameKind::User)
        add(utf8, add(kind, std::string_view(utf8).substr(slash + 1))); // behind a domain of Windows
    else
        add(kind, utf8);
}

void Mask::learnHost(NameKind kind, std::string_view name, bool isSure) {
    const size_t dot = name.find('.');
    const std::string lower = folded(name);
    if (dot == name.npos || isNoName(lower) || m_names.standInOf(lower)) {
        add(kind, name);
        return;
    }
    // "time" of "time.maker.example" is a word that stands in many places; but a server's own name is known.
    const std::string_view first = name.substr(0, dot), rest = name.substr(dot + 1);
    const bool isWord = !isSure && !isDistinct(first) && !m_names.standInOf(folded(first));
    const std::string domain =
        isPublicDomain(folded(rest)) ? std::string(rest) : addPart(NameKind::Domain, rest);
    add(name, (isWord ? nextStandIn(kind) : addPart(kind, first)) + "." + domain);
}

// "/Northgate/vm/Production", "[store1] iso/tools.iso"
void Mask::learnPath(NameKind kind, std::string_view path) {
    while (!path.empty()) {
        const size_t end = std::min(path.find_first_of("/[]"), path.size());
        add(kind, trimmed(path.substr(0, end)));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
}

// What names nothing alone ("10.1.2.3" of "ip.10.1.2.3") may do so in a longer name.
std::string Mask::addPart(NameKind kind, std::string_view part) {
    return isNoName(folded(part)) ? nextStandIn(kind) : add(kind, part);
}

std::string Mask::nextStandIn(NameKind kind) {
    const auto number = static_cast<size_t>(kind);
    return std::string(KIND_NAMES[number]) + "-" + std::to_string(++m_counts[number]);
}

std::string Mask::add(NameKind kind, std::string_view name) {
    const std::string lower = folded(name);
    if (isNoName(lower))
        return std::string(name);
    if (const std::string* known = m_names.standInOf(lower))
        return *known;
    std::string standIn = nextStandIn(kind);
    add(name, standIn);
    return standIn;
}

void Mask::add(std::string_view name, const std::string& standIn) {
    if (name.size() < 2 || name.size() > LONGEST_NAME || !m_names.add(name, standIn))
        return;
    m_legend.emplace_back(standIn, name);
    m_names.add(replaced(name, "'", "''"), standIn);
    std::string xml = replaced(name, "&", "&amp;");
    xml = replaced(replaced(xml, "<", "&lt;"), ">", "&gt;");
    m_names.add(xml, standIn);
    m_names.add(replaced(replaced(xml, "\"", "&quot;"), "'", "&apos;"), standIn);
}

void Mask::survey(std::string_view text) {
    const std::string lower = folded(text);
    surveyMailboxes(text);
    surveyHosts(text, lower);
    surveyUsers(text, lower);
    surveyShares(text, lower);
}

// The first part of a mailbox is a word more often than not: it is masked by itself only if it is distinct.
void Mask::surveyMailboxes(std::string_view text) {
    for (size_t at = text.find('@'); at != text.npos; at = text.find('@', at + 1))
        if (const auto mailbox = mailboxAround(text, at)) {
            const auto [person, host] = *mailbox;
            learnHost(NameKind::Host, host, false);
            const std::string user =
                isDistinct(person) ? addPart(NameKind::User, person) : nextStandIn(NameKind::User);
            add(std::string(person) + "@" + std::string(host), user + "@" + addPart(NameKind::Host, host));
        }
}

void Mask::surveyHosts(std::string_view text, std::string_view lower) {
    for (size_t at = 0; at < lower.size(); ++at)
        if (const size_t length = hostLength(lower, at)) {
            learnHost(NameKind::Host, text.substr(at, length), false);
            at += length;
        }
}

// "/home/otto", "C:\Users\otto"
void Mask::surveyUsers(std::string_view text, std::string_view lower) {
    for (const std::string_view folder : {"home/", "users/", "users\\"})
        for (size_t at = lower.find(folder); at != lower.npos; at = lower.find(folder, at + 1))
            if (startsWord(lower, at))
                learn(NameKind::User, userAt(text, lower.find_first_not_of('\\', at + folder.size())));
}

// "\\server\share", the backslashes doubled where a text is quoted
void Mask::surveyShares(std::string_view text, std::string_view lower) {
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

// In "node-1.lo'hara-stores" the name of the store begins inside of what looks like a host, and must not get
// away with it.
size_t Mask::untilNextName(std::string_view lower, size_t at, size_t length) const {
    for (size_t inner = 1; inner < length; ++inner)
        if (m_names.at(lower, at + inner).length > length - inner)
            return inner;
    return length;
}

std::string Mask::masked(std::string_view text) {
    const std::string lower = folded(text);
    std::string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        if (const KnownNames::Found name = m_names.at(lower, at); name.length > 0) {
            out += name.standIn;
            at += untilNextName(lower, at, name.length);
        } else if (const auto address = addressAt(lower, at)) {
            out += spelledLike(*address, addressStandIn(*address));
            at += untilNextName(lower, at, address->length);
        } else {
            out += text[at++];
        }
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
