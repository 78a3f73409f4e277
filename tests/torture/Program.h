// SPDX-License-Identifier: Apache-2.0
// A program run under the preloaded library.
#pragma once

#include "torture/shim.h"

#include <array>
#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace Zorvane::Torture {

inline constexpr std::array CLASS_NAMES = {
#define CLASS(name) #name,
#include "torture/classes.def"
#undef CLASS
};
static_assert(CLASS_NAMES.size() == CLASSES);

using Environment = std::map<std::string, std::string>;

/// How a program ended, and what the library told of it.
struct Ending {
    bool inTime = true;
    int signal = 0;
    int status = -1;
    std::string out, err;
    bool told = false;   ///< the library's report is there; a program that is killed leaves none
    bool failed = false; ///< what was to fail was reached
    long failedAt = 0;   ///< the connections that had been asked for by then
    std::array<long, CLASSES> calls{};
    std::vector<std::string> leftOpen; ///< what the descriptors are that were left open
    bool leftChildren = false;
};

/// Runs a program with the library and the environment put in; its output and the library's report stand in
/// files of the folder meanwhile. A program that takes longer than the limit is killed.
Ending runProgram(const std::vector<std::string>& command, Environment environment, const std::string& folder,
                  std::chrono::seconds limit);

} // namespace Zorvane::Torture
