// SPDX-License-Identifier: Apache-2.0
#include "ops/pullRetry.h"

#include "logging/Trace.h"
#include "ops/zorop.h"

namespace Zorvane {

int retryPull(const std::function<int()>& attempt, const std::function<void(std::chrono::seconds)>& pause) {
    Trace trace(g_libLog, "pullRetry:retryPull()");
    for (int i = 0; i < PULL_ATTEMPTS; ++i) {
        if (const int rc = attempt(); rc != ZOROP_NETWORK_FAILURE)
            return trace.leave(rc, ", return rc=", rc);
        trace.write(LEVEL_FAILURE, "Network failure experienced. Waiting for ", PULL_PAUSE.count(),
                    " seconds before retrying.");
        pause(PULL_PAUSE);
    }
    return trace.leave<int>(ZOROP_NETWORK_FAILURE, ", return ZOROP_NETWORK_FAILURE");
}

} // namespace Zorvane
