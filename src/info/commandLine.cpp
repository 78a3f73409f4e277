// SPDX-License-Identifier: Apache-2.0
#include "info/commandLine.h"

#include "info/Session.h"
#include "info/subcommands.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include <CLI/CLI.hpp>
#include <unistd.h>

namespace Zorvane {

namespace {

constexpr const char* EXITS =
    "Exit status: 0 nothing blocks; 1 something blocks; 2 wrong usage; 3 could not ask.";

// Errors of the command line too are a document with --json, wherever the flag stands.
bool isJsonWanted(int argc, char** argv) {
    return std::any_of(argv + 1, argv + argc,
                       [](const char* text) { return std::string_view(text) == "--json"; });
}

} // namespace

int runZorinfo(std::int32_t argc, char** argv) {
    Session session(std::cout, std::cerr, ::isatty(STDOUT_FILENO) == 1);
    session.m_isJson = argc > 0 && isJsonWanted(argc, argv);
    bool isPlain = false;
    CLI::App app("Asks the recovery daemons about conversions, and changes nothing.", "zorinfo");
    app.set_version_flag("--version", "zorinfo " ZOR_VERSION);
    app.footer(EXITS);
    app.fallthrough();
    app.add_flag("--json", session.m_isJson, "answer with a JSON document");
    app.add_flag("--no-color", isPlain, "no colours; the variable NO_COLOR does the same");
    addCheck(app, session);
    addConfigs(app, session);
    addDraft(app, session);
    addExplain(app, session);
    addInventory(app, session);
    addLayout(app, session);
    addProfiles(app, session);
    addTasks(app, session);
    // Colour is a matter of the options in front, but they are only known when the parse comes to a
    // subcommand.
    app.parse_complete_callback([&] {
        const char* noColor = ::secure_getenv("NO_COLOR");
        session.m_isColored = session.isTerminal() && !isPlain && !(noColor && *noColor);
    });
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty())
            throw CLI::RequiredError("A subcommand");
        std::cout.flush();
        if (!std::cout)
            throw InfoFailure(InfoExit::NOT_ASKED, "standard output can't be written");
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return app.exit(error);
        session.tell({InfoExit::USAGE, std::string(error.what()) + "; see zorinfo --help"});
        return static_cast<int>(InfoExit::USAGE);
    } catch (const InfoFailure& failure) {
        session.tell(failure);
        return static_cast<int>(failure.exit());
    }
    return static_cast<int>(session.m_exit);
}

} // namespace Zorvane
