// SPDX-License-Identifier: Apache-2.0
// The start of a child process: from this process to the program that the child becomes.
#pragma once

#include "platform/childSignals.h"

#include <cstdint>

#include <sys/types.h>

namespace Zorvane {

class Trace;

/// The catalogue messages of a failed system call.
inline constexpr std::uint64_t MSG_CALL_FAILED = 592;               ///< call, error text
inline constexpr std::uint64_t MSG_CALL_WITH_ARGUMENT_FAILED = 593; ///< call, argument, error text

struct ChildProgram {
    const char* file;
    const char* const* arguments; ///< ends with null
    const char* failureText;      ///< for standard error when it can't be executed
    bool callersLocale = false;   ///< else the C locale
    int output = -1;              ///< takes the place of standard output; -1 for none
    bool captureErrors = false;   ///< it takes the place of standard error too
};

/// Starts the program. The handled signals are installed and blocked by the caller; in the child they have
/// their default and the mask from before. The child's number, or -1 and errno. 0 in a child that did not
/// start the program and is to return from its caller (see the source); any other failure in the child ends
/// it with status 255 and is logged, before this returns.
pid_t StartChild(Trace& trace, const ChildProgram& program, const ForwardedSignals& forwarded,
                 const BlockedSignals& blocked);

} // namespace Zorvane
