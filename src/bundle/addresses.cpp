// SPDX-License-Identifier: Apache-2.0
#include "bundle/addresses.h"

#include "bundle/utf8.h"

#include <algorithm>
#include <array>

#include <arpa/inet.h>

namespace Zorvane {

namespace {

using std::size_t;

constexpr size_t CARD_DIGITS = 12;

bool isHexLetter(char c) {
    return c >= 'a' && c <= 'f';
}
bool isHex(char c) {
    return isDigit(c) || isHexLetter(c);
}

size_t runOf(std::string_view text, size_t at, auto isPart) {
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(std::min(at, text.size()));
    return static_cast<size_t>(std::find_if_not(begin, text.end(), isPart) - begin);
}

char charAt(std::string_view text, size_t at) {
    return at < text.size() ? text[at] : '\0';
}

// Four numbers up to 255 and dots or dashes: "10.1.2.3", "ip-10-1-2-3", "010.001.002.003".
std::optional<Address> ipv4At(std::string_view lower, size_t at) {
    Address address{.kind = AddressKind::Ipv4, .text = {}, .length = 0};
    size_t end = at;
    unsigned first = 0;
    for (int i = 0; i < 4; ++i) {
        if (i > 0 && charAt(lower, end++) != address.between)
            return std::nullopt;
        const size_t digits = runOf(lower, end, isDigit);
        if (digits == 0 || digits > 3)
            return std::nullopt;
        const unsigned number = static_cast<unsigned>(std::stoi(std::string(lower.substr(end, digits))));
        if (number > 255)
            return std::nullopt;
        end += digits;
        if (i == 0) {
            first = number;
            address.between = charAt(lower, end);
        }
        address.text += (i > 0 ? "." : "") + std::to_string(number);
    }
    const bool isFurther = (charAt(lower, end) == address.between && isDigit(charAt(lower, end + 1))) ||
                           (at > 1 && lower[at - 1] == address.between && isDigit(lower[at - 2]));
    if ((address.between != '.' && address.between != '-') || isFurther || first == 0 || first == 127 ||
        first == 255)
        return std::nullopt;
    address.length = end - at;
    return address;
}

std::optional<Address> ipv6At(std::string_view lower, size_t at) {
    // More than the longest one takes, so that what goes on is none; a long text may be of such signs alone.
    const std::string_view most = lower.substr(at, INET6_ADDRSTRLEN + 1);
    std::string text(most.substr(0, runOf(most, 0, [](char c) { return isHex(c) || c == ':' || c == '.'; })));
    const bool isEnded = !isWordAt(lower, at + text.size()) && charAt(lower, at + text.size()) != '(';
    while (text.ends_with('.') || (text.ends_with(':') && !text.ends_with("::"))) // a sentence's
        text.pop_back();
    // Without a digit it may be "Cab::add()", a function's name.
    in6_addr bytes{};
    if (std::ranges::count(text, ':') < 2 || text == "::1" || std::ranges::none_of(text, isHex) ||
        (!isEnded && std::ranges::none_of(text, isDigit)) || ::inet_pton(AF_INET6, text.c_str(), &bytes) != 1)
        return std::nullopt;
    std::array<char, INET6_ADDRSTRLEN> canonical;
    ::inet_ntop(AF_INET6, &bytes, canonical.data(), canonical.size());
    return Address{.kind = AddressKind::Ipv6, .text = canonical.data(), .length = text.size()};
}

// Twelve digits in groups of that width; pairs with colons may lack a leading zero.
std::optional<Address> cardAt(std::string_view lower, size_t at, size_t width) {
    Address address{.kind = AddressKind::Card, .text = {}, .length = 0, .width = width};
    size_t end = at;
    for (size_t group = 0; group < CARD_DIGITS / width; ++group) {
        if (group > 0 && charAt(lower, end++) != address.between)
            return std::nullopt;
        const size_t digits = std::min(runOf(lower, end, isHex), width);
        if (group == 0 && width < CARD_DIGITS)
            address.between = charAt(lower, end + digits);
        if (digits != width && (width != 2 || digits != 1 || address.between != ':'))
            return std::nullopt;
        address.text += (digits < width ? "0" : "") + std::string(lower.substr(end, digits));
        end += digits;
    }
    // Pairs give themselves away; other groups may be numbers, and a word may go on behind them.
    if ((address.between != 0 && std::string_view(":-.").find(address.between) == std::string_view::npos) ||
        (width != 2 && (isWordAt(lower, end) || std::ranges::none_of(address.text, isHexLetter))))
        return std::nullopt;
    for (size_t i = CARD_DIGITS - 2; i > 0; i -= 2)
        address.text.insert(i, ":");
    address.length = end - at;
    return address;
}

} // namespace

std::optional<Address> addressAt(std::string_view lower, size_t at) {
    const char first = charAt(lower, at), before = at > 0 ? lower[at - 1] : ' ';
    // "ip10.1.2.3" has one; "b2v" and "x::add" have none.
    if (isDigit(first) && !isDigit(before))
        if (auto address = ipv4At(lower, at))
            return address;
    const bool isHexMarked = lower.substr(0, at).ends_with("0x");
    if ((isWordBefore(lower, at) && !isHexMarked) || (!isHex(first) && first != ':'))
        return std::nullopt;
    if (!lower.substr(0, at).ends_with("::"))
        if (auto address = ipv6At(lower, at))
            return address;
    for (const size_t width : {size_t{2}, size_t{4}, size_t{6}, CARD_DIGITS})
        if (auto address = cardAt(lower, at, width))
            return address;
    return std::nullopt;
}

std::string spelledLike(const Address& other, const std::string& address) {
    std::string text = address;
    if (other.kind == AddressKind::Ipv4)
        std::ranges::replace(text, '.', other.between);
    if (other.kind == AddressKind::Card) {
        std::erase(text, ':');
        for (size_t i = CARD_DIGITS - other.width; other.between != 0 && i > 0; i -= other.width)
            text.insert(i, 1, other.between);
    }
    return text;
}

} // namespace Zorvane
