// SPDX-License-Identifier: Apache-2.0
#include "suite/kvlink.h"

#include "suite/configuration.h"
#include "suite/conversation.h"
#include "suite/descriptor.h"
#include "suite/kvnclient.h"

#include <cerrno>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace {

using Zorvane::Suite::Descriptor;

std::optional<std::uint16_t> portOf(const char* service) {
    const auto& services = Zorvane::Suite::configuration().services;
    if (const auto own = services.find(service); own != services.end())
        return own->second;
    if (const servent* entry = ::getservbyname(service, "tcp"))
        return ntohs(static_cast<std::uint16_t>(entry->s_port));
    return std::nullopt;
}

using Addresses = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

// What a host's name and a port stand for; empty if the name has no address. A run connects some forty times
// to the same host, so the answer is kept until it proves to be of no use.
class AddressBook {
  public:
    const Addresses& find(const char* host, std::uint16_t port) {
        Addresses& known = m_known.try_emplace({host, port}, nullptr, &::freeaddrinfo).first->second;
        if (!known) {
            addrinfo hints{};
            hints.ai_socktype = SOCK_STREAM;
            hints.ai_flags = AI_NUMERICSERV;
            addrinfo* found = nullptr;
            if (::getaddrinfo(host, std::to_string(port).c_str(), &hints, &found) == 0)
                known.reset(found);
        }
        return known;
    }
    void forget(const char* host, std::uint16_t port) { m_known.erase({host, port}); }

  private:
    std::map<std::pair<std::string, std::uint16_t>, Addresses> m_known;
};

bool connectTo(int socket, const addrinfo& address) {
    if (::connect(socket, address.ai_addr, address.ai_addrlen) == 0)
        return true;
    if (errno != EINTR)
        return false;
    // An interrupted connect goes on without its caller; its end is told by the socket.
    pollfd waiting{socket, POLLOUT, 0};
    while (::poll(&waiting, 1, -1) < 0)
        if (errno != EINTR)
            return false;
    int error = 0;
    socklen_t size = sizeof error;
    if (::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
        return false;
    errno = error;
    return error == 0;
}

} // namespace

int kvlink_connect_to_service(const char* host, const char* service, int, int, int, int, int* descriptor) {
    *descriptor = -1;
    if (!host || !*host)
        return KVN_STATUS_UNKNOWN_HOST;
    const auto port = service ? portOf(service) : std::nullopt;
    if (!port)
        return KVN_STATUS_UNKNOWN_SERVICE;

    static AddressBook book;
    const Addresses& addresses = book.find(host, *port);
    if (!addresses)
        return KVN_STATUS_UNKNOWN_HOST;
    for (const addrinfo* address = addresses.get(); address; address = address->ai_next) {
        Descriptor socket(::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC, address->ai_protocol));
        if (!socket.isOpen() || !connectTo(socket.get(), *address))
            continue;
        const int on = 1;
        ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        ::setsockopt(socket.get(), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
        // The number may be that of a conversation whose socket was closed behind this layer's back.
        Zorvane::Suite::endConversation(socket.get());
        *descriptor = socket.release();
        return 0;
    }
    book.forget(host, *port);
    return KVN_STATUS_CONNECT_FAILED;
}

int kvn_connect_to_kvlinkd_service(const char* host, const char* service, int* descriptor) {
    return kvlink_connect_to_service(host, service, 0, 0, 0, 0, descriptor);
}

void kvlink_closesocket(int descriptor) {
    Zorvane::Suite::endConversation(descriptor);
    const Descriptor closed(descriptor);
}

// What follows needs the security service, which has no local stand-in: no peer is vouched for.

int kvlink_verify_peer_creds(int, unsigned, int, unsigned* role, int, int, int) {
    if (role)
        *role = 0;
    return KVN_STATUS_NO_SECURITY;
}

bool kvlink_check_kelvarion_daemon() {
    return false;
}

int kvlink_get_credential_path(int, char* path, std::size_t size) {
    if (size != 0)
        *path = '\0';
    return KVN_STATUS_NO_SECURITY;
}

int kvlink_determine_quss_socket(int, int, int*, const char*, std::size_t, int*, int*, int) {
    return KVN_STATUS_NO_SECURITY;
}

int kvlink_check_quss_client_magic(int, int, int, int*, int (*)(int, const char*, const char*), int) {
    return KVN_STATUS_NO_SECURITY;
}
