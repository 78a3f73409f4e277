// SPDX-License-Identifier: Apache-2.0
// zorinfo bundle: what a support engineer needs, in one archive.
#include "bundle/Bundle.h"
#include "bundle/NewFile.h"
#include "bundle/machineFacts.h"
#include "bundle/siteFacts.h"
#include "frontend/CZorb2vCommandLine.h"
#include "info/Session.h"
#include "info/bundle/askedMembers.h"
#include "info/check/CollectedFindings.h"
#include "info/passedOptions.h"
#include "info/subcommands.h"
#include "logging/Trace.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* HELP = "With options of zorb2v behind it, what stands against that conversion, its "
                             "client's configuration and the file "
                             "that -veconfig names are in the archive, too.\n"
                             "Exit status: 0 the archive is written; 2 wrong usage; 3 it can't be written, "
                             "or a "
                             "part of it could not be had, such as the answer of a daemon; its README.txt "
                             "tells which.";

constexpr int LONGEST_WAIT = 3600;

struct BundleCommand {
    BundleOptions bundle{.program = "zorinfo", .version = ZOR_VERSION};
    std::string client;
    std::string config;
    int limit = 20;
};

// The options and the target's file as zorb2v takes them, whatever it would say to them.
struct Conversion {
    B2VInput input;
    std::string file;
    std::string ignored; ///< the first word that zorb2v would make nothing of
};

Conversion conversionOf(const std::vector<std::string>& words) {
    Conversion conversion;
    CollectedFindings findings;
    CZorb2vCommandLine commandLine(findings);
    commandLine.initializeDefaults(conversion.input);
    commandLine.parseArguments(words, conversion.input);
    conversion.file = commandLine.veConfigFile();
    for (const Finding& finding : findings.all())
        if (finding.kind == FindingKind::WORD_IGNORED && conversion.ignored.empty())
            conversion.ignored = finding.value;
    return conversion;
}

BundleQuestions questionsOf(const BundleCommand& command, const std::vector<std::string>& words,
                            const B2VInput& input) {
    BundleQuestions questions{.client = command.client.empty() ? input.clientName : command.client,
                              .config = command.config,
                              .words = words,
                              .limit = std::chrono::seconds(command.limit)};
    if (questions.config.empty())
        questions.config = input.configName.empty() ? "current" : input.configName;
    questions.isChecked =
        !input.clientName.empty() || !input.vmServer.empty() || !input.vmProxy.empty() || input.guiJob;
    if (questions.isChecked && input.clientName.empty() && !questions.client.empty())
        questions.words.insert(questions.words.begin(),
                               {"-C", questions.client, "-config", questions.config});
    return questions;
}

void gather(Bundle& bundle, const BundleQuestions& questions, const Conversion& conversion) {
    addMachineFacts(bundle, {{"CLI11", CLI11_VERSION}});
    // First the logs: at a high level the questions below write more of them than the archive takes.
    addSite(bundle);
    bundle.mask().learn(NameKind::Client, questions.client);
    learnInput(bundle, conversion.input);
    if (!conversion.file.empty()) {
        bundle.mask().learn(NameKind::Folder, conversion.file);
        bundle.addFile("target.conf", "the file behind -veconfig", Form::Text, conversion.file);
    }
    addServers(bundle, std::min(questions.limit, std::chrono::seconds(5)));
    addDocument(bundle, questions);
    addCheck(bundle, questions);
    if (bundle.options().isMasked)
        learnFromDaemons(bundle, questions, conversion.input);
}

Json documentOf(const Bundle& bundle) {
    const BundleOptions& options = bundle.options();
    Json members = Json::array(), missing = Json::array();
    for (const BundleMember& member : bundle.members())
        members.push_back({{"path", member.path}, {"size", member.text.size()}, {"what", member.what}});
    for (const MissingMember& each : bundle.missing())
        missing.push_back({{"what", each.what}, {"why", each.why}});
    return {
        {"archive", options.output},    {"size", bundle.size()},
        {"isMasked", options.isMasked}, {"legend", options.legend.empty() ? Json() : Json(options.legend)},
        {"members", members},           {"missing", missing}};
}

void run(const BundleCommand& command, const std::vector<std::string>& words, Session& session) {
    ClassTrace trace(g_appLog, "bundleCommand:run()", ", client=", command.client);
    const auto unknown =
        std::ranges::find_if(words, [](const std::string& word) { return word.starts_with("--"); });
    if (unknown != words.end())
        throw InfoFailure(InfoExit::USAGE, "there is no option " + *unknown + "; see zorinfo bundle --help");
    try {
        Bundle bundle(command.bundle);
        const Conversion conversion = conversionOf(words);
        const BundleQuestions questions = questionsOf(command, words, conversion.input);
        // In a check it is a finding.
        if (!questions.isChecked && !conversion.ignored.empty())
            throw InfoFailure(InfoExit::USAGE,
                              "\"" + conversion.ignored + "\" is no option; see zorinfo bundle --help");
        gather(bundle, questions, conversion);
        bundle.write();
        if (session.isJson())
            session.writeJson(documentOf(bundle));
        else
            session.out() << bundle.report();
        if (bundle.hasFailures())
            session.m_exit = InfoExit::NOT_ASKED;
    } catch (const BundleFailure& failure) {
        throw InfoFailure(InfoExit::NOT_ASKED, failure.what());
    }
}

} // namespace

void addBundle(CLI::App& app, Session& session) {
    const auto options = std::make_shared<BundleCommand>();
    CLI::App* command =
        app.add_subcommand("bundle", "Gather what a support engineer needs in one archive: OPTIONS.");
    command->set_help_flag("--help", "this text"); // "-h" is an option of zorb2v
    command->fallthrough(false);
    command->allow_extras();
    command->footer(HELP);
    command->add_option("--client", options->client, "with the configuration document of this client");
    command->add_option("--config", options->config,
                        "that configuration of the client; current if not given");
    command
        ->add_option("--output", options->bundle.output, "the archive; else zorinfo-bundle-TIME.tar.gz here")
        ->type_name("FILE");
    command->add_flag("--force", options->bundle.isReplacing, "replace the files that stand there");
    CLI::Option* mask = command->add_flag("--mask", options->bundle.isMasked,
                                          "stand-ins for the names and addresses of the site");
    command->add_option("--legend", options->bundle.legend, "write what the stand-ins stand for to this file")
        ->type_name("FILE")
        ->needs(mask);
    command->add_option("--limit", options->limit, "how long to wait for each answer of a daemon")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, LONGEST_WAIT))
        ->capture_default_str();
    command->callback(
        [options, command, &session] { run(*options, optionsOfZorb2v(*command, session), session); });
}

} // namespace Zorvane
