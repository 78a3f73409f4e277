// SPDX-License-Identifier: Apache-2.0
// Plain facts about this host: machine, kernel, firmware, addresses and names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Zorvane {

/// The machine's architecture and the kernel's release, such as "x86_64" and "5.14.0-70.el9"; empty on
/// failure.
std::string GetArchitecture();
std::string GetKernelVersion();

/// The values of the Firmware column of CSystem.
inline constexpr int FIRMWARE_UEFI = 2;
inline constexpr int FIRMWARE_BIOS = 3;
int GetFirmware();

/// The IPv4 addresses of the interfaces but the loopback's. The runner's code for the command that tells
/// them.
int GetAllInterfaceAddr(std::vector<std::string>& addresses);

/// The first IPv4 address of a host, as dotted text; empty if there is none.
std::string GetHostByNameCommon(const std::string& name);
/// The name of the host with an IPv4 address (a number in host order, or dotted text); empty if there is
/// none.
std::string GetHostByAddrCommon(std::uint32_t address);
std::string GetHostByAddrCommon(const std::string& address);

} // namespace Zorvane
