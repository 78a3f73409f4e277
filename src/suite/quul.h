// SPDX-License-Identifier: Apache-2.0
// Unified logging and localisation: the calls of the suite's closed library that this system makes.
// A build with ZOR_SUITE=system links the suite's own library behind the same names.
#pragma once

#include <cstdint>

extern "C" {

using mrthLogFlags_t = std::uint32_t;
using mrthLogDebugLevel_t = std::int32_t;
using mrthLogResult_t = std::int32_t;

/// Flags of a write: the listener attached to the log is called after a successful write.
inline constexpr mrthLogFlags_t MRTH_LOG_NOTIFY = 32;

/// What a message record holds; the third argument of mrthLogInitMsg.
enum mrthLogKind_t : std::int32_t { MRTH_LOG_DEBUG = 0, MRTH_LOG_DIAG = 1, MRTH_LOG_APP = 2 };

/// One argument of a message. `text` is owned by the cell and allocated with malloc.
struct mrthLisAny_t {
    std::int32_t kind; ///< 0 empty, 1 native text, 2 UTF-8 text, 3 number
    std::int32_t reserved;
    char* text;
    std::uint64_t number;
    std::uint64_t reserved2;
};
static_assert(sizeof(mrthLisAny_t) == 32, "callers allocate argument cells of 32 bytes");

/// The arguments of a message, in order. The list owns its cells; mrthLisFree releases them.
struct mrthLisArgs_t {
    mrthLisAny_t** cells;
    std::uint32_t count;
    std::uint32_t capacity;
};

struct mrthLogHandle_t;

/// One message on its way out. Nothing in it is owned: the arguments belong to whoever built the message.
struct mrthLogMsg_t {
    mrthLogHandle_t* handle;
    std::int32_t kind;
    std::int32_t level;
    std::int32_t severity;
    std::uint64_t messageId;
    const char* label;
    const mrthLisArgs_t* arguments;
};

/// An open channel. The two levels may change at any mrthDynaLoadConfig.
struct mrthLogHandle_t {
    void* file; ///< null when the channel has no log file (terminal only)
    mrthLogDebugLevel_t debugLevel;
    mrthLogDebugLevel_t diagLevel;
    std::int32_t closedState; ///< 0 while open with its own file
    std::uint64_t product;
    std::uint64_t originator;
    std::uint32_t configurationState; ///< of the file that the levels come from; 0: to be looked at each time
    mrthLogMsg_t message;             ///< the channel's own message record
};

/// The configuration of a product and originator. Nothing in it needs the log to be open.
struct mrthLogCfg_t {
    mrthLogDebugLevel_t debugLevel;
    mrthLogDebugLevel_t diagLevel;
    char* directory; ///< malloc; null when no log directory is configured
};

/// Opens a channel; 0 on success, else a status for SyslogQuULFailure. No configured directory is no failure.
mrthLogResult_t mrthLogOpen(std::uint64_t product, std::uint64_t originator, mrthLogHandle_t* handle);
/// The same for code that runs inside another originator (the host).
mrthLogResult_t mrthLogOpen2(std::uint64_t product, std::uint64_t originator, std::uint64_t hostOriginator,
                             mrthLogHandle_t* handle);
void mrthLogClose(mrthLogHandle_t* handle);
void mrthLogCloseFile(mrthLogHandle_t* handle);

mrthLogResult_t mrthLogReadCfg(std::uint64_t product, std::uint64_t originator, mrthLogCfg_t* cfg);
void mrthLogFreeCfg(mrthLogCfg_t* cfg);
/// Takes over a changed configuration file: the levels in the handle are those of the file as it stands now.
void mrthDynaLoadConfig(mrthLogHandle_t* handle);

void mrthLogInitMsg(mrthLogMsg_t* message, mrthLogHandle_t* handle, std::int32_t kind, std::int32_t reserved);
void mrthLogFreeMsg(mrthLogMsg_t* message);
void mrthLogSetDebugAttr(mrthLogMsg_t* message, const char* label, mrthLogDebugLevel_t level);
void mrthLogSetDiagAttr(mrthLogMsg_t* message, const char* label, mrthLogDebugLevel_t level);
void mrthLogSetAppAttr(mrthLogMsg_t* message, std::int32_t severity);
/// Formats and writes the message; 0 on success. Application messages also go to the terminal.
mrthLogResult_t mrthLogMsg(mrthLogHandle_t* handle, mrthLogFlags_t flags, mrthLogMsg_t* message);

/// Results of the localisation layer; callers count those below -6, of -3 and above 1 as failures.
inline constexpr std::int32_t MRTH_LIS_NO_MEMORY = -3;
inline constexpr std::int32_t MRTH_LIS_BAD_ARGUMENT = -7;
inline constexpr std::int32_t MRTH_LIS_NO_MESSAGE = -8;

/// Fill an argument cell with a copy of the text, or with a number; 0 on success.
std::int32_t mrthLisAny_string(mrthLisAny_t* any, const char* text);
std::int32_t mrthLisAny_utf8string(mrthLisAny_t* any, const char* text);
std::int32_t mrthLisAny_ulong(mrthLisAny_t* any, std::uint64_t value);
/// Appends a cell that was allocated with malloc; the list owns it when the result is 0.
std::int32_t mrthLisAddArg(mrthLisArgs_t* list, mrthLisAny_t* any);
void mrthLisFree(mrthLisArgs_t* list);
/// Fills a list from texts (const char*), one for each "%s" of the format; the list starts empty. The caller
/// frees the list, after a failure as well.
std::int32_t mrthLis(mrthLisArgs_t* list, std::uint64_t number, const char* format, ...);
/// Non-zero if text arguments are to be passed as UTF-8.
std::int32_t GetMrthLisGlobalUtf8Setting();

/// The catalogue's text with the arguments filled in; `*text` is allocated with malloc, or null. 0 on
/// success.
std::int32_t xlatemsg(std::uint64_t originator, std::uint64_t number, char** text,
                      const mrthLisArgs_t* arguments);
mrthLogResult_t mrthLogMapLisResToLoggingRes(std::int32_t lisResult);
/// A constant text for a status of this library, or null.
const char* mrthLogGetErrorMessage(mrthLogResult_t result);

/// Tells the system log that a channel could not be opened.
void SyslogQuULFailure(mrthLogResult_t status, std::uint64_t originator);

} // extern "C"
