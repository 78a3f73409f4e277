// SPDX-License-Identifier: Apache-2.0
// The suite's configuration file: TOML, /usr/tarnv/kelvarion/kvn.toml or the file that KVN_CONF names.
#pragma once

#include "suite/kvnclient.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace Zorvane::Suite {

/// The log levels of an originator: statements up to them are written.
struct Levels {
    std::int32_t debug = 1;
    std::int32_t diag = 1;
};

/// What the file says, with the defaults for what it leaves out.
struct Configuration {
    bool present = false; ///< a file stands there and could be read
    kvn_master_config master;
    std::map<std::string, std::uint16_t, std::less<>> services; ///< TCP ports by service name
    std::string logDirectory;                                   ///< empty: no log files
    Levels levels;
    std::map<std::uint64_t, Levels> originatorLevels;
    std::size_t logMaxBytes = 10'485'760; ///< a log file of this size is rotated
    std::size_t logMaxFiles = 5;          ///< rotated files that are kept
    std::string catalogDirectory;         ///< empty: the standard places

    [[nodiscard]] Levels levelsOf(std::uint64_t originator) const;
};

/// The configuration as the file stands now. Costs one stat, and no allocation, when nothing changed; valid
/// until the next call. A file that can't be read or parsed is told on standard error, once, and counts as
/// absent; so does a single value of a wrong type. Not for use by several threads.
const Configuration& configuration();

/// The file that configuration() reads: the one that the environment names, or the standard one.
std::string configurationPath();

/// Watches the file from now on and gives the state that it is in, as FileWatch has it: as long as that is
/// FileWatch::state(), what configuration() gives after this call still stands. FileWatch::NotWatched if the
/// file can't be watched.
[[nodiscard]] std::uint32_t watchConfiguration();

} // namespace Zorvane::Suite
