// SPDX-License-Identifier: Apache-2.0
#include "platform/childSignals.h"

#include "logging/Trace.h"

#include <cerrno>
#include <string_view>

#include <unistd.h>

namespace Zorvane {

volatile std::sig_atomic_t zorSystem_childPid = 0;
volatile std::sig_atomic_t zorSystem_caughtSignal = 0;

namespace {

constexpr int HANDLED[] = {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGALRM};

constexpr std::string_view SPINNER_CHARACTERS = "|/-\\";
volatile std::sig_atomic_t spinnerPosition = 0;

void writeToTerminal(const char (&text)[3]) noexcept {
    // Not through stdio: the handler may have interrupted it. Nobody misses a character that can't be shown.
    if (write(STDERR_FILENO, text, 2) != 2)
        return;
}

void showSpinner() noexcept {
    writeToTerminal({SPINNER_CHARACTERS[static_cast<std::size_t>(spinnerPosition)], '\b', '\0'});
    alarm(1);
}

// The handler tells the log of each signal that it sends on. It can't always do so itself: the code that it
// interrupts may stand in the log or in the allocator and hold a lock there, and the handler would wait for
// it forever. So it makes a note. While the process sits in the wait for the child nothing is held, and the
// handler writes its notes at once; at any other time the main flow writes them at its next step, before
// anything that it tells of the child itself, so that the lines of the log stand in the same order either
// way.
struct Note {
    int signal;
    int childPid;
};

/// More notes than this between two steps of the main flow only repeat the first ones: they are dropped.
constexpr std::size_t MaxNotes = 32;
std::array<Note, MaxNotes> notes;
volatile std::sig_atomic_t noteCount = 0;
volatile std::sig_atomic_t handlerMayLog = 0;

} // namespace

void ReportForwardedSignals() noexcept {
    if (noteCount == 0)
        return;
    std::array<Note, MaxNotes> taken;
    std::size_t count = 0;
    {
        const BlockedSignals blocked;
        taken = notes;
        count = static_cast<std::size_t>(noteCount);
        noteCount = 0;
    }
    if (!g_libLog)
        return;
    for (std::size_t i = 0; i < count; ++i)
        g_libLog->WriteDebugMsg(DEBUG_FLAGS, LEVEL_FAILURE, "childSignals:zorSystem_SignalHandler()",
                                "Sending signal=", taken[i].signal,
                                " to child process pid=", taken[i].childPid);
}

void zorSystem_SignalHandler(int signal) {
    const int error = errno;
    if (signal == SIGALRM) {
        spinnerPosition = (spinnerPosition + 1) % static_cast<int>(SPINNER_CHARACTERS.size());
        showSpinner();
    } else {
        zorSystem_caughtSignal = signal;
        if (const pid_t child = zorSystem_childPid; child > 0) {
            if (const auto count = static_cast<std::size_t>(noteCount); count < MaxNotes) {
                notes[count] = {signal, child};
                noteCount = noteCount + 1;
            }
            if (handlerMayLog)
                ReportForwardedSignals();
            kill(child, signal);
        }
    }
    errno = error;
}

BlockedSignals::BlockedSignals() noexcept {
    sigset_t handled;
    sigemptyset(&handled);
    for (const int signal : HANDLED)
        sigaddset(&handled, signal);
    sigprocmask(SIG_BLOCK, &handled, &m_previous);
}

void BlockedSignals::restoreMask() const noexcept {
    sigprocmask(SIG_SETMASK, &m_previous, nullptr);
}

ForwardedSignals::ForwardedSignals(bool withAlarm) noexcept {
    for (const int signal : HANDLED)
        if (signal != SIGALRM || withAlarm)
            install(signal);
}

void ForwardedSignals::install(int signal) noexcept {
    struct sigaction action {};
    action.sa_handler = zorSystem_SignalHandler;
    action.sa_flags = SA_RESTART;
    sigfillset(&action.sa_mask);
    struct sigaction previous {};
    if (sigaction(signal, &action, &previous) != 0)
        return;
    if (previous.sa_handler == SIG_IGN)
        sigaction(signal, &previous, nullptr);
    else
        m_previous[static_cast<std::size_t>(signal - 1)] = previous;
}

void ForwardedSignals::restore() noexcept {
    for (int signal = 1; signal <= SignalCount; ++signal)
        if (auto& previous = m_previous[static_cast<std::size_t>(signal - 1)]) {
            sigaction(signal, &*previous, nullptr);
            previous.reset();
        }
}

void ForwardedSignals::resetToDefault() const noexcept {
    for (int signal = 1; signal <= SignalCount; ++signal)
        if (m_previous[static_cast<std::size_t>(signal - 1)])
            std::signal(signal, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL); // which this program ignores
}

HandlerMayLog::HandlerMayLog() noexcept {
    // A signal between the report and the flag has left its note for nobody: look again.
    for (;;) {
        ReportForwardedSignals();
        handlerMayLog = 1;
        if (noteCount == 0)
            return;
        handlerMayLog = 0;
    }
}

HandlerMayLog::~HandlerMayLog() {
    handlerMayLog = 0;
}

Spinner::Spinner() noexcept {
    spinnerPosition = 0;
    showSpinner();
}

Spinner::~Spinner() {
    alarm(0);
    writeToTerminal(" \b");
}

} // namespace Zorvane
