// SPDX-License-Identifier: Apache-2.0
// A conversation of lines with few calls of the system: what is put goes out when an answer is wanted, and
// answers are read ahead. The request daemon's replies are hundreds of short lines, and each call takes
// longer than all else that is done with a line.
#pragma once

#include <cstddef>

#include <sys/types.h>

namespace Zorvane::Suite {

/// Makes a conversation of this socket, if there is no other one. Only for a socket that nothing but the
/// calls below sends on or receives from, and that kvlink_closesocket closes.
void startConversation(int socket) noexcept;

/// Ends it and forgets what was read ahead, if it is one. The socket is about to be closed, which sends the
/// rest.
void endConversation(int socket) noexcept;

/// Sends as many of the bytes as go at once; -1 on error.
ssize_t sendPiece(int socket, const char* bytes, std::size_t count) noexcept;

/// Up to `room` bytes that the peer has sent, no further than a line feed; 0 at the end of the stream, -1 on
/// error. A socket that is no conversation keeps what stands behind the line feed for its next reader.
ssize_t receivePiece(int socket, char* buffer, std::size_t room) noexcept;

} // namespace Zorvane::Suite
