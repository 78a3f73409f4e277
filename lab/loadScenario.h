// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lab/LabDirectory.h"
#include "lab/Scenario.h"

#include <string>

namespace Zorvane {

/// The scenarios as a table for a reader, or as a JSON array.
std::string scenarioList(bool asJson);

/// Prepares a scenario in a lab, which is made with the sample clients if none stands there: its client,
/// which belongs to it alone, with the rows that it needs, and the target's configuration file. What an
/// earlier load of the scenario left is removed; nothing else is touched. Tells how to serve the lab, what to
/// type and what must come of it, for a reader or as a JSON object. LabError for an unknown name, or for a
/// lab without the sample clients.
std::string loadScenario(const LabDirectory& directory, const std::string& name, bool asJson);

} // namespace Zorvane
