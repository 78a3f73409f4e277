// SPDX-License-Identifier: Apache-2.0
// The command's own catalogue messages (originator 433) and how they are written. What refuses a conversion
// is a finding, and has its message in resources/findings.def.
#pragma once

#include "logging/CZorLog.h"
#include "resources/Finding.h"

namespace Zorvane {

enum MessageNumber : std::uint64_t {
    MSG_USAGE = 7,
    MSG_SUBMITTED = 32,
};

inline constexpr mrthLogFlags_t FAILURE_FLAGS = 2;
inline constexpr mrthLogFlags_t USER_FLAGS = 1;
inline constexpr std::int32_t SEVERITY_INFORMATION = 0;
inline constexpr std::int32_t SEVERITY_FAILURE = 2;

/// Tells the user why the conversion is refused; nothing for a finding that has no message.
void tellFailure(const Finding& finding);

/// Tells the user what was asked for or what succeeded.
inline void tellUser(MessageNumber number) {
    if (g_appLog)
        g_appLog->WriteAppMsg(USER_FLAGS, SEVERITY_INFORMATION, number);
}

/// The user's terminal as the place of findings: tells what blocks, and stops there.
Findings& toldFindings();

} // namespace Zorvane
