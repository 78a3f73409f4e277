// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace Zorvane {

/// The command's main function; the status is execute()'s.
int zormain(std::int32_t argc, char** argv);

} // namespace Zorvane
