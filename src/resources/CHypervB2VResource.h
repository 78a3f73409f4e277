// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "resources/CB2VResource.h"

namespace Zorvane {

/// The place of the second kind of target. The type is recognised, and refused when the options are
/// validated: no step behind that is reached.
class CHypervB2VResource : public CB2VResource {
  public:
    std::uint32_t prepareRestoreTask(B2VInput& input) override;
    std::uint32_t initializeVeDefaults(B2VInput& input) override;
    std::uint32_t validateSetup(B2VInput& input) override;
};

} // namespace Zorvane
