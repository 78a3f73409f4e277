// SPDX-License-Identifier: Apache-2.0
#include "info/explainedSubjects.h"

#include "bundle/utf8.h"
#include "info/paragraphs.h"

#include <algorithm>
#include <charconv>
#include <ostream>
#include <utility>

namespace Zorvane {

namespace {

// A message with its places as they are, but for the usage page, which is too long for a quotation.
std::string messageText(std::uint64_t number, std::uint64_t originator) {
    const std::vector<std::string> places(5, "%s");
    const std::string text = catalogueText(number, places, originator);
    return text.substr(0, text.find('\n'));
}

std::uint64_t numberOf(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

} // namespace

Subject subjectOf(const std::string& name, const Explanation& explanation) {
    Subject subject{name.substr(name.find(':') + 1), explanation, std::string(explanation.text), {}};
    const std::uint64_t number = numberOf(subject.name);
    const std::uint64_t originator = explanation.originator();
    for (const FindingDescriptor& finding : allFindings()) {
        const bool isIt = number != 0 ? finding.message == number && originator == ZOR_COMMAND_ORIGINATOR
                                      : name == finding.identifier;
        const bool isNew =
            std::none_of(subject.findings.begin(), subject.findings.end(), [&](const auto* other) {
                return std::string_view(other->identifier) == finding.identifier;
            });
        if (isIt && isNew)
            subject.findings.push_back(&finding);
    }
    if (subject.text.empty())
        subject.text = messageText(number != 0 ? number : subject.findings.front()->message, originator);
    return subject;
}

std::vector<Subject> allSubjects() {
    std::vector<Subject> subjects;
    for (const Explanation& explanation : allExplanations())
        if (explanation.isOfMessage())
            subjects.push_back(subjectOf(std::string(explanation.subject), explanation));
    std::string_view last;
    for (const FindingDescriptor& finding : allFindings())
        if (const Explanation* explanation = findExplanation(finding.identifier);
            explanation && last != finding.identifier) {
            last = finding.identifier;
            subjects.push_back(subjectOf(finding.identifier, *explanation));
        }
    return subjects;
}

const char* severityOf(const FindingDescriptor& finding) {
    constexpr const char* WORDS[] = {"blocks", "warns", "informs"};
    return WORDS[static_cast<std::size_t>(finding.severity)];
}

std::string findingList(const Subject& subject) {
    std::string list;
    for (const FindingDescriptor* finding : subject.findings)
        list += (list.empty() ? "" : ", ") + std::string(finding->identifier);
    return list;
}

bool isMessage(const Subject& subject) {
    return numberOf(subject.name) != 0;
}

bool isShared(const Subject& subject) {
    return isMessage(subject) && subject.explanation.originator() == ZOR_LIBRARY_ORIGINATOR;
}

namespace {

std::string_view headingOf(const Subject& subject) {
    return isShared(subject)    ? "Messages of the shared code (set 128)"
           : isMessage(subject) ? "Messages of the command (set 433)"
                                : "Findings";
}

// A sentence a line, where it has room.
void writeManualText(std::ostream& out, std::string_view text) {
    const std::string escaped = replaced(text, " -", " \\-") + " ";
    for (std::size_t at = 0, end = 0; (end = escaped.find(". ", at)) != escaped.npos; at = end + 2)
        out << paragraph(std::string_view(escaped).substr(at, end + 1 - at), 0);
}

} // namespace

void writeMessagesPage(std::ostream& out) {
    out << "# Messages and findings\n\n"
           "The messages of `zorb2v` and of the code that it shares with others, by their numbers, and the "
           "findings of\n`zorinfo check` by their identifiers. `%s` stands for a name. This page is made by "
           "`zorinfo explain --md`; its\nsource is `src/info/explanations.def`.\n";
    std::string_view last;
    for (const Subject& subject : allSubjects()) {
        const std::string_view heading = headingOf(subject);
        if (heading != std::exchange(last, heading))
            out << "\n## " << heading << "\n";
        out << "\n### " << subject.name << "\n\n> " << subject.text << "\n\n";
        if (!isMessage(subject)) {
            const FindingDescriptor& finding = *subject.findings.front();
            out << "- Severity: " << severityOf(finding);
            if (finding.message != 0 && finding.severity == Severity::BLOCKS)
                out << "; `zorb2v` tells message " << finding.message;
            out << "\n";
        }
        out << "- Means: " << subject.explanation.meaning << "\n- Cause: " << subject.explanation.cause
            << "\n- To do: " << subject.explanation.remedy << "\n";
        if (isMessage(subject) && !subject.findings.empty())
            out << "- Findings: " << findingList(subject) << "\n";
    }
}

void writeDiagnostics(std::ostream& out) {
    std::string_view last;
    for (const Subject& subject : allSubjects()) {
        if (!isMessage(subject))
            continue;
        const std::string_view heading = headingOf(subject);
        if (heading != std::exchange(last, heading))
            out << (isShared(subject) ? ".El\n" : "") << ".Ss " << heading << "\n.Bl -diag\n";
        const std::size_t end = subject.text.find(". ");
        const std::string sentence = subject.text.substr(0, end == subject.text.npos ? end : end + 1);
        out << ".It \"" << replaced(replaced(sentence, "%s", "..."), "\"", "\\(dq") << "\"\n.Pq "
            << subject.name << '\n';
        for (const std::string_view text :
             {subject.explanation.meaning, subject.explanation.cause, subject.explanation.remedy})
            writeManualText(out, text);
    }
    out << ".El\n";
}

} // namespace Zorvane
