// SPDX-License-Identifier: Apache-2.0
#include "info/passedOptions.h"

#include "info/Session.h"

#include <CLI/CLI.hpp>

namespace Zorvane {

void takeOptionsOfZorb2v(CLI::App& command) {
    command.set_help_flag("--help", "this text"); // "-h" is an option of zorb2v
    command.fallthrough(false);
    command.prefix_command();
    command.allow_extras();
}

std::vector<std::string> optionsOfZorb2v(const CLI::App& command, Session& session) {
    std::vector<std::string> words = command.remaining();
    session.m_isJson = std::erase(words, "--json") > 0 || session.m_isJson;
    session.m_isColored = std::erase(words, "--no-color") == 0 && session.m_isColored;
    return words;
}

} // namespace Zorvane
