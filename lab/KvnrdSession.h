// SPDX-License-Identifier: Apache-2.0
// One conversation of the request daemon kvnrd, the daemon's side: greeting, command, arguments, reply lines.
#pragma once

#include "lab/Connection.h"
#include "lab/Lab.h"

namespace Zorvane {

class KvnrdSession {
  public:
    KvnrdSession(Lab& lab, Connection& connection) : m_lab(lab), m_connection(connection) {}

    /// Serves the connection to its end.
    void run();

  private:
    void converse();
    bool admit(FailPoint point, const std::string& detail);
    void list();

    Lab& m_lab;
    Connection& m_connection;
};

} // namespace Zorvane
