// SPDX-License-Identifier: Apache-2.0
#include "torture/Proxy.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace Zorvane::Torture {

namespace {

using Suite::Descriptor;

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool connectTo(int socket, std::uint16_t port) {
    const sockaddr_in address = loopback(port);
    return connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

void sendAtOnce(int socket) {
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// False if the receiver is gone.
bool sendAll(int to, std::string_view bytes, std::size_t piece) {
    while (!bytes.empty()) {
        const ssize_t sent = send(to, bytes.data(), std::min(piece, bytes.size()), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

} // namespace

std::pair<int, std::uint16_t> bindToFreePort(bool listens) {
    Descriptor made(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (bind(made.get(), reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        getsockname(made.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        (listens && listen(made.get(), SOMAXCONN) != 0))
        throw std::system_error(errno, std::generic_category(), "no free port for the torture");
    return {made.release(), ntohs(address.sin_port)};
}

Proxy::Proxy(const std::vector<std::uint16_t>& ports) {
    for (const std::uint16_t target : ports) {
        const auto [listener, own] = bindToFreePort(true);
        m_doors.emplace_back(listener, own, target);
    }
    m_thread = std::thread([this] { run(); });
}

Proxy::~Proxy() {
    m_stopped = true;
    m_thread.join();
}

void Proxy::begin(const Damage& damage) {
    const std::lock_guard lock(m_lock);
    m_damage = damage;
    m_traffic.clear();
}

std::vector<Traffic> Proxy::end() {
    // What the client left behind may still wait in a queue of the kernel: the listeners are asked, too.
    std::vector<pollfd> waiting;
    for (const Door& door : m_doors)
        waiting.push_back({door.listener->get(), POLLIN, 0});
    while (m_busy || poll(waiting.data(), waiting.size(), 0) > 0 || m_busy)
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    const std::lock_guard lock(m_lock);
    if (m_error != 0)
        throw std::system_error(m_error, std::generic_category(), "a connection to the lab failed by itself");
    return m_traffic;
}

// A run has one connection at a time, so they pass one by one.
void Proxy::run() {
    std::vector<pollfd> waiting;
    for (const Door& door : m_doors)
        waiting.push_back({door.listener->get(), POLLIN, 0});
    while (!m_stopped) {
        poll(waiting.data(), waiting.size(), 50);
        for (std::size_t i = 0; i < waiting.size(); ++i) {
            if (!(waiting[i].revents & POLLIN))
                continue;
            m_busy = true;
            pass(accept4(waiting[i].fd, nullptr, nullptr, SOCK_CLOEXEC), i);
            m_busy = false;
        }
    }
}

void Proxy::pass(int accepted, std::size_t service) {
    const Descriptor client(accepted), daemon(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!client.isOpen() || !connectTo(daemon.get(), m_doors[service].target)) {
        const std::lock_guard lock(m_lock);
        m_error = errno;
        return;
    }
    sendAtOnce(client.get());
    sendAtOnce(daemon.get());
    Damage damage;
    std::size_t number = 0;
    {
        const std::lock_guard lock(m_lock);
        damage = m_damage;
        number = m_traffic.size();
        m_traffic.push_back({service});
    }
    Traffic traffic{service};
    std::array<pollfd, 2> sides{pollfd{client.get(), POLLIN, 0}, pollfd{daemon.get(), POLLIN, 0}};
    std::array<char, 65536> buffer;
    while (!traffic.isCut && (sides[0].fd >= 0 || sides[1].fd >= 0) && poll(sides.data(), 2, -1) > 0)
        for (std::size_t from = 0; from < 2 && !traffic.isCut; ++from) {
            if (sides[from].fd < 0 || sides[from].revents == 0)
                continue;
            const bool isReply = from == 1;
            const int to = isReply ? client.get() : daemon.get();
            const ssize_t got = recv(sides[from].fd, buffer.data(), buffer.size(), 0);
            if (got <= 0) {
                sides[from].fd = -1;
                shutdown(to, SHUT_WR);
                continue;
            }
            std::string& passed = isReply ? traffic.received : traffic.sent;
            std::string_view bytes(buffer.data(), static_cast<std::size_t>(got));
            if (number == damage.connection && isReply == damage.inReply &&
                passed.size() + bytes.size() > damage.after) {
                bytes = bytes.substr(0, damage.after - passed.size());
                traffic.isCut = true;
            }
            passed += bytes;
            if (isReply)
                std::this_thread::sleep_for(damage.delay);
            sendAll(to, bytes, isReply && damage.singleBytes ? 1 : bytes.size());
        }
    if (traffic.isCut) {
        // The daemon still has its say, so that nothing of it is under way when the run is looked at.
        shutdown(client.get(), SHUT_RDWR);
        shutdown(daemon.get(), SHUT_WR);
        while (recv(daemon.get(), buffer.data(), buffer.size(), 0) > 0)
            ;
    }
    const std::lock_guard lock(m_lock);
    if (number < m_traffic.size())
        m_traffic[number] = std::move(traffic);
}

} // namespace Zorvane::Torture
