// SPDX-License-Identifier: Apache-2.0
#include "lab/FailRules.h"

#include "lab/Connection.h"
#include "lab/LabError.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace Zorvane {

namespace {

constexpr const char* DELAY = "delay";
constexpr std::chrono::milliseconds USUAL_DELAY{1000};
constexpr std::chrono::milliseconds LONGEST_DELAY{600'000};

struct EffectName {
    const char* name;
    FailEffect effect;
    const char* meaning;
};

// A number is an effect too: the status of the answer. A delay may have its length behind it.
constexpr std::array EFFECTS = {
    EffectName{"close", FailEffect::Close, "ends the connection without an answer"},
    EffectName{"silent", FailEffect::Silent, "never answers; the connection stays open"},
    EffectName{"garbage", FailEffect::Garbage, "answers with bytes that mean nothing"},
    EffectName{"type", FailEffect::Type,
               "answers with a packet of another type, or a document with another root"},
    EffectName{"long", FailEffect::Long, "answers with a packet as long as packets get"},
    EffectName{"half", FailEffect::Half,
               "breaks off in the middle of the document, packet or line (behind half a document a client\n"
               "                 of zord may wait without end)"},
    EffectName{"empty", FailEffect::Empty, "answers with a document of no bytes"},
    EffectName{"notxml", FailEffect::NotXml, "answers with a document that is no XML"},
    EffectName{"entity", FailEffect::Entity, "answers with a document that holds an external entity"},
    EffectName{"deep", FailEffect::Deep, "answers with a document of a million nested elements"},
    EffectName{"other", FailEffect::Other, "answers as a daemon of another version does"},
    EffectName{DELAY, FailEffect::Delay,
               "answers as always, but 1000 milliseconds later, or as many as stand behind it: delay:250;\n"
               "                 adds to other rules"},
};

constexpr unsigned bit(FailEffect effect) {
    return 1U << static_cast<unsigned>(effect);
}
template <class... Effects>
constexpr unsigned bits(Effects... effects) {
    return (bit(effects) | ...);
}

constexpr unsigned LINE = bits(FailEffect::Status, FailEffect::Close, FailEffect::Silent, FailEffect::Garbage,
                               FailEffect::Half, FailEffect::Delay);
constexpr unsigned PACKET = LINE | bits(FailEffect::Type, FailEffect::Long);
constexpr unsigned DOCUMENT =
    bits(FailEffect::Empty, FailEffect::NotXml, FailEffect::Entity, FailEffect::Deep);

constexpr std::int32_t BYTE = std::numeric_limits<std::uint8_t>::max();
constexpr std::int32_t INTEGER = std::numeric_limits<std::int32_t>::max();

struct PointName {
    const char* name;
    FailPoint point;
    unsigned effects;
    std::int32_t most; ///< the largest status: what the answer's field holds
    const char* detail;
};

constexpr std::array POINTS = {
    PointName{"connect", FailPoint::Connect, LINE, INTEGER,
              "the service: zord, zorbd, kvnrd (the recovery daemons have no status to give here)"},
    PointName{"version", FailPoint::Version, PACKET | bit(FailEffect::Other), BYTE,
              "the service: zord, zorbd"},
    PointName{"query", FailPoint::Query, PACKET | DOCUMENT, BYTE, "a table of the query: Config"},
    PointName{"tree", FailPoint::Tree, PACKET | DOCUMENT, BYTE, "the table: Config"},
    PointName{"insert", FailPoint::Insert, PACKET | DOCUMENT, BYTE, "a table of the rows: P2VRestoreTask"},
    PointName{"update", FailPoint::Update, PACKET, BYTE, "a table of the rows"},
    PointName{"delete", FailPoint::Delete, PACKET, BYTE, "a table of the rows"},
    PointName{"transaction", FailPoint::Transaction, PACKET, BYTE, nullptr},
    PointName{"dob2v", FailPoint::DoB2v, PACKET, INTEGER, "the task's number"},
    PointName{"verifyb2v", FailPoint::VerifyB2v, PACKET, INTEGER, "the profile's number"},
    PointName{"deleteprofile", FailPoint::DeleteProfile, PACKET, INTEGER, "the profile's name"},
    PointName{"catalogue", FailPoint::Catalogue, PACKET | bit(FailEffect::Empty), INTEGER,
              "the command: kvnclimagelist, kvnlist"},
    PointName{"command", FailPoint::Command, LINE, INTEGER, nullptr},
    PointName{"listing", FailPoint::Listing, LINE | DOCUMENT | bit(FailEffect::Type), INTEGER,
              "the listing's number: 7, 9, 10, 11, 17, 19, 22"},
};

template <class Rows>
std::string names(const Rows& rows) {
    std::string joined;
    for (const auto& row : rows)
        joined += (joined.empty() ? "" : ", ") + std::string(row.name);
    return joined;
}

std::string effectNames(unsigned effects) {
    std::string joined = "a number";
    for (const EffectName& row : EFFECTS)
        if (effects & bit(row.effect))
            joined += ", " + std::string(row.name);
    return joined;
}

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// Cuts the text at the last separator and returns what stood behind it.
std::optional<std::string_view> cutOff(std::string_view& text, char separator) {
    const auto at = text.rfind(separator);
    if (at == std::string_view::npos)
        return std::nullopt;
    const auto behind = text.substr(at + 1);
    text = text.substr(0, at);
    return behind;
}

// "delay" or "delay:1500"; nothing for another effect.
std::optional<std::chrono::milliseconds> delayOf(std::string_view effect) {
    const auto name = effect.substr(0, effect.find(':'));
    if (name != DELAY)
        return std::nullopt;
    if (name.size() == effect.size())
        return USUAL_DELAY;
    const auto count = numberOf<std::int32_t>(effect.substr(name.size() + 1));
    return std::chrono::milliseconds(count.value_or(-1));
}

bool means(const std::string& detail, const std::string& name) {
    return StrCaseCmp(detail.c_str(), name.c_str()) == 0;
}

} // namespace

FailRule parseFailRule(std::string_view text) {
    const std::string rule(text);
    const auto refuse = [&rule](const std::string& why) {
        throw LabError("the rule \"" + rule + "\": " + why);
    };
    const auto effect = cutOff(text, '=');
    const auto which = cutOff(text, '@');
    const std::string_view name = text.substr(0, text.find(':'));

    const auto point = std::ranges::find(POINTS, name, &PointName::name);
    if (point == POINTS.end())
        refuse("\"" + std::string(name) + "\" is no point; the points are " + names(POINTS));
    FailRule read;
    read.point = point->point;
    if (name.size() != text.size()) {
        read.detail = text.substr(name.size() + 1);
        if (!point->detail || read.detail.empty())
            refuse(point->detail ? "behind \":\" stands " + std::string(point->detail)
                                 : "\"" + std::string(name) + "\" has no detail; leave out \":\"");
    }
    if (which) {
        read.which = numberOf<std::uint32_t>(*which).value_or(0);
        if (read.which == 0)
            refuse("behind \"@\" stands the count of the request that is to fail, from 1");
    }
    if (!effect)
        return read;
    if (const auto status = numberOf<std::int32_t>(*effect)) {
        if (*status > point->most || (point->most == BYTE && *status < 0))
            refuse("a status of " + std::string(name) + " is at most " + std::to_string(point->most));
        read.failure.status = *status;
        return read;
    }
    if (const auto delay = delayOf(*effect)) {
        if (*delay < std::chrono::milliseconds::zero() || *delay > LONGEST_DELAY)
            refuse("behind \"delay:\" stand milliseconds, at most " + std::to_string(LONGEST_DELAY.count()));
        read.failure = {FailEffect::Delay, 1, *delay};
        return read;
    }
    const auto row = std::ranges::find(EFFECTS, *effect, &EffectName::name);
    if (row == EFFECTS.end() || !(point->effects & bit(row->effect)))
        refuse("\"" + std::string(*effect) + "\" is no effect at this point; " + std::string(name) +
               " can have " + effectNames(point->effects));
    read.failure.effect = row->effect;
    return read;
}

std::string failureText(const Failure& failure) {
    const auto row = std::ranges::find(EFFECTS, failure.effect, &EffectName::effect);
    return row == EFFECTS.end() ? std::to_string(failure.status) : row->name;
}

std::string failRuleHelp() {
    std::string text =
        "POINT[:DETAIL][@N][=EFFECT], where @N means the N-th such request only, and without EFFECT\n"
        "the answer is the status 1.\n\nPoints, and what DETAIL names:\n";
    const auto add = [&text](const char* name, const char* meaning) {
        std::string column(name);
        column.resize(15, ' ');
        text += "  " + column + meaning + "\n";
    };
    for (const PointName& row : POINTS)
        add(row.name, row.detail ? row.detail : "(no detail)");
    text += "\nEffects:\n";
    add("<number>", "answers with that status");
    for (const EffectName& row : EFFECTS)
        add(row.name, row.meaning);
    return text;
}

FailRules::Verdict FailRules::judge(FailPoint point, std::span<const std::string> details) {
    const std::lock_guard lock(m_lock);
    Verdict verdict;
    for (std::size_t i = 0; i < m_rules.size(); ++i) {
        const FailRule& rule = m_rules[i];
        const auto named = [&rule](const std::string& name) { return means(rule.detail, name); };
        if (rule.point != point || (!rule.detail.empty() && std::ranges::none_of(details, named)))
            continue;
        // Every rule counts what fits it, also behind the one that wins.
        if (++m_seen[i]; rule.which != 0 && rule.which != m_seen[i])
            continue;
        if (rule.failure.effect == FailEffect::Delay)
            verdict.delay += rule.failure.delay;
        else if (!verdict.failure)
            verdict.failure = rule.failure;
    }
    return verdict;
}

std::optional<Failure> FailRules::check(Connection& connection, FailPoint point,
                                        std::span<const std::string> details) {
    const Verdict verdict = judge(point, details);
    if (verdict.delay > std::chrono::milliseconds::zero())
        connection.pause(verdict.delay);
    return verdict.failure;
}

} // namespace Zorvane
