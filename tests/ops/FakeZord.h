// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "logging/CZorLog.h"
#include "ops/Wire.h"
#include "ops/sendrecv.h"
#include "suite/Scratch.h"

#include <array>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <netinet/in.h>

namespace Zorvane {

inline const std::string COMPATIBLE = versionReply(1, "7.0", "KVN");

/// A recovery daemon whose words are written in advance, as the configured one of its service, and the
/// library's log beside it. It speaks plain bytes and shares no code with the client.
class FakeZord {
  public:
    /// What it says on every connection. It hangs up behind it; with `resetsAfter` it breaks the connection
    /// off once it has got so many bytes behind the client's opening.
    explicit FakeZord(std::string says = {}, std::string opening = COMPATIBLE,
                      const std::string& service = "zord", std::size_t resetsAfter = 0,
                      const std::string& quss = "prohibited")
        : m_says(opening + says), m_resetsAfter(resetsAfter) {
        m_address.sin_family = AF_INET;
        m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof m_address;
        EXPECT_EQ(bind(m_listener, reinterpret_cast<sockaddr*>(&m_address), size), 0);
        EXPECT_EQ(listen(m_listener, 64), 0);
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&m_address), &size);
        m_scratch.configure("master = {servers = ['127.0.0.1'], quss = '" + quss + "'}\nservices." + service +
                            " = " + std::to_string(ntohs(m_address.sin_port)) +
                            "\nlogging = {debug = 1, directory = '" + m_scratch.path("") + "'}\n");
        m_log = std::make_unique<CZorLog>(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR);
        g_libLog = m_log.get();
        g_msgFlags = 2;
        g_service = ZOR_SERVICE;
        ClearMasterServerName();
        m_thread = std::thread([this] { serve(); });
    }
    FakeZord(const FakeZord&) = delete;
    FakeZord& operator=(const FakeZord&) = delete;
    ~FakeZord() {
        stop();
        g_libLog = nullptr;
    }

    /// What the clients sent behind their opening, one entry a connection. The daemon is gone then.
    const std::vector<std::string>& heard() {
        stop();
        for (std::string& bytes : m_heard)
            if (bytes.starts_with(m_opening))
                bytes.erase(0, m_opening.size());
            else
                bytes = "bad opening: " + bytes;
        return m_heard;
    }
    /// The same of the only connection.
    std::string heardOnce() { return heard().size() == 1 ? m_heard[0] : "not one connection"; }
    [[nodiscard]] std::string log() const { return m_scratch.read("51216-128.log"); }
    [[nodiscard]] const Scratch& scratch() const { return m_scratch; }

  private:
    void stop() {
        if (!m_thread.joinable())
            return;
        // One more client, behind all that may still wait to be accepted.
        const int last = socket(AF_INET, SOCK_STREAM, 0);
        connect(last, reinterpret_cast<const sockaddr*>(&m_address), sizeof m_address);
        send(last, LAST, std::strlen(LAST), MSG_NOSIGNAL);
        shutdown(last, SHUT_WR);
        std::array<char, 4096> ignored;
        while (recv(last, ignored.data(), ignored.size(), 0) > 0) {
        }
        close(last);
        m_thread.join();
        close(m_listener);
    }

    void serve() {
        for (int client; (client = accept(m_listener, nullptr, nullptr)) >= 0; close(client)) {
            send(client, m_says.data(), m_says.size(), MSG_NOSIGNAL);
            if (m_resetsAfter == 0)
                shutdown(client, SHUT_WR);
            std::string& heard = m_heard.emplace_back();
            std::array<char, 4096> piece;
            for (ssize_t got; (got = recv(client, piece.data(), piece.size(), 0)) > 0;) {
                heard.append(piece.data(), static_cast<std::size_t>(got));
                if (m_resetsAfter != 0 && heard.size() >= m_opening.size() + m_resetsAfter)
                    break;
            }
            const linger atOnce{m_resetsAfter != 0, 0};
            setsockopt(client, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
            if (heard == LAST) {
                m_heard.pop_back();
                close(client);
                break;
            }
        }
    }

    const std::string m_opening = "0 0\n" + packet(10, S("6.5.0") + S("KVN"));
    static constexpr const char* LAST = "the last client";

    std::string m_says;
    std::size_t m_resetsAfter;
    Scratch m_scratch;
    sockaddr_in m_address{};
    int m_listener = socket(AF_INET, SOCK_STREAM, 0);
    std::unique_ptr<CZorLog> m_log;
    std::vector<std::string> m_heard;
    std::thread m_thread;
};

} // namespace Zorvane
