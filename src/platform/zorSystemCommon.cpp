// SPDX-License-Identifier: Apache-2.0
#include "platform/zorSystemCommon.h"

#include "logging/Trace.h"
#include "platform/childProgram.h"
#include "platform/commandPaths.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane {

namespace {

constexpr std::uint64_t MSG_READ_FAILED = 610; ///< error text

class Descriptor {
  public:
    explicit Descriptor(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Descriptor() { reset(); }

    [[nodiscard]] int get() const noexcept { return m_descriptor; }
    int release() noexcept { return std::exchange(m_descriptor, -1); }
    void reset() noexcept {
        if (m_descriptor >= 0)
            close(release());
    }

  private:
    int m_descriptor;
};

struct CloseStream {
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};

/// Where the child's output comes from; both ends are empty when nothing is captured.
struct CapturePipe {
    std::unique_ptr<std::FILE, CloseStream> reader;
    Descriptor writer;
};

/// A process may run with standard descriptors closed. A pipe end that took the place of one would become the
/// child's input, or its standard error, so it moves up.
bool moveAboveStandard(Descriptor& descriptor) noexcept {
    if (descriptor.get() > STDERR_FILENO)
        return true;
    Descriptor higher(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    descriptor = std::move(higher);
    return descriptor.get() >= 0;
}

bool openPipe(Trace& trace, CapturePipe& capture) {
    int ends[2];
    const bool made = pipe2(ends, O_CLOEXEC) == 0;
    Descriptor reader(made ? ends[0] : -1);
    capture.writer = Descriptor(made ? ends[1] : -1);
    if (!made || !moveAboveStandard(reader) || !moveAboveStandard(capture.writer)) {
        trace.diag(MSG_CALL_FAILED, "pipe", std::strerror(errno));
        return false;
    }
    capture.reader.reset(fdopen(reader.get(), "r"));
    if (!capture.reader) {
        trace.diag(MSG_CALL_FAILED, "fdopen", std::strerror(errno));
        return false;
    }
    reader.release();
    return true;
}

int appendLine(void* context, const std::string& line) {
    static_cast<std::string*>(context)->append(line).append(1, '\n');
    return 0;
}

/// Gives the child's output to the callback, line by line. False if it could not all be taken.
bool takeOutput(Trace& trace, CapturePipe& capture, const ZorSystemOptions& options) {
    capture.writer.reset();
    bool taken = true;
    for (std::string line; taken && ReadLineFromStream(capture.reader.get(), line) == 0;) {
        ReportForwardedSignals();
        if (!options.callback) {
            trace.write(LEVEL_FAILURE, "No callback function defined. Failure...");
            taken = false;
        } else if (options.callback(options.context, line) != 0) {
            trace.write(LEVEL_FAILURE, "Callback function returned fail status.");
            taken = false;
        }
    }
    if (std::ferror(capture.reader.get())) {
        trace.diag(MSG_READ_FAILED, std::strerror(errno));
        taken = false;
    }
    capture.reader.reset();
    return taken;
}

/// The child's wait status, or none if the wait failed. No child is running afterwards.
std::optional<int> waitForChild(Trace& trace, pid_t child) {
    for (;;) {
        int status = 0;
        pid_t ended = 0;
        int error = 0;
        {
            const HandlerMayLog mayLog;
            ended = waitpid(child, &status, 0);
            error = errno;
        }
        if (ended < 0 && error == EINTR) {
            trace.write(LEVEL_FAILURE, "Wakeup by signal=", int{zorSystem_caughtSignal}, ", resuming wait");
            continue;
        }
        zorSystem_childPid = 0; // at once: the number may already be another process's
        ReportForwardedSignals();
        if (ended == child)
            return status;
        trace.diag(MSG_CALL_FAILED, "waitpid", std::strerror(error));
        return std::nullopt;
    }
}

struct Outcome {
    int code;
    std::int32_t exitStatus;
};

Outcome decode(Trace& trace, pid_t child, int status, bool outputTaken) {
    if (!outputTaken) {
        trace.write(LEVEL_FAILURE, "Output capture failed.");
        return {ZOR_ERROR, 1};
    }
    if (WIFEXITED(status)) {
        const int exitStatus = WEXITSTATUS(status);
        if (exitStatus == 0)
            return {ZOR_SUCCESS, 0};
        trace.write(LEVEL_FAILURE, "Child process pid=", child, " exited with non-zero status=", exitStatus);
        return {ZOR_FAIL, exitStatus};
    }
    if (!WIFSIGNALED(status)) {
        trace.write(LEVEL_FAILURE, "Child process pid=", child, " terminated, wait status=", status);
        return {ZOR_ERROR, -1};
    }
    const int signal = WTERMSIG(status);
    trace.write(LEVEL_FAILURE, "Child process pid=", child, " terminated by signal=", signal);
    return {ZOR_SIGNALLED, signal};
}

/// Follows the running child to its end; none if the wait for it failed.
std::optional<Outcome> followChild(Trace& trace, pid_t child, CapturePipe& capture,
                                   ZorSystemOptions* options) {
    std::optional<Spinner> spinner;
    if (options && options->flags & ZOR_SYSTEM_SPINNER)
        spinner.emplace();
    bool outputTaken = true;
    try {
        if (capture.reader)
            outputTaken = takeOutput(trace, capture, *options);
    } catch (...) { // of the callback, or no memory: no child stays behind
        capture.reader.reset();
        waitForChild(trace, child);
        throw;
    }
    const std::optional<int> status = waitForChild(trace, child);
    spinner.reset();
    if (!status)
        return std::nullopt;
    return decode(trace, child, *status, outputTaken);
}

int run(Trace& trace, ChildProgram program, ZorSystemOptions* options) {
    if (zorSystem_childPid != 0) {
        trace.write(LEVEL_FAILURE, "assertion (zorSystem_childPid == 0) failed");
        return ZOR_ERROR;
    }
    if (zorSystem_caughtSignal != 0) {
        trace.write(LEVEL_FAILURE, "assertion (zorSystem_caughtSignal == 0) failed");
        return ZOR_ERROR;
    }

    const std::uint32_t flags = options ? options->flags : 0;
    CapturePipe capture;
    if (flags & (ZOR_SYSTEM_CAPTURE | ZOR_SYSTEM_CAPTURE_ALL | ZOR_SYSTEM_CALLBACK)) {
        if (!openPipe(trace, capture))
            return ZOR_ERROR;
        if (!(flags & ZOR_SYSTEM_CALLBACK)) {
            options->output = std::make_unique<std::string>();
            options->callback = appendLine;
            options->context = options->output.get();
        }
    }

    // Signals are held back until the handler knows whom to send them on to, and in the child until they have
    // their default again, so that none is lost around the start.
    std::optional<BlockedSignals> blocked(std::in_place);
    ForwardedSignals forwarded((flags & ZOR_SYSTEM_SPINNER) != 0);
    program.callersLocale = (flags & ZOR_SYSTEM_KEEP_LOCALE) != 0;
    program.output = capture.writer.get();
    program.captureErrors = (flags & ZOR_SYSTEM_CAPTURE_ALL) != 0;
    const pid_t child = StartChild(trace, program, forwarded, *blocked);
    if (child == 0)
        return ZOR_ERROR;
    if (child < 0) {
        trace.diag(MSG_CALL_FAILED, "fork", std::strerror(errno));
        forwarded.leaveInstalled(); // It stays that the handlers outlive a failed fork.
        return ZOR_ERROR;
    }
    zorSystem_childPid = child;
    blocked.reset();
    trace.write(LEVEL_TRANSFER, "Child process started, pid=", child);

    const std::optional<Outcome> outcome = followChild(trace, child, capture, options);
    if (!outcome)
        return ZOR_ERROR;
    if (options)
        options->exitStatus = outcome->exitStatus;

    forwarded.restore();
    ReportForwardedSignals();
    if (const int signal = zorSystem_caughtSignal; signal != 0) {
        zorSystem_caughtSignal = 0;
        trace.write(LEVEL_FAILURE, "Sending kill signal=", signal, " to self.");
        kill(getpid(), signal);
    }
    return outcome->code;
}

/// The entry line's text on a command.
std::string describe(bool logCommand, const std::string& command, const ZorSystemOptions* options) {
    if (!logCommand)
        return {};
    return ", command=" + command + ", options=" + (options ? std::to_string(options->flags) : "(null)");
}

std::string join(const char* const arguments[]) {
    std::string text;
    for (; *arguments; ++arguments)
        text.append(text.empty() ? "" : " ").append(*arguments);
    return text;
}

} // namespace

int ZorSystemCommon(const std::string& command, ZorSystemOptions* options, bool logCommand) {
    Trace trace(g_libLog, "zorSystemCommon:ZorSystemCommon()", describe(logCommand, command, options));
    const char* const arguments[] = {"sh", "-c", command.c_str(), nullptr};
    const int rc =
        run(trace, {.file = CMD_SH, .arguments = arguments, .failureText = "execl(/bin/sh) failed"}, options);
    return trace.leave(rc, ", return rc=", rc);
}

int ZorSystemCommon2(const char* const arguments[], ZorSystemOptions* options, bool logCommand) {
    Trace trace(g_libLog, "zorSystemCommon:ZorSystemCommon2()",
                describe(logCommand, join(arguments), options));
    const int rc =
        run(trace, {.file = arguments[0], .arguments = arguments, .failureText = "execv(cmdPath) failed"},
            options);
    return trace.leave(rc, ", return rc=", rc);
}

int ZorSystemCommon(const std::string& command, std::int32_t& exitStatus, std::uint32_t flags,
                    bool logCommand) {
    ZorSystemOptions options{.flags = flags};
    const int rc = ZorSystemCommon(command, &options, logCommand);
    exitStatus = options.exitStatus;
    return rc;
}

int ZorRunCommandCommon(const std::string& command, std::stringstream& output, std::int32_t& exitStatus,
                        std::uint32_t flags, bool logCommand) {
    Trace trace(g_libLog, "zorSystemCommon:ZorRunCommandCommon()");
    ZorSystemOptions options{.flags = flags | ZOR_SYSTEM_CAPTURE};
    const int rc = ZorSystemCommon(command, &options, logCommand);
    exitStatus = options.exitStatus;
    output.str(options.output ? *options.output : std::string());
    return trace.leave(rc, ", return rc=", rc);
}

int ZorRunCommandCommon2(const char* const arguments[], std::stringstream& output, std::int32_t& exitStatus,
                         std::uint32_t flags, bool logCommand) {
    Trace trace(g_libLog, "zorSystemCommon:ZorRunCommandCommon2()");
    ZorSystemOptions options{.flags = flags | ZOR_SYSTEM_CAPTURE};
    const int rc = ZorSystemCommon2(arguments, &options, logCommand);
    const bool succeeded = rc == ZOR_SUCCESS;
    exitStatus = succeeded ? options.exitStatus : ZOR_ERROR;
    output.str(succeeded && options.output ? *options.output : std::string());
    return trace.leave(rc, ", return rc=", rc);
}

int ZorRunCommandCommon(const std::string& command, ZorSystemCallback callback, void* context,
                        std::int32_t& exitStatus, std::uint32_t flags, bool logCommand) {
    Trace trace(g_libLog, "zorSystemCommon:ZorRunCommandCommon()");
    ZorSystemOptions options{.flags = flags | ZOR_SYSTEM_CALLBACK, .callback = callback, .context = context};
    const int rc = ZorSystemCommon(command, &options, logCommand);
    exitStatus = options.exitStatus;
    return trace.leave(rc, ", return rc=", rc);
}

int RunForOutput(Trace& trace, const std::string& command, std::string& output) {
    std::stringstream stream;
    std::int32_t exitStatus = 0;
    const int rc = ZorRunCommand(command, stream, exitStatus, 0, true);
    if (rc == ZOR_FAIL)
        trace.write(LEVEL_FAILURE, "Command failed with return code ", exitStatus);
    else if (rc != ZOR_SUCCESS)
        trace.write(LEVEL_FAILURE, "Failed to run command ", command);
    output = stream.str();
    return rc;
}

// Without trace lines: this is called for every line, and the caller needs errno.
int ReadLineFromStream(std::FILE* stream, std::string& line) {
    // As fgets with a buffer of this size reads, but a NUL byte in the output doesn't hide the rest of its
    // line.
    constexpr std::size_t BufferSize = 512;
    line.clear();
    bool anyRead = false;
    for (;;) {
        char piece[BufferSize - 1];
        std::size_t length = 0;
        for (int c = 0; length < sizeof piece && c != '\n' && (c = getc_unlocked(stream)) != EOF;)
            piece[length++] = static_cast<char>(c);
        if (length == 0)
            return anyRead ? 0 : 1;
        anyRead = true;
        std::size_t kept = length;
        while (kept > 0 && (piece[kept - 1] == '\n' || piece[kept - 1] == '\r'))
            --kept;
        line.append(piece, kept);
        if (kept < length)
            return 0;
    }
}

} // namespace Zorvane
