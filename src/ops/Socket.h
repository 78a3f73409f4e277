// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ops/sendrecv.h"

#include <utility>

namespace Zorvane {

/// A connection, or the file that it goes into: closed at the end of its scope.
class Socket {
  public:
    explicit Socket(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() {
        if (isOpen())
            PlatformCloseSocketCommon(m_descriptor);
    }

    [[nodiscard]] bool isOpen() const noexcept { return m_descriptor >= 0; }
    [[nodiscard]] int get() const noexcept { return m_descriptor; }
    /// Connects to g_service: 0, or a code of ZorOpResult.
    [[nodiscard]] int connect() { return SockConnect(&m_descriptor); }
    /// The connection is open to the end of the process, or somebody else's.
    int release() noexcept { return std::exchange(m_descriptor, -1); }

  private:
    int m_descriptor;
};

} // namespace Zorvane
