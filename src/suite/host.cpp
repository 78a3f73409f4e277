// SPDX-License-Identifier: Apache-2.0
// The master configuration, and what this host and others are called.
#include "suite/configuration.h"
#include "suite/kvnclient.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>

#include <arpa/inet.h>
#include <netdb.h>
#include <strings.h>
#include <sys/socket.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace {

std::optional<kvn_master_config> loadedConfig;

bool isAddress(const char* name) {
    std::array<unsigned char, sizeof(in6_addr)> bytes;
    return ::inet_pton(AF_INET, name, bytes.data()) == 1 || ::inet_pton(AF_INET6, name, bytes.data()) == 1;
}

// "alpha" and "ALPHA.example.com" may be one host; "alpha.a.com" and "alpha.b.com" are two.
bool equalShortNames(std::string_view first, std::string_view second) {
    const std::size_t firstEnd = first.find('.');
    const std::size_t secondEnd = second.find('.');
    if ((firstEnd == first.npos) == (secondEnd == second.npos))
        return false;
    first = first.substr(0, firstEnd);
    second = second.substr(0, secondEnd);
    return !first.empty() && first.size() == second.size() &&
           ::strncasecmp(first.data(), second.data(), first.size()) == 0;
}

// The addresses of a name in numeric text; none if it has none.
std::vector<std::string> addressesOf(const char* name) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    std::vector<std::string> out;
    if (::getaddrinfo(name, nullptr, &hints, &found) != 0)
        return out;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
    for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
        std::array<char, NI_MAXHOST> text;
        if (::getnameinfo(entry->ai_addr, entry->ai_addrlen, text.data(), text.size(), nullptr, 0,
                          NI_NUMERICHOST) == 0)
            out.emplace_back(text.data());
    }
    return out;
}

} // namespace

int KVN_read_master_config() {
    const auto& configuration = Zorvane::Suite::configuration();
    if (!configuration.present) {
        loadedConfig.reset();
        return KVN_STATUS_FAILED;
    }
    loadedConfig = configuration.master;
    return 0;
}

const kvn_master_config* get_master_config_ptr() {
    return loadedConfig ? &*loadedConfig : nullptr;
}

int kvn_client_name(std::string& name) {
    name = Zorvane::Suite::configuration().master.client_name;
    if (!name.empty())
        return 0;
    std::array<char, KVN_HOSTNAME_SIZE> host;
    const int result = kvn_gethostname(host.data(), host.size());
    if (result == 0)
        name = host.data();
    return result;
}

int kvn_gethostname(char* buffer, std::size_t size) {
    if (size == 0 || ::gethostname(buffer, size) != 0)
        return KVN_STATUS_FAILED;
    buffer[size - 1] = '\0';
    return 0;
}

bool hosts_equal(const char* first, const char* second) {
    if (!first || !second)
        return false;
    if (::strcasecmp(first, second) == 0)
        return true;
    if (!isAddress(first) && !isAddress(second) && equalShortNames(first, second))
        return true;
    const std::vector<std::string> known = addressesOf(first);
    return !known.empty() && std::ranges::any_of(addressesOf(second), [&](const std::string& address) {
        return std::ranges::find(known, address) != known.end();
    });
}

int getUnameInfoData(kvn_uname_info& info) {
    utsname facts{};
    if (::uname(&facts) != 0)
        return KVN_STATUS_FAILED;
    info = {facts.sysname, facts.nodename, facts.release, facts.machine};
    return 0;
}
