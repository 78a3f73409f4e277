// SPDX-License-Identifier: Apache-2.0
// Stands between a client and the daemons of a lab, and damages what passes.
#pragma once

#include "suite/descriptor.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Zorvane::Torture {

/// What happens to the connections of one run.
struct Damage {
    static constexpr std::size_t NEVER = static_cast<std::size_t>(-1);

    std::size_t connection = NEVER;     ///< counted from 0; this one is cut
    bool inReply = true;                ///< else in what the client sends
    std::size_t after = 0;              ///< bytes that pass before
    bool singleBytes = false;           ///< every byte of every reply travels alone
    std::chrono::milliseconds delay{0}; ///< before every piece of every reply
};

/// What passed in one connection.
struct Traffic {
    std::size_t service = 0; ///< the index of its port
    std::string sent{}, received{};
    bool isCut = false;
};

class Proxy {
  public:
    /// Listens for each of these ports on one of its own.
    explicit Proxy(const std::vector<std::uint16_t>& ports);
    Proxy(const Proxy&) = delete;
    Proxy& operator=(const Proxy&) = delete;
    ~Proxy();

    [[nodiscard]] std::uint16_t port(std::size_t index) const { return m_doors[index].port; }
    /// For the connections from now on, which are counted anew.
    void begin(const Damage& damage);
    /// Waits until the daemons have closed every connection, and gives what passed since begin(). Throws
    /// std::system_error if the proxy itself failed: that is no damage that was asked for.
    std::vector<Traffic> end();

  private:
    struct Door {
        Door(int descriptor, std::uint16_t own, std::uint16_t daemon)
            : listener(std::make_unique<Suite::Descriptor>(descriptor)), port(own), target(daemon) {}
        std::unique_ptr<Suite::Descriptor> listener;
        std::uint16_t port, target;
    };

    void run();
    void pass(int client, std::size_t service);

    std::vector<Door> m_doors;
    std::mutex m_lock;
    Damage m_damage;
    std::vector<Traffic> m_traffic;
    int m_error = 0; ///< of a connection that could not be passed on
    std::atomic<bool> m_busy = false;
    std::atomic<bool> m_stopped = false;
    std::thread m_thread;
};

/// A socket bound to a free port of the loopback and its number; it listens only if asked to. Throws
/// std::system_error.
std::pair<int, std::uint16_t> bindToFreePort(bool listens);

} // namespace Zorvane::Torture
