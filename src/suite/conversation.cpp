// SPDX-License-Identifier: Apache-2.0
#include "suite/conversation.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Zorvane::Suite {

namespace {

constexpr int NO_SOCKET = -1;

struct Conversation {
    int socket = NO_SOCKET;
    bool isHeldBack = false; ///< something was put and may wait for more
    std::size_t begin = 0;   ///< of what was read ahead
    std::size_t end = 0;
    std::array<char, 16384> bytes;
};
Conversation current;

std::size_t throughLineFeed(const char* bytes, std::size_t count) {
    const auto* feed = static_cast<const char*>(std::memchr(bytes, '\n', count));
    return feed ? static_cast<std::size_t>(feed - bytes) + 1 : count;
}

// Looks before it takes.
ssize_t receiveExactly(int socket, char* buffer, std::size_t room) {
    const ssize_t seen = ::recv(socket, buffer, room, MSG_PEEK);
    if (seen < 0 && errno == ENOTSOCK)
        return ::read(socket, buffer, 1);
    return seen <= 0 ? seen
                     : ::recv(socket, buffer, throughLineFeed(buffer, static_cast<std::size_t>(seen)), 0);
}

} // namespace

void startConversation(int socket) noexcept {
    if (current.socket != NO_SOCKET)
        return;
    current.socket = socket;
    current.isHeldBack = false;
    current.begin = current.end = 0;
}

void endConversation(int socket) noexcept {
    if (current.socket == socket)
        current.socket = NO_SOCKET;
}

ssize_t sendPiece(int socket, const char* bytes, std::size_t count) noexcept {
    const bool holdsBack = socket == current.socket;
    current.isHeldBack = current.isHeldBack || holdsBack;
    return ::send(socket, bytes, count, MSG_NOSIGNAL | (holdsBack ? MSG_MORE : 0));
}

ssize_t receivePiece(int socket, char* buffer, std::size_t room) noexcept {
    if (socket != current.socket)
        return receiveExactly(socket, buffer, room);
    if (current.isHeldBack) {
        const int on = 1; // asked for again, it sends what is held back
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        current.isHeldBack = false;
    }
    if (current.begin == current.end) {
        const ssize_t count = ::recv(socket, current.bytes.data(), current.bytes.size(), 0);
        if (count <= 0)
            return count;
        current.begin = 0;
        current.end = static_cast<std::size_t>(count);
    }
    const char* const from = current.bytes.data() + current.begin;
    const std::size_t size = throughLineFeed(from, std::min(room, current.end - current.begin));
    std::memcpy(buffer, from, size);
    current.begin += size;
    return static_cast<ssize_t>(size);
}

} // namespace Zorvane::Suite
