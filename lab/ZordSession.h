// SPDX-License-Identifier: Apache-2.0
// One exchange of the recovery daemons zord and zorbd, the daemon's side: the opening, the version check, one
// request.
#pragma once

#include "lab/Connection.h"
#include "lab/Lab.h"
#include "ops/packets.h"

#include <optional>
#include <string>
#include <string_view>

namespace Zorvane {

class ZordSession {
  public:
    ZordSession(Lab& lab, Connection& connection, std::string service)
        : m_lab(lab), m_connection(connection), m_service(std::move(service)) {}

    /// Serves the connection to its end.
    void run();

  private:
    bool open();
    void answer(AnyPacket& packet);
    void database(const DbRequest& request);
    /// For a document that is too large, or one too many.
    void refuse(std::int32_t byteCount);
    /// Runs a database request, or says how it is to fail.
    StoreResult work(int command, std::string_view document, const LargeTurn& turn,
                     std::optional<Failure>& failure);
    void sendRows(const StoreResult& result, std::optional<Failure> failure, bool withReply);
    void method(const MethodExecute& request);

    Lab& m_lab;
    Connection& m_connection;
    std::string m_service;
};

} // namespace Zorvane
