// SPDX-License-Identifier: Apache-2.0
#include "platform/processSetup.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace Zorvane {

namespace {

constexpr int NOT_SET_UP = 114; // as for any other set-up that fails

void occupyStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF)
            continue;
        // The lowest free number is this one. It is opened for what nobody wants of it.
        if (::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) == descriptor)
            continue;
        static constexpr std::string_view TEXT = "/dev/null can't be opened in place of a closed standard "
                                                 "input, output or error. Halting..\n";
        // Nobody is left to tell if this fails, too.
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, TEXT.data(), TEXT.size());
        std::_Exit(NOT_SET_UP);
    }
}

} // namespace

void SetUpProcess() {
    occupyStandardDescriptors();
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace Zorvane
