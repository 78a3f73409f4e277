// SPDX-License-Identifier: Apache-2.0
// The command's own catalogue messages (originator 433) and how they are written.
#pragma once

#include "logging/CZorLog.h"

namespace Zorvane {

enum MessageNumber : std::uint64_t {
    MSG_NO_VECONFIG = 3,
    MSG_NO_VMSERVER = 4,
    MSG_NO_CLIENT = 5,
    MSG_NO_ARGUMENT = 6, ///< the option
    MSG_USAGE = 7,
    MSG_NO_VMPROXY = 8,
    MSG_NO_MASTER_SERVER = 9,
    MSG_VALUE_MISSING = 10,      ///< the key
    MSG_CLIENT_UNSUPPORTED = 14, ///< client and configuration
    MSG_QUERY_FAILED = 15,
    MSG_JOB_PENDING = 16,
    MSG_CONFIG_NOT_FOUND = 17, ///< the configuration
    MSG_CANNOT_OPEN = 31,      ///< the path
    MSG_SUBMITTED = 32,
    MSG_NO_FULL_BACKUP = 33,
    MSG_CATALOGUE_UNAVAILABLE = 34,
};

inline constexpr mrthLogFlags_t FAILURE_FLAGS = 2;
inline constexpr mrthLogFlags_t USER_FLAGS = 1;
inline constexpr std::int32_t SEVERITY_INFORMATION = 0;
inline constexpr std::int32_t SEVERITY_FAILURE = 2;

/// Tells the user of a failure.
template <class... Arguments>
void tellFailure(MessageNumber number, const Arguments&... arguments) {
    if (g_appLog)
        g_appLog->WriteAppMsg(FAILURE_FLAGS, SEVERITY_FAILURE, number, arguments...);
}

/// Tells the user what was asked for or what succeeded.
inline void tellUser(MessageNumber number) {
    if (g_appLog)
        g_appLog->WriteAppMsg(USER_FLAGS, SEVERITY_INFORMATION, number);
}

} // namespace Zorvane
