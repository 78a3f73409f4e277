// SPDX-License-Identifier: Apache-2.0
#include "ops/client_utils.h"

#include "ops/exchange.h"
#include "ops/netErrorMsg.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <limits>
#include <new>

namespace Zorvane {

namespace {

// A method's output is handed out with an int for its length, and a NUL behind it.
constexpr std::size_t MAX_METHOD_OUTPUT = std::numeric_limits<int>::max() - 1;

int invalidParams(Trace& trace) {
    return trace.leave<int>(ZOROP_INVALID_PARAMS, ", return ZOROP_INVALID_PARAMS");
}

// What stands on the connection up to its end. A piece that there is no memory for is lost, and the rest goes
// on behind what was there.
void readOutput(int descriptor, unsigned char** out, int* outLength) {
    *out = nullptr;
    std::size_t total = 0;
    std::array<unsigned char, PIECE_SIZE> piece;
    for (;;) {
        const ssize_t got = ::recv(descriptor, piece.data(), piece.size(), 0);
        if (got <= 0)
            break;
        const auto size = static_cast<std::size_t>(got);
        void* grown = total + size <= MAX_METHOD_OUTPUT ? std::realloc(*out, total + size + 1) : nullptr;
        if (!grown)
            continue;
        *out = static_cast<unsigned char*>(grown);
        std::memcpy(*out + total, piece.data(), size);
        total += size;
    }
    if (*out)
        (*out)[total] = '\0';
    *outLength = static_cast<int>(total);
}

} // namespace

int SendAssertCompat(int descriptor) {
    Trace trace(g_libLog, "client_utils:SendAssertCompat()", ", descriptor=", descriptor);
    VersionRequest request;
    request.version.set(ZOR_CLIENT_VERSION);
    request.esmType.set(ZOR_ESM_TYPE);
    if (SendPacket(descriptor, request) < 0)
        return networkFailure(trace, "cannot send VERSION_REQUEST");
    VersionReply reply;
    if (RecvPacket(descriptor, reply, VersionReply::MaxSize) < 0)
        return networkFailure(trace, "cannot receive VERSION_REPLY");

    constexpr int compatible = 1;
    constexpr int incompatible = 2;
    if (reply.status == compatible)
        return trace.leave(0, ", return rc=", 0);
    if (std::strcmp(reply.esmType.c_str(), ZOR_ESM_TYPE) != 0) {
        trace.write(LEVEL_FAILURE, "zord ESM type ", reply.esmType.c_str(),
                    " is incompatible with zorc ESM type ", ZOR_ESM_TYPE);
        return trace.leave(-1, ", return -1");
    }
    // Versions compare as text, so that "10.0" counts as lower; the daemon's status is what decides in
    // practice.
    if (reply.status != incompatible && std::strcmp(reply.version.c_str(), ZOR_CLIENT_VERSION) >= 0)
        return trace.leave(0, ", return rc=", 0);
    trace.write(LEVEL_FAILURE, "zord version ", reply.version.c_str(), " is incompatible with zorc version ",
                ZOR_CLIENT_VERSION);
    return trace.leave(-1, ", return -1");
}

int SendDbRequest(int command, const unsigned char* xml, int length, unsigned char** out, int* outLength) {
    Trace trace(g_libLog, "client_utils:SendDbRequest()", ", command=", command, ", length=", length);
    if (command < 0 || !xml)
        return invalidParams(trace);
    Socket socket;
    if (const int rc = socket.connect())
        return trace.leave(rc, ", return rc=", rc);
    DbRequest request;
    request.command = command;
    request.byteCount = length;
    if (SendPacket(socket.get(), request) < 0) {
        trace.write(LEVEL_FAILURE, "Can't send packet with buflen=", length);
        return trace.leave<int>(ZOROP_NETWORK_FAILURE, ", return ZOROP_NETWORK_FAILURE");
    }
    if (!sendAll(socket.get(), xml, length)) {
        trace.write(LEVEL_FAILURE, "Failed sending XML of ", length);
        return trace.leave<int>(ZOROP_NETWORK_FAILURE, ", return ZOROP_NETWORK_FAILURE");
    }
    DbReply reply;
    if (RecvPacket(socket.get(), reply, DbReply::MaxSize) < 0)
        return networkFailure(trace, "Failed getting reply from request.");
    if (reply.status != 0) {
        trace.write(LEVEL_FAILURE, "Reply status indicates failure.");
        return trace.leave<int>(reply.status, ", return rc=", reply.status);
    }
    // A transaction has no answer to read, although its caller has places for one.
    if (command != ZOROP_INSERT && command != ZOROP_QUERY)
        return trace.leave(0, ", return rc=", 0);

    std::unique_ptr<unsigned char[]> answer(
        reply.number >= 0 ? new (std::nothrow) unsigned char[static_cast<std::size_t>(reply.number)]
                          : nullptr);
    if (!answer) {
        trace.write(LEVEL_FAILURE, "Failed getting buffer for request.");
        return invalidParams(trace);
    }
    for (int total = 0; total < reply.number;) {
        const ssize_t got =
            ::recv(socket.get(), answer.get() + total, static_cast<std::size_t>(reply.number - total), 0);
        if (got < 0)
            return networkFailure(trace, "Failed getting output buffer from request.");
        // The end of the stream is not looked for: a daemon that closes early keeps its client spinning here.
        total += static_cast<int>(got);
    }
    if (outLength)
        *outLength = reply.number;
    if (out)
        *out = answer.release();
    return trace.leave(0, ", return rc=", 0);
}

int ProcessMethodCall(const MethodExecute& call, unsigned char** out, int* outLength,
                      std::string* errorText) {
    Trace trace(g_libLog, "client_utils:ProcessMethodCall()", ", operation=", call.operation,
                ", resource=", call.resource);
    Socket socket;
    if (const int rc = socket.connect())
        return trace.leave(rc, ", return rc=", rc);
    if (SendPacket(socket.get(), call) <= 0)
        return trace.leave(-1, ", return -1");
    MethodExecuteReply reply;
    if (RecvPacket(socket.get(), reply, MethodExecuteReply::MaxSize) < 0)
        return networkFailure(trace, "cannot receive METHOD_EXECUTE_REPLY");
    if (reply.returnValue != 0 && reply.header.hasErrorFlag()) {
        CNetErrorMsg message;
        if (message.receiveMessage(socket.get()) == 0 && errorText)
            *errorText = message.getErrorString();
    }
    readOutput(socket.get(), out, outLength);
    return trace.leave(reply.returnValue, ", return rc=", reply.returnValue);
}

int SendLogRequest(const char* client) {
    Trace trace(g_libLog, "client_utils:SendLogRequest()", ", client=", orNull(client));
    Socket socket;
    if (const int rc = socket.connect())
        return trace.leave(rc, ", return rc=", rc);
    LogRequest request;
    request.name.set(client);
    if (SendPacket(socket.get(), request) < 0)
        return networkFailure(trace, "failure sending log request packet");
    std::array<char, PIECE_SIZE> piece;
    for (;;) {
        const ssize_t got = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (got == 0)
            break;
        if (got < 0)
            return networkFailure(trace, "failure reading log");
        if (!sendAll(socket.get(), piece.data(), static_cast<int>(got)))
            return networkFailure(trace, "failure sending log");
    }
    // The end of the process closes it, which is the end of the log for the daemon.
    socket.release();
    return trace.leave(0, ", return rc=", 0);
}

int SendMsgRequest(const char* client, std::uint8_t severity, const char* text) {
    Trace trace(g_libLog, "client_utils:SendMsgRequest()", ", client=", orNull(client),
                ", severity=", severity, ", text=", orNull(text));
    Socket socket;
    if (const int rc = socket.connect())
        return trace.leave(rc, ", return rc=", rc);
    MsgRequest request;
    request.severity = severity;
    request.textLength = static_cast<std::uint16_t>(std::min(std::strlen(text) + 1, MESSAGE_TEXT_SIZE));
    request.client.set(client);
    if (SendPacket(socket.get(), request) < 0)
        return networkFailure(trace, "failure sending syslog request packet");
    if (!sendAll(socket.get(), text, request.textLength))
        return networkFailure(trace, "failure sending message buffer");
    MsgReply reply;
    if (RecvPacket(socket.get(), reply, MsgReply::MaxSize) < 0)
        return networkFailure(trace, "failure receiving reply from server");
    return trace.leave<int>(reply.status, ", return rc=", reply.status);
}

int SendErrRequest(const char* first, const char* second, int status, bool newConnection) {
    Trace trace(g_libLog, "client_utils:SendErrRequest()", ", first=", orNull(first),
                ", second=", orNull(second), ", status=", status, ", newConnection=", newConnection);
    Socket own;
    if (newConnection)
        if (const int rc = own.connect())
            return trace.leave(rc, ", return rc=", rc);
    const int descriptor = newConnection ? own.get() : stdoutSocket();
    if (descriptor < 0)
        return networkFailure(trace, "could not get stdout socket");
    ErrRequest request;
    request.status = status;
    request.firstLength = static_cast<std::int32_t>(std::strlen(first)) + 1;
    ParameterWriter texts(request.texts);
    texts.append(first);
    texts.append(second);
    if (SendPacket(descriptor, request) < 0)
        return networkFailure(trace, "failure sending error request packet");
    return trace.leave(0, ", return rc=", 0);
}

int SendChangeRequest(int resource, const char* client, int state, int progress) {
    Trace trace(g_libLog, "client_utils:SendChangeRequest()", ", resource=", resource,
                ", client=", orNull(client), ", state=", state, ", progress=", progress);
    const bool isTask =
        resource == ZOROP_RESTORETASK || resource == ZOROP_DISCOVERTASK || resource == ZOROP_B2VRESTORETASK;
    if (!client || !isTask || state < 0 || progress < 0)
        return invalidParams(trace);
    Socket socket;
    if (const int rc = socket.connect())
        return trace.leave(rc, ", return rc=", rc);
    ChangeRequest request;
    request.resource = resource;
    request.client.set(client);
    request.state = state;
    request.progress = progress;
    if (SendPacket(socket.get(), request) < 0)
        return networkFailure(trace, "Failed sending request.");
    ChangeReply reply;
    if (RecvPacket(socket.get(), reply, ChangeReply::MaxSize) < 0)
        return networkFailure(trace, "Failed getting reply from request.");
    if (reply.status != 0)
        trace.write(LEVEL_FAILURE, "Reply status indicates failure, status=", reply.status);
    return trace.leave<int>(reply.status, ", return rc=", reply.status);
}

int GetDevPromName(const char*, const char*) {
    std::cerr << "Not Implemented\n";
    return 0;
}

} // namespace Zorvane
