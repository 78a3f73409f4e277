// SPDX-License-Identifier: Apache-2.0
// Arithmetic on IPv4 addresses: dotted text, and numbers in host order.
#pragma once

#include <cstdint>
#include <string>

namespace Zorvane {

/// The address as a number, as inet_addr reads it; a text that is no address gives all ones.
std::uint32_t ConvertIp2Hex(const std::string& address);
std::string ConvertIp2Dec(std::uint32_t address);

/// Eight upper-case hexadecimal digits.
std::string ConvertIp2HexString(std::uint32_t address);
std::string ConvertIp2HexString(const std::string& address);

/// 1 if both addresses are in the same network, each under its own mask; else 0.
int FindIpIntersect(std::uint32_t address1, std::uint32_t mask1, std::uint32_t address2, std::uint32_t mask2);
int FindIpIntersect(const std::string& address1, const std::string& mask1, const std::string& address2,
                    const std::string& mask2);

/// The mask of a number of prefix bits. 0 bits give all ones, as 32 bits do.
std::uint32_t ConvertBitsToAddress(std::uint32_t bits);

} // namespace Zorvane
