// SPDX-License-Identifier: Apache-2.0
#include "lab/Connection.h"

#include "ops/sendrecv.h"
#include "suite/kvnclient.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace Zorvane {

namespace {

// The lines of the conversations are names and numbers.
constexpr std::size_t MAX_LINE = 4096;
// A document is read in pieces, so that a peer's word for its length costs nothing until the bytes are there.
constexpr std::size_t PIECE = std::size_t{64} << 10;
// For what a peer may still have under way when its answer is complete: a document that was refused, for
// instance.
constexpr std::chrono::seconds LEFTOVER_TIME{2};

} // namespace

void Connection::cut() {
    m_isCut = true;
    ::shutdown(descriptor(), SHUT_RDWR);
}

void Connection::pause(std::chrono::milliseconds time) {
    for (auto* deadline : {&m_deadline, &m_deadlineIfOthersWait})
        if (*deadline != NEVER)
            *deadline += std::chrono::duration_cast<Clock::duration>(time).count();
    pollfd cutting{descriptor(), 0, 0}; // a hang-up is told unasked, and one of the peer's side alone is none
    ::poll(&cutting, 1, static_cast<int>(time.count()));
}

std::optional<std::string> Connection::readLine() {
    std::array<char, MAX_LINE + 2> buffer; // the line feed and the NUL
    const int length = get_string(descriptor(), buffer.data(), static_cast<int>(buffer.size()), 0, "");
    if (length <= 0 || buffer[length - 1] != '\n')
        return std::nullopt;
    return std::string(buffer.data(), static_cast<std::size_t>(length) - 1);
}

std::optional<std::string> Connection::read(std::size_t count) {
    std::string bytes;
    while (bytes.size() < count) {
        awaitPiece();
        const std::size_t piece = std::min(PIECE, count - bytes.size());
        bytes.resize(bytes.size() + piece);
        if (ReadN(descriptor(), bytes.data() + bytes.size() - piece, static_cast<int>(piece)) !=
            static_cast<int>(piece))
            return std::nullopt;
    }
    endWait();
    return bytes;
}

bool Connection::readToEnd(std::string& bytes, std::size_t most) {
    while (bytes.size() <= most) {
        awaitPiece();
        const std::size_t before = bytes.size();
        bytes.resize(before + PIECE);
        const ssize_t count = ::recv(descriptor(), bytes.data() + before, PIECE, MSG_WAITALL);
        bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count == 0 || (count < 0 && errno != EINTR)) {
            endWait();
            return true;
        }
    }
    endWait();
    return false;
}

bool Connection::write(std::string_view bytes) {
    while (!bytes.empty()) {
        awaitPiece();
        const ssize_t count = ::send(descriptor(), bytes.data(), std::min(bytes.size(), PIECE), MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    endWait();
    return true;
}

void Connection::gather() {
    const int on = 1;
    ::setsockopt(descriptor(), IPPROTO_TCP, TCP_CORK, &on, sizeof on);
}

void Connection::waitForPeer() {
    m_deadline = m_deadlineIfOthersWait = NEVER;
    discardToEnd();
}

void Connection::finish() {
    allow(LEFTOVER_TIME);
    ::shutdown(descriptor(), SHUT_WR);
    discardToEnd();
}

void Connection::awaitPiece() {
    m_deadlineIfOthersWait = (Clock::now() + m_pieceTime).time_since_epoch().count();
}

void Connection::discardToEnd() {
    std::array<char, 4096> ignored;
    ssize_t count = 0;
    do
        count = ::recv(descriptor(), ignored.data(), ignored.size(), 0);
    while (count > 0 || (count < 0 && errno == EINTR));
}

} // namespace Zorvane
