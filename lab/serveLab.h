// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lab/FailRules.h"
#include "lab/LabDirectory.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zorvane {

struct ServeOptions {
    std::vector<FailRule> failures;
    std::chrono::milliseconds pace{5000}; ///< how long a job stands in each of its states
    std::string address = "127.0.0.1";
    bool trace = false;                ///< write the request log
    std::optional<std::int64_t> clock; ///< the time at which jobs end, seconds since 1970; else the machine's
};

/// Serves a lab until SIGTERM or SIGINT; writes "ready" and a line feed on standard output when all ports
/// listen. LabError if a file of the directory makes no sense or a port can't be had.
void serveLab(const LabDirectory& directory, ServeOptions options);

} // namespace Zorvane
