// SPDX-License-Identifier: Apache-2.0
// What a program runs on and with.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Zorvane {

class Bundle;

/// Adds the member machine.json: the program's version and those of its libraries, the operating system, the
/// kernel, the locale, the user, and the variables of the environment that the programs go by. `libraries`
/// are those that the program links beside the shared code's.
void addMachineFacts(Bundle& bundle, const std::vector<std::pair<std::string, std::string>>& libraries);

} // namespace Zorvane
