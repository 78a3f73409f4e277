// SPDX-License-Identifier: Apache-2.0
#include "info/check/renderCheck.h"

#include "info/Session.h"
#include "info/check/record.h"
#include "info/check/similarNames.h"
#include "info/explanations.h"
#include "info/layout/labels.h"
#include "info/paragraphs.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "platform/stringManipulation.h"
#include "suite/printable.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

struct SeverityWords {
    Severity severity;
    const char* word;
    const char* heading;
    const char* color;
};
constexpr SeverityWords SEVERITIES[] = {
    {Severity::BLOCKS, "blocks", "BLOCKS", color::BLOCKS},
    {Severity::WARNS, "warns", "WARNS", color::WARNS},
    {Severity::INFORMS, "informs", "INFORMS", color::INFORMS},
};

const char* wordOf(Severity severity) {
    return SEVERITIES[static_cast<std::size_t>(severity)].word;
}

std::string hintOf(const Finding& finding) {
    std::string hint = finding.hint;
    if (finding.kind == FindingKind::NAME_AMBIGUOUS)
        for (const std::string& path : finding.candidates)
            hint += (hint.empty() ? "Write one of \"" : ", \"") + path + "\"";
    else if (hint.empty())
        hint = suggestionFor(finding.value, finding.candidates);
    // The text of a message tells the way out itself.
    const Explanation& explanation = explanationOf(finding.kind);
    if (hint.empty() && !explanation.text.empty() && finding.kind != FindingKind::NOT_CHECKED)
        hint = explanation.remedy;
    return hint;
}

// Where the value that is to blame was set: "esxhost, line 4", "harddisk, lines 7, 8".
std::string placeOf(const Finding& finding) {
    std::string place = keyOf(finding);
    const char* word = finding.lines.size() == 1 ? "line " : "lines ";
    for (const int line : finding.lines)
        place += (place.empty() ? "" : ", ") + std::string(std::exchange(word, "")) + std::to_string(line);
    return place;
}

// All but the value, which stands in quotes where a text has it.
std::string textBesideValue(const Finding& finding) {
    std::string text = placeOf(finding) + "\n" + textOf(finding) + "\n" + hintOf(finding);
    if (!finding.value.empty())
        StrReplace(text, "\"" + finding.value + "\"", "\"\"", true);
    return text;
}

// --- Text

using Group = std::vector<const Finding*>;

// Findings one behind the other that differ in their values alone are told together.
std::vector<Group> groupsOf(const CollectedFindings& findings, Severity severity) {
    std::vector<Group> groups;
    for (const Finding& finding : findings.all()) {
        if (describe(finding.kind).severity != severity)
            continue;
        const Finding* last = groups.empty() ? nullptr : groups.back().front();
        if (last && last->kind == finding.kind && textBesideValue(*last) == textBesideValue(finding))
            groups.back().push_back(&finding);
        else
            groups.push_back({&finding});
    }
    return groups;
}

void writeGroup(std::ostream& out, const Group& group, std::size_t& number) {
    const Finding& first = *group.front();
    const FindingDescriptor& kind = describe(first.kind);
    const std::string place = placeOf(first);
    std::string head = rightAligned(std::to_string(number + 1), 3);
    number += group.size();
    if (group.size() > 1)
        head += "-" + std::to_string(number);
    head += std::string(". ") + kind.identifier + (place.empty() ? "" : " (" + place + ")");
    const std::string message = kind.message == 0 ? "" : "[" + std::to_string(kind.message) + "]";
    out << (message.empty() ? head : leftAligned(head, TERMINAL_WIDTH - 6) + message) << '\n';
    std::string others;
    for (std::size_t i = 1; i < group.size(); ++i)
        others += (i == 1 ? " So with \"" : ", \"") + group[i]->value + "\"";
    out << paragraph(textOf(first) + (others.empty() ? "" : others + "."), 5);
    if (const std::string hint = hintOf(first); !hint.empty())
        out << paragraph("> " + hint, 5, 7);
}

void writeSpace(std::ostream& out, const std::vector<StoreSpace>& space) {
    if (space.empty())
        return;
    std::size_t width = 10;
    for (const StoreSpace& line : space)
        width = std::max(width, terminalColumns(Suite::printable(line.store)));
    const auto row = [&](const std::string& store, const std::string& needed, const std::string& free,
                         const std::string& after) {
        out << "  " << leftAligned(store, width) << rightAligned(needed, 13) << rightAligned(free, 13)
            << rightAligned(after, 13) << '\n';
    };
    out << "\nSpace\n";
    row("data store", "needed", "free", "after");
    for (const StoreSpace& line : space)
        row(Suite::printable(line.store), megabytesText(line.needed),
            line.free ? megabytesText(*line.free) : "?",
            line.free ? megabytesText(*line.free - line.needed) : "?");
}

// Values stay as they are, and are never cut.
void writeRow(std::ostream& out, const TableDescriptor& table, const BaseTable& row) {
    for (const auto& [name, value] : recordedValues(table, row)) {
        out << "    " << leftAligned(name, 21) << Suite::printable(value);
        if (name == "AvailableSize") // of a data store that the file names it is asked for afterwards
            out << (value == "0" ? " (zorb2v records it before it asks for the free space)"
                                 : " (in MB; " + megabytesText(std::stoll(value)) + ")");
        out << '\n';
    }
}

void writeRecord(std::ostream& out, const ConversionCheck& check) {
    out << "\nWould be recorded\n";
    const CVmwareProfileOptions* profile = check.profile.m_vVmwareProfileOptions.first();
    if (profile) {
        out << "  profile\n";
        writeRow(out, CVmwareProfileOptions::table(), *profile);
    } else if (!check.input.profileName.empty()) {
        out << paragraph("profile \"" + check.input.profileName + "\", which exists, is used again", 2);
    }
    for (const CP2VRestoreTask* task : check.input.veRecords.m_vP2VRestoreTask) {
        out << "  task\n";
        if (task)
            writeRow(out, CP2VRestoreTask::table(), *task);
    }
    for (const CDiskToDataStoreMap* map : check.input.veRecords.m_vDiskToDataStoreMap)
        if (map)
            out << "  " << Suite::printable(map->getDiskName() + " to " + map->getDataStoreName()) << '\n';
}

std::vector<std::string> commandOf(const ConversionCheck& check) {
    std::vector<std::string> words = {"zorb2v"};
    words.insert(words.end(), check.arguments.begin(), check.arguments.end());
    return words;
}

// For a shell: as it stands where nothing in it means anything to one.
std::string shellWord(const std::string& word) {
    const bool isPlain =
        !word.empty() && word.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                "0123456789-_./:=@%+,") == std::string::npos;
    if (isPlain)
        return word;
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// An option and its value stay on one line; a long command goes on over several.
std::string commandText(const ConversionCheck& check) {
    std::string text, line = " ";
    const std::vector<std::string> words = commandOf(check);
    for (std::size_t i = 0; i < words.size();) {
        std::string piece = shellWord(words[i++]);
        while (i < words.size() && i > 1 && !words[i].starts_with('-'))
            piece += " " + shellWord(words[i++]);
        if (terminalColumns(line) + 1 + terminalColumns(piece) + 2 > TERMINAL_WIDTH &&
            line.find_first_not_of(' ') != std::string::npos) {
            text += line + " \\\n";
            line = "     ";
        }
        line += " " + piece;
    }
    return text + line + "\n";
}

std::string verdictOf(const ConversionCheck& check) {
    const Finding* first = check.findings.firstThatBlocks();
    if (!first)
        return "zorb2v would take this conversion.";
    const std::uint64_t message = describe(first->kind).message;
    const std::string told = message == 0 ? "no message of its own" : "message " + std::to_string(message);
    return std::string("zorb2v would refuse this conversion, with ") + told + " for " +
           describe(first->kind).identifier + ".";
}

// --- Document

Json documentOf(const Finding& finding) {
    const FindingDescriptor& kind = describe(finding.kind);
    const std::string key = keyOf(finding);
    Json document = {
        {"id", kind.identifier},
        {"severity", wordOf(kind.severity)},
        {"object", kind.object},
        {"value", finding.value},
        {"key", key.empty() ? Json() : Json(key)},
        {"line", finding.lines.empty() ? Json() : Json(finding.lines.front())},
        {"lines", finding.lines},
        {"number", kind.message},
        {"message", textOf(finding)},
        {"told", nullptr},
        {"hint", hintOf(finding)},
        {"candidates", finding.candidates},
        {"isUnanswered", finding.isUnanswered},
    };
    if (kind.severity == Severity::BLOCKS && kind.message != 0)
        document["told"] = catalogueText(kind.message, messageArguments(finding));
    return document;
}

Json rowDocument(const TableDescriptor& table, const BaseTable& row) {
    Json document = Json::object();
    for (const auto& [name, value] : recordedValues(table, row))
        document[name] = value;
    return document;
}

Json recordDocument(const ConversionCheck& check) {
    const CVmwareProfileOptions* profile = check.profile.m_vVmwareProfileOptions.first();
    Json tasks = Json::array(), disks = Json::array();
    for (const CP2VRestoreTask* task : check.input.veRecords.m_vP2VRestoreTask)
        if (task)
            tasks.push_back(rowDocument(CP2VRestoreTask::table(), *task));
    for (const CDiskToDataStoreMap* map : check.input.veRecords.m_vDiskToDataStoreMap)
        if (map)
            disks.push_back(rowDocument(CDiskToDataStoreMap::table(), *map));
    return {
        {"profile", profile ? rowDocument(CVmwareProfileOptions::table(), *profile) : Json()},
        {"usesProfile", profile ? Json() : Json(check.input.profileName)},
        {"task", tasks.empty() ? Json() : tasks.front()},
        {"disks", disks},
    };
}

} // namespace

int exitOf(const ConversionCheck& check) {
    if (!check.isBlocked())
        return static_cast<int>(InfoExit::CLEAR);
    return static_cast<int>(check.isUnanswered() ? InfoExit::NOT_ASKED : InfoExit::BLOCKED);
}

void writeCheck(const ConversionCheck& check, const Session& session) {
    std::ostream& out = session.out();
    out << Suite::printable("Client " + check.input.clientName + ", configuration " + check.input.configName)
        << '\n'
        << Suite::printable("to " + check.input.vmServer + " through " + check.input.vmProxy +
                            (check.file.empty() ? "" : ", by " + check.file))
        << '\n';
    for (const auto& [severity, word, heading, sgr] : SEVERITIES) {
        const std::size_t count = check.findings.count(severity);
        if (count == 0)
            continue;
        out << '\n' << session.colored(heading, sgr) << " (" << count << ")\n";
        std::size_t number = 0;
        for (const Group& group : groupsOf(check.findings, severity))
            writeGroup(out, group, number);
    }
    writeSpace(out, check.space);
    if (!check.isBlocked()) {
        writeRecord(out, check);
        out << "\nCommand\n" << commandText(check);
    }
    const std::string verdict = paragraph(verdictOf(check), 0);
    out << '\n'
        << session.colored(verdict.substr(0, verdict.size() - 1),
                           check.isBlocked() ? color::BLOCKS : color::FINE)
        << '\n';
}

Json documentOf(const ConversionCheck& check) {
    Json findings = Json::array(), space = Json::array();
    for (const Finding& finding : check.findings.all())
        findings.push_back(documentOf(finding));
    for (const StoreSpace& line : check.space)
        space.push_back({{"store", line.store},
                         {"needed", line.needed},
                         {"free", line.free ? Json(*line.free) : Json()},
                         {"after", line.free ? Json(*line.free - line.needed) : Json()}});
    const Finding* first = check.findings.firstThatBlocks();
    return {
        {"status", exitOf(check)},
        {"isBlocked", check.isBlocked()},
        {"first", first ? Json(describe(first->kind).identifier) : Json()},
        {"client", check.input.clientName},
        {"configuration", check.input.configName},
        {"server", check.input.vmServer},
        {"proxy", check.input.vmProxy},
        {"file", check.file},
        {"findings", findings},
        {"space", space},
        {"record", check.isBlocked() ? Json() : recordDocument(check)},
        {"command", commandOf(check)},
    };
}

} // namespace Zorvane
