// SPDX-License-Identifier: Apache-2.0
// This host's place in the suite, as the suite's configuration tells it.
#pragma once

#include <string>
#include <vector>

namespace Zorvane {

/// The suite's name for this host, or else the host's own; ZOR_FAIL if there is neither.
int GetClientName(std::string& name);
/// 1 if this host is the master server, else 0.
int OnMasterServer();
/// Appends the names of all servers and then of all media servers; a name may come twice. ZOR_FAIL without a
/// configuration.
int GetMediaServers(std::vector<std::string>& servers);
/// The name of the interface that the suite has to use; ZOR_FAIL if none is set.
int GetKVNRequiredInterface(std::string& name);

} // namespace Zorvane
