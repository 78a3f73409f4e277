// SPDX-License-Identifier: Apache-2.0
// Packets as the bytes on the wire, written down by hand.
#pragma once

#include <string>

#include <sys/socket.h>
#include <unistd.h>

namespace Zorvane {

inline std::string number(std::uint64_t value, int bytes) {
    std::string out;
    for (int i = bytes; i-- > 0;)
        out += static_cast<char>(value >> (8 * i));
    return out;
}
inline std::string c(unsigned value) {
    return number(value, 1);
}
inline std::string s(unsigned value) {
    return number(value, 2);
}
inline std::string i(long value) {
    return number(static_cast<std::uint64_t>(value), 4);
}
inline std::string S(const std::string& text) {
    return text + '\0';
}
inline std::string packet(unsigned type, const std::string& body) {
    return s(type) + s(static_cast<unsigned>(body.size()) + 4) + body;
}
inline std::string versionReply(unsigned status, const std::string& version, const std::string& esm) {
    return packet(11, c(status) + S(version) + S(esm));
}

/// Two ends of a connection in one process.
class SocketPair {
  public:
    SocketPair() { socketpair(AF_UNIX, SOCK_STREAM, 0, m_ends); }
    SocketPair(const SocketPair&) = delete;
    SocketPair& operator=(const SocketPair&) = delete;
    ~SocketPair() {
        close(m_ends[0]);
        close(m_ends[1]);
    }

    /// The end that is given to the code under test.
    [[nodiscard]] int near() const { return m_ends[0]; }
    /// What the peer says, and then hangs up if it is the last of it.
    void says(const std::string& bytes, bool last = true) const {
        send(m_ends[1], bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (last)
            shutdown(m_ends[1], SHUT_WR);
    }
    /// What the peer has got so far.
    [[nodiscard]] std::string hears() const {
        std::string bytes(65536, '\0');
        const ssize_t got = recv(m_ends[1], bytes.data(), bytes.size(), MSG_DONTWAIT);
        bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        return bytes;
    }

  private:
    int m_ends[2] = {-1, -1};
};

/// A standard descriptor that is another one for a while.
class Redirect {
  public:
    Redirect(int standard, int other) : m_standard(standard), m_saved(dup(standard)) {
        dup2(other, standard);
    }
    Redirect(const Redirect&) = delete;
    Redirect& operator=(const Redirect&) = delete;
    ~Redirect() {
        dup2(m_saved, m_standard);
        close(m_saved);
    }

  private:
    int m_standard;
    int m_saved;
};

} // namespace Zorvane
