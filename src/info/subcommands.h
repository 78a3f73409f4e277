// SPDX-License-Identifier: Apache-2.0
// The subcommands of zorinfo: each adds itself to the command line and answers into the session.
#pragma once

namespace CLI {
class App;
}

namespace Zorvane {

class Session;

void addBundle(CLI::App& app, Session& session);
void addCheck(CLI::App& app, Session& session);
void addConfigs(CLI::App& app, Session& session);
void addDraft(CLI::App& app, Session& session);
void addExplain(CLI::App& app, Session& session);
void addInventory(CLI::App& app, Session& session);
void addLayout(CLI::App& app, Session& session);
void addProfiles(CLI::App& app, Session& session);
void addTasks(CLI::App& app, Session& session);

} // namespace Zorvane
