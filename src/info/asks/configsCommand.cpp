// SPDX-License-Identifier: Apache-2.0
// zorinfo configs: the clients and their saved configurations.
#include "info/asks/TextTable.h"
#include "info/asks/recoveryQueries.h"
#include "info/layout/labels.h"
#include "info/subcommands.h"
#include "logging/Trace.h"
#include "model/core_records.h"
#include "resources/sqlConditions.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <tuple>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

struct ConfigsOptions {
    std::string client;
    bool isNames = false;
};

// Client by client, each with its newest configuration first.
std::vector<CConfig> configsOf(const std::string& client) {
    const std::string condition =
        client.empty() ? "" : equalsIgnoringCase(CConfig::Column::ClientName, client);
    std::vector<CConfig> configs =
        queryRows(&CZor::m_vConfig, condition,
                  client.empty() ? "the saved configurations" : "the saved configurations of " + client);
    if (configs.empty() && !client.empty())
        requireClient(client);
    std::sort(configs.begin(), configs.end(), [](const CConfig& a, const CConfig& b) {
        return std::make_tuple(a.getClientName(), b.getSaveTime(), a.getName()) <
               std::make_tuple(b.getClientName(), a.getSaveTime(), b.getName());
    });
    return configs;
}

// For shells, which complete words from it: a name a line, each once.
void writeNames(const std::vector<CConfig>& configs, bool ofClients, std::ostream& out) {
    std::vector<std::string> names;
    names.reserve(configs.size());
    for (const CConfig& config : configs)
        names.push_back(shown(ofClients ? config.getClientName() : config.getName()));
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    for (const std::string& name : names)
        out << name << '\n';
}

Json documentOf(const std::vector<CConfig>& configs) {
    Json clients = Json::array();
    for (const CConfig& config : configs) {
        if (clients.empty() || clients.back()["client"] != config.getClientName())
            clients.push_back({{"client", config.getClientName()}, {"configurations", Json::array()}});
        clients.back()["configurations"].push_back({
            {"configuration", config.getName()},
            {"kind", toName(config.getType())},
            {"saved", timestampText(config.getSaveTime())},
            {"version", config.getZorVersion()},
        });
    }
    return {{"clients", clients}};
}

void writeTable(const std::vector<CConfig>& configs, const Session& session) {
    if (configs.empty()) {
        session.out() << "No client has a saved configuration.\n";
        return;
    }
    TextTable table({"CLIENT", "CONFIGURATION", "SAVED", "KIND"});
    for (const CConfig& config : configs)
        table.add({config.getClientName(), config.getName(), minuteText(config.getSaveTime()),
                   wordsOf(toName(config.getType()))});
    table.write(session);
}

void run(const ConfigsOptions& options, const Session& session) {
    ClassTrace trace(g_appLog, "configsCommand:run()", ", client=", options.client);
    if (options.isNames && session.isJson())
        throw InfoFailure(InfoExit::USAGE, "--names and --json exclude each other");
    const std::vector<CConfig> configs = configsOf(options.client);
    if (options.isNames)
        writeNames(configs, options.client.empty(), session.out());
    else if (session.isJson())
        session.writeJson(documentOf(configs));
    else
        writeTable(configs, session);
}

} // namespace

void addConfigs(CLI::App& app, Session& session) {
    const auto options = std::make_shared<ConfigsOptions>();
    CLI::App* command = app.add_subcommand("configs", "List the clients and their saved configurations.");
    command->add_option("client", options->client, "the configurations of this client only")
        ->type_name("CLIENT");
    command->add_flag("--names", options->isNames,
                      "one client a line, or one configuration of CLIENT a line, and nothing else");
    command->callback([options, &session] { run(*options, session); });
}

} // namespace Zorvane
