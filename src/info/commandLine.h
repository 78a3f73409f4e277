// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace Zorvane {

/// The companion's main function: asks and shows, and changes nothing. The status is one of InfoExit.
int runZorinfo(std::int32_t argc, char** argv);

} // namespace Zorvane
