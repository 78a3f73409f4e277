// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "model/CZor.h"
#include "model/task_records.h"
#include "ops/sendrecv.h"
#include "resources/CommandLog.h"
#include "suite/kvnclient.h"

#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <netinet/in.h>

namespace Zorvane {

/// What the daemon answers: a status, and a document or a command's output.
struct Reply {
    int status = 0;
    std::string body{};
};

/// The recovery daemon of a master server, with the command's log beside it. A test's function answers; it is
/// told what was asked, and so is the test: "query TABLE CONDITION", "tree TABLE ID", "insert DOCUMENT", or a
/// command for the backup catalogue as it stands.
class AnsweringZord {
  public:
    using Answer = std::function<Reply(const std::string& asked)>;

    explicit AnsweringZord(Answer answer)
        : m_answer(std::move(answer)), m_log("master.servers = ['127.0.0.1']\nservices.zord = " + listen()) {
        ClearMasterServerName();
        m_thread = std::thread([this] {
            for (int client; (client = accept(m_listener, nullptr, nullptr)) >= 0; close(client))
                converse(client);
        });
    }
    AnsweringZord(const AnsweringZord&) = delete;
    AnsweringZord& operator=(const AnsweringZord&) = delete;
    ~AnsweringZord() {
        asked();
        close(m_listener);
        ClearMasterServerName();
    }

    /// Nothing is answered from here on.
    const std::vector<std::string>& asked() {
        if (m_thread.joinable()) {
            shutdown(m_listener, SHUT_RDWR);
            m_thread.join();
        }
        return m_asked;
    }
    CommandLog& log() { return m_log; }

  private:
    std::string listen() const {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(m_listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(::listen(m_listener, 8), 0);
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
        return std::to_string(ntohs(address.sin_port));
    }

    void converse(int client) {
        char line[16];
        get_string(client, line, sizeof line, 0, "");
        VersionRequest opening;
        RecvPacket(client, opening, PACKET_SIZE);
        VersionReply compatible;
        compatible.status = 1;
        SendPacket(client, compatible);
        AnyPacket request;
        RecvPacket(client, request);
        const bool isDocument = request.header().maskedType() == DB_REQUEST;
        m_asked.push_back(isDocument ? textOf(client, request.as<DbRequest>())
                                     : request.as<MethodExecute>().parameters.text.data());
        const Reply reply = m_answer(m_asked.back());
        DbReply rows;
        rows.status = static_cast<std::uint8_t>(reply.status);
        rows.number = static_cast<std::int32_t>(reply.body.size());
        MethodExecuteReply result;
        result.returnValue = reply.status;
        isDocument ? SendPacket(client, rows) : SendPacket(client, result);
        send(client, reply.body.data(), reply.body.size(), MSG_NOSIGNAL);
    }

    static std::string textOf(int client, const DbRequest& request) {
        std::string document(static_cast<std::size_t>(request.byteCount), '\0');
        ReadN(client, document.data(), request.byteCount);
        CZor zor;
        zor.readXml(reinterpret_cast<unsigned char*>(document.data()), request.byteCount);
        const CQueryRequest* query = zor.m_vQueryRequest.first();
        if (!query)
            return "insert " + document;
        return query->getTreeId() == 0
                   ? "query " + query->getTableClause() + " " + query->getWhereClause()
                   : "tree " + query->getTableClause() + " " + std::to_string(query->getTreeId());
    }

    Answer m_answer;
    int m_listener = socket(AF_INET, SOCK_STREAM, 0);
    CommandLog m_log;
    std::vector<std::string> m_asked;
    std::thread m_thread;
};

} // namespace Zorvane
