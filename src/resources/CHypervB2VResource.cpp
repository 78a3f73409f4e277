// SPDX-License-Identifier: Apache-2.0
#include "resources/CHypervB2VResource.h"

#include "logging/Trace.h"

namespace Zorvane {

std::uint32_t CHypervB2VResource::prepareRestoreTask(B2VInput&) {
    ClassTrace trace(g_appLog, "CHypervB2VResource:insertRestoreTask()");
    return 0;
}

std::uint32_t CHypervB2VResource::initializeVeDefaults(B2VInput&) {
    return 0;
}

std::uint32_t CHypervB2VResource::validateSetup(B2VInput&) {
    return 0;
}

} // namespace Zorvane
