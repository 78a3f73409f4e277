// SPDX-License-Identifier: Apache-2.0
// The suite's configuration, and a lab's inventory and catalogue: TOML, read and written anew, so that no
// spelling of a text hides what it says.
#pragma once

#include "bundle/Mask.h"

#include <optional>
#include <string>

namespace Zorvane {

/// Learns the texts that name something, by their keys.
void learnToml(const std::string& text, Mask& mask);
/// With all texts masked and without comments; nothing for a text that is no TOML.
std::optional<std::string> maskedToml(const std::string& text, Mask& mask);

/// A configuration file with the keys that the suite knows, and the names of the others at its end. The suite
/// keeps no secrets there; a hand may have. Nothing for a text that is no TOML.
std::optional<std::string> knownConfiguration(const std::string& text);

} // namespace Zorvane
