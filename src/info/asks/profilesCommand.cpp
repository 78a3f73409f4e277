// SPDX-License-Identifier: Apache-2.0
// zorinfo profiles: the recorded targets, and what differs between two of them.
#include "info/asks/TextTable.h"
#include "info/asks/recoveryQueries.h"
#include "info/check/similarNames.h"
#include "info/layout/labels.h"
#include "info/subcommands.h"
#include "logging/Trace.h"
#include "model/task_records.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;
using Profile = CVmwareProfileOptions;
using Profiles = std::vector<Profile>;

// The words of the configuration file.
std::string formatWord(const Profile& profile) {
    switch (profile.getVdiskFormat()) {
    case VdiskFormat::THICK:
        return "ThickVdisk";
    case VdiskFormat::THIN:
        return "ThinVdisk";
    case VdiskFormat::THICK_LAZY:
        return "ThickLazy";
    default:
        return "";
    }
}

/// What a profile tells, under the name by which it is given: an option or a key of the configuration file.
struct ProfileField {
    const char* name;
    Json (*value)(const Profile&);
};

constexpr ProfileField FIELDS[] = {
    {"-vmserver", [](const Profile& profile) -> Json { return profile.getVCenterServer(); }},
    {"-vmproxy", [](const Profile& profile) -> Json { return profile.getVICName(); }},
    {"esxhost", [](const Profile& profile) -> Json { return profile.getEsxServer(); }},
    {"datacenter", [](const Profile& profile) -> Json { return profile.getDataCenter(); }},
    {"folder", [](const Profile& profile) -> Json { return profile.getFolder(); }},
    {"cluster", [](const Profile& profile) -> Json { return profile.getESXCluster(); }},
    {"resourcepool", [](const Profile& profile) -> Json { return profile.getResourcePool(); }},
    {"datastore", [](const Profile& profile) -> Json { return profile.getDataStore(); }},
    {"network", [](const Profile& profile) -> Json { return profile.getNetwork(); }},
    {"diskformat", [](const Profile& profile) -> Json { return formatWord(profile); }},
    {"toolsIsoPath", [](const Profile& profile) -> Json { return profile.getToolPath(); }},
    {"-O", [](const Profile& profile) -> Json { return profile.getOverwriteVM(); }},
    {"-vmpo", [](const Profile& profile) -> Json { return profile.getBootInstance(); }},
    {"-vmsn", [](const Profile& profile) -> Json { return profile.getStripeNwInterfaces(); }},
};

std::string textOf(const Json& value) {
    return value.is_boolean() ? (value.get<bool>() ? "yes" : "no") : value.get<std::string>();
}

Profiles allProfiles() {
    Profiles profiles = queryRows(&CZor::m_vVmwareProfileOptions, "", "the profiles");
    std::sort(profiles.begin(), profiles.end(), [](const Profile& first, const Profile& second) {
        return first.getProfileName() < second.getProfileName();
    });
    return profiles;
}

const Profile& find(const Profiles& profiles, const std::string& name) {
    std::vector<std::string> names;
    for (const Profile& profile : profiles) {
        if (StrCaseCmp(profile.getProfileName().c_str(), name.c_str()) == 0)
            return profile;
        names.push_back(profile.getProfileName());
    }
    throw InfoFailure(InfoExit::NOT_ASKED,
                      "there is no profile \"" + name + "\". " +
                          (names.empty() ? "There are no profiles at all." : suggestionFor(name, names)));
}

Json documentOf(const Profile& profile) {
    Json values = Json::object();
    for (const ProfileField& field : FIELDS)
        values[field.name] = field.value(profile);
    return {{"profile", profile.getProfileName()},
            {"hidden", profile.getHiddenProfile()},
            {"free", profile.getAvailableSize()},
            {"values", values}};
}

void list(const Session& session) {
    const Profiles profiles = allProfiles();
    if (session.isJson()) {
        Json documents = Json::array();
        for (const Profile& profile : profiles)
            documents.push_back(documentOf(profile));
        return session.writeJson({{"profiles", documents}});
    }
    if (profiles.empty()) {
        session.out() << "There are no profiles.\n";
        return;
    }
    TextTable table({"PROFILE", "SERVER", "ESX HOST", "DATA STORE"});
    for (const Profile& profile : profiles)
        table.add({profile.getProfileName(), profile.getVCenterServer(), profile.getEsxServer(),
                   profile.getDataStore()});
    table.write(session);
}

void show(const std::string& name, const Session& session) {
    const Profiles profiles = allProfiles();
    const Profile& profile = find(profiles, name);
    if (session.isJson())
        return session.writeJson({{"profiles", Json::array({documentOf(profile)})}});
    TextTable table({"PROFILE", profile.getProfileName()});
    for (const ProfileField& field : FIELDS)
        table.add({field.name, textOf(field.value(profile))});
    table.add({"hidden", profile.getHiddenProfile() ? "yes" : "no"});
    table.write(session);
}

// The name, the hiding and the room at that time are no part of the target.
void showDifferences(const std::string& firstName, const std::string& secondName, const Session& session) {
    const Profiles profiles = allProfiles();
    const Profile& first = find(profiles, firstName);
    const Profile& second = find(profiles, secondName);
    Json differences = Json::array();
    TextTable table({"", first.getProfileName(), second.getProfileName()});
    for (const ProfileField& field : FIELDS) {
        const Json one = field.value(first), other = field.value(second);
        if (one == other)
            continue;
        differences.push_back({{"name", field.name}, {"first", one}, {"second", other}});
        table.add({field.name, textOf(one), textOf(other)});
    }
    if (session.isJson())
        return session.writeJson({{"profiles", Json::array({documentOf(first), documentOf(second)})},
                                  {"differences", differences}});
    if (table.empty())
        session.out() << shown(first.getProfileName()) << " and " << shown(second.getProfileName())
                      << " have the same target.\n";
    else
        table.write(session);
}

} // namespace

void addProfiles(CLI::App& app, Session& session) {
    const auto names = std::make_shared<std::pair<std::string, std::string>>();
    CLI::App* command = app.add_subcommand("profiles", "List the recorded targets, show one, compare two.");
    CLI::App* showOne = command->add_subcommand("show", "Show all of a profile.");
    showOne->add_option("NAME", names->first, "the profile")->type_name("")->required();
    showOne->callback([names, &session] {
        ClassTrace trace(g_appLog, "profilesCommand:show()", ", name=", names->first);
        show(names->first, session);
    });
    CLI::App* diff = command->add_subcommand("diff", "Show what differs between two profiles.");
    diff->add_option("FIRST", names->first, "a profile")->type_name("")->required();
    diff->add_option("SECOND", names->second, "another")->type_name("")->required();
    diff->callback([names, &session] {
        ClassTrace trace(g_appLog, "profilesCommand:diff()", ", first=", names->first,
                         ", second=", names->second);
        showDifferences(names->first, names->second, session);
    });
    command->callback([command, &session] {
        ClassTrace trace(g_appLog, "profilesCommand:list()");
        if (command->get_subcommands().empty())
            list(session);
    });
}

} // namespace Zorvane
