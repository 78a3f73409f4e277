// SPDX-License-Identifier: Apache-2.0
#include "info/Session.h"
#include "info/asks/recoveryQueries.h"
#include "info/check/renderCheck.h"
#include "info/draft/TargetDraft.h"
#include "info/explanations.h"
#include "info/passedOptions.h"
#include "info/subcommands.h"
#include "resources/CB2VResource.h"
#include "suite/descriptor.h"

#include <cerrno>
#include <cstring>
#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <sys/mman.h>
#include <unistd.h>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* HELP =
    "OPTIONS are those of zorb2v that a target depends on: -vmserver NAME and "
    "-vmproxy HOST; if wanted -config "
    "NAME, -S SERVER, -systemOnly and -vmsn. The file goes to standard output:\n"
    "  zorinfo draft alpha -vmserver vc1 -vmproxy backup1 >alpha.conf\n"
    "Exit status: 0 zorb2v would take it; 1 the client can't be converted, no host has "
    "room, or something else blocks, which is told; 2 wrong usage; 3 could not ask, or "
    "a name is not known.";

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
    if (findings.has(FindingKind::CONFIG_UNKNOWN))
        requireClient(input.clientName);
    requireNothingBlocks(findings, InfoExit::NOT_ASKED);
    CB2VResource resource;
    resource.reportTo(findings);
    resource.isClientSupported(input.clientConfig);
    requireNothingBlocks(findings, InfoExit::BLOCKED);
}

// What a conversion to the drafted target would meet. The file is one that has no name.
void checkDraft(ConversionCheck& check, const std::string& text) {
    const Suite::Descriptor file(::memfd_create("draft", MFD_CLOEXEC));
    if (!file.isOpen() || ::write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw InfoFailure(InfoExit::NOT_ASKED,
                          std::string("the draft can't be held for its check: ") + std::strerror(errno));
    // In front: of an option that stands twice the first one counts.
    check.arguments.insert(check.arguments.begin(),
                           {"-veconfig", "/proc/self/fd/" + std::to_string(file.get())});
    checkConversion(check);
}

std::vector<const Finding*> whatBlocks(const ConversionCheck& check) {
    std::vector<const Finding*> blocking;
    for (const Finding& finding : check.findings.all())
        if (describe(finding.kind).severity == Severity::BLOCKS)
            blocking.push_back(&finding);
    return blocking;
}

Json documentOf(const TargetDraft& draft, const B2VInput& input, const ConversionCheck& check) {
    Json values = Json::object(), disks = Json::array(), unanswered = Json::array(), blocks = Json::array();
    for (const DraftValue& value : draft.values)
        if (!value.value.empty())
            values[value.key] = value.value;
    for (const PlacedDisk& placed : draft.disks)
        disks.push_back({{"disk", placed.disk.name}, {"size", placed.disk.size}, {"store", placed.store}});
    for (const UnansweredListing& listing : draft.unanswered)
        unanswered.push_back({{"what", listing.what}, {"place", listing.place}, {"status", listing.status}});
    for (const Finding* finding : whatBlocks(check))
        blocks.push_back({{"id", describe(finding->kind).identifier}, {"message", textOf(*finding)}});
    return {
        {"client", input.clientName},
        {"configuration", input.configName},
        {"server", input.vmServer},
        {"proxy", input.vmProxy},
        {"values", values},
        {"disks", disks},
        {"unanswered", unanswered},
        {"blocks", blocks},
        {"file", fileOf(draft, input)},
    };
}

void writeDraft(std::vector<std::string> words, Session& session) {
    if (words.empty() || words.front().starts_with('-'))
        throw InfoFailure(InfoExit::USAGE, "draft needs the name of a client; see zorinfo draft --help");
    words.insert(words.begin(), "-C");
    B2VInput input;
    readInput(words, input);
    const TargetDraft draft = draftTarget(input);
    const std::string text = fileOf(draft, input);
    ConversionCheck check;
    check.arguments = words;
    checkDraft(check, text);
    session.m_exit = static_cast<InfoExit>(exitOf(check));
    if (session.isJson())
        return session.writeJson(documentOf(draft, input, check));
    session.out() << text;
    for (const UnansweredListing& listing : draft.unanswered)
        session.warn(textOf(listing) + ": that host is left out");
    if (check.isBlocked())
        session.warn("zorb2v would refuse a conversion to this target:");
    for (const Finding* finding : whatBlocks(check))
        session.warn(std::string(describe(finding->kind).identifier) + ": " + textOf(*finding));
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
