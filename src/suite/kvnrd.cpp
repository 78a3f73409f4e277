// SPDX-License-Identifier: Apache-2.0
// The conversation with the request daemon, a line at a time.
#include "suite/conversation.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"
#include "suite/printable.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>
#include <utility>

#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

namespace {

// A line that is one decimal number and nothing else.
std::optional<int> readNumber(int socket) {
    std::array<char, 32> line;
    const int length = get_string(socket, line.data(), line.size(), 0, "");
    if (length < 2 || line[length - 1] != '\n')
        return std::nullopt;
    const char* end = line.data() + length - 1;
    int number = 0;
    const auto [last, error] = std::from_chars(line.data(), end, number);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

// Closed at the end of its scope, by a lack of memory, too, unless its socket has been taken out.
struct Connection {
    int socket = -1;

    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        if (socket >= 0)
            kvlink_closesocket(socket);
    }
};

} // namespace

int kvnrd_connect(const char* master, const char* client, const char* user, int, int* socket) {
    *socket = -1;
    Connection connection;
    if (const int status = kvlink_connect_to_service(master, "kvnrd", 0, 0, 0, 0, &connection.socket))
        return status;
    Zorvane::Suite::startConversation(connection.socket);
    const std::string greeting = std::string(client) + " " + user;
    const int status = put_string(connection.socket, greeting.c_str(), "greeting") != 0
                           ? KVN_STATUS_WRITE_FAILED
                           : readNumber(connection.socket).value_or(KVN_STATUS_READ_FAILED);
    if (status == 0)
        *socket = std::exchange(connection.socket, -1);
    return status;
}

int send_kvnrdcmd(int socket, int command) {
    return put_long(socket, command, "command");
}

int get_kvnrdES(int socket) {
    return readNumber(socket).value_or(KVN_STATUS_READ_FAILED);
}

int get_kvnrdRCVD(int socket, int) {
    return readNumber(socket).value_or(-1);
}

int put_string(int socket, const char* text, const char*) {
    if (!text || std::strchr(text, '\n'))
        return errno = EINVAL;
    const std::string line = std::string(text) + "\n";
    for (std::size_t sent = 0; sent < line.size();) {
        const ssize_t count = Zorvane::Suite::sendPiece(socket, line.data() + sent, line.size() - sent);
        if (count >= 0)
            sent += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

int put_long(int socket, long value, const char* context) {
    return put_string(socket, std::to_string(value).c_str(), context);
}

int get_string(int socket, char* buffer, int size, int, const char*) {
    if (!buffer || size < 2) {
        errno = EINVAL;
        return -1;
    }
    const auto room = static_cast<std::size_t>(size) - 1;
    std::size_t length = 0;
    while (length < room && (length == 0 || buffer[length - 1] != '\n')) {
        const ssize_t count = Zorvane::Suite::receivePiece(socket, buffer + length, room - length);
        if (count == 0)
            break;
        if (count > 0)
            length += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return -1;
    }
    buffer[length] = '\0';
    return static_cast<int>(length);
}

void set_socket_keepalive(int socket, const char* label, int verbose) {
    const int on = 1;
    if (::setsockopt(socket, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on) != 0 && verbose > 0)
        logmsg(1, std::strerror(errno), label);
}

const char* getECmsg(int status) {
    switch (status) {
    case 0:
        return "success";
    case KVN_STATUS_READ_FAILED:
        return "the answer could not be read, or makes no sense";
    case KVN_STATUS_WRITE_FAILED:
        return "the command could not be sent";
    case KVN_STATUS_CONNECT_FAILED:
        return "nothing accepts connections there";
    case KVN_STATUS_UNKNOWN_HOST:
        return "the host name has no address";
    case KVN_STATUS_UNKNOWN_SERVICE:
        return "the service has no port in [services] of kvn.toml nor in the system's services database";
    case KVN_STATUS_REFUSED:
        return "the daemon refused the request";
    case KVN_STATUS_FAILED:
        return "the operation failed";
    case KVN_STATUS_NO_SECURITY:
        return "there is no security service";
    default:
        return "unknown status";
    }
}

const char* commerrstr(int result) {
    return result > 0 ? "success" : result == 0 ? "the peer ended the connection" : "the connection failed";
}

void logmsg(int severity, const char* text, const char* label) {
    const int priority = severity >= 2 ? LOG_ERR : severity == 1 ? LOG_WARNING : LOG_INFO;
    ::syslog(LOG_USER | priority, "%s: %s", label ? label : "-",
             Zorvane::Suite::printable(text ? text : "").c_str());
}
