// SPDX-License-Identifier: Apache-2.0
// The log channels. A failing log statement never changes the flow of its caller: nothing here throws.
#pragma once

#include "logging/LogValue.h"
#include "suite/quul.h"

#include <memory>
#include <span>
#include <string>

namespace Mirathi::Logging {

class Msg;

/// Told of a message after a successful write whose flags ask for it.
class Listener {
  public:
    virtual void notify(const mrthLogMsg_t& message, const mrthLogMsg_t& channelMessage) = 0;

  protected:
    ~Listener() = default;
};

/// One open channel of the logging library. `Shared` says whether several threads write on it; none do here.
template <bool Shared>
class Log {
  public:
    static constexpr mrthLogResult_t NotOpen = 1;
    static constexpr mrthLogResult_t Invalidated = 3;

    /// `hostOriginator` 0 opens a channel of its own.
    Log(std::uint64_t product, std::uint64_t originator, std::uint64_t hostOriginator) noexcept;
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;
    virtual ~Log();

    /// 0 when open; any other value silences the object for good.
    [[nodiscard]] mrthLogResult_t status() const noexcept { return m_status; }
    void attach(Listener* listener) noexcept { m_listener = listener; }

    /// Picks up a changed configuration and tests a level; nothing is formatted for a statement that fails
    /// it.
    [[nodiscard]] bool passesDebug(mrthLogDebugLevel_t level) noexcept {
        if (m_status != 0)
            return false;
        mrthDynaLoadConfig(&m_handle);
        return m_handle.debugLevel >= level;
    }
    [[nodiscard]] bool passesDiag(mrthLogDebugLevel_t level) noexcept;

    /// 0 written or filtered out, 1 not open, 3 the message could not be built, or the library's result.
    mrthLogResult_t WriteDebugMsg(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                                  std::span<const L10N::LogValue> values) noexcept;
    mrthLogResult_t WriteDiagMsg(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                                 std::uint64_t messageId, std::span<const L10N::LogValue> values) noexcept;
    mrthLogResult_t WriteAppMsg(mrthLogFlags_t flags, std::int32_t severity, std::uint64_t messageId,
                                std::span<const L10N::LogValue> values) noexcept;

  private:
    mrthLogResult_t write(mrthLogFlags_t flags, Msg& message);

    mrthLogHandle_t m_handle{};
    mrthLogResult_t m_status = NotOpen;
    Listener* m_listener = nullptr;
};

extern template class Log<false>;

} // namespace Mirathi::Logging

namespace Zorvane {

class LogMirror;

/// Identifies the program to the logging library and the message catalogue.
inline constexpr std::uint64_t ZOR_PRODUCT_ID = 51216;
inline constexpr std::uint64_t ZOR_COMMAND_ORIGINATOR = 433; ///< the command's own classes
inline constexpr std::uint64_t ZOR_LIBRARY_ORIGINATOR = 128; ///< everything shared

/// A log channel: debug text for support, diagnostics for the administrator, messages for the user.
class CZorLog {
  public:
    CZorLog(std::uint64_t productId, std::uint64_t originatorId);
    /// A channel for code that runs inside another originator.
    CZorLog(std::uint64_t productId, std::uint64_t originatorId, std::uint64_t hostOriginatorId);
    CZorLog(const CZorLog&) = delete;
    CZorLog& operator=(const CZorLog&) = delete;
    virtual ~CZorLog();

    [[nodiscard]] mrthLogResult_t openStatus() const noexcept {
        return m_log ? m_log->status() : Mirathi::Logging::Log<false>::NotOpen;
    }
    void enable() noexcept { m_enabled = true; }
    void disable() noexcept { m_enabled = false; }
    /// The configured level, not the live one: it is passed on to the request daemon as its verbosity.
    [[nodiscard]] int getDebugLevel() const noexcept { return m_cfg.debugLevel; }

    /// True if a debug statement of this level would be written now.
    [[nodiscard]] bool passesDebug(mrthLogDebugLevel_t level) const noexcept {
        return m_enabled && m_log && m_log->passesDebug(level);
    }

    /// A debug message: the values joined as they come. A null or empty text adds nothing.
    template <class... Values>
    mrthLogResult_t WriteDebugMsg(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                                  const Values&... values) noexcept {
        if (!passesDebug(level)) [[likely]]
            return isOpen() ? 0 : Mirathi::Logging::Log<false>::NotOpen;
        return writeDebug(flags, level, label, values...);
    }

    /// A catalogue message for the administrator, with up to as many arguments as its text has places.
    template <class... Values>
    mrthLogResult_t WriteDiagMsg(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                                 std::uint64_t messageId, const Values&... values) noexcept {
        const Mirathi::L10N::LogValue cells[] = {Mirathi::L10N::LogValue(values)..., nullptr};
        return writeDiag(flags, level, label, messageId, std::span(cells, sizeof...(values)));
    }

    /// A catalogue message for the user of the command: always written, and shown on the terminal.
    template <class... Values>
    mrthLogResult_t WriteAppMsg(mrthLogFlags_t flags, std::int32_t severity, std::uint64_t messageId,
                                const Values&... values) noexcept {
        const Mirathi::L10N::LogValue cells[] = {Mirathi::L10N::LogValue(values)..., nullptr};
        return writeApp(flags, severity, messageId, std::span(cells, sizeof...(values)));
    }

    /// The second sink of the catalogue messages; off from the start.
    void startMirror(const std::string& name);
    void stopMirror() noexcept;
    void copyMirror(const CZorLog& other);
    [[nodiscard]] bool mirrorEnabled() const noexcept { return m_mirrorEnabled; }
    [[nodiscard]] const std::string& mirrorName() const noexcept { return m_mirrorName; }

  private:
    [[nodiscard]] bool isOpen() const noexcept { return m_enabled && openStatus() == 0; }
    // Apart, so that a silent statement is a few instructions at its place and no more.
    template <class... Values>
    [[gnu::noinline, gnu::cold]] mrthLogResult_t writeDebug(mrthLogFlags_t flags, mrthLogDebugLevel_t level,
                                                            const char* label,
                                                            const Values&... values) noexcept {
        const Mirathi::L10N::LogValue cells[] = {Mirathi::L10N::LogValue(values)..., nullptr};
        return m_log->WriteDebugMsg(flags, level, label, std::span(cells, sizeof...(values)));
    }
    mrthLogResult_t writeDiag(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                              std::uint64_t messageId,
                              std::span<const Mirathi::L10N::LogValue> values) noexcept;
    mrthLogResult_t writeApp(mrthLogFlags_t flags, std::int32_t severity, std::uint64_t messageId,
                             std::span<const Mirathi::L10N::LogValue> values) noexcept;

    mrthLogCfg_t m_cfg{};
    std::unique_ptr<Mirathi::Logging::Log<false>> m_log;
    bool m_enabled = true;
    std::shared_ptr<LogMirror> m_mirror;
    bool m_mirrorEnabled = false;
    std::string m_mirrorName;
};

/// The process-wide channels, opened by ZorPreMain and never closed; null before it and in other programs.
extern CZorLog* g_appLog;
extern CZorLog* g_libLog;
/// The flags of all diagnostic and application messages that shared code writes.
extern mrthLogFlags_t g_msgFlags;

} // namespace Zorvane
