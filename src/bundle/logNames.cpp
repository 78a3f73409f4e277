// SPDX-License-Identifier: Apache-2.0
#include "bundle/documentNames.h"
#include "bundle/maskedForms.h"
#include "logging/CZorLog.h"
#include "logging/getMessage.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>
#include <vector>

namespace Zorvane {

namespace {

constexpr auto NPOS = std::string_view::npos;

struct Marker {
    std::string_view before;
    NameKind kind;
    std::string_view end; ///< "," is a comma with a blank behind it
};

// The trace's keys, commands to the backup catalogue, and elements of the request daemon's answers.
constexpr Marker MARKERS[] = {
    {"client=", NameKind::Client, ","},
    {"clientName=", NameKind::Client, ","},
    {"host=", NameKind::Host, ","},
    {"server=", NameKind::Host, ","},
    {"vmServer=", NameKind::Host, ","},
    {"proxy=", NameKind::Host, ","},
    {"master=", NameKind::Host, ","},
    {"esxMount=", NameKind::Host, ","},
    {"profileName=", NameKind::Profile, ","},
    {", name=", NameKind::Name, ","},
    {"ObjName=", NameKind::Store, " freeMem="},
    {" -client ", NameKind::Client, " "},
    {" -C ", NameKind::Client, " "},
    {" Name=\"", NameKind::Name, "\""},
    {" Path=\"", NameKind::Folder, "\""},
    {"<Name>", NameKind::Name, "<"},
    {"<Path>", NameKind::Folder, "<"},
};

// Up to the end that the marker tells, or that of the line.
std::string_view valueAt(std::string_view text, std::string_view end) {
    const std::size_t line = text.find('\n');
    text = text.substr(0, line);
    const std::size_t at = text.find(end == "," ? ", " : end);
    text = text.substr(0, at);
    return text.substr(0, text.find("\\n"));
}

std::string_view valueOf(const Marker& marker, std::string_view text) {
    const std::string_view value = valueAt(text, marker.end);
    const bool isHost = marker.kind == NameKind::Host || marker.kind == NameKind::Client;
    return isHost ? value.substr(0, value.find_first_of(" ,")) : value;
}

void learnMarked(std::string_view text, Mask& mask) {
    std::vector<std::pair<std::string_view, NameKind>> names;
    for (const Marker& marker : MARKERS)
        for (std::size_t at = text.find(marker.before); at != NPOS; at = text.find(marker.before, at + 1)) {
            // "client=" is not to be found in "noclient=".
            const bool isWhole = at == 0 || marker.before.front() == ' ' ||
                                 !std::isalnum(static_cast<unsigned char>(text[at - 1]));
            if (isWhole)
                names.emplace_back(valueOf(marker, text.substr(at + marker.before.size())), marker.kind);
        }
    // Some lines run on behind a name without a blank; elsewhere it stands by itself, and is shorter there.
    std::ranges::stable_sort(names, {}, [](const auto& name) { return name.first.size(); });
    for (const auto& [name, kind] : names)
        mask.learn(kind, name);
}

// "lower(ZorDba.ZOR_Config.ClientName) = lower('alpha')"
void learnConditions(std::string_view text, Mask& mask) {
    constexpr std::string_view PREFIX = "ZorDba.ZOR_";
    for (std::size_t at = text.find(PREFIX); at != NPOS; at = text.find(PREFIX, at + 1)) {
        const std::string_view column = text.substr(at + PREFIX.size(), 400);
        const std::size_t dot = column.find('.'), end = column.find_first_of(" )=,");
        const std::size_t quote = column.find('\'');
        if (dot == NPOS || end == NPOS || quote == NPOS || dot > end || quote > end + 16)
            continue;
        const auto kind = kindOfField(column.substr(0, dot), column.substr(dot + 1, end - dot - 1));
        const std::string_view value = column.substr(quote + 1);
        if (kind)
            mask.learn(*kind, value.substr(0, value.find('\'')));
    }
}

// What the first argument of a message of the command names.
constexpr std::pair<std::uint64_t, NameKind> MESSAGES[] = {
    {14, NameKind::Client},     {19, NameKind::Profile}, {21, NameKind::Host}, {22, NameKind::Host},
    {23, NameKind::DataCenter}, {24, NameKind::Folder},  {25, NameKind::Pool}, {27, NameKind::Network},
    {28, NameKind::Store},      {29, NameKind::Cluster}, {30, NameKind::Host},
};

// What stands in front of a message's first argument and behind it, in the language of the process.
std::pair<std::string, std::string> aroundArgument(std::uint64_t number) {
    constexpr std::string_view ARGUMENT = "@@argument@@";
    const std::vector<std::string> arguments(2, std::string(ARGUMENT));
    try {
        const std::string text = getMessage(ZOR_COMMAND_ORIGINATOR, number, arguments);
        const std::size_t at = text.find(ARGUMENT);
        if (at != NPOS)
            return {text.substr(0, at), text.substr(at + ARGUMENT.size(), 1)};
    } catch (const CatalogFailure&) {
        // Without a catalogue the log has no such text either.
    }
    return {};
}

// "... app 2 - [433:14] text"
void learnMessages(std::string_view text, Mask& mask) {
    for (const auto& [number, kind] : MESSAGES) {
        const auto [before, behind] = aroundArgument(number);
        const std::string mark =
            "[" + std::to_string(ZOR_COMMAND_ORIGINATOR) + ":" + std::to_string(number) + "] " + before;
        if (behind.empty())
            continue;
        for (std::size_t at = text.find(mark); at != NPOS; at = text.find(mark, at + 1))
            mask.learn(kind, valueAt(text.substr(at + mark.size()), behind));
    }
}

} // namespace

void learnFromLog(std::string_view text, Mask& mask) {
    learnConditions(text, mask);
    learnMarked(text, mask);
    learnMessages(text, mask);
}

} // namespace Zorvane
