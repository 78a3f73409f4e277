// SPDX-License-Identifier: Apache-2.0
// Subcommands that take options of zorb2v, which have one dash and abbreviations of their own.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Zorvane {

class Session;

/// Everything behind the subcommand is passed on.
void takeOptionsOfZorb2v(CLI::App& command);
/// What was passed on. The options of zorinfo itself may stand among it, and are taken out.
std::vector<std::string> optionsOfZorb2v(const CLI::App& command, Session& session);

} // namespace Zorvane
