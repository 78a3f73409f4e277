// SPDX-License-Identifier: Apache-2.0
#include "info/explanations.h"

#include "logging/getMessage.h"

#include <algorithm>
#include <iterator>

namespace Zorvane {

namespace {

constexpr Explanation EXPLANATIONS[] = {
#define EXPLANATION(SUBJECT, TEXT, MEANING, CAUSE, REMEDY) {SUBJECT, TEXT, MEANING, CAUSE, REMEDY},
#include "info/explanations.def"
};

constexpr std::string_view COMMAND = "433:";

const Explanation* rowOf(std::string_view subject) {
    const auto* row = std::find_if(std::begin(EXPLANATIONS), std::end(EXPLANATIONS),
                                   [&](const Explanation& each) { return each.subject == subject; });
    return row == std::end(EXPLANATIONS) ? nullptr : row;
}

std::string filled(std::string_view pattern, const std::string& value) {
    std::string text(pattern);
    if (const std::size_t place = text.find("%s"); place != std::string::npos)
        text.replace(place, 2, value);
    return text;
}

} // namespace

std::span<const Explanation> allExplanations() {
    return EXPLANATIONS;
}

const Explanation* findExplanation(std::string_view subject) {
    if (subject.starts_with(COMMAND))
        return rowOf(subject.substr(COMMAND.size()));
    if (const Explanation* row = rowOf(subject))
        return row;
    if (const Explanation* row = rowOf(std::string(Explanation::SHARED) += subject))
        return row;
    for (const FindingDescriptor& finding : allFindings())
        if (finding.identifier == subject)
            return rowOf(std::to_string(finding.message));
    return nullptr;
}

const Explanation& explanationOf(FindingKind kind) {
    static constexpr Explanation NOTHING{"?", "", "", "", ""};
    const Explanation* row = findExplanation(describe(kind).identifier);
    return row ? *row : NOTHING;
}

std::string catalogueText(std::uint64_t number, const std::vector<std::string>& arguments,
                          std::uint64_t originator) {
    try {
        return getMessage(originator, number, arguments);
    } catch (const std::runtime_error&) {
        return {};
    }
}

std::string textOf(const Finding& finding) {
    const FindingDescriptor& kind = describe(finding.kind);
    const std::string_view pattern = explanationOf(finding.kind).text;
    const bool isName = pattern.empty() && kind.hasArgument && *kind.key != '\0';
    if (finding.isUnanswered && isName)
        return "Not checked: the inventory did not answer, and zorb2v takes the " + std::string(kind.object) +
               " \"" + finding.value + "\" for missing then.";
    std::string text = pattern.empty() ? catalogueText(kind.message, messageArguments(finding))
                                       : filled(pattern, finding.value);
    if (!finding.text.empty())
        text += " " + finding.text;
    return text;
}

} // namespace Zorvane
