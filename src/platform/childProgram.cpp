// SPDX-License-Identifier: Apache-2.0
#include "platform/childProgram.h"

#include "logging/Trace.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include <sys/uio.h>
#include <unistd.h>

namespace Zorvane {

namespace {

constexpr int EXIT_NOT_STARTED = 255;

/// What kept a child from its program. Volatile, since the child leaves it in its parent's memory; the call
/// comes last, so that a child that is killed in between has left nothing.
struct Failure {
    const char* volatile argument = nullptr;
    volatile int error = 0;
    const char* volatile call = nullptr; ///< null for no failure
};

void tell(Trace& trace, const Failure& failure) {
    const char* const call = failure.call;
    const char* const error = std::strerror(failure.error);
    if (const char* const argument = failure.argument)
        trace.diag(MSG_CALL_WITH_ARGUMENT_FAILED, call, argument, error);
    else
        trace.diag(MSG_CALL_FAILED, call, error);
}

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

bool redirect(int output, int target, const char* name, Failure& failure) noexcept {
    if (dup2(output, target) >= 0)
        return true;
    failure = {name, errno, "dup2"};
    return false;
}

/// Standard output and standard error go where the caller wants them.
bool redirectOutput(const ChildProgram& program, Failure& failure) noexcept {
    return program.output < 0 ||
           (redirect(program.output, STDOUT_FILENO, "stdout", failure) &&
            (!program.captureErrors || redirect(program.output, STDERR_FILENO, "stderr", failure)));
}

/// "text: what the error means" on standard error, as perror has it.
void writeError(std::string_view text, int error) noexcept {
    std::string_view parts[] = {text, ": ", "Unknown error", "\n"};
    if (const char* const description = strerrordesc_np(error))
        parts[2] = description;
    iovec pieces[std::size(parts)];
    for (std::size_t i = 0; i < std::size(parts); ++i)
        pieces[i] = {const_cast<char*>(parts[i].data()), parts[i].size()};
    if (writev(STDERR_FILENO, pieces, std::size(pieces)) < 0)
        return; // there is no other place to say it
}

} // namespace

pid_t StartChild(Trace& trace, const ChildProgram& program, const ForwardedSignals& forwarded,
                 const BlockedSignals& blocked) {
    const auto cLocale = program.callersLocale ? nullptr : environmentWithCLocale();
    char* const* const environment = program.callersLocale ? environ : cLocale.get();
    errno = 0;
    const long descriptorLimit = sysconf(_SC_OPEN_MAX);
    const int limitError = errno;
    Failure failure;

    // A child of vfork works in this process's memory, which stands still until the child executes its
    // program or ends: a copy of the memory's map would cost more than all the rest of a run. So the child
    // makes nothing but system calls. The log, stdio and the allocator are not for it: a log file that it
    // turned over would be open in the child alone, and a lock that it held when a signal ended it would
    // stay locked. It leaves word of its failure, and its parent logs that. A child that has to return from
    // here gets a copy.
    const bool inParentsMemory = descriptorLimit >= 0;
    const pid_t child = inParentsMemory ? vfork() : fork();
    if (child == 0) {
        forwarded.resetToDefault();
        blocked.restoreMask();
        if (!program.callersLocale && !cLocale) {
            failure = {nullptr, ENOMEM, "putenv"};
        } else if (redirectOutput(program, failure) && inParentsMemory) {
            closeDescriptors(descriptorLimit);
            execve(program.file, const_cast<char* const*>(program.arguments), environment);
            writeError(program.failureText, errno);
        }
        if (inParentsMemory)
            _exit(EXIT_NOT_STARTED);
    }
    if (failure.call)
        tell(trace, failure);
    if (child != 0)
        return child;
    if (failure.call)
        _exit(EXIT_NOT_STARTED);
    // It stays that this failure doesn't end the child, which returns to the caller as a second process.
    trace.diag(MSG_CALL_WITH_ARGUMENT_FAILED, "sysconf", "_SC_OPEN_MAX)", std::strerror(limitError));
    return 0;
}

} // namespace Zorvane
