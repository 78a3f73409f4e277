// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace Zorvane {

class Bundle;
class LabDirectory;

/// Gathers what a support engineer needs of a lab, and writes it: its files, its jobs, the state of its
/// database, its last log lines, and the configuration of a client if one is named (an empty configuration
/// is the latest). What can't be read is missing, and the bundle tells so. LabError if this is no lab's
/// directory, BundleFailure if the archive can't be written.
void bundleLab(const LabDirectory& directory, const std::string& client, const std::string& configuration,
               Bundle& bundle);

} // namespace Zorvane
