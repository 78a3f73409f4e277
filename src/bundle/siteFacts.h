// SPDX-License-Identifier: Apache-2.0
// The site as the suite's configuration tells it, and whether its servers can be reached.
#pragma once

#include <chrono>
#include <string>

namespace Zorvane {

class Bundle;

/// Adds a configuration file (site/kvn.toml) with the keys that the suite knows: others may be secrets.
void addConfigurationFile(Bundle& bundle, const std::string& file);
/// Adds the configuration in force, where it came from, and the last lines of the logs of both originators.
void addSite(Bundle& bundle);
/// Adds what the names of the servers resolve to, and whether the master server's ports take a connection.
/// Each question is given up at the limit.
void addServers(Bundle& bundle, std::chrono::seconds limit);
/// The last lines of both originators' logs in a folder, and of the files that were rotated last.
void addLogs(Bundle& bundle, const std::string& directory);

} // namespace Zorvane
