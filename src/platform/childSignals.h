// SPDX-License-Identifier: Apache-2.0
// What signals do while a child process runs: they go to the child first, to this process when the child is
// gone.
#pragma once

#include <array>
#include <csignal>
#include <optional>

namespace Zorvane {

/// The running child, 0 if none.
extern volatile std::sig_atomic_t zorSystem_childPid;
/// The last signal that the handler forwarded, 0 if none.
extern volatile std::sig_atomic_t zorSystem_caughtSignal;

/// Turns the spinner on SIGALRM; any other signal is noted and sent on to the running child.
void zorSystem_SignalHandler(int signal);

/// Holds back the handled signals in this scope; they are delivered at its end.
class BlockedSignals {
  public:
    BlockedSignals() noexcept;
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { restoreMask(); }

    /// The signal mask as it was before.
    void restoreMask() const noexcept;

  private:
    sigset_t m_previous;
};

/// The handler's installation for SIGHUP, SIGINT, SIGQUIT, SIGPIPE and SIGTERM, and for SIGALRM on request.
/// A signal that the process ignores stays ignored. The destructor restores what was there before.
class ForwardedSignals {
  public:
    explicit ForwardedSignals(bool withAlarm) noexcept;
    ForwardedSignals(const ForwardedSignals&) = delete;
    ForwardedSignals& operator=(const ForwardedSignals&) = delete;
    ~ForwardedSignals() { restore(); }

    void restore() noexcept;
    /// Forgets the former dispositions: the handler stays for good.
    void leaveInstalled() noexcept { m_previous.fill(std::nullopt); }
    /// In the child: the default for every handled signal, as exec would set it.
    void resetToDefault() const noexcept;

  private:
    void install(int signal) noexcept;

    static constexpr int SignalCount = 64;
    std::array<std::optional<struct sigaction>, SignalCount> m_previous; ///< by signal number less one
};

/// Tells in the log which signals the handler sent on since the last call.
void ReportForwardedSignals() noexcept;

/// A scope that holds nothing but one async-signal-safe system call, so that the handler may log by itself.
class HandlerMayLog {
  public:
    HandlerMayLog() noexcept;
    HandlerMayLog(const HandlerMayLog&) = delete;
    HandlerMayLog& operator=(const HandlerMayLog&) = delete;
    ~HandlerMayLog();
};

/// A turning bar on standard error, one step a second; wiped out at the end. Needs the handler on SIGALRM.
class Spinner {
  public:
    Spinner() noexcept;
    Spinner(const Spinner&) = delete;
    Spinner& operator=(const Spinner&) = delete;
    ~Spinner();
};

} // namespace Zorvane
