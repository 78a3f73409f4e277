// SPDX-License-Identifier: Apache-2.0
#include "lab/loadScenario.h"

#include "lab/LabError.h"
#include "lab/Store.h"
#include "lab/rows.h"
#include "lab/tomlFile.h"
#include "logging/CZorLog.h"
#include "logging/getMessage.h"
#include "platform/stringManipulation.h"
#include "suite/printable.h"
#include "suite/toml.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <sstream>

#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Words = std::vector<std::string>;
using Json = nlohmann::ordered_json;

// What scenarios build on: places of the default inventory, and the sample clients.
constexpr const char* CLIENT_DOMAIN = ".scenario.example";
constexpr const char* SAMPLE_DOMAIN = ".corp.example";
const Words NEEDED = {"-vmserver", "vcenter01.lab.example", "-vmproxy", "convhost01.lab.example"};
const Words TARGET = {
    "esxhost=esx01.lab.example", "datacenter=/Northgate", "folder=/Northgate/vm/Production",
    "resourcepool=Gold",         "network=VM Network",    "datastore=ng-san-01",
    "harddisk=0:ng-san-01",      "harddisk=1:ng-san-02",  "diskformat=ThinVdisk",
};

Words cut(std::string_view list) {
    Words items;
    std::istringstream stream{std::string(list)};
    for (std::string item; std::getline(stream, item, '|');)
        items.push_back(item);
    return items;
}

bool contains(const Words& words, const std::string& word) {
    return std::ranges::find(words, word) != words.end();
}

// A scenario in a lab: the names of what belongs to it, and its texts with them filled in.
class Prepared {
  public:
    Prepared(const LabDirectory& directory, const Scenario& scenario)
        : m_directory(directory),
          m_scenario(scenario),
          m_client(std::string(scenario.name) + CLIENT_DOMAIN),
          m_toolsPath("[ng-san-01] iso/" + std::string(scenario.name) + ".iso") {}

    [[nodiscard]] const Scenario& scenario() const { return m_scenario; }
    [[nodiscard]] const std::string& client() const { return m_client; }
    /// Of no other scenario, so that no two share a profile.
    [[nodiscard]] const std::string& toolsPath() const { return m_toolsPath; }
    [[nodiscard]] std::filesystem::path targetFile() const { return place(".conf"); }
    [[nodiscard]] std::filesystem::path configuration() const {
        return m_scenario.configuration == Scenario::Configuration::Lab ? m_directory.configuration()
                                                                        : place(".toml");
    }

    [[nodiscard]] Words arguments() const {
        Words pairs = {"-C", m_client};
        pairs.insert(pairs.end(), NEEDED.begin(), NEEDED.end());
        pairs.insert(pairs.end(), {"-veconfig", targetFile().string()});
        const Words without = cut(m_scenario.without);
        Words words;
        for (std::size_t i = 0; i < pairs.size(); i += 2)
            if (!contains(without, pairs[i]))
                words.insert(words.end(), {pairs[i], pairs[i + 1]});
        for (const std::string& option : filled(m_scenario.options))
            words.push_back(option);
        return words;
    }

    [[nodiscard]] std::string targetText() const {
        Words lines = TARGET;
        lines.insert(lines.begin(), {"name=" + std::string(m_scenario.name), "toolsIsoPath=" + m_toolsPath});
        const auto keyOf = [](const std::string& line) { return line.substr(0, line.find('=')); };
        const Words changes = cut(m_scenario.target);
        std::erase_if(lines, [&](const std::string& line) {
            return std::ranges::any_of(changes,
                                       [&](const auto& change) { return keyOf(change) == keyOf(line); });
        });
        std::string text;
        for (const std::string& line : lines)
            text += line + "\n";
        for (const std::string& change : changes)
            if (change.find('=') != std::string::npos)
                text += change + "\n";
        return text;
    }

    [[nodiscard]] Words serveOptions() const {
        Words words;
        for (const std::string& rule : cut(m_scenario.rules))
            words.insert(words.end(), {"--fail", rule});
        return words;
    }

    [[nodiscard]] std::string output() const {
        return m_scenario.told == 0 ? std::string() : messageText(m_scenario.told, {});
    }
    [[nodiscard]] std::string error() const {
        if (m_scenario.message == 0)
            return m_scenario.blankLine ? "\n" : "";
        return messageText(m_scenario.message, filled(m_scenario.parameters));
    }

  private:
    [[nodiscard]] std::filesystem::path place(const char* extension) const {
        return m_directory.path() / (std::string(m_scenario.name) + extension);
    }
    [[nodiscard]] Words filled(std::string_view list) const {
        Words words = cut(list);
        for (std::string& word : words) {
            StrReplace(word, "CLIENT", m_client, true);
            StrReplace(word, "FILE", targetFile().string(), true);
        }
        return words;
    }
    static std::string messageText(int number, const Words& parameters) {
        return getMessage(ZOR_COMMAND_ORIGINATOR, static_cast<std::uint64_t>(number), parameters) + "\n";
    }

    const LabDirectory& m_directory;
    const Scenario& m_scenario;
    std::string m_client;
    std::string m_toolsPath;
};

void check(const StoreResult& result) {
    if (!result.ok())
        throw LabError("the database refused the scenario's rows: " + Suite::printable(result.text));
}

// Deletes the rows that a request finds.
void remove(Store& store, const std::string& table, const std::string& where, ID tree = 0) {
    CZor request;
    request.m_vQueryRequest.push_back(new CQueryRequest);
    CQueryRequest& query = *request.m_vQueryRequest.front();
    query.setId(1);
    query.setTableClause(table);
    query.setColumnClause("*");
    query.setWhereClause(where);
    query.setTreeId(tree);
    const StoreResult found = store.query(writeDocument(request));
    check(found);
    CZor rows;
    RowAllowance everything(found.reply.max_size(), always, Wait::No);
    readDocument(
        found.reply, rows, [](const BaseTable&) { return true; }, everything);
    bool isEmpty = true;
    forEachRow(rows, [&](const TableDescriptor&, const BaseTable&) { isEmpty = false; });
    if (!isEmpty) // a commit waits for the disk
        check(store.del(found.reply));
}

void removeEarlierLoads(Store& store, const Prepared& prepared) {
    const auto is = [](const char* column, const std::string& value) {
        return std::string(column) + "=" + QuoteSqlLiteral(value);
    };
    for (const CConfig& config : store.configurations())
        if (config.getClientName() == prepared.client())
            remove(store, CConfig::TableName, "", config.getId());
    remove(store, CP2VRestoreTask::TableName, is("ClientName", prepared.client()));
    remove(store, CVmwareProfileOptions::TableName,
           is("ToolPath", prepared.toolsPath()) + " OR " + is("ProfileName", prepared.client()));
}

void loadClient(Store& store, const Prepared& prepared) {
    const std::string sample = std::string(prepared.scenario().base) + SAMPLE_DOMAIN;
    CZor rows;
    if (const StoreResult found = store.exportTree(sample, "", rows); !found.ok())
        throw LabError("scenarios are made from the sample clients, and this lab has no " + sample +
                       "; make a new one with: zorlab init DIR");
    rows.m_vConfig.front()->setClientName(prepared.client());
    if (prepared.scenario().change)
        prepared.scenario().change(rows);
    check(store.load(rows));
}

void write(const std::filesystem::path& file, const std::string& text) {
    std::ofstream out(file, std::ios::trunc);
    if (!(out << text).flush())
        throw LabError("cannot write " + file.string());
}

std::string withoutMaster(const LabDirectory& directory) {
    toml::table table = toml::parse_file(directory.configuration().string());
    table.insert_or_assign("master", toml::table{{"servers", toml::array{}}});
    return Suite::tomlText(table);
}

std::string shellLine(const Words& words) {
    constexpr const char* PLAIN = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_./:=@";
    std::string line;
    for (const std::string& word : words) {
        const bool isPlain = !word.empty() && word.find_first_not_of(PLAIN) == std::string::npos;
        line += (line.empty() ? "" : " ") + (isPlain ? word : ShellQuoteSingle(word));
    }
    return line;
}

Words with(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

// The text indented, as a quotation.
std::string quoted(const std::string& text) {
    std::istringstream lines(text);
    std::string all;
    for (std::string line; std::getline(lines, line);)
        all += "    " + line + "\n";
    return all;
}

std::string instructions(const LabDirectory& directory, const Prepared& prepared) {
    const Scenario& scenario = prepared.scenario();
    std::string text =
        std::string(scenario.name) + ": " + std::string(scenario.purpose) + "\n\nServe the lab:\n    " +
        shellLine(with({"zorlab", "serve", directory.path().string()}, prepared.serveOptions())) +
        "\nType elsewhere:\n    KVN_CONF=" + shellLine({prepared.configuration().string()}) + " \\\n    " +
        shellLine(with({"zorb2v"}, prepared.arguments())) + "\n\nExpected is status " +
        std::to_string(scenario.status);
    if (scenario.message != 0)
        text += ", and message " + std::to_string(scenario.message) + " on standard error:\n" +
                quoted(prepared.error());
    else
        text += std::string(" and ") + (scenario.blankLine ? "an empty line" : "nothing") +
                " on standard error.\n";
    // The usage page is long, and known.
    if (scenario.told != 0)
        text += "Message " + std::to_string(scenario.told) + " is on standard output.\n";
    if (scenario.logged != 0)
        text += "Message " + std::to_string(scenario.logged) + " is in " +
                (directory.logs() / "51216-433.log").string() + ".\n";
    return text;
}

Json description(const Scenario& scenario) {
    return {{"name", scenario.name},
            {"purpose", scenario.purpose},
            {"message", scenario.message},
            {"status", scenario.status}};
}

Json details(const LabDirectory& directory, const Prepared& prepared) {
    Json json = description(prepared.scenario());
    json["serve"] = prepared.serveOptions();
    json["environment"] = {{"KVN_CONF", prepared.configuration().string()}};
    json["arguments"] = prepared.arguments();
    json["out"] = prepared.output();
    json["err"] = prepared.error();
    if (prepared.scenario().logged != 0) {
        json["logged"] = prepared.scenario().logged;
        json["log"] = (directory.logs() / "51216-433.log").string();
    }
    return json;
}

std::string textOf(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace

std::string scenarioList(bool asJson) {
    if (asJson) {
        Json list = Json::array();
        for (const Scenario& scenario : allScenarios())
            list.push_back(description(scenario));
        return textOf(list);
    }
    std::ostringstream text;
    text << "MESSAGE  STATUS  " << std::left << std::setw(26) << "SCENARIO"
         << "WHAT HAPPENS\n";
    for (const Scenario& scenario : allScenarios())
        text << std::setw(9) << (scenario.message ? std::to_string(scenario.message) : "-") << std::setw(8)
             << scenario.status << std::setw(26) << scenario.name << scenario.purpose << "\n";
    return text.str();
}

std::string loadScenario(const LabDirectory& directory, const std::string& name, bool asJson) {
    const auto scenarios = allScenarios();
    const auto scenario = std::ranges::find(scenarios, std::string_view(name), &Scenario::name);
    if (scenario == scenarios.end())
        throw LabError("there is no scenario \"" + name + "\"; \"zorlab scenario\" lists all");
    if (!std::filesystem::exists(directory.configuration()))
        initLab(directory, {.quiet = true});
    directory.mustExist();
    // For the messages' texts, which are those that the lab's clients get.
    ::setenv("KVN_CONF", directory.configuration().c_str(), 1);
    const Prepared prepared(directory, *scenario);
    Store store(directory.database());
    removeEarlierLoads(store, prepared);
    loadClient(store, prepared);
    write(prepared.targetFile(), prepared.targetText());
    if (scenario->configuration == Scenario::Configuration::NoMaster)
        write(prepared.configuration(), withoutMaster(directory));
    return asJson ? textOf(details(directory, prepared)) : instructions(directory, prepared);
}

} // namespace Zorvane
