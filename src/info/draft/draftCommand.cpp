// SPDX-License-Identifier: Apache-2.0
#include "frontend/CZorb2vCommandLine.h"
#include "info/Session.h"
#include "info/check/CollectedFindings.h"
#include "info/draft/TargetDraft.h"
#include "info/explanations.h"
#include "info/passedOptions.h"
#include "info/subcommands.h"
#include "resources/CB2VResource.h"

#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* HELP = "OPTIONS are those of zorb2v that a target depends on: -vmserver NAME and "
                             "-vmproxy HOST; if wanted -config "
                             "NAME, -S SERVER, -systemOnly and -vmsn. The file goes to standard output:\n"
                             "  zorinfo draft alpha -vmserver vc1 -vmproxy backup1 >alpha.conf";

void requireNothingBlocks(const CollectedFindings& findings, InfoExit exit) {
    if (const Finding* first = findings.firstThatBlocks())
        throw InfoFailure(first->isUnanswered ? InfoExit::NOT_ASKED : exit, textOf(*first));
}

void readInput(const CZorb2vCommandLine::Arguments& arguments, B2VInput& input) {
    CollectedFindings findings;
    CZorb2vCommandLine commandLine(findings);
    commandLine.initializeDefaults(input);
    commandLine.extractSystemOnlyRestore(arguments, input.systemOnly);
    commandLine.extractClientAndConfig(arguments, input.clientName, input.configName);
    commandLine.extractMasterServer(arguments, input.masterServer);
    commandLine.extractVmproxy(arguments, input.vmProxy);
    commandLine.extractVMServerName(arguments, input.vmServer);
    commandLine.extractStripNetwork(arguments, input.stripNetwork);
    requireNothingBlocks(findings, InfoExit::USAGE);
    commandLine.readConfiguration(input);
    requireNothingBlocks(findings, InfoExit::NOT_ASKED);
    CB2VResource resource;
    resource.reportTo(findings);
    resource.isClientSupported(input.clientConfig);
    requireNothingBlocks(findings, InfoExit::BLOCKED);
}

Json documentOf(const TargetDraft& draft, const B2VInput& input) {
    Json values = Json::object(), disks = Json::array();
    for (const DraftValue& value : draft.values)
        if (!value.value.empty())
            values[value.key] = value.value;
    for (const PlacedDisk& placed : draft.disks)
        disks.push_back({{"disk", placed.disk.name}, {"size", placed.disk.size}, {"store", placed.store}});
    return {
        {"client", input.clientName},
        {"configuration", input.configName},
        {"server", input.vmServer},
        {"proxy", input.vmProxy},
        {"values", values},
        {"disks", disks},
        {"file", fileOf(draft, input)},
    };
}

void writeDraft(std::vector<std::string> words, const Session& session) {
    if (words.empty() || words.front().starts_with('-'))
        throw InfoFailure(InfoExit::USAGE, "draft needs the name of a client; see zorinfo draft --help");
    words.insert(words.begin(), "-C");
    B2VInput input;
    readInput(words, input);
    const TargetDraft draft = draftTarget(input);
    if (session.isJson())
        session.writeJson(documentOf(draft, input));
    else
        session.out() << fileOf(draft, input);
}

} // namespace

void addDraft(CLI::App& app, Session& session) {
    CLI::App* command =
        app.add_subcommand("draft", "Write a configuration file for a client: CLIENT OPTIONS.");
    takeOptionsOfZorb2v(*command);
    command->footer(HELP);
    command->callback([command, &session] { writeDraft(optionsOfZorb2v(*command, session), session); });
}

} // namespace Zorvane
