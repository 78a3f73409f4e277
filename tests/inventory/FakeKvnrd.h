// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "inventory/CZorb2vKvnrdConnect.h"
#include "logging/CZorLog.h"
#include "suite/Scratch.h"

#include <algorithm>
#include <array>
#include <thread>

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Zorvane {

inline constexpr const char* WELCOME = "0\n0\n1\n"; ///< of the conversation, of the command, and its receipt

/// The request daemon of the configured master, for one conversation, and the command's log beside it. What
/// the daemon says is written in advance; it hangs up behind it, or breaks off once it has the arguments.
class FakeKvnrd {
  public:
    explicit FakeKvnrd(const std::string& says, bool breaksOff = false) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(m_listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(m_listener, 1), 0);
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
        m_scratch.configure("master = {servers = ['127.0.0.1'], client_name = 'labhost'}\n"
                            "services.kvnrd = " +
                            std::to_string(ntohs(address.sin_port)) +
                            "\nlogging = {debug = 6, directory = '" + m_scratch.path("") + "'}\n");
        m_log = std::make_unique<CZorLog>(ZOR_PRODUCT_ID, ZOR_COMMAND_ORIGINATOR);
        g_appLog = m_log.get();
        m_thread = std::thread([=, this] { serve(says, breaksOff); });
    }
    FakeKvnrd(const FakeKvnrd&) = delete;
    FakeKvnrd& operator=(const FakeKvnrd&) = delete;
    ~FakeKvnrd() {
        sent();
        close(m_listener);
        g_appLog = nullptr;
    }

    /// What the client sent; waits for the client to close its end.
    const std::string& sent() {
        if (m_thread.joinable())
            m_thread.join();
        return m_sent;
    }
    [[nodiscard]] std::string log() const { return m_scratch.read("51216-433.log"); }

  private:
    void serve(const std::string& says, bool breaksOff) {
        const int peer = accept(m_listener, nullptr, nullptr);
        EXPECT_EQ(send(peer, says.data(), says.size(), MSG_NOSIGNAL), static_cast<ssize_t>(says.size()));
        if (!breaksOff)
            shutdown(peer, SHUT_WR);
        std::array<char, 4096> buffer;
        for (ssize_t count; (count = recv(peer, buffer.data(), buffer.size(), 0)) > 0;) {
            m_sent.append(buffer.data(), static_cast<std::size_t>(count));
            if (breaksOff && std::ranges::count(m_sent, '\n') == 7)
                break;
        }
        const linger atOnce{breaksOff, 0};
        setsockopt(peer, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        close(peer);
    }

    Scratch m_scratch;
    int m_listener = socket(AF_INET, SOCK_STREAM, 0);
    std::unique_ptr<CZorLog> m_log;
    std::string m_sent;
    std::thread m_thread;
};

/// Collections as text, for tables of expected values.
inline std::string joined(const std::vector<std::string>& entries) {
    std::string text;
    for (const std::string& entry : entries)
        text += entry + ";";
    return text;
}
template <class Value>
std::string joined(const std::map<std::string, Value>& entries) {
    std::string text;
    for (const auto& [name, value] : entries)
        text += name + "=" + std::to_string(value) + ";";
    return text;
}

} // namespace Zorvane
