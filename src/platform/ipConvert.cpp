// SPDX-License-Identifier: Apache-2.0
#include "platform/ipConvert.h"

#include "logging/Trace.h"
#include "platform/valueConversion.h"

#include <arpa/inet.h>

namespace Zorvane {

std::uint32_t ConvertIp2Hex(const std::string& address) {
    return ntohl(inet_addr(address.c_str()));
}

std::string ConvertIp2Dec(std::uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += std::to_string(address >> shift & 0xFF) + (shift > 0 ? "." : "");
    return text;
}

std::string ConvertIp2HexString(std::uint32_t address) {
    return FormatInteger(address, 16, true, 8);
}

std::string ConvertIp2HexString(const std::string& address) {
    return ConvertIp2HexString(ConvertIp2Hex(address));
}

int FindIpIntersect(std::uint32_t address1, std::uint32_t mask1, std::uint32_t address2,
                    std::uint32_t mask2) {
    return (address1 & mask1) == (address2 & mask2) ? 1 : 0;
}

int FindIpIntersect(const std::string& address1, const std::string& mask1, const std::string& address2,
                    const std::string& mask2) {
    Trace trace(g_libLog, "ipConvert:FindIpIntersect()", ", address1=", address1, ", mask1=", mask1,
                ", address2=", address2, ", mask2=", mask2);
    const int same = FindIpIntersect(ConvertIp2Hex(address1), ConvertIp2Hex(mask1), ConvertIp2Hex(address2),
                                     ConvertIp2Hex(mask2));
    return trace.leave(same, ", return ", same);
}

std::uint32_t ConvertBitsToAddress(std::uint32_t bits) {
    // It stays that the count wraps: 0 bits give the mask of 32.
    return ~std::uint32_t{0} << ((32 - bits) % 32);
}

} // namespace Zorvane
