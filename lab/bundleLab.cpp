// SPDX-License-Identifier: Apache-2.0
#include "lab/bundleLab.h"

#include "bundle/Bundle.h"
#include "bundle/documentNames.h"
#include "bundle/machineFacts.h"
#include "bundle/siteFacts.h"
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

void learnDatabase(Mask& mask, const LabDirectory& directory) {
    Database database(directory.database());
    for (const TableDescriptor* table : allTables())
        for (const Field& field : table->fields)
            if (const auto kind = kindOfField(table->name, field.name)) {
                const std::string sql =
                    "SELECT DISTINCT " + quotedName(field.name) + " FROM " + table->tableName;
                Statement names = database.prepare(sql);
                while (names.step())
                    mask.learn(*kind, names.text(0));
            }
}

void addDatabase(Bundle& bundle, const LabDirectory& directory, const std::string& client,
                 const std::string& configuration) {
    tryTo(bundle, "the state of the database", [&] {
        bundle.add("lab/database.json",
                   "schema, integrity check, and the number of rows of each table that has some", Form::Json,
                   jsonText(databaseFacts(directory)));
    });
    tryTo(bundle, "the jobs", [&] {
        bundle.add("lab/jobs.txt", "submitted jobs and their states", Form::Text,
                   jobReport(Store(directory.database())));
    });
    if (!client.empty())
        tryTo(bundle, "the client's configuration", [&] {
            bundle.add("client/configuration.xml", "the client's configuration, as the database has it",
                       Form::Document,
                       exportConfiguration(Store(directory.database()), client, configuration));
        });
    if (bundle.options().isMasked)
        try {
            learnDatabase(bundle.mask(), directory);
        } catch (const std::exception& failure) {
            bundle.missNames("the database's names, for the mask", failure.what());
        }
}

} // namespace

void bundleLab(const LabDirectory& directory, const std::string& client, const std::string& configuration,
               Bundle& bundle) {
    directory.mustExist();
    bundle.mask().learn(NameKind::Client, client);
    bundle.mask().learn(NameKind::Name, configuration);
    addMachineFacts(bundle, {{"SQLite", ::sqlite3_libversion()}, {"CLI11", CLI11_VERSION}});
    addConfigurationFile(bundle, directory.configuration().string());
    bundle.addFile("lab/inventory.toml", "the virtualisation targets", Form::Toml,
                   directory.inventory().string());
    bundle.addFile("lab/catalogue.toml", "the backup catalogue", Form::Toml, directory.catalogue().string());
    addLogs(bundle, directory.logs().string());
    bundle.addEnd("logs/requests.log", "the last requests to the daemons (zorlab serve --trace)",
                  directory.requestLog().string());
    addDatabase(bundle, directory, client, configuration);
    bundle.write();
}

} // namespace Zorvane
