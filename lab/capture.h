// SPDX-License-Identifier: Apache-2.0
// A Linux machine as a configuration: what `zorlab capture` prints.
#pragma once

#include "model/CZor.h"

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace Zorvane {

/// What a machine tells of itself.
struct MachineSources {
    std::filesystem::path root;    ///< where its proc, sys, etc, boot and dev are
    std::string blockDevices;      ///< of "lsblk --json --bytes --output-all"
    std::string addresses, routes; ///< of "ip -json address" and "ip -json route"
    std::time_t time = 0;          ///< when it was asked
};

/// This machine. What a command does not tell is empty.
MachineSources askThisMachine();

/// Adds the rows of the machine's configuration, with numbers from 1. Returns what was left out, a line for
/// each thing: what can't be read, and what the tables have no place for.
std::vector<std::string> captureMachine(const MachineSources& machine, CZor& rows);

} // namespace Zorvane
