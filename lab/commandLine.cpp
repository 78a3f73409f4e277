// SPDX-License-Identifier: Apache-2.0
#include "lab/commandLine.h"

#include "bundle/Bundle.h"
#include "bundle/NewFile.h"
#include "lab/LabDirectory.h"
#include "lab/LabError.h"
#include "lab/Store.h"
#include "lab/bundleLab.h"
#include "lab/capture.h"
#include "lab/configurationFiles.h"
#include "lab/jobReport.h"
#include "lab/loadScenario.h"
#include "lab/rows.h"
#include "lab/schema.h"
#include "lab/serveLab.h"
#include "lab/tablePage.h"
#include "lab/xmlSchema.h"
#include "suite/printable.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace Zorvane {

namespace {

constexpr int EXIT_FAILED = 1;
constexpr int EXIT_BAD_COMMAND_LINE = 2;
constexpr int EXIT_INCOMPLETE = 3;

constexpr double MAX_JOB_SECONDS = 86400;
constexpr std::int64_t LATEST_CLOCK = 4'102'444'800; ///< the year 2100

constexpr const char* EXITS =
    "Exit status: 0 done; 1 the command failed, and standard error says why; 2 the command "
    "line makes no sense; 3 a part of a bundle could not be had.";

// What all commands together take.
struct Options {
    std::string directory;
    InitOptions init;
    std::string samples;
    std::int64_t clock = 0;
    ServeOptions serve;
    std::vector<std::string> rules;
    double jobSeconds = 5;
    std::vector<std::string> files;
    std::string client;
    std::string configuration;
    std::string (*schema)() = nullptr;
    std::string scenario;
    bool json = false;
    BundleOptions bundle{.program = "zorlab", .version = ZOR_VERSION};
    int exit = 0;
};

CLI::App* addCommand(CLI::App& app, const char* name, const char* purpose, Options& options) {
    CLI::App* command = app.add_subcommand(name, purpose);
    command->add_option("DIR", options.directory, "the lab's directory")->required();
    command->footer(EXITS);
    return command;
}

// Empty, or what is wrong with the rule.
std::string ruleComplaint(const std::string& rule) {
    try {
        parseFailRule(rule);
        return {};
    } catch (const LabError& failure) {
        return failure.what();
    }
}

// A fixed time in place of the machine's.
CLI::Option* addClock(CLI::App* command, const char* purpose, Options& options) {
    return command->add_option("--clock", options.clock, std::string(purpose) + " (seconds since 1970)")
        ->check(CLI::Range(std::int64_t{1}, LATEST_CLOCK))
        ->type_name("EPOCH");
}

void addInit(CLI::App& app, Options& options) {
    CLI::App* command = addCommand(app, "init", "Make a lab directory with the sample clients.", options);
    command->add_flag("--force", options.init.force, "replace a lab that stands there");
    command
        ->add_option("--base-port", options.init.basePort,
                     "the first of three ports in a row; else three free ones")
        ->check(CLI::Range(1, 65533));
    command->add_option("--samples", options.samples, "load the documents (*.xml) of this folder instead");
    const std::map<std::string, EstateSize> sizes = {
        {"small", EstateSize::Small}, {"medium", EstateSize::Medium}, {"large", EstateSize::Large}};
    command
        ->add_option("--estate", options.init.estate.size,
                     "add clients and targets of that many: " + estateSizes())
        ->transform(CLI::CheckedTransformer(sizes).description(""))
        ->type_name("small|medium|large");
    command
        ->add_option("--seed", options.init.estate.seed, "what the estate's names and sizes are drawn from")
        ->capture_default_str();
    CLI::Option* clock =
        addClock(command, "when the estate's latest configurations were saved; else now", options);
    command->callback([&options, clock] {
        if (!options.samples.empty())
            options.init.samples = options.samples;
        if (clock->count() > 0)
            options.init.estate.clock = options.clock;
        initLab(LabDirectory(options.directory), options.init);
    });
}

void addServe(CLI::App& app, Options& options) {
    CLI::App* command = addCommand(app, "serve",
                                   "Serve the lab until SIGTERM or SIGINT. \"ready\" on standard output "
                                   "says that all ports listen.",
                                   options);
    command->add_option("--fail", options.rules, "let requests fail by this rule, see below; may be repeated")
        ->type_name("RULE")
        ->allow_extra_args(false)
        ->check(CLI::Validator(ruleComplaint, ""));
    command->add_option("--job-seconds", options.jobSeconds, "how long a job stands in each of its states")
        ->check(CLI::Range(0.0, MAX_JOB_SECONDS))
        ->capture_default_str();
    command
        ->add_option("--listen", options.serve.address,
                     "the address to listen on; mind that a lab asks nobody for a password")
        ->capture_default_str();
    command->add_flag("--trace", options.serve.trace, "write every request to DIR/requests.log");
    CLI::Option* clock = addClock(command, "the time at which jobs end; else that of the machine", options);
    command->footer("RULE is " + failRuleHelp() + "\n" + EXITS);
    command->callback([&options, clock] {
        if (clock->count() > 0)
            options.serve.clock = options.clock;
        for (const std::string& rule : options.rules)
            options.serve.failures.push_back(parseFailRule(rule));
        options.serve.pace = std::chrono::milliseconds(static_cast<std::int64_t>(options.jobSeconds * 1000));
        serveLab(LabDirectory(options.directory), options.serve);
    });
}

// A command on the database of a lab.
template <class Run>
void onStore(CLI::App* command, Options& options, Run run) {
    command->callback([&options, run] {
        const LabDirectory directory(options.directory);
        directory.mustExist();
        Store store(directory.database());
        run(store, options);
    });
}

void addDatabaseCommands(CLI::App& app, Options& options) {
    CLI::App* load = addCommand(app, "load", "Load clients' configurations, as new ones.", options);
    load->add_option("FILE", options.files, "the documents")->required();
    onStore(load, options, [](Store& store, const Options& given) {
        for (const std::string& file : given.files) {
            CZor rows;
            loadConfiguration(store, file, rows, std::cout);
        }
    });

    CLI::App* write =
        addCommand(app, "export", "Write a configuration's document on standard output.", options);
    write->add_option("CLIENT", options.client, "the client")->required();
    write->add_option("CONFIG", options.configuration, "the configuration; else the client's latest");
    onStore(write, options, [](Store& store, const Options& given) {
        std::cout << exportConfiguration(store, given.client, given.configuration);
    });

    CLI::App* jobs = addCommand(app, "jobs", "List the submitted jobs and their states.", options);
    onStore(jobs, options, [](Store& store, const Options&) { std::cout << jobReport(store); });
}

void addScenario(CLI::App& app, Options& options) {
    CLI::App* command =
        app.add_subcommand("scenario", "List the prepared scenarios, one for each message of zorb2v at "
                                       "least; or prepare one in a lab, and tell what to type and what "
                                       "must come of it.");
    command->footer(EXITS);
    CLI::Option* name = command->add_option("NAME", options.scenario, "the scenario");
    CLI::Option* directory =
        command->add_option("DIR", options.directory, "the lab's directory; made if there is none");
    name->needs(directory);
    command->add_flag("--json", options.json, "for programs");
    command->callback([&options] {
        std::cout << (options.scenario.empty()
                          ? scenarioList(options.json)
                          : loadScenario(LabDirectory(options.directory), options.scenario, options.json));
    });
}

void addSchema(CLI::App& app, Options& options) {
    CLI::App* command = app.add_subcommand("schema", "Describe the document and the database.");
    command->footer(EXITS);
    CLI::Option_group* form = command->add_option_group("form");
    const auto addForm = [&](const char* name, const char* purpose, std::string (*text)()) {
        const auto choose = [&options, text] { options.schema = text; };
        form->add_flag_callback(name, choose, purpose);
    };
    addForm("--xsd", "the document, as an XML Schema", &xmlSchema);
    addForm("--sql", "the database, as SQL statements", &schemaText);
    addForm("--md", "a reference page of all tables", &tablePage);
    form->require_option(1);
    command->callback([&options] { std::cout << options.schema(); });
}

void addCapture(CLI::App& app) {
    CLI::App* command =
        app.add_subcommand("capture", "Write the document of the Linux machine that this runs on on standard "
                                      "output, and on standard error what it has to leave out.");
    command->footer(EXITS);
    command->callback([] {
        CZor rows;
        for (const std::string& thing : captureMachine(askThisMachine(), rows))
            std::fprintf(stderr, "zorlab: left out: %s\n", Suite::printable(thing).c_str());
        const std::vector<unsigned char> document = writeDocument(rows);
        std::cout.write(reinterpret_cast<const char*>(document.data()),
                        static_cast<std::streamsize>(document.size()));
    });
}

void addBundle(CLI::App& app, Options& options) {
    CLI::App* command =
        addCommand(app, "bundle", "Gather what a support engineer needs in one archive.", options);
    CLI::Option* client =
        command->add_option("--client", options.client, "with the configuration document of this client");
    command
        ->add_option("--config", options.configuration, "that configuration of the client; else its latest")
        ->needs(client);
    command->add_option("--output", options.bundle.output, "the archive; else zorlab-bundle-TIME.tar.gz here")
        ->type_name("FILE");
    command->add_flag("--force", options.bundle.isReplacing, "replace the files that stand there");
    CLI::Option* mask = command->add_flag("--mask", options.bundle.isMasked,
                                          "stand-ins for the names and addresses of the lab");
    command->add_option("--legend", options.bundle.legend, "write what the stand-ins stand for to this file")
        ->type_name("FILE")
        ->needs(mask);
    command->callback([&options] {
        Bundle bundle(options.bundle);
        bundleLab(LabDirectory(options.directory), options.client, options.configuration, bundle);
        std::cout << bundle.report();
        if (bundle.hasFailures())
            options.exit = EXIT_INCOMPLETE;
    });
}

} // namespace

int runZorlab(int argc, char** argv) {
    Options options;
    CLI::App app(
        "Plays the recovery daemons, the request daemon and the backup catalogue of a suite on one machine, "
        "for demos, rehearsal, training and tests. It is no recovery product.",
        "zorlab");
    app.footer(EXITS);
    addInit(app, options);
    addServe(app, options);
    addDatabaseCommands(app, options);
    addSchema(app, options);
    addScenario(app, options);
    addCapture(app);
    addBundle(app, options);
    try {
        app.parse(argc, argv);
        // Not left to the library, which would complain of a mistyped command without its name.
        if (app.get_subcommands().empty())
            throw CLI::RequiredError(
                "A command (init, serve, load, export, jobs, scenario, schema, capture or bundle)");
        std::cout.flush();
        if (!std::cout)
            throw LabError("standard output can't be written");
        return options.exit;
    } catch (const CLI::ParseError& failure) {
        return app.exit(failure) == 0 ? 0 : EXIT_BAD_COMMAND_LINE;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "zorlab: %s\n", Suite::printable(failure.what()).c_str());
        return EXIT_FAILED;
    }
}

} // namespace Zorvane
