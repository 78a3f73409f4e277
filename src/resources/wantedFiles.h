// SPDX-License-Identifier: Apache-2.0
// The files that a backup must hold for its client to be restored.
#pragma once

#include "model/CZor.h"

#include <string>
#include <vector>

namespace Zorvane {

/// The last entry of the list of wanted files; it is never searched for.
inline constexpr const char* WANTED_FILES_END = "empty";

/// Catalogue paths that must be found, in the order of the search, WANTED_FILES_END behind them. They depend
/// on the client's operating system, its version, the level of the client's software and the firmware.
std::vector<std::string> wantedFiles(const CZor& config);

} // namespace Zorvane
