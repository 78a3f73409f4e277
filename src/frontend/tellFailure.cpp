// SPDX-License-Identifier: Apache-2.0
#include "frontend/messageNumbers.h"

namespace Zorvane {

namespace {

class ToldFindings : public Findings {
  public:
    ToldFindings() : Findings(false) {}

  private:
    void take(const Finding& finding) override {
        if (describe(finding.kind).severity == Severity::BLOCKS)
            tellFailure(finding);
    }
};

} // namespace

void tellFailure(const Finding& finding) {
    const std::uint64_t number = describe(finding.kind).message;
    if (!g_appLog || number == 0)
        return;
    const std::vector<std::string> arguments = messageArguments(finding);
    switch (arguments.size()) {
    case 0:
        g_appLog->WriteAppMsg(FAILURE_FLAGS, SEVERITY_FAILURE, number);
        break;
    case 1:
        g_appLog->WriteAppMsg(FAILURE_FLAGS, SEVERITY_FAILURE, number, arguments[0]);
        break;
    default:
        g_appLog->WriteAppMsg(FAILURE_FLAGS, SEVERITY_FAILURE, number, arguments[0], arguments[1]);
    }
}

Findings& toldFindings() {
    static ToldFindings findings;
    return findings;
}

} // namespace Zorvane
