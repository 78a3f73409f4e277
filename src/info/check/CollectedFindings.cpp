// SPDX-License-Identifier: Apache-2.0
#include "info/check/CollectedFindings.h"

#include <algorithm>
#include <string_view>

namespace Zorvane {

namespace {

bool isAbout(const Finding& finding, FindingKind kind, const std::string& value) {
    return std::string_view(describe(finding.kind).identifier) == describe(kind).identifier &&
           finding.value == value;
}

int lineOf(const Finding& finding, const VEconfigLines& lines, const B2VInput& input) {
    const std::string key = describe(finding.kind).key;
    if (const auto at = lines.keys.find(key); at != lines.keys.end())
        return at->second;
    // A data store that no line of its own sets is that of the first disk.
    if (key == "harddisk" || key == "datastore")
        for (std::size_t i = 0; i < std::min(input.diskMap.size(), lines.hardDisks.size()); ++i)
            if (input.diskMap[i].dataStoreName == finding.value || input.diskMap[i].diskName == finding.value)
                return lines.hardDisks[i];
    return 0;
}

} // namespace

bool CollectedFindings::has(FindingKind kind) const {
    return std::any_of(m_findings.begin(), m_findings.end(),
                       [&](const Finding& finding) { return finding.kind == kind; });
}

bool CollectedFindings::has(FindingKind kind, const std::string& value) const {
    return std::any_of(m_findings.begin(), m_findings.end(),
                       [&](const Finding& finding) { return isAbout(finding, kind, value); });
}

const Finding* CollectedFindings::firstThatBlocks() const {
    const auto first = std::find_if(m_findings.begin(), m_findings.end(), [](const Finding& finding) {
        return describe(finding.kind).severity == Severity::BLOCKS;
    });
    return first == m_findings.end() ? nullptr : &*first;
}

std::size_t CollectedFindings::count(Severity severity) const {
    return static_cast<std::size_t>(
        std::count_if(m_findings.begin(), m_findings.end(),
                      [&](const Finding& finding) { return describe(finding.kind).severity == severity; }));
}

void CollectedFindings::blameLines(const VEconfigLines& lines, const B2VInput& input) {
    for (Finding& finding : m_findings)
        if (finding.line == 0)
            finding.line = lineOf(finding, lines, input);
}

void CollectedFindings::take(const Finding& finding) {
    // Lines of the file are findings of their own, whatever they say.
    if (finding.line != 0 || !has(finding.kind, finding.value))
        m_findings.push_back(finding);
}

} // namespace Zorvane
