// SPDX-License-Identifier: Apache-2.0
#include "info/commandLine.h"

#include "info/Session.h"
#include "info/subcommands.h"
#include "info/usageErrors.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include <CLI/CLI.hpp>
#include <poll.h>
#include <unistd.h>

namespace Zorvane {

namespace {

constexpr const char* EXITS =
    "Exit status: 0 asked and answered; 1 something blocks; 2 wrong usage; 3 could not ask, or what is asked "
    "about is not known.";

// Errors of the command line too are a document with --json, wherever the flag stands.
bool isJsonWanted(int argc, char** argv) {
    return std::any_of(argv + 1, argv + argc,
                       [](const char* text) { return std::string_view(text) == "--json"; });
}

// One that can do more than write lines.
bool isTerminalOutput() {
    const char* type = ::secure_getenv("TERM");
    return ::isatty(STDOUT_FILENO) == 1 && !(type && std::string_view(type) == "dumb");
}

// "zorinfo configs | head" has what it wants.
bool isReaderGone() {
    pollfd out{STDOUT_FILENO, 0, 0};
    return ::poll(&out, 1, 0) == 1 && (out.revents & POLLERR) != 0;
}

} // namespace

int runZorinfo(std::int32_t argc, char** argv) {
    Session session(std::cout, std::cerr, isTerminalOutput());
    session.m_isJson = argc > 0 && isJsonWanted(argc, argv);
    bool isPlain = false;
    CLI::App app("Asks the recovery daemons about conversions, and changes nothing.", "zorinfo");
    app.set_version_flag("--version", "zorinfo " ZOR_VERSION);
    app.footer(EXITS);
    app.fallthrough();
    app.add_flag("--json", session.m_isJson, "answer with a JSON document");
    app.add_flag("--no-color", isPlain, "no colours; the variable NO_COLOR does the same");
    addBundle(app, session);
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
        if (!std::cout && !isReaderGone())
            throw InfoFailure(InfoExit::NOT_ASKED, "standard output can't be written");
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return app.exit(error);
        session.tell({InfoExit::USAGE, textOf(error, app)});
        return static_cast<int>(InfoExit::USAGE);
    } catch (const InfoFailure& failure) {
        session.tell(failure);
        return static_cast<int>(failure.exit());
    }
    return static_cast<int>(session.m_exit);
}

} // namespace Zorvane
