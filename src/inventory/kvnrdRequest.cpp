// SPDX-License-Identifier: Apache-2.0
// CZorb2vKvnrdConnect: one conversation with the request daemon.
#include "inventory/CZorb2vKvnrdConnect.h"
#include "logging/Trace.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

namespace Zorvane {

namespace {

constexpr const char* LABEL = "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::send_kvnrdrequest()";

constexpr int KVNRD_LIST_INVENTORY = 136;
constexpr std::size_t LINE_SIZE = 4096;
constexpr std::string_view EXIT_LINE = "EXIT STATUS";

// The largest statuses that have a text, and that a caller gets to see.
constexpr int MAX_KNOWN_STATUS = 254;

// A daemon that never stops sending would take all memory: of the shortest elements, a reply's tree takes some
// sixty times its size. The largest sites send some tens of megabytes.
constexpr std::size_t MAX_REPLY_SIZE = std::size_t{64} << 20;

class Conversation {
  public:
    explicit Conversation(int socket) : m_socket(socket) {}
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;
    ~Conversation() { kvlink_closesocket(m_socket); }

    [[nodiscard]] int socket() const { return m_socket; }

  private:
    int m_socket;
};

std::string defaultMaster() {
    const kvn_master_config* config = KVN_read_master_config() == 0 ? get_master_config_ptr() : nullptr;
    return config && !config->servers.empty() ? config->servers.front() : std::string();
}

// Has the daemon take up the command; 0 or a status.
int startCommand(Trace& trace, int socket, const std::string& master) {
    if (const int rc = send_kvnrdcmd(socket, KVNRD_LIST_INVENTORY)) {
        trace.write(LEVEL_FAILURE, "unable to send command to kvnrd on server ", master,
                    " send_kvnrdcmd() returned: ", rc);
        return KVN_STATUS_WRITE_FAILED;
    }
    if (const int rc = get_kvnrdES(socket)) {
        trace.write(LEVEL_FAILURE, "received error from kvnrd on server ", master,
                    " get_kvnrdES() returned: ", rc);
        return rc == KVN_STATUS_REFUSED ? rc : KVN_STATUS_WRITE_FAILED;
    }
    if (const int rc = get_kvnrdRCVD(socket, 0); rc <= 0) {
        trace.write(LEVEL_FAILURE, "did not receive command confirmation from kvnrd on server ", master,
                    " get_kvnrdRCVD() returned: ", rc);
        return KVN_STATUS_WRITE_FAILED;
    }
    return 0;
}

struct ReplyEnd {
    int transfer = 0; ///< 0, or the status of a failure on the way back
    int exit = 0;     ///< the daemon's word; a reply without one counts as a success
};

// The number behind the exit line's words; 0 if there is none. What is beyond an int stays beyond it.
int exitStatusOf(const char* line) {
    const long number = std::strtol(line + EXIT_LINE.size(), nullptr, 10);
    return static_cast<int>(
        std::clamp<long>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

ReplyEnd readReply(Trace& trace, int socket, std::stringstream& output) {
    ReplyEnd end;
    std::array<char, LINE_SIZE> buffer;
    std::size_t received = 0;
    std::size_t roughCount = 0;
    bool isLineStart = true; // a long line comes in pieces, and what it holds can't end the reply
    for (;;) {
        const int length = get_string(socket, buffer.data(), buffer.size(), 0, LABEL);
        if (length < 0) {
            trace.write(LEVEL_FAILURE, "get_string() failed, ", commerrstr(length), ": ",
                        std::strerror(errno));
            end.transfer = KVN_STATUS_READ_FAILED;
            break;
        }
        if (length == 0) {
            trace.write(LEVEL_TRACE, "EOF from get_string(), line=", __LINE__);
            break;
        }
        const std::string_view line(buffer.data(), static_cast<std::size_t>(length));
        if (isLineStart && line.starts_with(EXIT_LINE)) {
            trace.write(LEVEL_FINE, line);
            end.exit = exitStatusOf(buffer.data());
            break;
        }
        isLineStart = line.back() == '\n';
        trace.write(LEVEL_FINE, "Received line : ", line);
        roughCount += LINE_SIZE; // for the log only, where support is used to this figure
        received += line.size();
        if (received > MAX_REPLY_SIZE) {
            trace.write(LEVEL_FAILURE, "The reply is longer than ", MAX_REPLY_SIZE, " bytes and is given up");
            end.transfer = KVN_STATUS_READ_FAILED;
            break;
        }
        output.write(line.data(), length);
    }
    trace.write(LEVEL_TRACE, "Read output of length:", roughCount,
                " and wrote to output stream. line=", __LINE__);
    return end;
}

int statusOf(Trace& trace, const ReplyEnd& end, const std::string& master) {
    if (end.exit < 0) {
        const std::string text = "Cannot get status from server " + master;
        trace.write(LEVEL_FAILURE, text);
        logmsg(2, text.c_str(), LABEL);
    }
    if (end.exit != 0)
        trace.write(LEVEL_TRACE, "Status from server ", master, ": ",
                    end.exit <= MAX_KNOWN_STATUS ? getECmsg(end.exit) : "????", " (", end.exit, ")");
    if (end.exit == 0 || end.transfer != 0)
        return end.transfer;
    return end.exit >= 1 && end.exit <= MAX_KNOWN_STATUS ? end.exit : KVN_STATUS_FAILED;
}

} // namespace

int CZorb2vKvnrdConnect::send_kvnrdrequest(const std::string& proxy, int cmd, int reserved,
                                           const std::string& esxMount, const std::string& vmServer,
                                           std::stringstream& output, int verbose,
                                           const std::string& master) {
    ClassTrace trace(g_appLog, LABEL, ", proxy=", proxy, ", cmd=", cmd, ", esxMount=", esxMount,
                     ", vmServer=", vmServer, ", master=", master);
    std::string client;
    if (kvn_client_name(client) != 0) {
        trace.write(LEVEL_FAILURE, "kvn_client_name failed");
        return KVN_STATUS_FAILED;
    }
    const std::string server = master.empty() ? defaultMaster() : master;

    int socket = -1;
    if (const int rc = kvnrd_connect(server.c_str(), client.c_str(), "root", 0, &socket)) {
        trace.write(LEVEL_FAILURE, "Can't connect to host ", server, ": ", getECmsg(rc), " (", rc, ")");
        return rc;
    }
    const Conversation conversation(socket);
    set_socket_keepalive(socket, LABEL, verbose);
    if (const int rc = startCommand(trace, socket, server))
        return rc;

    const bool sent = put_string(socket, proxy.c_str(), LABEL) == 0 && put_long(socket, cmd, LABEL) == 0 &&
                      put_long(socket, reserved, LABEL) == 0 &&
                      put_string(socket, esxMount.c_str(), LABEL) == 0 &&
                      put_string(socket, vmServer.c_str(), LABEL) == 0;
    if (!sent) {
        trace.write(LEVEL_FAILURE, "unable to send command arguments to kvnrd on server ", server,
                    " error: ", std::strerror(errno));
        return KVN_STATUS_WRITE_FAILED;
    }

    const ReplyEnd end = readReply(trace, socket, output);
    const int rc = statusOf(trace, end, server);
    return trace.leave(rc, ", return rc=", rc);
}

} // namespace Zorvane
