// SPDX-License-Identifier: Apache-2.0
#include "info/bundle/askedMembers.h"

#include "bundle/Bundle.h"
#include "bundle/documentNames.h"
#include "bundle/withinLimit.h"
#include "info/asks/TargetTree.h"
#include "info/asks/recoveryQueries.h"
#include "info/check/renderCheck.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "resources/clientConfiguration.h"

#include <sstream>

#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

std::string written(CZor& rows) {
    if (auto document = writtenRows(rows))
        return *std::move(document);
    throw InfoFailure(InfoExit::NOT_ASKED, "the answer can't be written as a document");
}

std::string askDocument(const std::string& client, const std::string& config) {
    CZor rows;
    requireAnswer(queryConfigRecord(rows, client, config), "the configurations of " + client);
    if (rows.m_vConfig.empty())
        throw InfoFailure(InfoExit::NOT_ASKED, "client " + client + " has no configuration " + config);
    requireAnswer(queryConfigTree(rows), "configuration " + config + " of " + client);
    return written(rows);
}

std::string askCheck(const std::vector<std::string>& words) {
    ConversionCheck check;
    check.arguments = words;
    checkConversion(check);
    return jsonText(documentOf(check));
}

// --- Names

std::string askRows() {
    CZor rows;
    const std::string all = ".Id > 0";
    for (const char* table : {CConfig::TableName, CP2VRestoreTask::TableName, CP2VRestoreTaskLog::TableName,
                              CVmwareProfileOptions::TableName, CDiskToDataStoreMap::TableName})
        requireAnswer(rows.queryRequest("*", table, table + all), "the names of clients and targets");
    return written(rows);
}

// A line for each name: the kind's number, a blank, the name.
class NameLines {
  public:
    void add(NameKind kind, const std::string& name) {
        m_text += std::to_string(static_cast<int>(kind)) + " " + name + "\n";
    }
    void addAll(NameKind kind, const std::vector<std::string>& names) {
        for (const std::string& name : names)
            add(kind, name);
    }
    void add(const TargetHost& host) {
        add(NameKind::Host, host.name);
        addAll(NameKind::Pool, host.pools);
        addAll(NameKind::Network, host.networks);
        for (const auto& [store, space] : host.stores)
            add(NameKind::Store, store);
        addAll(NameKind::Machine, host.machines);
    }
    void add(const TargetDataCenter& dataCenter) {
        add(NameKind::DataCenter, dataCenter.name);
        addAll(NameKind::Folder, dataCenter.folders);
        addAll(NameKind::Machine, dataCenter.machines);
        for (const TargetCluster& cluster : dataCenter.clusters)
            add(NameKind::Cluster, cluster.name);
        eachHost(dataCenter, [&](const TargetHost& host, const TargetCluster*) { add(host); });
    }
    [[nodiscard]] const std::string& text() const { return m_text; }

  private:
    std::string m_text;
};

std::string askInventory(const B2VInput& input) {
    NameLines names;
    const TargetServers known = askServers(input.masterServer);
    for (const auto& [server, type] : known.servers)
        names.add(NameKind::Host, server);
    names.addAll(NameKind::Host, known.proxies);
    if (!input.vmServer.empty() && !input.vmProxy.empty()) {
        TargetTree target = askTarget(input.vmServer, input.vmProxy, input.masterServer);
        TargetListings(target, input.masterServer).fillAll();
        for (const TargetDataCenter& dataCenter : target.dataCenters)
            names.add(dataCenter);
    }
    return names.text();
}

void learnLines(const std::string& text, Mask& mask) {
    std::istringstream lines(text);
    int kind = 0;
    for (std::string name; lines >> kind && std::getline(lines, name);)
        mask.learn(static_cast<NameKind>(kind), name);
}

} // namespace

void addDocument(Bundle& bundle, const BundleQuestions& questions) {
    if (questions.client.empty())
        return;
    const Outcome outcome =
        withinLimit(questions.limit, [&] { return askDocument(questions.client, questions.config); });
    if (outcome.isDone)
        bundle.add("client/configuration.xml", "the client's configuration, as the recovery database has it",
                   Form::Document, outcome.text);
    else
        bundle.miss("the client's configuration", outcome.text, true);
}

void addCheck(Bundle& bundle, const BundleQuestions& questions) {
    if (!questions.isChecked)
        return;
    const Outcome outcome = withinLimit(questions.limit, [&] { return askCheck(questions.words); });
    if (outcome.isDone)
        bundle.add("check.json", "what stands against the conversion (zorinfo check --json)", Form::Json,
                   outcome.text);
    else
        bundle.miss("the check of the conversion", outcome.text, true);
}

void learnInput(Bundle& bundle, const B2VInput& input) {
    Mask& mask = bundle.mask();
    mask.learn(NameKind::Client, input.clientName);
    for (const std::string& host : {input.masterServer, input.vmServer, input.vmProxy, input.esxHost})
        mask.learn(NameKind::Host, host);
    mask.learn(NameKind::Machine, input.vmDisplayName);
    mask.learn(NameKind::DataCenter, input.dataCenter);
    mask.learn(NameKind::Cluster, input.cluster);
    mask.learn(NameKind::Folder, input.vmFolder);
    mask.learn(NameKind::Pool, input.resourcePool);
    mask.learn(NameKind::Network, input.vmNetwork);
    mask.learn(NameKind::Profile, input.profileName);
    mask.learn(NameKind::Store, input.dataStore);
    mask.learn(NameKind::Store, input.toolsIsoPath);
    for (const DiskDataStoreEntry& entry : input.diskMap)
        mask.learn(NameKind::Store, entry.dataStoreName);
}

void learnFromDaemons(Bundle& bundle, const BundleQuestions& questions, const B2VInput& input) {
    const Outcome rows = withinLimit(questions.limit, askRows);
    if (rows.isDone)
        learnFrom(Form::Document, rows.text, bundle.mask());
    else
        bundle.missNames("the recovery database's names, for the mask", rows.text);
    const Outcome inventory = withinLimit(questions.limit, [&] { return askInventory(input); });
    if (inventory.isDone)
        learnLines(inventory.text, bundle.mask());
    else
        bundle.missNames("the inventory's names, for the mask", inventory.text);
}

} // namespace Zorvane
