// SPDX-License-Identifier: Apache-2.0
#include "platform/standardDescriptors.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace Zorvane {

void OccupyStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF)
            continue;
        // The lowest free number is this one. It is opened for what nobody wants of it.
        if (::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) != descriptor)
            std::_Exit(EXIT_FAILURE);
    }
}

} // namespace Zorvane
