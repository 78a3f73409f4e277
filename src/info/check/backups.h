// SPDX-License-Identifier: Apache-2.0
// What the backup catalogue tells beyond the check of a run.
#pragma once

#include "info/check/CollectedFindings.h"

namespace Zorvane {

/// Adds to the findings about wanted files which backup holds them, and why it does not do; else warns of a
/// newest full backup that is much older than the client's configuration. Asks the catalogue; what it does
/// not answer is told, too.
void lookIntoBackups(const B2VInput& input, CollectedFindings& findings);

} // namespace Zorvane
