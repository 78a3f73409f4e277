// SPDX-License-Identifier: Apache-2.0
// The transport: typed packets over one connection for each exchange. The packet functions keep no state and
// serve both ends, from any thread; connecting goes by three process-wide names.
#pragma once

#include "ops/packets.h"
#include "ops/validateInput.h"

#include <string>

namespace Zorvane {

/// The service to connect to: ZOR_SERVICE or ZOR_BOOT_SERVICE. The dispatcher sets it at each operation.
extern const char* g_service;
/// The host of ZOR_SERVICE; filled from the suite's configuration at the first connection.
extern std::string g_masterServerName;
/// The host of ZOR_BOOT_SERVICE; null until SetBootServerName.
extern char* g_boothostname;

inline constexpr const char* ZOR_SERVICE = "zord";       ///< the recovery daemon on the master server
inline constexpr const char* ZOR_BOOT_SERVICE = "zorbd"; ///< the boot server's daemon

/// Connects to g_service, authenticates and checks the versions: 0 and a descriptor that the caller closes,
/// or a code of ZorOpResult, the descriptor being as the caller set it.
int SockConnect(int* descriptor);

/// Sends one packet: the number of bytes sent; -1 on failure; -2, nothing sent, for method parameters that
/// ValidateInput refuses. Fills in the length on the wire.
int SendPacket(int descriptor, const PacketHeader& record);
template <PacketRecord Record>
int SendPacket(int descriptor, const Record& record) {
    return SendPacket(descriptor, record.header);
}

/// Receives one packet, at most `maximum` bytes of it: what a longer one has behind them stays on the
/// connection. `expected` is a PacketType; NO_PACKET takes any type, and the record is then an AnyPacket's.
/// The number of bytes decoded; -1 on failure or for another type; -2 as with SendPacket.
int RecvPacket(int descriptor, PacketHeader& record, int maximum, int expected);
template <PacketRecord Record>
int RecvPacket(int descriptor, Record& record, int maximum) {
    return RecvPacket(descriptor, record.header, maximum, Record::Type);
}
inline int RecvPacket(int descriptor, AnyPacket& packet) {
    packet = {};
    return RecvPacket(descriptor, packet.header(), PACKET_SIZE, NO_PACKET);
}

/// Reads exactly `count` bytes: `count`; 0 at the end of the stream, also behind a part of them; -1 on
/// failure. Blocks for as long as the peer is silent.
int ReadN(int descriptor, void* buffer, int count);

/// ZOR_SUCCESS or ZOR_FAIL.
int PlatformCloseSocketCommon(int descriptor);
/// A descriptor that the caller closes, or -1.
int PlatformKvlinkdSockConnect(const char* host, const char* service);

/// The next connection asks the suite's configuration again.
void ClearMasterServerName();
/// Keeps a copy; ZOR_FAIL for null or when there is no memory.
int SetBootServerName(const char* name);

} // namespace Zorvane
