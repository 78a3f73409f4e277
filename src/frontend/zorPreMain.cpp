// SPDX-License-Identifier: Apache-2.0
#include "frontend/zorPreMain.h"

#include "logging/CErrorMsg.h"
#include "logging/Trace.h"
#include "suite/terminal.h"

#include <clocale>
#include <cstdio>
#include <memory>
#include <new>
#include <string>

namespace Zorvane {

namespace {

constexpr const char* LABEL = "zorPreMain:ZorPreMain()";
constexpr std::uint64_t MSG_STRAY_EXCEPTION = 926;
constexpr std::int32_t SEVERITY_ERROR = 2;
constexpr mrthLogFlags_t MESSAGE_FLAGS = 2;

// The outcome in words, for the log that is not open yet.
std::string SetLocaleFromEnvironment() {
    const char* name = std::setlocale(LC_ALL, "");
    return name ? std::string("Locale changed to ") + name : "setlocale could not change the locale.";
}

// A channel that can't be opened stays silent; the system log is told.
std::unique_ptr<CZorLog> openChannel(std::unique_ptr<CZorLog> channel, std::uint64_t originatorId) {
    if (channel->openStatus() != 0)
        SyslogQuULFailure(channel->openStatus(), originatorId);
    return channel;
}

// Never undone: everything below may log until the process ends.
void setUpLogging(std::uint64_t productId, std::uint64_t originatorId) {
    g_appLog = openChannel(std::make_unique<CZorLog>(productId, originatorId), originatorId).release();
    g_libLog = openChannel(std::make_unique<CZorLog>(productId, ZOR_LIBRARY_ORIGINATOR, originatorId),
                           ZOR_LIBRARY_ORIGINATOR)
                   .release();
    g_msgFlags = MESSAGE_FLAGS;
    g_errorMsg = new CErrorMsg;
}

// Takes no memory: there may be none.
void tell(const char* program, const char* what) {
    (void)(Suite::writeTerminal(stderr, program) && Suite::writeTerminal(stderr, what));
}

} // namespace

void zorNewHandler() {
    throw std::bad_alloc();
}

int ZorPreMain(std::int32_t argc, char** argv, std::uint64_t productId, std::uint64_t originatorId,
               CommandMain commandMain) {
    // Not left to the caller alone: the frame serves any command.
    std::set_new_handler(zorNewHandler);
    const char* program = argc > 0 && argv[0] ? argv[0] : "";
    try {
        const std::string localeText = SetLocaleFromEnvironment();
        setUpLogging(productId, originatorId);
        g_appLog->WriteDebugMsg(DEBUG_FLAGS, LEVEL_TRACE, LABEL, localeText, " line=", __LINE__);
    } catch (...) {
        tell(program, " logging setup exception. Halting..\n");
        return ZOR_STRAY_EXCEPTION;
    }
    try {
        return commandMain(argc, argv);
    } catch (const std::bad_alloc&) {
        g_libLog->WriteDebugMsg(g_msgFlags, LEVEL_FAILURE, LABEL, program,
                                " ran out of memory. Halting, line=", __LINE__);
        tell(program, " ran out of memory. Halting..\n");
        return ZOR_OUT_OF_MEMORY;
    } catch (...) {
        g_libLog->WriteAppMsg(g_msgFlags, SEVERITY_ERROR, MSG_STRAY_EXCEPTION, program);
        return ZOR_STRAY_EXCEPTION;
    }
}

} // namespace Zorvane
