// SPDX-License-Identifier: Apache-2.0
// CB2VResource: whether the backup catalogue holds everything that a restore needs.
#include "logging/Trace.h"
#include "model/core_records.h"
#include "model/windows_records.h"
#include "ops/zorop.h"
#include "platform/fieldSplitting.h"
#include "platform/returnCodes.h"
#include "platform/stringManipulation.h"
#include "resources/CB2VResource.h"
#include "resources/backupCatalogue.h"
#include "resources/clientConfiguration.h"
#include "resources/wantedFiles.h"

#include <algorithm>
#include <sstream>

namespace Zorvane {

namespace {

// What a catalogue command says when the catalogue itself could not be consulted.
bool isCatalogueFailure(int status) {
    return status == 192 || status == 193 || status == 116;
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

std::string field(const std::string& line, unsigned number) {
    std::string text;
    GetFieldFromLine(line, " ", number, text, true);
    return text;
}

// Runs a catalogue command on the master server and returns its status.
int run(const std::string& command, std::string& output) {
    std::stringstream text;
    std::string errorText;
    const int status = ZorOps(ZOROP_PREPARE, ZOROP_CLIENT, command, text, &errorText);
    output = text.str();
    return status;
}

/// The search of one client's images for the wanted files. The lines of the last command's output are one
/// piece of state that every command overwrites while the walk goes on over them: the check has always
/// behaved so, and stays so. In practice the first image of a listing decides.
class ImageSearch {
  public:
    ImageSearch(Trace& trace, std::string nodeName, int clientType, std::vector<std::string> wanted)
        : m_trace(trace),
          m_nodeName(std::move(nodeName)),
          m_clientType(clientType),
          m_wanted(std::move(wanted)) {}

    /// Whether all wanted files were found in the images of a listing.
    bool walk(std::vector<std::string> listing) {
        m_lines = std::move(listing);
        for (std::size_t index = IMAGE_HEADER_LINES; index < m_lines.size(); ++index) {
            const std::string line = m_lines[index];
            m_trace.write(LEVEL_TRACE, "line = ", line);
            // No rule goes by the date; a line without one leaves its warning in the log.
            for (const unsigned unused : {IMAGE_DATE_FIELD, IMAGE_TIME_FIELD})
                (void)field(line, unused);
            const std::string scheduleType = field(line, IMAGE_SCHEDULE_TYPE_FIELD);
            std::string policy = field(line, IMAGE_POLICY_FIELD);
            if (contains(m_seenPolicies, policy))
                continue;
            for (const std::string& file : m_wanted)
                lookUp(file, scheduleType, policy);
            if (isComplete())
                return true;
            if (StrCaseCmp(scheduleType.c_str(), "full") == 0)
                m_seenPolicies.push_back(policy);
        }
        return false;
    }

    /// The wanted files that were not found.
    [[nodiscard]] std::vector<std::string> missing() const {
        std::vector<std::string> files;
        std::copy_if(m_wanted.begin(), m_wanted.end(), std::back_inserter(files),
                     [&](const std::string& file) { return isMissing(file); });
        return files;
    }

  private:
    void lookUp(const std::string& file, const std::string& scheduleType, std::string& policy) {
        m_trace.write(LEVEL_TRACE, "fileToFind = ", file);
        if (file == WANTED_FILES_END)
            return;
        // The client's own recovery data may come from any image, everything else only from a full one.
        const bool isRecoveryData = StrContainsSubstring(file, "zor", true) != 0;
        if (!isRecoveryData && !StrContainsSubstring(scheduleType, "full", false))
            return;
        if (contains(m_found, file))
            return;
        policy = StripTrailingChar(policy, '\r');
        const std::string images = "kvnclimagelist -client " + m_nodeName + " -policy " + policy + " -X -s ";
        const std::string byDate = " -ct " + std::to_string(m_clientType) + " -t NOT_ARCHIVE -likelydate";
        const std::string startDate = firstFieldOf(images + "0" + byDate);
        const std::string endDate = firstFieldOf(images + startDate + byDate);
        const int status = runToLines("kvnlist -E -C " + m_nodeName + " -k " + policy + " -t " +
                                          std::to_string(m_clientType) + " -X -s " + startDate + " -X -e " +
                                          endDate + " -I \"" + file + "\"",
                                      "output is:");
        if (status == 0)
            m_found.push_back(file);
    }

    // The first field of the first line; the command's status does not count.
    std::string firstFieldOf(const std::string& command) {
        runToLines(command, "cmd output is:");
        return m_lines.empty() ? std::string() : StripTrailingChar(field(m_lines.front(), 1), '\r');
    }

    int runToLines(const std::string& command, const char* heading) {
        std::string output;
        const int status = run(command, output);
        // An empty output is no text to split, and leaves the lines as they were.
        Split(output, "\n", m_lines);
        m_trace.write(LEVEL_TRACE, heading);
        for (const std::string& line : m_lines)
            m_trace.write(LEVEL_TRACE, line);
        return status;
    }

    bool isMissing(const std::string& file) const {
        return file != WANTED_FILES_END && !contains(m_found, file);
    }

    bool isComplete() const {
        return std::none_of(m_wanted.begin(), m_wanted.end(),
                            [&](const std::string& file) { return isMissing(file); });
    }

    Trace& m_trace;
    std::string m_nodeName;
    int m_clientType;
    std::vector<std::string> m_wanted;
    std::vector<std::string> m_found;
    std::vector<std::string> m_seenPolicies;
    std::vector<std::string> m_lines;
};

} // namespace

std::uint32_t CB2VResource::isFullBackupAvail(const B2VInput& input, const std::string& configName) {
    ClassTrace trace(g_appLog, "CB2VResource:CB2VResource::isFullBackupAvail()", ", configName=", configName);
    CZor zor;
    if (queryConfigRecord(zor, input.clientName, configName) != 0) {
        report({.kind = FindingKind::BACKUP_CONFIG, .value = configName, .isUnanswered = true});
        trace.write(LEVEL_FAILURE, "Failed to query database.");
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    if (!zor.m_vConfig.empty() && queryConfigTree(zor) != 0) {
        report({.kind = FindingKind::BACKUP_CONFIG, .value = configName, .isUnanswered = true});
        trace.write(LEVEL_FAILURE, "Failed to retrieve the zor config for client=", input.clientName);
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }
    if (zor.m_vConfig.empty() || zor.m_vEsm.empty()) {
        report({.kind = FindingKind::BACKUP_NODE, .value = input.clientName});
        trace.write(LEVEL_FAILURE, "Either no client configuration found or esm vector is empty.");
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }

    const CEsm& esm = *zor.m_vEsm.front();
    const std::string policy = esm.getPolicy();
    const long retrievalTime = zor.m_vConfig.front()->getRetrievalTime();
    const CSystem* system = zor.m_vSystem.first();
    const bool isWindows = system && system->getOs() == OsType::NT;
    int clientType = isWindows ? WINDOWS_CLIENT_TYPE : OTHER_CLIENT_TYPE;

    const std::string listing = "kvnclimagelist -client " + esm.getNodeName() +
                                (policy.empty() ? "" : " -policy " + policy) + " -X -s 0 -X -e " +
                                std::to_string(retrievalTime ? retrievalTime : CATALOGUE_END_OF_TIME) +
                                " -t NOT_ARCHIVE -Listseconds -ct ";
    trace.write(LEVEL_TRACE, "PolicyName= ", policy);
    std::string command = listing + std::to_string(clientType);
    trace.write(LEVEL_TRACE, "cmdToRun = ", command);
    std::string output;
    int status = run(command, output);
    if (status == STATUS_WRONG_CLIENT_TYPE) {
        clientType = isWindows ? OTHER_CLIENT_TYPE : WINDOWS_CLIENT_TYPE;
        command = listing + std::to_string(clientType);
        status = run(command, output);
    }
    if (status != 0) {
        const bool isUnavailable = isCatalogueFailure(status);
        report({.kind = isUnavailable ? FindingKind::CATALOGUE_UNAVAILABLE : FindingKind::BACKUP_LISTING,
                .value = esm.getNodeName(),
                .text = "The catalogue's command ended with status " + std::to_string(status) + ".",
                .isUnanswered = isUnavailable});
        trace.write(LEVEL_FAILURE, "'", command, "' failed, rc=", status);
        return trace.leave(static_cast<std::uint32_t>(status), ", return rc=", status);
    }

    std::vector<std::string> lines;
    Split(output, "\n", lines);
    trace.write(LEVEL_TRACE, "output is:");
    for (const std::string& line : lines)
        trace.write(LEVEL_TRACE, line);
    std::uint32_t result = 1;
    if (lines.size() > IMAGE_HEADER_LINES) {
        ImageSearch search(trace, esm.getNodeName(), clientType, wantedFiles(zor));
        if (search.walk(std::move(lines)))
            result = 0;
        for (const std::string& file : search.missing())
            if (!report({.kind = FindingKind::BACKUP_FILE, .value = file}))
                break;
    } else {
        report({.kind = FindingKind::BACKUP_NONE, .value = esm.getNodeName()});
    }
    return trace.leave(result, ", rc=", result);
}

} // namespace Zorvane
