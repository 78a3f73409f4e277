// SPDX-License-Identifier: Apache-2.0
// What the exchanges share; for their sources only.
#pragma once

#include "logging/Trace.h"
#include "ops/Socket.h"
#include "ops/client_utils.h"
#include "ops/zorop.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Zorvane {

/// Raw bytes of no known length move in pieces of this size.
inline constexpr std::size_t PIECE_SIZE = 512;

inline int networkFailure(Trace& trace, const char* what) {
    trace.write(LEVEL_FAILURE, what);
    return trace.leave<int>(ZOROP_NETWORK_FAILURE, ", return ZOROP_NETWORK_FAILURE");
}

/// Sends all bytes; false at the first failure: a peer that hangs up is one, and no signal. A length of 0 or less has none.
inline bool sendAll(int descriptor, const void* bytes, int length) {
    const auto* place = static_cast<const unsigned char*>(bytes);
    while (length > 0) {
        const ssize_t sent = ::send(descriptor, place, static_cast<std::size_t>(length), MSG_NOSIGNAL);
        if (sent < 0)
            return false;
        place += sent;
        length -= static_cast<int>(sent);
    }
    return true;
}

/// The standard output, on which a process that a daemon started talks back to it; -1 if it is closed.
inline int stdoutSocket() {
    return ::fcntl(STDOUT_FILENO, F_GETFD) < 0 ? -1 : STDOUT_FILENO;
}

} // namespace Zorvane
