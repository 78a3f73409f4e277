// SPDX-License-Identifier: Apache-2.0
#include "lab/Estate.h"

#include "lab/Catalogue.h"
#include "lab/LabError.h"
#include "lab/Store.h"
#include "lab/configurationFiles.h"
#include "lab/estateClients.h"
#include "lab/tomlFile.h"
#include "suite/printable.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <ostream>
#include <set>

namespace Zorvane {

namespace {

namespace fs = std::filesystem;
using std::string_view_literals::operator""sv;

constexpr std::int64_t DAY = 86400;
constexpr const char* DOMAIN = ".corp.example";
constexpr std::size_t PER_COMMIT = 100;

// Of a hundred clients so many are made from each sample; those of no number share what is left.
constexpr std::array SHARES = {std::pair{"ledger01"sv, 30U}, std::pair{"atlas07"sv, 30U},
                               std::pair{"quarry06"sv, 5U},  std::pair{"depot05"sv, 5U},
                               std::pair{"relic02"sv, 5U},   std::pair{"harbor03"sv, 12U}};

// Hosts are named for what they do; the suite may call a client by another name, in any alphabet.
constexpr std::array PURPOSES = {"app"sv, "db"sv, "web"sv, "file"sv, "print"sv, "mail"sv, "erp"sv, "build"sv};
constexpr std::array ODD_NAMES = {"print server "sv, "büro-"sv,           "lager/"sv,
                                  "経理-"sv,         "склад "sv,          "Ordonnance/été "sv,
                                  "o'connor "sv,     "kiosk \"front\" "sv};

std::string padded(std::size_t number) {
    constexpr std::size_t WIDTH = 4;
    std::string digits = std::to_string(number);
    return std::string(WIDTH - std::min(WIDTH, digits.size()), '0') + digits;
}

bool isConvertible(std::string_view sample) {
    return sample == "ledger01" || sample == "atlas07";
}

std::vector<EstateTemplate> readTemplates(const fs::path& samples) {
    std::vector<fs::path> files;
    for (const fs::path& folder : {samples, samples / "families"}) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folder, error))
            if (entry.path().extension() == ".xml")
                files.push_back(entry.path());
    }
    std::ranges::sort(files);
    if (files.empty())
        throw LabError("an estate is made from the sample clients, and there are none in " +
                       samples.string());
    std::vector<EstateTemplate> templates(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        readConfiguration(files[i], templates[i].rows);
        prune(templates[i].rows);
        templates[i].shortName = files[i].stem().string();
        templates[i].convertible = isConvertible(templates[i].shortName);
    }
    return templates;
}

const EstateTemplate& choose(const std::vector<EstateTemplate>& templates, Dice& dice) {
    std::size_t roll = dice.roll(100);
    std::vector<const EstateTemplate*> others;
    for (const EstateTemplate& each : templates) {
        const auto share =
            std::ranges::find(SHARES, each.shortName, [](const auto& row) { return row.first; });
        if (share == SHARES.end())
            others.push_back(&each);
        else if (roll < share->second)
            return each;
        else
            roll -= share->second;
    }
    return others.empty() ? templates.front() : *others[dice.roll(others.size())];
}

void appendImage(std::string& text, const std::string& policy, const char* schedule, std::int64_t time,
                 const std::string& content) {
    text += "\n  [[client.image]]\n  policy = " + tomlQuoted(policy) + "\n  schedule = \"" + schedule +
            "\"\n  time = " + std::to_string(time) + "\n  content = " + tomlQuoted(content) + "\n";
}

class Estate {
  public:
    Estate(Store& store, const EstateOptions& options, std::vector<EstateTemplate> templates)
        : m_store(store),
          m_extent(extentOf(options.size)),
          m_dice(options.seed),
          m_now(options.clock.value_or(std::time(nullptr))),
          m_templates(std::move(templates)) {}

    std::string load() {
        for (std::size_t number = m_store.configurations().size() + 1; number <= m_extent.clients; ++number)
            addClient(number);
        commit();
        return sharedContents() + m_catalogue;
    }

  private:
    void addClient(std::size_t number) {
        // The first one is the one with all those disks.
        const bool isFirst = m_clients++ == 0;
        const EstateTemplate* from = &choose(m_templates, m_dice);
        while (isFirst && !from->convertible)
            from = &choose(m_templates, m_dice);
        EstateClient client;
        client.number = number;
        client.shortName = (isFirst ? "bigdata-" : std::string(m_dice.pick(PURPOSES)) + "-") + padded(number);
        client.clientName = client.shortName + DOMAIN;
        if (!isFirst && m_dice.roll(10) == 0)
            client.clientName = std::string(m_dice.pick(ODD_NAMES)) + padded(number);
        client.disks = isFirst ? m_extent.disks : 1 + m_dice.roll(m_dice.roll(20) == 0 ? 12 : 4);
        client.saved = m_now - static_cast<std::int64_t>(m_dice.roll(14 * DAY));
        addCatalogueEntry(from->rows, client);
        addConfiguration(*from, client);
        // Some have kept what they were.
        constexpr std::array EARLIER = {"before update"sv, "2026-10-01 manual"sv, "Stand vor Umzug"sv};
        for (std::size_t i = m_dice.roll(10) == 0 ? 1 + m_dice.roll(2) : 0; i > 0; --i) {
            client.configuration = EARLIER[i - 1];
            client.pointInTime = i % 2 == 0;
            client.saved -= 30 * DAY;
            addConfiguration(*from, client);
        }
    }

    void addConfiguration(const EstateTemplate& from, const EstateClient& client) {
        m_waiting.push_back(makeEstateClient(from, client, m_dice));
        if (m_waiting.size() >= PER_COMMIT)
            commit();
    }

    void commit() {
        if (const StoreResult result = m_store.load(m_waiting); !result.ok())
            throw LabError("the estate's clients can't be loaded: " + Suite::printable(result.text));
        m_waiting.clear();
    }

    // Most have a full image just before the configuration was saved; some an old one, none, or a catalogue
    // that can't be read.
    void addCatalogueEntry(const CZor& rows, const EstateClient& client) {
        const CEsm* esm = rows.m_vEsm.first();
        const CSystem* system = rows.m_vSystem.first();
        if (!esm || !system)
            return;
        const std::string policy = esm->getPolicy().empty() ? "Daily" : esm->getPolicy();
        const std::string content = sharedContentOf(rows);
        std::string& text = m_catalogue;
        text += "\n[[client]]\nname = " + tomlQuoted(client.shortName + DOMAIN) + "\ntype = " +
                std::to_string(system->getOs() == OsType::NT ? CATALOGUE_WINDOWS : CATALOGUE_STANDARD) + "\n";
        const std::size_t fate = m_clients == 1 ? 99 : m_dice.roll(100);
        if (fate == 0)
            text += "status = 192\n";
        if (fate < 4)
            return;
        const char* const full = esm->getBscheduleType() == "Incremental" ? "Incremental" : "Full";
        const std::int64_t newest = client.saved - (fate < 12 ? 45 * DAY : 600);
        appendImage(text, policy, full, newest, content);
        appendImage(text, policy, "Incremental", client.saved - DAY / 2, content);
        appendImage(text, policy, full, newest - 7 * DAY, content);
    }

    Store& m_store;
    EstateExtent m_extent;
    Dice m_dice;
    std::int64_t m_now;
    std::vector<EstateTemplate> m_templates;
    std::vector<std::unique_ptr<CZor>> m_waiting; ///< for the next commit
    std::string m_catalogue;
    std::size_t m_clients = 0;
};

} // namespace

EstateExtent extentOf(EstateSize size) {
    switch (size) {
    case EstateSize::Small:
        return {25, 24, 6};
    case EstateSize::Medium:
        return {250, 120, 24};
    case EstateSize::Large:
        return {2000, 500, 60};
    case EstateSize::None:
        break;
    }
    return {};
}

std::string estateSizes() {
    std::string text;
    for (const auto& [name, size] :
         {std::pair{"small", EstateSize::Small}, std::pair{"medium", EstateSize::Medium},
          std::pair{"large", EstateSize::Large}}) {
        const EstateExtent extent = extentOf(size);
        text += std::string(text.empty() ? "" : ", ") + name + " (" + std::to_string(extent.clients) +
                " clients, " + std::to_string(extent.machines) + " machines, " +
                std::to_string(extent.disks) + " disks on one)";
    }
    return text;
}

std::string loadEstate(Store& store, const EstateOptions& options, const std::filesystem::path& samples,
                       std::ostream& out) {
    if (options.size == EstateSize::None)
        return {};
    std::string catalogue = Estate(store, options, readTemplates(samples)).load();
    std::set<std::string> clients;
    const std::vector<CConfig> configurations = store.configurations();
    for (const CConfig& config : configurations)
        clients.insert(config.getClientName());
    out << "made up more: " << clients.size() << " clients with " << configurations.size()
        << " configurations in all\n";
    return catalogue;
}

} // namespace Zorvane
