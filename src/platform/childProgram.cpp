// SPDX-License-Identifier: Apache-2.0
#include "platform/childProgram.h"

#include "logging/Trace.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include <unistd.h>

namespace Zorvane {

namespace {

constexpr int EXIT_NOT_STARTED = 255;

/// This process's environment with the C locale put in; null if there is no memory for it.
std::unique_ptr<char* []> environmentWithCLocale() {
    static char locale[] = "LC_ALL=C";
    static char language[] = "LANG=C";
    std::size_t count = 0;
    while (environ && environ[count])
        ++count;
    std::unique_ptr<char*[]> copy(new (std::nothrow) char*[count + 3]);
    if (!copy)
        return nullptr;
    char** end = copy.get();
    *end++ = locale;
    *end++ = language;
    for (std::size_t i = 0; i < count; ++i)
        if (const std::string_view entry = environ[i];
            !entry.starts_with("LC_ALL=") && !entry.starts_with("LANG="))
            *end++ = environ[i];
    *end = nullptr;
    return copy;
}

/// Closes the descriptors from 3 up to the limit less one.
void closeDescriptors(long limit) noexcept {
    const long first = STDERR_FILENO + 1;
    if (limit <= first || close_range(first, static_cast<unsigned>(limit - 1), 0) == 0)
        return;
    for (long descriptor = first; descriptor < limit; ++descriptor) // a kernel without the call
        close(static_cast<int>(descriptor));
}

void redirect(Trace& trace, int output, int target, const char* name) {
    if (dup2(output, target) >= 0)
        return;
    trace.diag(MSG_CALL_WITH_ARGUMENT_FAILED, "dup2", name, std::strerror(errno));
    _exit(EXIT_NOT_STARTED);
}

} // namespace

pid_t StartChild(Trace& trace, const ChildProgram& program, const ForwardedSignals& forwarded,
                 const BlockedSignals& blocked) {
    const auto cLocale = program.callersLocale ? nullptr : environmentWithCLocale();
    char* const* const environment = program.callersLocale ? environ : cLocale.get();
    errno = 0;
    const long descriptorLimit = sysconf(_SC_OPEN_MAX);
    const int limitError = errno;

    // A child of vfork works in this process's memory, which stands still until the child executes its
    // program or ends: a copy of the memory's map would cost more than all the rest of a run. So the child
    // may log, but it must leave everything as it is and never return. The one that has to return gets a
    // copy.
    const pid_t child = descriptorLimit < 0 ? fork() : vfork();
    if (child != 0)
        return child;

    forwarded.resetToDefault();
    blocked.restoreMask();
    if (!program.callersLocale && !cLocale) {
        trace.diag(MSG_CALL_FAILED, "putenv", std::strerror(ENOMEM));
        _exit(EXIT_NOT_STARTED);
    }
    if (program.output >= 0) {
        redirect(trace, program.output, STDOUT_FILENO, "stdout");
        if (program.captureErrors)
            redirect(trace, program.output, STDERR_FILENO, "stderr");
    }
    if (descriptorLimit < 0) {
        // It stays that this failure doesn't end the child, which returns to the caller as a second process.
        trace.diag(MSG_CALL_WITH_ARGUMENT_FAILED, "sysconf", "_SC_OPEN_MAX)", std::strerror(limitError));
        return 0;
    }
    closeDescriptors(descriptorLimit);
    execve(program.file, const_cast<char* const*>(program.arguments), environment);
    std::perror(program.failureText);
    _exit(EXIT_NOT_STARTED);
}

} // namespace Zorvane
