// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "suite/configuration.h"

#include <string>
#include <string_view>

namespace Zorvane::Suite {

/// Reads a configuration out of its TOML text. What is wrong is added to `complaints`, a line each, with the
/// file's name, line and column: a value of a wrong type or out of range is passed over, and a text that is
/// no TOML gives a configuration that is not present.
[[nodiscard]] Configuration parseConfiguration(std::string_view text, const std::string& file,
                                               std::string& complaints);

} // namespace Zorvane::Suite
