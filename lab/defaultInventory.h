// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace Zorvane {

/// The inventory.toml of a new lab.
extern const std::string_view DEFAULT_INVENTORY;

} // namespace Zorvane
