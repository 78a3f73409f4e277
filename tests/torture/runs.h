// SPDX-License-Identifier: Apache-2.0
// The runs that are tortured.
#pragma once

#include <string>
#include <vector>

namespace Zorvane::Torture {

struct Run {
    std::string name;
    std::string options;  ///< of the command, behind the ones that every run has; empty: the child run
    std::string target{}; ///< lines of the configuration file of the target, behind those that every run has
    int status = 1;       ///< of the undisturbed run
    std::string before{}; ///< what is done to the database first
    std::string network = "VM Network"; ///< what the run's profile says of it
    std::string down{};                 ///< the service that does not answer
    int debugLevel = 1;
};

/// In a fixed order.
const std::vector<Run>& runs();

} // namespace Zorvane::Torture
