// SPDX-License-Identifier: Apache-2.0
// Failures on demand: which request the lab answers badly, and how.
//
//   rule = POINT[:DETAIL][@N][=EFFECT]          query:P2VRestoreTask@1=close, listing=delay:500
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane {

class Connection;

/// Where a rule applies; what DETAIL names there stands behind.
enum class FailPoint {
    Connect,       ///< a connection was accepted; the service
    Version,       ///< version check; the service
    Query,         ///< a query by clause; a table
    Tree,          ///< a query by tree; a table
    Insert,        ///< rows to insert; a table among them
    Update,        ///< rows to update; a table among them
    Delete,        ///< rows to delete; a table among them
    Transaction,   ///< a transaction; no detail
    DoB2v,         ///< start of a conversion; the task's number
    VerifyB2v,     ///< check of a profile; the profile's number
    DeleteProfile, ///< removal of a profile; its name
    Catalogue,     ///< a catalogue command; its name
    Command,       ///< the request daemon was given a command; no detail
    Listing,       ///< an inventory listing; its number
};

enum class FailEffect {
    Status,  ///< the answer says that it failed, with this number
    Close,   ///< the connection ends without an answer
    Silent,  ///< no answer; the connection stays until the peer gives up
    Garbage, ///< bytes that are no packet and no line of the conversation
    Type,    ///< a packet of another type; a document with another root
    Long,    ///< a packet as long as packets get
    Half,    ///< the document, the packet or the line breaks off and the connection ends
    Empty,   ///< a document of no bytes
    NotXml,  ///< a document that is no XML
    Entity,  ///< a document with an external entity
    Deep,    ///< a document of a million nested elements
    Other,   ///< a daemon of another version
    Delay,   ///< the answer that the request would have had, but later
};

struct Failure {
    FailEffect effect = FailEffect::Status;
    std::int32_t status = 1;
    std::chrono::milliseconds delay{}; ///< of the effect Delay

    bool operator==(const Failure&) const = default;
};

struct FailRule {
    FailPoint point{};
    std::string detail;      ///< empty: any
    std::uint32_t which = 0; ///< the n-th request that fits, from 1; 0 is every one
    Failure failure;

    bool operator==(const FailRule&) const = default;
};

/// Reads a rule. LabError, with what is allowed, for a word that it doesn't know or an effect that its point
/// can't have.
FailRule parseFailRule(std::string_view text);
/// A failure in the words of a rule: "7", "close".
std::string failureText(const Failure& failure);
/// The grammar with all points and effects, for a help page.
std::string failRuleHelp();

/// The rules of a running lab, with their counts. For use by several threads.
class FailRules {
  public:
    FailRules() = default;
    explicit FailRules(std::vector<FailRule> rules) : m_rules(std::move(rules)), m_seen(m_rules.size()) {}

    [[nodiscard]] bool any() const { return !m_rules.empty(); }

    /// What is to become of a request.
    struct Verdict {
        std::optional<Failure> failure;
        std::chrono::milliseconds delay{}; ///< before the answer or the failure
    };
    /// Counts a request. `details` are the names that a rule's detail may mean. Of the failures that fit the
    /// first rule's wins; delays add up.
    Verdict judge(FailPoint point, std::span<const std::string> details);

    /// The same for a request of a connection: its delay has passed when this returns, or the connection is
    /// cut.
    std::optional<Failure> check(Connection& connection, FailPoint point,
                                 std::span<const std::string> details);
    std::optional<Failure> check(Connection& connection, FailPoint point, const std::string& detail) {
        return check(connection, point, std::span(&detail, 1));
    }

  private:
    std::vector<FailRule> m_rules;
    std::mutex m_lock;
    std::vector<std::uint32_t> m_seen; ///< requests that fitted each rule
};

} // namespace Zorvane
