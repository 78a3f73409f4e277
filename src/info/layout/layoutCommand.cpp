// SPDX-License-Identifier: Apache-2.0
// zorinfo layout: what lies on what in a client's storage.
#include "frontend/veconfig.h"
#include "info/Session.h"
#include "info/layout/renderers.h"
#include "info/subcommands.h"
#include "logging/Trace.h"
#include "resources/clientConfiguration.h"

#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace Zorvane {

namespace {

struct LayoutOptions {
    std::string client;
    std::string config = "current";
    std::string file;
    std::string veConfig;
    bool isSvg = false;
    bool isDot = false;
};

[[noreturn]] void giveUp(const std::string& text) {
    throw InfoFailure(InfoExit::NOT_ASKED, text);
}

void readClient(CZor& zor, const LayoutOptions& options) {
    if (queryConfigRecord(zor, options.client, options.config) != 0)
        giveUp("the recovery daemon did not tell the configurations of " + options.client +
               "; the log has the reason");
    if (zor.m_vConfig.empty())
        giveUp("client " + options.client + " has no configuration " + options.config +
               "; zorinfo configs lists what there is");
    if (queryConfigTree(zor) != 0)
        giveUp("the recovery daemon did not give configuration " + options.config + " of " + options.client +
               "; the log has the reason");
}

void readDocument(CZor& zor, std::string file) {
    if (::access(file.c_str(), R_OK) != 0)
        giveUp("can't read " + file);
    if (zor.readXml(file) != 0)
        giveUp(file + " is no configuration document; the log has the reason");
}

std::string reasonOf(const Finding& finding, const std::string& file) {
    if (finding.kind == FindingKind::FILE_NOT_OPENED)
        return file + " is no file that can be read";
    const std::string line = file + ", line " + std::to_string(finding.lines.front());
    if (finding.kind == FindingKind::DISK_WITHOUT_STORE)
        return line + ": harddisk=" + finding.value +
               " names no data store; a line is harddisk=NUMBER:DATASTORE";
    return line + " is not KEY=VALUE: " + finding.value;
}

void mapToTarget(Layout& layout, const std::string& file) {
    if (::access(file.c_str(), R_OK) != 0)
        giveUp("can't read " + file);
    B2VInput input;
    if (FirstFinding first; parseVEconfig(file, input, first) != 0)
        giveUp(first.finding() ? reasonOf(*first.finding(), file) : "can't read " + file);
    addTarget(layout, input);
}

void run(const LayoutOptions& options, const Session& session) {
    ClassTrace trace(g_appLog, "layoutCommand:run()", ", client=", options.client, ", file=", options.file);
    if (options.client.empty() == options.file.empty())
        throw InfoFailure(InfoExit::USAGE, "name a CLIENT, or a document with --file");
    if (session.isJson() && (options.isSvg || options.isDot))
        throw InfoFailure(InfoExit::USAGE, "--json, --svg and --dot exclude each other");
    CZor zor;
    if (options.file.empty())
        readClient(zor, options);
    else
        readDocument(zor, options.file);
    Layout layout = buildLayout(zor);
    if (!options.veConfig.empty())
        mapToTarget(layout, options.veConfig);
    if (options.isSvg)
        writeLayoutSvg(layout, session.out());
    else if (options.isDot)
        writeLayoutDot(layout, session.out());
    else if (session.isJson())
        session.writeJson(layoutDocument(layout));
    else
        writeLayoutTree(layout, session);
}

} // namespace

void addLayout(CLI::App& app, Session& session) {
    const auto options = std::make_shared<LayoutOptions>();
    CLI::App* layout = app.add_subcommand("layout", "Shows a client's storage, as a tree or as a picture.");
    layout->add_option("client", options->client, "the client")->type_name("CLIENT");
    layout->add_option("config", options->config, "its configuration; current if not given")
        ->type_name("CONFIG");
    layout->add_option("--file", options->file, "read a saved configuration document; no daemon is asked")
        ->type_name("DOCUMENT");
    layout
        ->add_option("--veconfig", options->veConfig,
                     "a configuration file: also show the data store of each disk, and the network")
        ->type_name("FILE");
    CLI::Option* svg = layout->add_flag("--svg", options->isSvg, "a drawing (SVG) on standard output");
    layout->add_flag("--dot", options->isDot, "a graph (Graphviz source) on standard output")->excludes(svg);
    layout->callback([options, &session] { run(*options, session); });
}

} // namespace Zorvane
