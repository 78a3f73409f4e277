// SPDX-License-Identifier: Apache-2.0
// The log channels: a rotated file for each originator, and the terminal for the user's messages.
#include "suite/FileWatch.h"
#include "suite/LogFile.h"
#include "suite/catalog.h"
#include "suite/configuration.h"
#include "suite/printable.h"
#include "suite/quul.h"
#include "suite/terminal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <spdlog/fmt/fmt.h>
#include <spdlog/pattern_formatter.h>
#include <sys/stat.h>
#include <syslog.h>

namespace Zorvane::Suite {

namespace {

constexpr const char* LINE_PATTERN = "%Y-%m-%dT%H:%M:%S.%eZ %P %v";

void setLevels(mrthLogHandle_t& handle) {
    // Without a file nothing would come of a statement, so no level lets one pass.
    Levels levels{-1, -1};
    if (handle.file) {
        const std::uint32_t state = watchConfiguration();
        levels = configuration().levelsOf(handle.originator);
        handle.configurationState = state;
    }
    handle.debugLevel = levels.debug;
    handle.diagLevel = levels.diag;
}

mrthLogResult_t open(std::uint64_t product, std::uint64_t originator, mrthLogHandle_t& handle) try {
    handle = {};
    handle.product = product;
    handle.originator = originator;
    const Configuration& config = configuration();
    if (!config.logDirectory.empty()) {
        const std::string path =
            config.logDirectory + "/" + std::to_string(product) + "-" + std::to_string(originator) + ".log";
        // Makes the last folder if that is all that is missing.
        if (::mkdir(config.logDirectory.c_str(), 0755) != 0 && errno != EEXIST)
            return errno;
        auto file = std::make_unique<LogFile>(path, config.logMaxBytes, config.logMaxFiles);
        if (const int error = file->open())
            return error;
        file->set_formatter(
            std::make_unique<spdlog::pattern_formatter>(LINE_PATTERN, spdlog::pattern_time_type::utc));
        handle.file = file.release();
    }
    setLevels(handle);
    return 0;
} catch (const std::bad_alloc&) {
    return ENOMEM; // a file that is open already goes with its handle
}

std::string joined(const mrthLisArgs_t* arguments, std::string_view between) {
    std::string text;
    for (std::uint32_t i = 0; arguments && i < arguments->count; ++i)
        text.append(i == 0 ? "" : between).append(argumentText(*arguments->cells[i]));
    return text;
}

std::string catalogMessage(const mrthLogMsg_t& message) {
    const std::uint64_t originator = message.handle->originator;
    if (auto text = catalogText(originator, message.messageId, message.arguments))
        return *text;
    return fmt::format("message {}:{} (no text for it in the message catalogue): {}", originator,
                       message.messageId, printable(joined(message.arguments, ", ")));
}

// What stands in a line between the originator and the text.
std::string lineHead(const mrthLogMsg_t& message) {
    const std::string label = printable(message.label && *message.label ? message.label : "-");
    const std::uint64_t originator = message.handle->originator;
    switch (message.kind) {
    case MRTH_LOG_DEBUG:
        return fmt::format("debug {} {}", message.level, label);
    case MRTH_LOG_DIAG:
        return fmt::format("diag {} {} [{}:{}]", message.level, label, originator, message.messageId);
    default:
        return fmt::format("app {} - [{}:{}]", message.severity, originator, message.messageId);
    }
}

void writeFile(LogFile& file, const mrthLogMsg_t& message, const std::string& text) {
    const std::string line = fmt::format("{} {} {} {}", message.handle->product, message.handle->originator,
                                         lineHead(message), printable(text));
    // The sink alone: a logger in front of it tells its failures on standard error.
    file.log(spdlog::details::log_msg(spdlog::string_view_t(), spdlog::level::info, line));
}

mrthLogResult_t write(const mrthLogHandle_t& handle, const mrthLogMsg_t& message) {
    const bool forTerminal = message.kind == MRTH_LOG_APP;
    auto* file = static_cast<LogFile*>(handle.file);
    if (!file && !forTerminal)
        return 0;
    const std::string text =
        message.kind == MRTH_LOG_DEBUG ? joined(message.arguments, "") : catalogMessage(message);
    // The user comes first: a full disk must not keep a message from the terminal.
    const bool shown = !forTerminal || writeTerminal(message.severity == 0 ? stdout : stderr, text + "\n");
    if (file)
        writeFile(*file, message, text);
    return shown ? 0 : EIO;
}

} // namespace

} // namespace Zorvane::Suite

using namespace Zorvane::Suite;

extern "C" {

mrthLogResult_t mrthLogOpen(std::uint64_t product, std::uint64_t originator, mrthLogHandle_t* handle) {
    return open(product, originator, *handle);
}

// Hosted code has a file of its own, too: its lines are found under its originator wherever it runs.
mrthLogResult_t mrthLogOpen2(std::uint64_t product, std::uint64_t originator, std::uint64_t,
                             mrthLogHandle_t* handle) {
    return open(product, originator, *handle);
}

void mrthLogClose(mrthLogHandle_t* handle) {
    mrthLogCloseFile(handle);
}

void mrthLogCloseFile(mrthLogHandle_t* handle) {
    delete static_cast<LogFile*>(handle->file);
    handle->file = nullptr;
}

mrthLogResult_t mrthLogReadCfg(std::uint64_t, std::uint64_t originator, mrthLogCfg_t* cfg) {
    const Configuration& config = configuration();
    const Levels levels = config.levelsOf(originator);
    *cfg = {levels.debug, levels.diag, nullptr};
    if (!config.logDirectory.empty() && !(cfg->directory = ::strdup(config.logDirectory.c_str())))
        return ENOMEM;
    return 0;
}

void mrthLogFreeCfg(mrthLogCfg_t* cfg) {
    std::free(cfg->directory);
    cfg->directory = nullptr;
}

void mrthDynaLoadConfig(mrthLogHandle_t* handle) {
    // Every statement comes by here, most of them to be silent.
    if (!handle->file || handle->configurationState == FileWatch::state())
        return;
    const int error = errno;
    try {
        setLevels(*handle);
    } catch (const std::exception&) {
        // Out of memory: the levels stay as they are.
    }
    errno = error;
}

void mrthLogInitMsg(mrthLogMsg_t* message, mrthLogHandle_t* handle, std::int32_t kind, std::int32_t) {
    *message = {};
    message->handle = handle;
    message->kind = kind;
}

void mrthLogFreeMsg(mrthLogMsg_t* message) {
    *message = {};
}

void mrthLogSetDebugAttr(mrthLogMsg_t* message, const char* label, mrthLogDebugLevel_t level) {
    message->label = label;
    message->level = level;
}

void mrthLogSetDiagAttr(mrthLogMsg_t* message, const char* label, mrthLogDebugLevel_t level) {
    message->label = label;
    message->level = level;
}

void mrthLogSetAppAttr(mrthLogMsg_t* message, std::int32_t severity) {
    message->severity = severity;
}

mrthLogResult_t mrthLogMsg(mrthLogHandle_t* handle, mrthLogFlags_t, mrthLogMsg_t* message) {
    try {
        return write(*handle, *message);
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    } catch (const std::exception&) {
        return EIO;
    }
}

const char* mrthLogGetErrorMessage(mrthLogResult_t result) {
    return ::strerrordesc_np(result);
}

void SyslogQuULFailure(mrthLogResult_t status, std::uint64_t originator) {
    const char* text = mrthLogGetErrorMessage(status);
    ::syslog(LOG_USER | LOG_ERR, "the log channel of originator %llu could not be opened: %s (status %d)",
             static_cast<unsigned long long>(originator), text ? text : "unknown failure", status);
}

} // extern "C"
