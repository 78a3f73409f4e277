// SPDX-License-Identifier: Apache-2.0
#include "resources/Finding.h"

namespace Zorvane {

namespace {

constexpr bool VALUE = true;
constexpr bool NONE = false;

constexpr FindingDescriptor DESCRIPTORS[] = {
#define FINDING(NAME, IDENTIFIER, SEVERITY, MESSAGE, ARGUMENT, OBJECT, KEY)                                  \
    {IDENTIFIER, Severity::SEVERITY, MESSAGE, ARGUMENT, OBJECT, KEY},
#include "resources/findings.def"
};

} // namespace

const FindingDescriptor& describe(FindingKind kind) {
    return DESCRIPTORS[static_cast<std::size_t>(kind)];
}

std::span<const FindingDescriptor> allFindings() {
    return DESCRIPTORS;
}

std::vector<std::string> messageArguments(const Finding& finding) {
    if (!finding.arguments.empty())
        return finding.arguments;
    return describe(finding.kind).hasArgument ? std::vector{finding.value} : std::vector<std::string>();
}

Finding notChecked(const std::string& what, const std::string& why) {
    return {.kind = FindingKind::NOT_CHECKED, .value = what + " (" + why + ")"};
}

std::string keyOf(const Finding& finding) {
    return finding.key.empty() ? describe(finding.kind).key : finding.key;
}

} // namespace Zorvane
