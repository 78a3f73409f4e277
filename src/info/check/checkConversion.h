// SPDX-License-Identifier: Apache-2.0
// The steps of a conversion, tried without changing anything.
#pragma once

#include "frontend/CZorb2vCommandLine.h"
#include "info/check/CollectedFindings.h"
#include "info/check/diskSpace.h"

#include <string>
#include <vector>

namespace Zorvane {

/// What a conversion with these arguments would meet, and what it would leave.
struct ConversionCheck {
    CZorb2vCommandLine::Arguments arguments;
    CollectedFindings findings;
    std::string file; ///< the configuration file
    B2VInput input;   ///< with the defaults filled in; the task and its disk map are in veRecords
    /// The profile that would be inserted; none if one is used again, which the input names.
    CZor profile;
    std::vector<StoreSpace> space;

    [[nodiscard]] bool isBlocked() const { return findings.firstThatBlocks() != nullptr; }
    /// Whether all that blocks is that somebody did not answer.
    [[nodiscard]] bool isUnanswered() const;
};

/// Tries the steps in the order of a run, with the rules of zorb2v. Asks the daemons, and blocks for them.
/// `check` needs its arguments set, and nothing else.
void checkConversion(ConversionCheck& check);

} // namespace Zorvane
