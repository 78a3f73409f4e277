// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "frontend/veconfig.h"
#include "resources/B2VInput.h"
#include "resources/Finding.h"

#include <vector>

namespace Zorvane {

/// All findings of a run, in their order, each once.
class CollectedFindings : public Findings {
  public:
    CollectedFindings() : Findings(true) {}

    [[nodiscard]] const std::vector<Finding>& all() const { return m_findings; }
    [[nodiscard]] std::vector<Finding>& all() { return m_findings; }
    [[nodiscard]] bool has(FindingKind kind) const;
    /// What zorb2v would stop at; null if it wouldn't.
    [[nodiscard]] const Finding* firstThatBlocks() const;
    [[nodiscard]] std::size_t count(Severity severity) const;

    /// Names the lines of the configuration file for each finding about a value of it.
    void blameLines(const VEconfigLines& lines, const B2VInput& input);
    /// The one name that exists and is near.
    [[nodiscard]] std::string meantBy(const Finding& unknown) const override;

  private:
    void take(const Finding& finding) override;

    std::vector<Finding> m_findings;
};

} // namespace Zorvane
