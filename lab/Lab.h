// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lab/Catalogue.h"
#include "lab/DocumentTurns.h"
#include "lab/FailRules.h"
#include "lab/Inventory.h"
#include "lab/JobRunner.h"
#include "lab/ReceivedFiles.h"
#include "lab/RequestLog.h"
#include "lab/Store.h"

#include <chrono>
#include <cstddef>

namespace Zorvane {

/// What one connection may take. An exchange takes milliseconds; the limits are there for peers that send
/// nothing, or a byte now and then, and would keep a thread from others.
struct SessionLimits {
    std::chrono::milliseconds opening{10'000};  ///< until the request is known
    std::chrono::milliseconds hurry{1'000};     ///< the same when all places are taken
    std::chrono::milliseconds exchange{60'000}; ///< from there to the last byte of the answer
    /// The rows of a large server are a few MB; read into a tree they take ten times their size.
    std::size_t document = std::size_t{16} << 20;
};

/// What the daemons of a lab work on. Its parts may be used by several threads at the same time.
struct Lab {
    Store& store;
    JobRunner& jobs;
    Inventory inventory;
    Catalogue catalogue;
    FailRules& failures;
    RequestLog& log;
    ReceivedFiles received;
    SessionLimits limits{};
    DocumentTurns turns{};
};

} // namespace Zorvane
