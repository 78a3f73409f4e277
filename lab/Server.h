// SPDX-License-Identifier: Apache-2.0
// Listens on the ports of several services and serves each connection on a thread of a bounded number.
#pragma once

#include "lab/Connection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Zorvane {

struct Service {
    std::string name;
    std::uint16_t port = 0; ///< 0: any free one
    /// Serves one connection, on any thread; other connections are served meanwhile.
    std::function<void(Connection&)> serve;
};

class Server {
  public:
    /// The connections that are open at the same time, all services together, and so the threads and
    /// descriptors that clients can take. More of them wait in the kernel's queue, and the time limits see to
    /// it that they get their turn whatever the others do.
    static constexpr std::size_t MAX_CONNECTIONS = 64;

    /// Listens when this returns. LabError, with service and port, if a port can't be had.
    Server(const std::string& address, std::vector<Service> services);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();

    [[nodiscard]] std::uint16_t port(const std::string& service) const;

    /// Serves until stop(), SIGTERM or SIGINT. Then no connection is open any more and no thread runs.
    void run();
    /// From any thread.
    void stop();

  private:
    class Impl;

    std::unique_ptr<Impl> m_impl;
};

} // namespace Zorvane
