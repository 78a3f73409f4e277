// SPDX-License-Identifier: Apache-2.0
#include "lab/bundleLab.h"

#include "bundle/Bundle.h"
#include "bundle/machineFacts.h"
#include "bundle/siteFacts.h"
#include "lab/Catalogue.h"
#include "lab/Inventory.h"
#include "lab/LabDirectory.h"
#include "lab/Store.h"
#include "lab/configurationFiles.h"
#include "lab/jobReport.h"
#include "lab/schema.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

// A part that can't be had must not keep the others from the archive.
template <class Gather>
void tryTo(Bundle& bundle, const std::string& what, const Gather& gather) {
    try {
        gather();
    } catch (const std::exception& failure) {
        bundle.miss(what, failure.what(), true);
    }
}

Json databaseFacts(const LabDirectory& directory) {
    Database database(directory.database());
    const auto one = [&](const std::string& sql) {
        Statement statement = database.prepare(sql);
        return statement.step() ? statement.integer(0) : 0;
    };
    const std::string pragma = std::string("PRAGMA ") + DATABASE_SCHEMA + ".";
    Json integrity = Json::array(), rows = Json::object();
    Statement check = database.prepare(pragma + "integrity_check");
    while (check.step())
        integrity.push_back(check.text(0));
    for (const TableDescriptor* table : allTables())
        if (const auto count = one(std::string("SELECT count(*) FROM ") + table->tableName))
            rows[table->name] = count;
    return {{"schemaVersion", one(pragma + "user_version")},
            {"bytes", one(pragma + "page_count") * one(pragma + "page_size")},
            {"integrity", integrity},
            {"submittedJobs", one(std::string("SELECT count(*) FROM ") + SUBMITTED_JOBS)},
            {"rows", rows}};
}

void addDatabase(Bundle& bundle, const LabDirectory& directory) {
    tryTo(bundle, "the state of the database", [&] {
        bundle.add("lab/database.json",
                   "schema, integrity check, and the number of rows of each table that has some", Form::Json,
                   jsonText(databaseFacts(directory)));
    });
}

void learnInventory(Mask& mask, const Inventory& inventory) {
    const auto all = [&](NameKind kind, const std::vector<std::string>& names) {
        for (const std::string& name : names)
            mask.learn(kind, name);
    };
    all(NameKind::Host, inventory.proxies);
    for (const InventoryServer& server : inventory.servers) {
        mask.learn(NameKind::Host, server.name);
        for (const InventoryDataCenter& dataCenter : server.dataCenters) {
            mask.learn(NameKind::DataCenter, dataCenter.name);
            all(NameKind::Folder, dataCenter.folders);
            for (const InventoryHost& host : dataCenter.hosts) {
                mask.learn(NameKind::Host, host.name);
                mask.learn(NameKind::Cluster, host.cluster);
                all(NameKind::Pool, host.pools);
                all(NameKind::Network, host.networks);
                all(NameKind::Machine, host.machines);
                for (const InventoryStore& store : host.stores) {
                    mask.learn(NameKind::Store, store.name);
                    mask.learn(NameKind::Store, store.pod);
                }
            }
        }
    }
}

void learnLab(Bundle& bundle, const LabDirectory& directory, const Store& store) {
    Mask& mask = bundle.mask();
    for (const CConfig& config : store.configurations())
        mask.learn(NameKind::Client, config.getClientName());
    const auto learnTasks = [&](const auto& tasks) {
        for (const auto& task : tasks) {
            mask.learn(NameKind::Client, task.getClientName());
            mask.learn(NameKind::Machine, task.getVmName());
            mask.learn(NameKind::Profile, task.getProfileName());
        }
    };
    learnTasks(store.tasks());
    learnTasks(store.taskLogs());
    for (const CatalogueClient& client : readCatalogue(directory.catalogue()).clients)
        mask.learn(NameKind::Client, client.name);
    learnInventory(mask, readInventory(directory.inventory()));
}

void addRows(Bundle& bundle, const LabDirectory& directory, const std::string& client,
             const std::string& configuration) {
    tryTo(bundle, "the jobs", [&] {
        const Store store(directory.database());
        if (bundle.options().isMasked)
            tryTo(bundle, "names for the mask", [&] { learnLab(bundle, directory, store); });
        bundle.add("lab/jobs.txt", "submitted jobs and their states", Form::Text, jobReport(store));
        if (client.empty())
            return;
        const std::string config = configuration.empty() ? "latest" : configuration;
        const std::string what = "configuration " + config + " of client " + client;
        bundle.mask().learn(NameKind::Client, client);
        tryTo(bundle, what, [&] {
            bundle.add("client/" + pathPart(client) + "/" + pathPart(config) + ".xml", what, Form::Document,
                       exportConfiguration(store, client, configuration));
        });
    });
}

} // namespace

void bundleLab(const LabDirectory& directory, const std::string& client, const std::string& configuration,
               Bundle& bundle) {
    directory.mustExist();
    addMachineFacts(bundle, {{"SQLite", ::sqlite3_libversion()}, {"CLI11", CLI11_VERSION}}, {});
    addConfigurationFile(bundle, directory.configuration().string());
    bundle.addFile("lab/inventory.toml", "the virtualisation targets", Form::Toml,
                   directory.inventory().string());
    bundle.addFile("lab/catalogue.toml", "the backup catalogue", Form::Toml, directory.catalogue().string());
    addLogs(bundle, directory.logs().string());
    bundle.addEnd("logs/requests.log", "the last requests to the daemons (zorlab serve --trace)",
                  directory.requestLog().string());
    addDatabase(bundle, directory);
    addRows(bundle, directory, client, configuration);
    bundle.write();
}

} // namespace Zorvane
