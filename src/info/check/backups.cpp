// SPDX-License-Identifier: Apache-2.0
#include "info/check/backups.h"

#include "model/core_records.h"
#include "ops/zorop.h"
#include "platform/fieldSplitting.h"
#include "platform/stringManipulation.h"
#include "resources/backupCatalogue.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <functional>
#include <optional>
#include <sstream>

namespace Zorvane {

namespace {

constexpr std::int64_t TOLERATED_AGE = 86400; // a day: disks seldom change between a night and the next
constexpr std::size_t MOST_IMAGES = 10;       // each costs a command a file

struct Image {
    std::string date; ///< as the catalogue writes it
    std::int64_t time = 0;
    std::string scheduleType;
    std::string policy;

    [[nodiscard]] bool isFull() const { return StrContainsSubstring(scheduleType, "full", false) != 0; }
};

std::string field(const std::string& line, unsigned number) {
    std::string text;
    GetFieldFromLine(line, " ", number, text, true);
    return StripTrailingChar(text, '\r');
}

std::string dateText(std::int64_t seconds) {
    const auto ticks = static_cast<std::time_t>(seconds);
    std::tm fields{};
    char text[64] = "";
    if (::gmtime_r(&ticks, &fields))
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", &fields);
    return text;
}

std::optional<std::int64_t> timeOf(const std::string& date) {
    std::tm fields{};
    const char* end = ::strptime(date.c_str(), "%Y-%m-%d %H:%M:%S", &fields);
    return end && *end == '\0' ? std::optional<std::int64_t>(::timegm(&fields)) : std::nullopt;
}

/// The backup catalogue, asked about one client.
class Catalogue {
  public:
    Catalogue(const CEsm& esm, bool isWindows)
        : m_nodeName(esm.getNodeName()), m_type(isWindows ? WINDOWS_CLIENT_TYPE : OTHER_CLIENT_TYPE) {}

    /// The images that there are, the newest first, and how many more have no date that can be read. The
    /// status of the command.
    int listImages(std::vector<Image>& images, std::size_t& unread) {
        std::vector<std::string> lines;
        const int status = runForEitherType(lines, [&] {
            return "kvnclimagelist -client " + m_nodeName + " -X -s 0 -X -e " +
                   std::to_string(CATALOGUE_END_OF_TIME) + " -t NOT_ARCHIVE -Listseconds -ct " +
                   std::to_string(m_type);
        });
        for (std::size_t i = IMAGE_HEADER_LINES; i < lines.size(); ++i) {
            Image image{.date = field(lines[i], IMAGE_DATE_FIELD) + " " + field(lines[i], IMAGE_TIME_FIELD),
                        .scheduleType = field(lines[i], IMAGE_SCHEDULE_TYPE_FIELD),
                        .policy = field(lines[i], IMAGE_POLICY_FIELD)};
            const std::optional<std::int64_t> time = timeOf(image.date);
            image.time = time.value_or(0);
            if (time && !image.policy.empty())
                images.push_back(std::move(image));
            else
                ++unread;
        }
        std::stable_sort(images.begin(), images.end(),
                         [](const Image& a, const Image& b) { return a.time > b.time; });
        return status;
    }

    /// The date of the newest full backup; 0 if there is none. The status of the command.
    int tellNewestFull(std::int64_t& date) {
        std::vector<std::string> lines;
        const int status = runForEitherType(lines, [&] {
            return "kvnclimagelist -client " + m_nodeName + " -X -s 0 -ct " + std::to_string(m_type) +
                   " -t NOT_ARCHIVE -likelydate";
        });
        const std::string first = lines.empty() ? std::string() : field(lines.front(), 1);
        std::from_chars(first.data(), first.data() + first.size(), date);
        return status;
    }

    [[nodiscard]] bool holds(const Image& image, const std::string& file) const {
        std::vector<std::string> lines;
        const std::string time = std::to_string(image.time);
        return run("kvnlist -E -C " + m_nodeName + " -k " + image.policy + " -t " + std::to_string(m_type) +
                       " -X -s " + time + " -X -e " + time + " -I \"" + file + "\"",
                   lines) == 0;
    }

  private:
    static int run(const std::string& command, std::vector<std::string>& lines) {
        std::stringstream output;
        std::string errorText;
        const int status = ZorOps(ZOROP_PREPARE, ZOROP_CLIENT, command, output, &errorText);
        Split(output.str(), "\n", lines);
        return status;
    }

    // As a run does it: the images can stand under the other client type, which goes on to be the client's.
    int runForEitherType(std::vector<std::string>& lines, const std::function<std::string()>& command) {
        int status = run(command(), lines);
        if (status == STATUS_WRONG_CLIENT_TYPE) {
            m_type = m_type == WINDOWS_CLIENT_TYPE ? OTHER_CLIENT_TYPE : WINDOWS_CLIENT_TYPE;
            status = run(command(), lines);
        }
        return status;
    }

    std::string m_nodeName;
    int m_type;
};

/// What the hints about a client's backups go by.
struct Backups {
    Catalogue& catalogue;
    std::vector<Image> images;
    std::string policy;     ///< that the configuration names
    std::int64_t taken = 0; ///< the configuration's date
};

std::string statusText(int status) {
    return "the catalogue's command ended with status " + std::to_string(status);
}

// Why a conversion does not take the file from the image. It lists the images up to the configuration's date,
// and of its policy if it names one. The first full one tells the policy to go on with: the newest full image
// of that must hold the files, be it newer than the configuration.
std::string objectionTo(const Image& image, const Backups& backups) {
    const auto isNewer = [&](const Image& any) { return backups.taken != 0 && any.time > backups.taken; };
    const auto first = std::find_if(backups.images.begin(), backups.images.end(), [&](const Image& any) {
        return any.isFull() && !isNewer(any) && (backups.policy.empty() || any.policy == backups.policy);
    });
    const bool isSearched = first != backups.images.end();
    const std::string& policy = isSearched ? first->policy : backups.policy;
    std::string text;
    const auto add = [&](const std::string& reason) { text += (text.empty() ? "" : " and ") + reason; };
    if (!image.isFull())
        add("is no full one (" + image.scheduleType + ")");
    if (!isSearched && isNewer(image))
        add("is newer than the configuration of " + dateText(backups.taken));
    if (!policy.empty() && image.policy != policy)
        add("is of another policy than the one that is searched, \"" + policy + "\"");
    if (!text.empty())
        return text;
    const bool isNewest = std::none_of(backups.images.begin(), backups.images.end(), [&](const Image& other) {
        return other.isFull() && other.policy == image.policy && other.time > image.time;
    });
    return isNewest ? "would do, but the search did not find it there; the log tells how it went"
                    : "is not the newest full one, which decides";
}

void hintAtHolder(Finding& finding, const Backups& backups, std::size_t asked) {
    const auto last = backups.images.begin() + static_cast<std::ptrdiff_t>(asked);
    const auto holder = std::find_if(backups.images.begin(), last, [&](const Image& image) {
        return backups.catalogue.holds(image, finding.value);
    });
    if (holder != last)
        finding.hint = "The newest backup that holds it, of " + holder->date + " by policy \"" +
                       holder->policy + "\", " + objectionTo(*holder, backups) +
                       ". Run a full backup of all of the client, and use the configuration that it saves.";
    else
        finding.hint = (asked == backups.images.size()
                            ? "No backup of the client holds it."
                            : "None of the newest " + std::to_string(asked) + " backups holds it.") +
                       " Run a full backup of all of the client, the system state included.";
}

void explainMissing(const Backups& backups, CollectedFindings& findings) {
    const std::size_t asked = std::min(MOST_IMAGES, backups.images.size());
    for (Finding& finding : findings.all()) {
        if (finding.kind == FindingKind::BACKUP_FILE)
            hintAtHolder(finding, backups, asked);
        else if (finding.kind == FindingKind::BACKUP_NONE && asked > 0)
            finding.hint = "The newest backup that there is, of " + backups.images.front().date +
                           " by policy \"" + backups.images.front().policy + "\", " +
                           objectionTo(backups.images.front(), backups) + ".";
    }
    if (asked < backups.images.size() && findings.has(FindingKind::BACKUP_FILE))
        findings.report(notChecked("older backups that may hold the missing files",
                                   "only the newest " + std::to_string(asked) + " of " +
                                       std::to_string(backups.images.size()) + " are asked"));
}

void warnOfOldBackup(Catalogue& catalogue, std::int64_t taken, Findings& findings) {
    std::int64_t newestFull = 0;
    if (taken == 0)
        return;
    if (const int status = catalogue.tellNewestFull(newestFull))
        findings.report(notChecked("age of the newest full backup", statusText(status)));
    else if (newestFull > 0 && taken - newestFull > TOLERATED_AGE)
        findings.report({.kind = FindingKind::BACKUP_OLD,
                         .value = dateText(newestFull),
                         .hint = "The configuration is of " + dateText(taken) + "."});
}

} // namespace

void lookIntoBackups(const B2VInput& input, CollectedFindings& findings) {
    const CZor& client = input.clientConfig;
    const CEsm* esm = client.m_vEsm.first();
    const CConfig* config = client.m_vConfig.first();
    if (!esm || !config)
        return;
    const CSystem* system = client.m_vSystem.first();
    Catalogue catalogue(*esm, system && system->getOs() == OsType::NT);
    const std::int64_t taken = config->getRetrievalTime();
    if (!findings.has(FindingKind::BACKUP_FILE) && !findings.has(FindingKind::BACKUP_NONE))
        return warnOfOldBackup(catalogue, taken, findings);
    Backups backups{catalogue, {}, esm->getPolicy(), taken};
    std::size_t unread = 0;
    if (const int status = catalogue.listImages(backups.images, unread))
        findings.report(notChecked("what other backups hold", statusText(status)));
    else if (unread > 0)
        findings.report(
            notChecked("what other backups hold", std::to_string(unread) + " have no date that can be read"));
    else
        explainMissing(backups, findings);
}

} // namespace Zorvane
