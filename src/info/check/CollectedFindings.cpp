// SPDX-License-Identifier: Apache-2.0
#include "info/check/CollectedFindings.h"

#include "info/check/similarNames.h"

#include <algorithm>
#include <string_view>

namespace Zorvane {

namespace {

bool isSame(const Finding& first, const Finding& second) {
    return std::string_view(describe(first.kind).identifier) == describe(second.kind).identifier &&
           first.value == second.value && first.text == second.text;
}

std::vector<int> linesOf(const Finding& finding, const VEconfigLines& lines, const B2VInput& input) {
    const std::string key = keyOf(finding);
    std::vector<int> found;
    if (const auto at = lines.keys.find(key); at != lines.keys.end())
        found.push_back(at->second);
    if (key == "harddisk" || key == "datastore")
        for (std::size_t i = 0; i < std::min(input.diskMap.size(), lines.hardDisks.size()); ++i)
            if (input.diskMap[i].dataStoreName == finding.value || input.diskMap[i].diskName == finding.value)
                found.push_back(lines.hardDisks[i]);
    std::sort(found.begin(), found.end());
    return found;
}

} // namespace

bool CollectedFindings::has(FindingKind kind) const {
    return std::any_of(m_findings.begin(), m_findings.end(),
                       [&](const Finding& finding) { return finding.kind == kind; });
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
    for (Finding& finding : m_findings) {
        if (!finding.lines.empty())
            continue;
        // A data store that no line of its own sets is that of the first disk.
        if (keyOf(finding) == "datastore" && !lines.keys.contains("datastore") && !lines.hardDisks.empty())
            finding.key = "harddisk";
        finding.lines = linesOf(finding, lines, input);
    }
}

std::string CollectedFindings::meantBy(const Finding& unknown) const {
    const std::vector<std::string> names = similarNames(unknown.value, unknown.candidates);
    return names.size() == 1 ? names.front() : std::string();
}

void CollectedFindings::take(const Finding& finding) {
    // Lines of the file are findings of their own, whatever they say.
    if (!finding.lines.empty() || std::none_of(m_findings.begin(), m_findings.end(),
                                               [&](const Finding& other) { return isSame(other, finding); }))
        m_findings.push_back(finding);
}

} // namespace Zorvane
