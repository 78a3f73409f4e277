// SPDX-License-Identifier: Apache-2.0
#include "lab/CatalogueCommands.h"

#include "platform/commandParser.h"
#include "platform/stringManipulation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>

namespace Zorvane {

namespace {

constexpr std::int64_t END_OF_TIME = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t DAYS_KEPT = 30; ///< images stay that long: for the listing's look only

struct Option {
    const char* name;
    bool hasValue;
};
constexpr std::array IMAGE_LIST_OPTIONS = {
    Option{"-client", true},      Option{"-policy", true}, Option{"-X", false}, Option{"-s", true},
    Option{"-e", true},           Option{"-t", true},      Option{"-ct", true}, Option{"-Listseconds", false},
    Option{"-likelydate", false},
};
constexpr std::array FILE_LIST_OPTIONS = {
    Option{"-C", true}, Option{"-k", true}, Option{"-t", true},  Option{"-X", false},
    Option{"-s", true}, Option{"-e", true}, Option{"-E", false}, Option{"-I", false},
};

// A command line, the command's name first, taken apart; a complaint is for the command's user.
class Arguments {
  public:
    Arguments(std::span<const std::string> words, std::span<const Option> options) {
        for (std::size_t i = 1; i < words.size() && m_complaint.empty(); ++i) {
            const std::string& word = words[i];
            const auto option = std::ranges::find(options, word, &Option::name);
            if (!word.starts_with("-"))
                m_operands.push_back(word);
            else if (option == options.end())
                m_complaint = "unknown option " + word;
            else if (!option->hasValue)
                m_values.emplace(word, "");
            else if (++i == words.size())
                m_complaint = "option " + word + " has no value";
            else
                m_values.insert_or_assign(word, words[i]);
        }
    }

    [[nodiscard]] bool has(const std::string& option) const { return m_values.contains(option); }
    [[nodiscard]] std::string text(const std::string& option) const {
        const auto value = m_values.find(option);
        return value == m_values.end() ? std::string() : value->second;
    }
    std::int64_t number(const std::string& option, std::int64_t otherwise) {
        const std::string value = text(option);
        if (!has(option))
            return otherwise;
        std::int64_t read = otherwise;
        const char* const end = value.data() + value.size();
        if (const auto [last, error] = std::from_chars(value.data(), end, read);
            error != std::errc() || last != end)
            m_complaint = "option " + option + " needs a number, not \"" + value + "\"";
        return read;
    }
    [[nodiscard]] const std::vector<std::string>& operands() const { return m_operands; }
    /// The first complaint stays.
    void complain(const std::string& text) {
        if (m_complaint.empty())
            m_complaint = text;
    }
    [[nodiscard]] const std::string& complaint() const { return m_complaint; }

  private:
    std::map<std::string, std::string> m_values;
    std::vector<std::string> m_operands;
    std::string m_complaint;
};

// What both commands select images by.
struct Selection {
    std::string client;
    std::string policy; ///< empty: any
    int type = CATALOGUE_STANDARD;
    std::int64_t start = 0;
    std::int64_t end = END_OF_TIME;

    [[nodiscard]] bool takes(const CatalogueImage& image) const {
        return (policy.empty() || image.policy == policy) && image.time >= start && image.time <= end;
    }
};

bool isFull(const CatalogueImage& image) {
    return StrCaseCmp(image.schedule.c_str(), "full") == 0;
}

std::string dateText(std::int64_t seconds, bool withSeconds) {
    const auto ticks = static_cast<std::time_t>(seconds);
    std::tm fields{};
    std::array<char, 64> text{};
    if (::gmtime_r(&ticks, &fields))
        std::strftime(text.data(), text.size(), withSeconds ? "%Y-%m-%d %H:%M:%S" : "%Y-%m-%d %H:%M",
                      &fields);
    return text.data();
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text + " ";
}

// "*" is any text and "?" any character. Linear in time but for one way back: a peer's pattern of many stars
// must cost nothing.
bool matches(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t star = std::string_view::npos;
    std::size_t resume = 0;
    std::size_t next = 0;
    while (at < text.size()) {
        if (next < pattern.size() && pattern[next] == '*') {
            star = next++;
            resume = at;
        } else if (next < pattern.size() && (pattern[next] == '?' || pattern[next] == text[at])) {
            ++next;
            ++at;
        } else if (star != std::string_view::npos) {
            next = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', next) == std::string_view::npos;
}

// The path itself, or anything in the folder of that name.
bool holds(std::string path, std::string wanted, bool ignoreCase) {
    if (ignoreCase) {
        path = StrToLower(path);
        wanted = StrToLower(wanted);
    }
    while (wanted.ends_with('/'))
        wanted.pop_back();
    return matches(path, wanted) || matches(path, wanted + "/*");
}

CommandResult listImages(const CatalogueClient& client, const Selection& selection, bool withSeconds) {
    std::string output = padded("Backed up", withSeconds ? 19 : 16) +
                         padded("Expires", withSeconds ? 19 : 16) + padded("Files", 6) + padded("Type", 4) +
                         padded("Schedule", 16) + padded("Hold", 4) + "Policy\n";
    output += std::string(output.size() - 1, '-') + "\n";
    for (const CatalogueImage& image : client.images)
        if (selection.takes(image))
            output += dateText(image.time, withSeconds) + " " +
                      dateText(image.time + DAYS_KEPT * 86400, withSeconds) + " " +
                      padded(std::to_string(image.files.size()), 6) + padded(std::to_string(client.type), 4) +
                      padded(image.schedule, 16) + padded("0", 4) + image.policy + "\n";
    return {CATALOGUE_DONE, output};
}

// The newest full image that was asked for starts the span; the images up to the next full one belong to it.
CommandResult likelyDate(const CatalogueClient& client, const Selection& selection) {
    std::optional<std::int64_t> date;
    for (auto image = client.images.rbegin(); image != client.images.rend(); ++image) {
        if (!selection.takes(*image))
            continue;
        if (selection.start == 0) {
            if (isFull(*image))
                date = image->time;
        } else {
            if (date && isFull(*image))
                break;
            date = image->time;
        }
    }
    if (!date)
        return {CATALOGUE_NO_ENTITY, {}};
    return {CATALOGUE_DONE, std::to_string(*date) + " " + dateText(*date, true) + "\n"};
}

CommandResult listFiles(const CatalogueClient& client, const Selection& selection, const std::string& wanted,
                        bool ignoreCase) {
    std::string output;
    for (const CatalogueImage& image : client.images)
        if (selection.takes(image))
            for (const std::string& file : image.files)
                if (holds(file, wanted, ignoreCase))
                    output += file + "\n";
    return {output.empty() ? CATALOGUE_NO_ENTITY : CATALOGUE_DONE, output};
}

std::vector<std::string> wordsOf(const std::string& commandLine) {
    char** raw = nullptr;
    const int parsed = ParseCommand(commandLine, raw);
    const std::unique_ptr<char*, decltype(&FreeArguments)> owner(raw, &FreeArguments);
    std::vector<std::string> words;
    for (char** word = raw; parsed == 1 && *word; ++word)
        words.emplace_back(*word);
    return words;
}

} // namespace

CommandResult runCatalogueCommand(const Catalogue& catalogue, const std::string& commandLine) {
    const std::vector<std::string> words = wordsOf(commandLine);
    const bool images = !words.empty() && words.front() == "kvnclimagelist";
    if (words.empty() || (!images && words.front() != "kvnlist"))
        return {CATALOGUE_NO_COMMAND, "only kvnclimagelist and kvnlist can be run here\n"};

    Arguments arguments(words, images ? std::span<const Option>(IMAGE_LIST_OPTIONS)
                                      : std::span<const Option>(FILE_LIST_OPTIONS));
    const Selection selection = {
        arguments.text(images ? "-client" : "-C"),
        arguments.text(images ? "-policy" : "-k"),
        static_cast<int>(arguments.number(images ? "-ct" : "-t", CATALOGUE_STANDARD)),
        arguments.number("-s", 0),
        arguments.number("-e", END_OF_TIME),
    };
    if (selection.client.empty())
        arguments.complain("no client is named");
    else if (arguments.operands().size() != (images ? 0U : 1U))
        arguments.complain(images ? "what is " + arguments.operands().front() + "?"
                                  : "exactly one path is wanted");
    if (!arguments.complaint().empty())
        return {CATALOGUE_BAD_OPTION, words.front() + ": " + arguments.complaint() + "\n"};

    const auto named = [&](const CatalogueClient& client) {
        return StrCaseCmp(client.name.c_str(), selection.client.c_str()) == 0;
    };
    const auto client = std::ranges::find_if(catalogue.clients, named);
    if (client != catalogue.clients.end() && client->status != 0)
        return {client->status, {}};
    if (client == catalogue.clients.end() || client->type != selection.type)
        return {CATALOGUE_NO_ENTITY, {}};
    if (!images)
        return listFiles(*client, selection, arguments.operands().front(), arguments.has("-I"));
    return arguments.has("-likelydate") ? likelyDate(*client, selection)
                                        : listImages(*client, selection, arguments.has("-Listseconds"));
}

} // namespace Zorvane
