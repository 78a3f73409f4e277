// SPDX-License-Identifier: Apache-2.0
// Reading a client's saved configuration from the recovery database.
#pragma once

#include "model/CZor.h"

#include <string>

namespace Zorvane {

/// The configuration's own row, whatever the case of the two names. 0, or a code of queryRequest.
int queryConfigRecord(CZor& zor, const std::string& clientName, const std::string& configName);
/// All rows of the first configuration in the container. 0, or a code of queryTreeRequest; there must be one.
int queryConfigTree(CZor& zor);

/// The Windows version in an OS level: the "VER@" value of a tagged level, an old level as it stands, empty
/// if it can't be read.
std::string windowsVersion(const std::string& osLevel);
/// Whether a level is at least another; a level that can't be parsed is not.
bool isLevelAtLeast(const std::string& level, const std::string& bound);

} // namespace Zorvane
