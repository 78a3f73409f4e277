// SPDX-License-Identifier: Apache-2.0
#include "info/check/backups.h"

#include "model/core_records.h"
#include "ops/zorop.h"
#include "platform/fieldSplitting.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <sstream>

namespace Zorvane {

namespace {

constexpr std::int64_t TOLERATED_AGE = 86400; // a day: disks seldom change between a night and the next
constexpr const char* END_OF_TIME = "32535212400";
constexpr const char* WINDOWS_CLIENT_TYPE = "13";
constexpr std::size_t HEADER_LINES = 2;
constexpr unsigned POLICY_FIELD = 9;
constexpr std::size_t MOST_POLICIES = 10; // each costs a command a file

std::string field(const std::string& line, unsigned number) {
    std::string text;
    GetFieldFromLine(line, " ", number, text, true);
    return StripTrailingChar(text, '\r');
}

bool run(const std::string& command, std::vector<std::string>& lines) {
    std::stringstream output;
    std::string errorText;
    if (ZorOps(ZOROP_PREPARE, ZOROP_CLIENT, command, output, &errorText) != 0)
        return false;
    return Split(output.str(), "\n", lines) == 0 && !lines.empty();
}

std::string imageList(const std::string& nodeName) {
    return "kvnclimagelist -client " + nodeName + " -X -s 0 -X -e " + END_OF_TIME +
           " -t NOT_ARCHIVE -Listseconds -ct " + WINDOWS_CLIENT_TYPE;
}

struct Policy {
    std::string name;
    std::string newest; ///< the date of its newest image, as the catalogue writes it
};

std::vector<Policy> policiesOf(const std::vector<std::string>& images) {
    std::vector<Policy> policies;
    for (std::size_t i = HEADER_LINES; i < images.size() && policies.size() < MOST_POLICIES; ++i) {
        const std::string name = field(images[i], POLICY_FIELD);
        if (!name.empty() && std::none_of(policies.begin(), policies.end(),
                                          [&](const Policy& policy) { return policy.name == name; }))
            policies.push_back({name, field(images[i], 1) + " " + field(images[i], 2)});
    }
    return policies;
}

std::string holdersOf(const std::string& file, const std::string& nodeName,
                      const std::vector<Policy>& policies) {
    std::string holders;
    for (const Policy& policy : policies) {
        std::vector<std::string> files;
        if (run("kvnlist -E -C " + nodeName + " -k " + policy.name + " -t " + WINDOWS_CLIENT_TYPE +
                    " -X -s 0 -X -e " + END_OF_TIME + " -I \"" + file + "\"",
                files))
            holders += (holders.empty() ? "" : ", ") + std::string("policy ") + policy.name + " (newest of " +
                       policy.newest + ")";
    }
    return holders;
}

std::string dateText(std::int64_t seconds) {
    const auto ticks = static_cast<std::time_t>(seconds);
    std::tm fields{};
    char text[64] = "";
    if (::gmtime_r(&ticks, &fields))
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", &fields);
    return text;
}

void warnOfOldBackup(const std::string& nodeName, std::int64_t taken, Findings& findings) {
    std::vector<std::string> lines;
    if (taken == 0 || !run("kvnclimagelist -client " + nodeName + " -X -s 0 -ct " + WINDOWS_CLIENT_TYPE +
                               " -t NOT_ARCHIVE -likelydate",
                           lines))
        return;
    const std::string first = field(lines.front(), 1);
    std::int64_t newestFull = 0;
    const auto [end, error] = std::from_chars(first.data(), first.data() + first.size(), newestFull);
    if (error == std::errc() && newestFull > 0 && taken - newestFull > TOLERATED_AGE)
        findings.report({.kind = FindingKind::BACKUP_OLD,
                         .value = dateText(newestFull),
                         .hint = "The configuration is of " + dateText(taken) + "."});
}

} // namespace

void lookIntoBackups(const B2VInput& input, CollectedFindings& findings) {
    const CEsm* esm = input.clientConfig.m_vEsm.first();
    const CConfig* config = input.clientConfig.m_vConfig.first();
    std::vector<std::string> images;
    if (!esm || !config || !run(imageList(esm->getNodeName()), images))
        return;
    const std::vector<Policy> policies = policiesOf(images);
    for (Finding& finding : findings.all()) {
        if (finding.kind == FindingKind::BACKUP_NONE && !policies.empty())
            finding.hint = "The catalogue has backups of other policies or dates: the newest is of policy " +
                           policies.front().name + ", " + policies.front().newest +
                           "; the configuration names policy \"" + esm->getPolicy() + "\".";
        if (finding.kind != FindingKind::BACKUP_FILE)
            continue;
        const std::string holders = holdersOf(finding.value, esm->getNodeName(), policies);
        finding.hint = holders.empty()
                           ? "No backup of the client holds it. Run a full backup of all of the client."
                           : "It is in a backup of " + holders + ", but in none that a conversion takes: " +
                                 "it must be in a full one that is not newer than the configuration.";
    }
    if (!findings.has(FindingKind::BACKUP_FILE) && !findings.has(FindingKind::BACKUP_NONE))
        warnOfOldBackup(esm->getNodeName(), config->getRetrievalTime(), findings);
}

} // namespace Zorvane
