// SPDX-License-Identifier: Apache-2.0
#include "ops/sendrecv.h"

#include "logging/Trace.h"
#include "ops/Socket.h"
#include "ops/client_utils.h"
#include "ops/zorcAuthenticate.h"
#include "ops/zorop.h"
#include "platform/returnCodes.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <sys/socket.h>
#include <unistd.h>

namespace Zorvane {

namespace {

// The host of ZOR_SERVICE; empty if nobody knows it.
const std::string& masterServer(Trace& trace) {
    if (!g_masterServerName.empty() || KVN_read_master_config() != 0)
        return g_masterServerName;
    const kvn_master_config* config = get_master_config_ptr();
    if (config && !config->servers.empty())
        g_masterServerName = config->servers.front();
    if (g_masterServerName.empty())
        trace.write(LEVEL_FAILURE, "Null server name, exiting, line=", __LINE__);
    return g_masterServerName;
}

// A descriptor or -1.
int connectToService(Trace& trace) {
    const std::string_view service = g_service ? g_service : "";
    if (service == ZOR_SERVICE) {
        const std::string& host = masterServer(trace);
        return host.empty() ? -1 : PlatformKvlinkdSockConnect(host.c_str(), g_service);
    }
    if (service == ZOR_BOOT_SERVICE && g_boothostname)
        return PlatformKvlinkdSockConnect(g_boothostname, g_service);
    return -1;
}

} // namespace

const char* g_service = ZOR_SERVICE;
std::string g_masterServerName;
char* g_boothostname = nullptr;

int SockConnect(int* descriptor) {
    Trace trace(g_libLog, "sendrecv:SockConnect()", ", service=", orNull(g_service));
    if (!descriptor)
        return trace.leave<int>(ZOROP_NETWORK_FAILURE, ", return ZOROP_NETWORK_FAILURE");
    Socket socket(connectToService(trace));
    if (!socket.isOpen())
        return trace.leave<int>(ZOROP_NETWORK_FAILURE, ", return ZOROP_NETWORK_FAILURE");
    if (ZorcAuthenticate(socket.get()) != 0)
        return trace.leave<int>(ZOROP_QUSS_FAILURE, ", return ZOROP_QUSS_FAILURE");
    if (SendAssertCompat(socket.get()) != 0)
        return trace.leave<int>(ZOROP_VERSION_FAILURE, ", return ZOROP_VERSION_FAILURE");
    *descriptor = socket.release();
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

int SendPacket(int descriptor, const PacketHeader& record) {
    Trace trace(g_libLog, "sendrecv:SendPacket()", ", type=", record.type);
    const std::uint16_t type = record.maskedType();
    if (type >= PACKET_TYPES)
        return trace.leave(-1, ", return -1");
    std::array<unsigned char, PACKET_BUFFER_SIZE> buffer{};
    // Packing only reads the record.
    int length = packetCodecs[type](&Pack, buffer.data(), const_cast<PacketHeader&>(record));
    if (length == -1)
        trace.write(LEVEL_FAILURE, "Buffer Overflow");
    if (length == ZOR_ILLEGAL_TEXT)
        trace.write(LEVEL_FAILURE, "recieved illegal character(s)");
    if (length > 0) {
        if (type == ERR_REQUEST) {
            // Its length is the sender's own: the packet always goes whole, whatever its texts fill of it.
            length = std::min<int>(record.len, PACKET_SIZE);
        } else {
            auto size = static_cast<std::uint16_t>(length);
            Pack(buffer.data() + offsetof(PacketHeader, len), nullptr, "s", {&size});
        }
        length = static_cast<std::int16_t>(
            ::send(descriptor, buffer.data(), static_cast<std::size_t>(length), MSG_NOSIGNAL));
    }
    return trace.leave(length, ", return rc=", length);
}

int RecvPacket(int descriptor, PacketHeader& record, int maximum, int expected) {
    Trace trace(g_libLog, "sendrecv:RecvPacket()", ", maximum=", maximum, ", expected=", expected);
    record.len = 0;
    // Zero behind the part that is read, so that a cut text ends.
    std::array<unsigned char, PACKET_BUFFER_SIZE> buffer{};
    constexpr int headerSize = PACKET_HEADER_SIZE;
    if (const int rc = ReadN(descriptor, buffer.data(), headerSize); rc != headerSize) {
        trace.write(LEVEL_FAILURE, "bad header, rc=", rc);
        return trace.leave(-1, ", return -1");
    }
    Unack(buffer.data(), nullptr, "ss", {&record.type, &record.len});
    const std::uint16_t type = record.maskedType();
    if (type >= PACKET_TYPES || (expected != NO_PACKET && type != expected)) {
        trace.write(LEVEL_FAILURE, "type ", record.type, " != ", expected);
        return trace.leave(-1, ", return -1");
    }
    // Whatever a peer or a caller says, the buffer is the limit.
    const int want =
        std::min({static_cast<int>(record.len), maximum, static_cast<int>(PACKET_SIZE)}) - headerSize;
    if (const int rc = ReadN(descriptor, buffer.data() + headerSize, want); rc != want) {
        trace.write(LEVEL_FAILURE, "packet len ", rc, " != ", want);
        return trace.leave(-1, ", return -1");
    }
    const int length = packetCodecs[type](&Unack, buffer.data(), record);
    if (length == -1)
        trace.write(LEVEL_FAILURE, "Buffer Overflow");
    return trace.leave(length, ", return rc=", length);
}

int ReadN(int descriptor, void* buffer, int count) {
    FineTrace trace(g_libLog, "sendrecv:ReadN()", ", count=", count);
    auto* place = static_cast<unsigned char*>(buffer);
    for (int remaining = count; remaining > 0;) {
        const ssize_t got = ::recv(descriptor, place, static_cast<std::size_t>(remaining), 0);
        if (got < 0 && errno == EAGAIN)
            continue;
        if (got <= 0)
            return trace.leave(static_cast<int>(got), ", return rc=", got);
        place += got;
        remaining -= static_cast<int>(got);
    }
    return trace.leave(count, ", return count=", count);
}

int PlatformCloseSocketCommon(int descriptor) {
    Trace trace(g_libLog, "sendrecv:PlatformCloseSocketCommon()", ", descriptor=", descriptor);
    if (::close(descriptor) != 0) {
        trace.write(LEVEL_FAILURE, "close() failed: ", std::strerror(errno));
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

int PlatformKvlinkdSockConnect(const char* host, const char* service) {
    Trace trace(g_libLog, "sendrecv:PlatformKvlinkdSockConnect()", ", host=", orNull(host),
                ", service=", orNull(service));
    int descriptor = -1;
    if (const int rc = kvlink_connect_to_service(host, service, 0, 0, 0, 0, &descriptor)) {
        trace.write(LEVEL_FAILURE, "kvlink_connect_to_service()  failed, rc = ", rc);
        descriptor = -1;
    }
    return trace.leave(descriptor, ", return descriptor=", descriptor);
}

void ClearMasterServerName() {
    g_masterServerName.clear();
}

int SetBootServerName(const char* name) {
    Trace trace(g_libLog, "sendrecv:SetBootServerName()", ", name=", orNull(name));
    char* copy = name ? ::strdup(name) : nullptr;
    if (!copy)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    std::free(std::exchange(g_boothostname, copy));
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

} // namespace Zorvane
