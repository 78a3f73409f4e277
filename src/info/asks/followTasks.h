// SPDX-License-Identifier: Apache-2.0
// Waiting for conversions.
#pragma once

#include "info/Session.h"

#include <chrono>
#include <optional>
#include <string>

namespace Zorvane {

struct FollowOptions {
    std::string client;  ///< empty: all clients
    bool isTold = false; ///< a line for each change, and on a terminal one below them that moves
    std::optional<std::chrono::seconds> limit;
};

/// Looks at the running conversions until none is under way any more. False if the limit came first. Throws
/// InfoFailure when the daemon does not answer.
bool followTasks(const FollowOptions& options, const Session& session);

} // namespace Zorvane
