// SPDX-License-Identifier: Apache-2.0
// Reading the VMware profiles of the recovery database.
#pragma once

#include "model/CZor.h"

#include <string>

namespace Zorvane {

/// The profiles that a condition selects, added to the container; 0, or a code of queryRequest.
int queryVmwareProfiles(CZor& profiles, const std::string& condition);
/// The profile of a name, whatever the case.
int queryVmwareProfileByName(CZor& profiles, const std::string& profileName);

} // namespace Zorvane
