// SPDX-License-Identifier: Apache-2.0
// The suite's client library: master configuration, request daemon conversation, host names, dates.
#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <vector>

/// The suite's security mode as the master configuration has it.
inline constexpr int KVN_QUSS_REQUIRED = 0;
inline constexpr int KVN_QUSS_ALLOWED = 1;
inline constexpr int KVN_QUSS_PROHIBITED = 2;

/// The statuses that these libraries give of their own; a daemon's statuses pass through as they are.
enum kvn_status : int {
    KVN_STATUS_READ_FAILED = 23,  ///< no answer, or one that makes no sense
    KVN_STATUS_WRITE_FAILED = 24, ///< the peer takes nothing
    KVN_STATUS_CONNECT_FAILED = 25,
    KVN_STATUS_UNKNOWN_HOST = 26,    ///< the name has no address
    KVN_STATUS_UNKNOWN_SERVICE = 27, ///< no port is known for the name
    KVN_STATUS_REFUSED = 37,         ///< the daemon's refusal
    KVN_STATUS_FAILED = 100,
    KVN_STATUS_NO_SECURITY = 101, ///< there is no security service
};

/// The suite's master configuration.
struct kvn_master_config {
    std::vector<std::string> servers; ///< the first is the master server
    std::vector<std::string> media_servers;
    std::string client_name;
    std::string required_interface;
    int quss_mode = KVN_QUSS_PROHIBITED;
};

/// The machine's name data, as the client library gives it.
struct kvn_uname_info {
    std::string system;
    std::string node;
    std::string release;
    std::string machine;
};

inline constexpr std::size_t KVN_HOSTNAME_SIZE = 257;

/// Loads the configuration; 0 on success, else it is missing or can't be read.
int KVN_read_master_config();
/// The loaded record, or null; it stays valid until the next load.
const kvn_master_config* get_master_config_ptr();
/// This host's client name; 0 on success.
int kvn_client_name(std::string& name);
/// This host's name into a buffer of KVN_HOSTNAME_SIZE bytes; 0 on success.
int kvn_gethostname(char* buffer, std::size_t size);
/// True if both names mean the same host.
bool hosts_equal(const char* first, const char* second);
/// 0 on success.
int getUnameInfoData(kvn_uname_info& info);

/// Opens a conversation with the request daemon of `master`: writes "<client> <user>" and reads the daemon's
/// welcome, a decimal line. 0 and a socket, or a status. Only the calls below read from the socket, and
/// kvlink_closesocket closes it.
int kvnrd_connect(const char* master, const char* client, const char* user, int reserved, int* socket);
/// Starts a command by writing its number; 0 on success, errno on failure.
int send_kvnrdcmd(int socket, int command);
/// Reads the daemon's status for the command, a decimal line; 0 is welcome.
int get_kvnrdES(int socket);
/// Reads the count of received commands, a decimal line; 0 or less means that the daemon has none.
int get_kvnrdRCVD(int socket, int reserved);
/// Writes the text and one line feed; a text that holds a line feed is refused. 0 on success, errno on
/// failure.
int put_string(int socket, const char* text, const char* context);
/// Writes the decimal and one line feed; 0 on success, errno on failure.
int put_long(int socket, long value, const char* context);
/// Reads one line with its line feed, at most `size - 1` bytes (a longer line comes in pieces), and ends it
/// with NUL. Above 0 is the length, 0 the end of the stream, below 0 an error in errno. Takes nothing that
/// stands behind the line feed, so that any other reader can go on from there; but of a conversation with the
/// request daemon, it reads ahead.
int get_string(int socket, char* buffer, int size, int reserved, const char* context);
/// Turns keep-alive on; `verbose` is the caller's debug level.
void set_socket_keepalive(int socket, const char* label, int verbose);

/// The text of a suite status; never null.
const char* getECmsg(int status);
/// The text of a transfer result of get_string; never null.
const char* commerrstr(int result);
/// A line for the suite's own log.
void logmsg(int severity, const char* text, const char* label);

/// The date and time formats (strftime's letters) of a locale; a null or empty name is the process's locale.
void tvgetlocaleEx(const char* locale, char* dateFormat, std::size_t dateSize, char* timeFormat,
                   std::size_t timeSize);
/// Parses a date text, with the time behind a blank, into ticks. `format` is a date format as tvgetlocaleEx
/// gives it, or the name "C" for month/day/year. Non-zero on success.
int convert2unixdatel(const char* text, const char* format, std::time_t* ticks);
