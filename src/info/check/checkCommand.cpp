// SPDX-License-Identifier: Apache-2.0
#include "info/Session.h"
#include "info/check/renderCheck.h"
#include "info/passedOptions.h"
#include "info/subcommands.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

constexpr const char* HELP = "Takes the options of zorb2v as they are, one dash and abbreviations included; "
                             "\"zorb2v\" alone lists them. "
                             "What zorb2v would refuse is a finding that blocks, a bad command line too; the "
                             "rest is checked as far as "
                             "it can be.\n"
                             "Exit status: 0 nothing blocks; 1 something blocks; 2 no options at all; 3 all "
                             "that blocks is that a daemon "
                             "did not answer.";

} // namespace

void addCheck(CLI::App& app, Session& session) {
    CLI::App* command = app.add_subcommand("check", "Tell all that stands against a conversion.");
    takeOptionsOfZorb2v(*command);
    command->footer(HELP);
    command->callback([command, &session] {
        ConversionCheck check;
        check.arguments = optionsOfZorb2v(*command, session);
        if (check.arguments.empty())
            throw InfoFailure(InfoExit::USAGE, "check takes the options of zorb2v; see zorinfo check --help");
        checkConversion(check);
        if (session.m_isJson)
            session.writeJson(documentOf(check));
        else
            writeCheck(check, session);
        session.m_exit = static_cast<InfoExit>(exitOf(check));
    });
}

} // namespace Zorvane
