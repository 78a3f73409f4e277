// SPDX-License-Identifier: Apache-2.0
#include "info/Session.h"
#include "info/check/similarNames.h"
#include "info/explainedSubjects.h"
#include "info/layout/labels.h"
#include "info/paragraphs.h"
#include "info/subcommands.h"

#include <algorithm>
#include <charconv>
#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

// --- Forms

void writeText(const Subject& subject, const Session& session) {
    std::ostream& out = session.out();
    std::string head = isMessage(subject) ? "Message " + subject.name : "Finding " + subject.name;
    if (isShared(subject))
        head += " of the shared code (set 128)";
    if (!isMessage(subject)) {
        const FindingDescriptor& finding = *subject.findings.front();
        head += std::string(", ") + severityOf(finding);
        if (finding.message != 0 && finding.severity == Severity::BLOCKS)
            head += ", message " + std::to_string(finding.message) + " of zorb2v";
    }
    out << session.colored(head, color::BOLD) << "\n" << paragraph(subject.text, 2) << '\n';
    const auto labelled = [&](const std::string& word, std::string_view text) {
        const std::string lines = paragraph(text, 10);
        out << leftAligned(word, 10) << lines.substr(10);
    };
    labelled("Means", subject.explanation.meaning);
    labelled("Cause", subject.explanation.cause);
    labelled("To do", subject.explanation.remedy);
    if (isMessage(subject) && !subject.findings.empty())
        labelled("Findings", findingList(subject));
}

Json documentOf(const Subject& subject) {
    Json document = {
        {"subject", subject.name},
        {"kind", isMessage(subject) ? "message" : "finding"},
        {"text", subject.text},
        {"meaning", subject.explanation.meaning},
        {"cause", subject.explanation.cause},
        {"remedy", subject.explanation.remedy},
    };
    if (isMessage(subject)) {
        document["set"] = subject.explanation.originator();
        document["findings"] = Json::array();
        for (const FindingDescriptor* finding : subject.findings)
            document["findings"].push_back(finding->identifier);
    } else {
        document["severity"] = severityOf(*subject.findings.front());
        document["number"] = subject.findings.front()->message;
    }
    return document;
}

Subject find(const std::string& name) {
    if (const Explanation* explanation = findExplanation(name))
        return subjectOf(name, *explanation);
    std::vector<std::string> names;
    for (const Subject& subject : allSubjects())
        names.push_back(subject.name);
    const bool isNear = !similarNames(name, names).empty();
    throw InfoFailure(InfoExit::NOT_ASKED, "\"" + name + "\" is no number of a message and no finding. " +
                                               (isNear ? suggestionFor(name, names)
                                                       : "Without a name zorinfo explain lists all."));
}

struct ExplainOptions {
    std::string subject;
    bool isPage = false;
    bool isManual = false;
};

void writeList(const std::vector<Subject>& subjects, const Session& session) {
    constexpr std::size_t names = 20;
    for (const Subject& subject : subjects) {
        const auto width = session.width();
        session.out() << leftAligned(subject.name, names)
                      << shown(subject.explanation.meaning, width ? std::max(*width, 2 * names) - names
                                                                  : subject.explanation.meaning.size())
                      << '\n';
    }
}

void explain(const ExplainOptions& options, const Session& session) {
    if (options.isPage || options.isManual)
        return options.isPage ? writeMessagesPage(session.out()) : writeDiagnostics(session.out());
    const std::vector<Subject> subjects =
        options.subject.empty() ? allSubjects() : std::vector{find(options.subject)};
    if (session.isJson()) {
        Json documents = Json::array();
        for (const Subject& subject : subjects)
            documents.push_back(documentOf(subject));
        return session.writeJson({{"subjects", documents}});
    }
    if (options.subject.empty())
        writeList(subjects, session);
    else
        writeText(subjects.front(), session);
}

} // namespace

void addExplain(CLI::App& app, Session& session) {
    const auto options = std::make_shared<ExplainOptions>();
    CLI::App* command = app.add_subcommand(
        "explain", "Tell what a message or a finding means, why it comes, and what to do.");
    command->add_option(
        "SUBJECT", options->subject,
        "a message's number (\"128:926\" if its set matters) or a finding's identifier; without it "
        "all are listed");
    command->add_flag("--md", options->isPage, "all of them as a page in Markdown");
    command->add_flag("--man", options->isManual, "the messages as the lists of a manual page");
    command->callback([options, &session] { explain(*options, session); });
}

} // namespace Zorvane
