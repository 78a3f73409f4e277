// SPDX-License-Identifier: Apache-2.0
// Connections to and from the suite's other services, vouched for by the hosts' credentials.
#pragma once

namespace Zorvane {

/// Connects and checks the peer's credentials: 0 or the suite's status. The descriptor, -1 if there is no
/// connection, is the caller's to close.
int ConnectMrthService(const char* host, const char* service, int* descriptor);
/// Accepts the connection that this process was started with on descriptor 0, if the peer is a master server.
/// 0, or the suite's status; `*descriptor` is then -1.
int AcceptMrthService(int* descriptor);

} // namespace Zorvane
