// SPDX-License-Identifier: Apache-2.0
#include "lab/Dice.h"
#include "lab/Estate.h"
#include "lab/tomlFile.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <vector>

namespace Zorvane {

namespace {

using std::string_view_literals::operator""sv;
using Names = std::vector<std::string>;

constexpr std::size_t DEFAULT_MACHINES = 8; ///< of the default inventory
constexpr std::size_t MACHINES_PER_HOST = 12;
constexpr std::size_t HOSTS_PER_DATA_CENTER = 6;
constexpr std::size_t DATA_CENTERS_PER_SERVER = 2;
constexpr std::size_t HOSTS_PER_CLUSTER = 3;
constexpr std::size_t MOST_GIB = std::size_t{16} << 10; ///< free on a store, about

// Names as sites have them: with blanks, slashes, other alphabets, marks, and the same one in two places.
// Data centers and folders are parts of paths, where a slash is spelled "%2f".
constexpr std::array DATA_CENTERS = {
    "Zürich"sv,    "Osaka 2"sv, "Łódź"sv,       "東京"sv,  "Rechenzentrum Süd"sv,
    "São Paulo"sv, "Oslo"sv,    "Køge (old)"sv, "Αθήνα"sv, "Data Center 10"sv};
constexpr std::array FOLDERS = {"Production"sv,
                                "Production/Web"sv,
                                "Production/Databases"sv,
                                "Test"sv,
                                "Test/Web"sv,
                                "Test/Databases"sv,
                                "Übergabe"sv,
                                "Übergabe/Ablage 2026"sv,
                                "Einkauf %2f Lager"sv,
                                "部門"sv,
                                "部門/経理"sv};
constexpr std::array POOLS = {"Gold"sv,   "Gold/Web"sv,   "Gold/Databases"sv,
                              "Silver"sv, "Silver/Web"sv, "Größe M"sv};
constexpr std::array NETWORKS = {"VM Network"sv, "VLAN 10/20"sv, "Büro 120"sv,
                                 "生産"sv,       "Backup 900"sv, "DMZ (outer)"sv};
constexpr std::array MACHINES = {
    "web"sv,   "sql-"sv,   "app-"sv,      "Lohn & Gehalt "sv, "a/b test "sv,
    "büro-"sv, "Ceník "sv, "ファイル-"sv, "o'brien-"sv,       "kiosk.\"front\" "sv};
constexpr std::string_view MACHINE_OF_EVERY_DATA_CENTER = "template win2022";

std::string padded(std::size_t number, std::size_t width) {
    std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

template <class Items>
std::string list(const Items& items) {
    std::string text = "[";
    for (const auto& item : items)
        text += (text.size() == 1 ? "" : ", ") + tomlQuoted(std::string(item));
    return text + "]";
}

// One server after the other, each with its part of the machines.
class InventoryText {
  public:
    explicit InventoryText(const EstateOptions& options) : m_dice(options.seed) {}

    std::string write(std::size_t machines) {
        for (std::size_t server = 2; m_machines < machines; ++server) {
            m_text +=
                "\n[[server]]\nname = \"vcenter" + padded(server, 2) + ".lab.example\"\ntype = \"vcenter\"\n";
            for (std::size_t i = 0; i < DATA_CENTERS_PER_SERVER && m_machines < machines; ++i)
                dataCenter(machines);
        }
        return m_text;
    }

  private:
    void dataCenter(std::size_t machines) {
        const std::size_t number = m_dataCenters++;
        std::string name(DATA_CENTERS[number % DATA_CENTERS.size()]);
        if (number >= DATA_CENTERS.size())
            name += " " + std::to_string(number / DATA_CENTERS.size() + 1);
        m_text += "\n  [[server.datacenter]]\n  name = " + tomlQuoted(name) +
                  "\n  folders = " + list(FOLDERS) + "\n";
        for (std::size_t i = 0; i < HOSTS_PER_DATA_CENTER && (i == 0 || m_machines < machines); ++i)
            host(number, i, std::min(MACHINES_PER_HOST, machines - m_machines));
    }

    void host(std::size_t dataCenter, std::size_t place, std::size_t machines) {
        const std::size_t cluster = place / HOSTS_PER_CLUSTER;
        const std::string id = padded(dataCenter + 1, 2) + padded(place + 1, 2);
        m_text += "\n    [[server.datacenter.host]]\n    name = \"esx" + id + ".lab.example\"\n";
        // The last host of a full data center stands alone.
        if (place + 1 < HOSTS_PER_DATA_CENTER)
            m_text += "    cluster = " +
                      tomlQuoted("Cluster " + padded(dataCenter + 1, 2) + "/" + std::to_string(cluster + 1)) +
                      "\n";
        m_text += "    pools = " + list(POOLS) + "\n    networks = " + list(NETWORKS) +
                  "\n    machines = " + list(machineNames(place, machines)) + "\n    datastores = [\n";
        const std::string shared = padded(dataCenter + 1, 2) + "-" + std::to_string(cluster + 1);
        store("san " + shared, 1, "");
        store("größe/" + shared, 1, "");
        store("pod-" + shared + "-a", 4, "pod " + shared);
        store("pod-" + shared + "-b", 4, "pod " + shared);
        store("local-" + id, 16, "");
        m_text += "    ]\n";
    }

    void store(const std::string& name, std::size_t scarcity, const std::string& pod) {
        // Hosts of a cluster see the same stores.
        const auto [known, isNew] = m_freeGib.try_emplace(name);
        if (isNew)
            known->second = (64 + m_dice.roll(MOST_GIB)) / scarcity;
        m_text += "      { name = " + tomlQuoted(name) +
                  ", free_mib = " + std::to_string(known->second << 10) +
                  (pod.empty() ? "" : ", pod = " + tomlQuoted(pod)) + " },\n";
    }

    Names machineNames(std::size_t place, std::size_t count) {
        Names names;
        for (std::size_t i = 0; i < count; ++i, ++m_machines)
            names.push_back(place == 0 && i == 0
                                ? std::string(MACHINE_OF_EVERY_DATA_CENTER)
                                : std::string(m_dice.pick(MACHINES)) + padded(m_machines + 1, 4));
        return names;
    }

    Dice m_dice;
    std::string m_text;
    std::map<std::string, std::size_t> m_freeGib;
    std::size_t m_machines = DEFAULT_MACHINES;
    std::size_t m_dataCenters = 0;
};

} // namespace

std::string estateInventory(const EstateOptions& options) {
    return InventoryText(options).write(extentOf(options.size).machines);
}

} // namespace Zorvane
