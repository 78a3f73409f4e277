// SPDX-License-Identifier: Apache-2.0
#include "platform/hostFacts.h"

#include "logging/Trace.h"
#include "platform/commandPaths.h"
#include "platform/hostRoot.h"
#include "platform/ipConvert.h"
#include "platform/stringManipulation.h"
#include "platform/zorSystemCommon.h"

#include <cstring>
#include <filesystem>

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/utsname.h>

namespace Zorvane {

std::string GetArchitecture() {
    utsname name{};
    return uname(&name) == 0 ? name.machine : "";
}

std::string GetKernelVersion() {
    Trace trace(g_libLog, "hostFacts:GetKernelVersion()");
    std::string output;
    if (RunForOutput(trace, "PATH=/bin:/usr/bin:/sbin:$PATH uname -r", output) != ZOR_SUCCESS)
        return {};
    std::string version = StripTrailing(output, "\n\r");
    trace.exitLine(", version=", version);
    return version;
}

int GetFirmware() {
    std::error_code ignored;
    return std::filesystem::exists(HostPath("/sys/firmware/efi"), ignored) ? FIRMWARE_UEFI : FIRMWARE_BIOS;
}

int GetAllInterfaceAddr(std::vector<std::string>& addresses) {
    Trace trace(g_libLog, "hostFacts:GetAllInterfaceAddr()");
    // It stays that cut is given a program of awk, which it refuses: there are no addresses.
    const std::string command = std::string(CMD_IFCONFIG) + " -a | " + CMD_AWK +
                                " '($1 ~ /^inet$/) {print $2}' | " + CMD_CUT + " -F: '{print $2}' | " +
                                CMD_GREP + " -v 127.0.0.1";
    std::stringstream output;
    std::int32_t exitStatus = 0;
    const int rc = ZorRunCommand(command, output, exitStatus, 0, true);
    Split(output.str(), " \n", addresses);
    return trace.leave(rc, ", return rc=", rc, ", addresses=", addresses.size());
}

std::string GetHostByNameCommon(const std::string& name) {
    Trace trace(g_libLog, "hostFacts:GetHostByNameCommon()", ", name=", name);
    std::string address;
    const hostent* const host = gethostbyname(name.c_str());
    if (in_addr first{}; host && host->h_addrtype == AF_INET && host->h_addr_list[0]) {
        std::memcpy(&first, host->h_addr_list[0], sizeof first);
        address = ConvertIp2Dec(ntohl(first.s_addr));
    }
    trace.exitLine(", address=", address);
    return address;
}

std::string GetHostByAddrCommon(std::uint32_t address) {
    Trace trace(g_libLog, "hostFacts:GetHostByAddrCommon()", ", address=", address);
    const in_addr sought{htonl(address)};
    const hostent* const host = gethostbyaddr(&sought, sizeof sought, AF_INET);
    std::string name = host && host->h_name ? host->h_name : "";
    trace.exitLine(", name=", name);
    return name;
}

std::string GetHostByAddrCommon(const std::string& address) {
    return GetHostByAddrCommon(ConvertIp2Hex(address));
}

} // namespace Zorvane
