// SPDX-License-Identifier: Apache-2.0
// The virtual environment configuration file: lines of key=value that tell the target of a conversion.
#pragma once

#include "frontend/messageNumbers.h"
#include "resources/B2VInput.h"

#include <map>
#include <string>
#include <vector>

namespace Zorvane {

/// Where the values stand in the file; lines are counted from 1.
struct VEconfigLines {
    std::map<std::string, int> keys; ///< the line that counts of each key
    std::vector<int> hardDisks;      ///< of each entry of the disk map
};

/// Fills the input from the file. Unknown keys and lines without a value are passed over; 0, or 1 when the
/// file can't be opened or a "harddisk" line has no data store. Fields filled by then stay filled.
int parseVEconfig(const std::string& path, B2VInput& input, Findings& findings = toldFindings(),
                  VEconfigLines* lines = nullptr);

/// The keys that a file may have.
std::vector<std::string> veConfigKeys();

} // namespace Zorvane
