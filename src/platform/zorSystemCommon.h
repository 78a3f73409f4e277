// SPDX-License-Identifier: Apache-2.0
// The child process runner: every external command runs through it, one at a time, on the main thread.
#pragma once

#include "platform/childSignals.h"
#include "platform/returnCodes.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>

namespace Zorvane {

class Trace;

// A run returns ZOR_SUCCESS when the child exited with status 0, ZOR_FAIL when with another status,
// ZOR_SIGNALLED, or ZOR_ERROR when the child could not be run, its output could not be taken, or another
// child is running. Signals that came during the run were sent on to the child; the last one is sent to this
// process at the end.

inline constexpr int ZOR_SIGNALLED = 2; ///< the child was ended by a signal

/// Bits of ZorSystemOptions::flags.
inline constexpr std::uint32_t ZOR_SYSTEM_KEEP_LOCALE = 1; ///< without it: LC_ALL=C and LANG=C
inline constexpr std::uint32_t ZOR_SYSTEM_CAPTURE = 2;     ///< take standard output
inline constexpr std::uint32_t ZOR_SYSTEM_SPINNER = 4;     ///< show on standard error that something runs
inline constexpr std::uint32_t ZOR_SYSTEM_CAPTURE_ALL =
    8;                                                   ///< take standard output and standard error, as one
inline constexpr std::uint32_t ZOR_SYSTEM_CALLBACK = 16; ///< give what is taken to the caller's callback

/// Called for each line of output, without its line end; 0 to go on, any other value to stop listening.
using ZorSystemCallback = int (*)(void* context, const std::string& line);

struct ZorSystemOptions {
    std::uint32_t flags = 0;
    /// The child's exit status; the signal that ended it for ZOR_SIGNALLED; 1 when taking its output failed;
    /// -1 when its status made no sense. Untouched when there was no child to wait for.
    std::int32_t exitStatus = 0;
    /// What was taken without a callback of the caller: each line and a line feed. Null before the pipe is
    /// made.
    std::unique_ptr<std::string> output{};
    ZorSystemCallback callback = nullptr;
    void* context = nullptr; ///< the callback's first argument; not owned
};

/// Runs a command text with the shell. Null options: no capture, the C locale, no spinner. `logCommand` is
/// false if the text may hold something private: the log doesn't show it then.
int ZorSystemCommon(const std::string& command, ZorSystemOptions* options, bool logCommand);
/// Runs the file that the first argument names, without a shell; `arguments` ends with null.
int ZorSystemCommon2(const char* const arguments[], ZorSystemOptions* options, bool logCommand);
int ZorSystemCommon(const std::string& command, std::int32_t& exitStatus, std::uint32_t flags,
                    bool logCommand);

/// Runs a command text and takes its output, which replaces the content of the stream. The exit status and
/// the output are those of the child for any code but ZOR_ERROR.
int ZorRunCommandCommon(const std::string& command, std::stringstream& output, std::int32_t& exitStatus,
                        std::uint32_t flags, bool logCommand);
/// The same for an argument vector, but for any code other than ZOR_SUCCESS the exit status is 3 and the
/// output is empty.
int ZorRunCommandCommon2(const char* const arguments[], std::stringstream& output, std::int32_t& exitStatus,
                         std::uint32_t flags, bool logCommand);
/// Runs a command text and gives each line of its output to the callback.
int ZorRunCommandCommon(const std::string& command, ZorSystemCallback callback, void* context,
                        std::int32_t& exitStatus, std::uint32_t flags, bool logCommand);

inline int ZorSystem(const std::string& command, std::int32_t& exitStatus, std::uint32_t flags) {
    return ZorSystemCommon(command, exitStatus, flags, true);
}
inline int ZorRunCommand(const std::string& command, std::stringstream& output, std::int32_t& exitStatus,
                         std::uint32_t flags, bool logCommand) {
    return ZorRunCommandCommon(command, output, exitStatus, flags, logCommand);
}

/// ZorRunCommand for a caller who only wants the text: a failure is told in the caller's trace.
int RunForOutput(Trace& trace, const std::string& command, std::string& output);

/// Reads a line, of any length, and removes its line end. 0 if there was anything to read, else 1; errno is
/// then that of the stream. A line end is a line feed, or a carriage return that ends a piece of 511 bytes.
int ReadLineFromStream(std::FILE* stream, std::string& line);

} // namespace Zorvane
