// SPDX-License-Identifier: Apache-2.0
// The virtual environment configuration file: lines of key=value that tell the target of a conversion.
#pragma once

#include "resources/B2VInput.h"

#include <string>

namespace Zorvane {

/// Fills the input from the file. Unknown keys and lines without a value are passed over; 0, or 1 when the
/// file can't be opened (the user is told) or a "harddisk" line has no data store. Fields filled by then stay
/// filled.
int parseVEconfig(const std::string& path, B2VInput& input);

} // namespace Zorvane
