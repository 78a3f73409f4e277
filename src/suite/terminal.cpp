// SPDX-License-Identifier: Apache-2.0
#include "suite/terminal.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

namespace Zorvane::Suite {

namespace {

// While this stands, a reader that has gone away is a failed write, and the signal of it is swallowed: what a
// run has still to do, such as taking back a profile, must not depend on who listens.
class WithoutPipeSignal {
  public:
    WithoutPipeSignal() {
        sigset_t pending;
        ::sigemptyset(&m_signal);
        ::sigaddset(&m_signal, SIGPIPE);
        ::sigpending(&pending);
        m_wasPending = ::sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
    }
    WithoutPipeSignal(const WithoutPipeSignal&) = delete;
    WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;
    ~WithoutPipeSignal() {
        const timespec atOnce{};
        while (!m_wasPending && ::sigtimedwait(&m_signal, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
        ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

  private:
    sigset_t m_signal;
    sigset_t m_before;
    bool m_wasPending = false;
};

} // namespace

// Not by the stream, which would try again at the end of the program what it could not write.
bool writeTerminal(std::FILE* stream, std::string_view text) {
    const WithoutPipeSignal guard;
    std::fflush(stream);
    while (!text.empty()) {
        const ssize_t written = ::write(::fileno(stream), text.data(), text.size());
        if (written < 0 && errno == EAGAIN) { // a descriptor that somebody made non-blocking
            pollfd space{::fileno(stream), POLLOUT, 0};
            ::poll(&space, 1, -1);
        } else if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

} // namespace Zorvane::Suite
