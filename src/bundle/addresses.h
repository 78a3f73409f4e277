// SPDX-License-Identifier: Apache-2.0
// Addresses in texts: IPv4, IPv6 and of network cards, in all the spellings that they have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Zorvane {

enum class AddressKind : std::uint8_t { Ipv4, Ipv6, Card };

struct Address {
    AddressKind kind;
    std::string text;      ///< the same for all spellings: "10.1.2.3", "fe80::1", "00:50:56:aa:00:01"
    std::size_t length;    ///< of the spelling
    char between = 0;      ///< what separates the groups; 0: nothing
    std::size_t width = 2; ///< of a card's groups
};

/// The address that begins at a place of a text in small letters. Loopback addresses and masks of networks
/// belong to nobody and count as none; five numbers in a row are a version.
std::optional<Address> addressAt(std::string_view lower, std::size_t at);

/// An address like Address::text in the spelling of another of its kind.
std::string spelledLike(const Address& other, const std::string& address);

} // namespace Zorvane
