// SPDX-License-Identifier: Apache-2.0
// Whether the inventory has what a profile names.
#pragma once

#include "lab/Inventory.h"
#include "model/task_records.h"

#include <optional>
#include <string>

namespace Zorvane {

struct MissingObject {
    const char* kind; ///< the target file's key, or the option: the same in every language
    std::string name;
};

/// The first object that the profile names and the inventory doesn't have. What the profile leaves empty is
/// not looked at.
[[nodiscard]] std::optional<MissingObject> findMissing(const Inventory& inventory,
                                                       const CVmwareProfileOptions& profile);
/// The server of a profile: a vCenter, or the ESX host itself.
[[nodiscard]] std::string serverOf(const CVmwareProfileOptions& profile);

} // namespace Zorvane
