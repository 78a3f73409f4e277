// SPDX-License-Identifier: Apache-2.0
// What the rules of a conversion find, and where they report it. A run stops at the first finding that
// blocks; who wants to know all of them lets the same rules go on.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Zorvane {

enum class Severity : std::uint8_t {
    BLOCKS, ///< a conversion is refused for it
    WARNS,
    INFORMS,
};

enum class FindingKind : std::uint8_t {
#define FINDING(NAME, IDENTIFIER, SEVERITY, MESSAGE, ARGUMENT, OBJECT, KEY) NAME,
#include "resources/findings.def"
};

/// A kind of finding: a row of findings.def, which tells the columns.
struct FindingDescriptor {
    const char* identifier;
    Severity severity;
    std::uint64_t message;
    bool hasArgument;
    const char* object;
    const char* key;
};

const FindingDescriptor& describe(FindingKind kind);
/// All kinds, in the order of the declaration.
std::span<const FindingDescriptor> allFindings();

struct Finding {
    FindingKind kind;
    std::string value{}; ///< the name, the option, the path that it is about
    /// What is wrong, where the catalogue's message doesn't tell it or there is none.
    std::string text{};
    std::string hint{};                    ///< a way out that only this case has
    std::vector<std::string> candidates{}; ///< the names that exist
    /// The rule could not be tried, for somebody did not answer. zorb2v takes it for broken then.
    bool isUnanswered = false;
    std::vector<int> lines{}; ///< of the configuration file, from 1, that are to blame
    /// Of the catalogue's message, where they aren't the value alone.
    std::vector<std::string> arguments{};
    std::string key{}; ///< that sets the value, where it isn't the one of the kind
};

/// Tells that something was not checked, and why.
Finding notChecked(const std::string& what, const std::string& why);
/// The arguments of the finding's catalogue message.
std::vector<std::string> messageArguments(const Finding& finding);
/// The key of the configuration file, or the option, that sets the value; "" if none does.
std::string keyOf(const Finding& finding);

/// Where rules report. What is found goes to take(); whether the rule goes on is told to it at once.
class Findings {
  public:
    explicit Findings(bool wantsAll) : m_wantsAll(wantsAll) {}
    Findings(const Findings&) = delete;
    Findings& operator=(const Findings&) = delete;
    virtual ~Findings() = default;

    /// Whether the rules behind this one are to be tried: not behind the first that blocks, unless all are
    /// wanted.
    bool report(const Finding& finding) {
        take(finding);
        return m_wantsAll || describe(finding.kind).severity != Severity::BLOCKS;
    }
    [[nodiscard]] bool wantsAll() const { return m_wantsAll; }
    /// The name that was plainly meant by an unknown one, for the rules that depend on it; "" if they are not
    /// to be tried.
    [[nodiscard]] virtual std::string meantBy(const Finding& unknown) const {
        (void)unknown;
        return {};
    }

  private:
    virtual void take(const Finding& finding) = 0;

    bool m_wantsAll;
};

/// Keeps what blocks, and stops there.
class FirstFinding : public Findings {
  public:
    FirstFinding() : Findings(false) {}
    [[nodiscard]] const std::optional<Finding>& finding() const { return m_finding; }

  private:
    void take(const Finding& finding) override {
        if (describe(finding.kind).severity == Severity::BLOCKS)
            m_finding = finding;
    }

    std::optional<Finding> m_finding;
};

} // namespace Zorvane
