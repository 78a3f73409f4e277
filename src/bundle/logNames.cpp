// SPDX-License-Identifier: Apache-2.0
#include "bundle/documentNames.h"
#include "bundle/maskedForms.h"
#include "bundle/utf8.h"
#include "logging/CZorLog.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace Zorvane {

namespace {

constexpr auto NPOS = std::string_view::npos;
// Of a line: more than names take, and a bound on what a line without an end does.
constexpr std::size_t LONGEST_REST = 2048;

struct Marker {
    std::string_view before;
    NameKind kind;
    std::string_view end; ///< "," is a comma with a blank behind it
};

// The trace's keys and sentences, commands to the backup catalogue, and elements of the request daemon's
// answers.
constexpr Marker MARKERS[] = {
    {"client=", NameKind::Client, ","},
    {"clientName=", NameKind::Client, ","},
    {"host=", NameKind::Host, ","},
    {"server=", NameKind::Host, ","},
    {"vmServer=", NameKind::Host, ","},
    {"proxy=", NameKind::Host, ","},
    {"master=", NameKind::Host, ","},
    {"esxMount=", NameKind::Host, ","},
    {"on server ", NameKind::Host, " "},
    {"from server ", NameKind::Host, " "},
    {"to host ", NameKind::Host, " "},
    {"Invalid Esx server:", NameKind::Host, ","},
    {"selected for restore:", NameKind::Name, ","},
    {"delete VeProfile:", NameKind::Profile, ","},
    {"profileName=", NameKind::Profile, ","},
    {"configName=", NameKind::Name, ","},
    {"config=,", NameKind::Name, ","},
    {"configuration file=", NameKind::Folder, ","},
    {"path=", NameKind::Folder, ","},
    {"veconfig file ", NameKind::Folder, ","},
    {", name=", NameKind::Name, ","},
    {"ObjName=", NameKind::Store, " freeMem="},
    {"PolicyName= ", NameKind::Name, " "},
    {" -client ", NameKind::Client, " "},
    {" -policy ", NameKind::Name, " "},
    {" -k ", NameKind::Name, " "},
    {"kvnlist -E -C ", NameKind::Client, " "},
    {" Name=\"", NameKind::Name, "\""},
    {" Path=\"", NameKind::Folder, "\""},
    {"<Name>", NameKind::Name, "<"},
    {"<Path>", NameKind::Folder, "<"},
};

// Options of zorb2v whose value names more than just anything, by what they begin with.
constexpr std::pair<std::string_view, NameKind> OPTIONS[] = {
    {"-C", NameKind::Client}, {"-S", NameKind::Host},      {"-vms", NameKind::Host},
    {"-vmp", NameKind::Host}, {"-vep", NameKind::Profile}, {"-vec", NameKind::Folder},
};

std::string fromXml(std::string text) {
    for (const auto& [entity, sign] :
         {std::pair("&lt;", "<"), {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}})
        text = replaced(text, entity, sign);
    return text;
}

enum class Places : bool { All, OneALine };

// Calls with what stands behind each place of a text, up to the end of its line; of a line's places behind
// the first one only, if the call deals with all of the line.
template <class Visit>
void eachBehind(std::string_view text, std::string_view before, Places places, const Visit& visit) {
    for (std::size_t at = text.find(before); at != NPOS; at = text.find(before, at + 1)) {
        // "client=" is not to be found in "noclient=".
        const bool isWhole = at == 0 || !std::isalnum(static_cast<unsigned char>(before.front())) ||
                             !std::isalnum(static_cast<unsigned char>(text[at - 1]));
        if (!isWhole)
            continue;
        const std::string_view rest = text.substr(at + before.size(), LONGEST_REST);
        const std::string_view line = rest.substr(0, rest.find('\n'));
        visit(line);
        at += places == Places::OneALine ? line.size() : 0;
    }
}

void learnMarked(std::string_view text, Mask& mask) {
    for (const Marker& marker : MARKERS)
        eachBehind(text, marker.before, Places::All, [&](std::string_view line) {
            std::string_view value = line.substr(0, line.find(marker.end == "," ? ", " : marker.end));
            value = value.substr(0, value.find("\\n"));
            const bool isHost = marker.kind == NameKind::Host || marker.kind == NameKind::Client;
            mask.learn(marker.kind,
                       fromXml(std::string(isHost ? value.substr(0, value.find_first_of(" ,:")) : value)));
        });
}

// "zorb2v -C alpha -config before update -vmpo": what stands behind an option, up to the next.
void learnCommandLines(std::string_view text, Mask& mask) {
    eachBehind(text, "Command line: ", Places::OneALine, [&](std::string_view line) {
        for (std::size_t at = line.find(" -"); at != NPOS; at = line.find(" -", at + 1)) {
            const std::string_view option = line.substr(at + 1, line.find(" -", at + 1) - at - 1);
            const std::size_t blank = option.find(' ');
            if (blank == NPOS)
                continue;
            NameKind kind = NameKind::Name;
            for (const auto& [beginning, named] : OPTIONS)
                if (option.starts_with(beginning))
                    kind = named;
            mask.learn(kind, option.substr(blank + 1));
        }
    });
}

// "lower(ZorDba.ZOR_Config.ClientName) = lower('alpha')", where '' is a ' of the name
void learnConditions(std::string_view text, Mask& mask) {
    eachBehind(text, "ZorDba.ZOR_", Places::All, [&](std::string_view line) {
        const std::size_t dot = line.find('.'), end = line.find_first_of(" )=,"), quote = line.find('\'');
        if (dot == NPOS || end == NPOS || quote == NPOS || dot > end || quote > end + 16)
            return;
        std::size_t last = line.find('\'', quote + 1);
        while (last != NPOS && line.substr(last + 1).starts_with('\''))
            last = line.find('\'', last + 2);
        if (const auto kind = kindOfField(line.substr(0, dot), line.substr(dot + 1, end - dot - 1)))
            mask.learn(*kind, replaced(line.substr(quote + 1, last - quote - 1), "''", "'"));
    });
}

// "... app 2 - [433:14] text": in all languages a message has quotes around the names that it is given.
void learnMessages(std::string_view text, Mask& mask) {
    const std::string before = " - [" + std::to_string(ZOR_COMMAND_ORIGINATOR) + ":";
    eachBehind(text, before, Places::OneALine, [&](std::string_view line) {
        for (const auto& [open, close] :
             {std::pair<std::string_view, std::string_view>("\"", "\""), {"「", "」"}})
            for (std::size_t begin = line.find(open); begin != NPOS;) {
                const std::size_t end = line.find(close, begin + open.size());
                if (end == NPOS)
                    break;
                mask.learn(NameKind::Name, line.substr(begin + open.size(), end - begin - open.size()));
                begin = line.find(open, end + close.size());
            }
    });
}

// "kvnrd	listing 11	server	proxy, object	0" of the lab's list of requests
void learnListings(std::string_view text, Mask& mask) {
    eachBehind(text, "kvnrd\tlisting ", Places::OneALine, [&](std::string_view line) {
        line.remove_prefix(std::min(line.find('\t'), line.size()));
        for (std::string_view field; !line.empty();
             line.remove_prefix(std::min(field.size() + 1, line.size()))) {
            field = line.substr(0, line.find_first_of("\t,"));
            mask.learn(NameKind::Name, field);
        }
    });
}

} // namespace

std::string readableLog(std::string_view text) {
    return replaced(text, "and config=,", " and config=,");
}

void learnFromLog(std::string_view text, Mask& mask) {
    learnCommandLines(text, mask);
    learnConditions(text, mask);
    learnMarked(text, mask);
    learnMessages(text, mask);
    learnListings(text, mask);
}

} // namespace Zorvane
