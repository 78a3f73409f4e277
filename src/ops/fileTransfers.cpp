// SPDX-License-Identifier: Apache-2.0
// The exchanges that move whole files: pull, push, import.
#include "ops/exchange.h"

#include <algorithm>
#include <cerrno>

namespace Zorvane {

namespace {

template <PacketRecord Request>
int sendFileRequest(int descriptor, const char* source, const char* client) {
    Request request;
    request.source.set(source);
    request.client.set(client);
    return SendPacket(descriptor, request);
}

// Null if all came and was written, else what went wrong.
const char* receiveInto(int file, int descriptor, int byteCount) {
    std::array<char, PIECE_SIZE> piece;
    if (byteCount < 0)
        return "failure receiving data - bad length";
    for (int left = byteCount; left > 0;) {
        errno = 0;
        const auto wanted = std::min(piece.size(), static_cast<std::size_t>(left));
        const ssize_t got = ::recv(descriptor, piece.data(), wanted, 0);
        if (got <= 0)
            return errno == EINTR ? "failure receiving data - errno=EINTR"
                                  : "failure receiving data - bad length";
        if (::write(file, piece.data(), static_cast<std::size_t>(got)) != got)
            return "failure writing data - bad length";
        left -= static_cast<int>(got);
    }
    return nullptr;
}

} // namespace

int SendPullRequest(const char* destination, const char* source, const char* client, int packetType) {
    Trace trace(g_libLog, "fileTransfers:SendPullRequest()", ", destination=", orNull(destination),
                ", source=", orNull(source), ", client=", orNull(client), ", packetType=", packetType);
    Socket socket;
    if (const int rc = socket.connect())
        return trace.leave(rc, ", return rc=", rc);
    const int sent = packetType == PULL_PROCEDURE_REQUEST
                         ? sendFileRequest<PullProcedureRequest>(socket.get(), source, client)
                         : sendFileRequest<PullRequest>(socket.get(), source, client);
    if (sent < 0)
        return networkFailure(trace, "failure sending pull request packet");
    PullReply reply;
    if (RecvPacket(socket.get(), reply, PullReply::MaxSize) < 0)
        return networkFailure(trace, "failure receiving reply from server");
    if (reply.status != 0) {
        trace.write(LEVEL_FAILURE, "received non-zero reply from server");
        return trace.leave<int>(reply.status, ", return rc=", reply.status);
    }
    const Socket file(destination ? ::open(destination, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC,
                                           static_cast<mode_t>(reply.fileMode))
                                  : STDOUT_FILENO);
    if (!file.isOpen()) {
        trace.write(LEVEL_FAILURE, "unable to open ", destination);
        return trace.leave(-1, ", return -1");
    }
    if (const char* failure = receiveInto(file.get(), socket.get(), reply.byteCount))
        return networkFailure(trace, failure);
    return trace.leave(0, ", return rc=", 0);
}

int SendPushRequest(const char* client, const char* configuration, const char* fileName,
                    const unsigned char* buffer, int length) {
    Trace trace(g_libLog, "fileTransfers:SendPushRequest()", ", client=", orNull(client),
                ", configuration=", orNull(configuration), ", fileName=", orNull(fileName),
                ", length=", length);
    trace.write(LEVEL_TRACE, "entered SendPushRequest");
    Socket socket;
    if (const int rc = socket.connect())
        return trace.leave(rc, ", return rc=", rc);
    PushRequest request;
    request.byteCount = length;
    request.fileName.set(fileName);
    request.configuration.set(configuration);
    request.client.set(client);
    if (SendPacket(socket.get(), request) < 0)
        return networkFailure(trace, "failure sending push request packet");
    if (!sendAll(socket.get(), buffer, length))
        return networkFailure(trace, "failure sending buffer");
    PushReply reply;
    if (RecvPacket(socket.get(), reply, PushReply::MaxSize) < 0)
        return networkFailure(trace, "failure receiving reply from server");
    return trace.leave<int>(reply.status, ", return rc=", reply.status);
}

int SendImportRequest(int resource, const char* client, const char* configuration,
                      const unsigned char* buffer, int length, bool newConnection) {
    Trace trace(g_libLog, "fileTransfers:SendImportRequest()", ", resource=", resource,
                ", client=", orNull(client), ", configuration=", orNull(configuration), ", length=", length,
                ", newConnection=", newConnection);
    Socket own;
    if (newConnection)
        if (const int rc = own.connect())
            return trace.leave(rc, ", return rc=", rc);
    const int descriptor = newConnection ? own.get() : stdoutSocket();
    if (descriptor < 0)
        return networkFailure(trace, "could not get stdout socket");
    if (!newConnection) {
        trace.write(LEVEL_TRACE, "calling SendAssertCompat");
        if (SendAssertCompat(descriptor) != 0) {
            trace.write(LEVEL_FAILURE, "failed version compatability check");
            return trace.leave<int>(ZOROP_VERSION_FAILURE, ", return ZOROP_VERSION_FAILURE");
        }
    }
    ImportRequest request;
    request.byteCount = length;
    request.configuration.set(configuration);
    request.client.set(client);
    request.resource = resource;
    if (SendPacket(descriptor, request) < 0)
        return networkFailure(trace, "failure sending import request packet");
    if (!sendAll(descriptor, buffer, length))
        return networkFailure(trace, "failure sending import buffer");
    ImportReply reply;
    if (RecvPacket(descriptor, reply, ImportReply::MaxSize) < 0)
        return networkFailure(trace, "failure receiving reply from server");
    return trace.leave<int>(reply.status, ", return rc=", reply.status);
}

} // namespace Zorvane
