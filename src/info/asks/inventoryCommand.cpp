// SPDX-License-Identifier: Apache-2.0
// zorinfo inventory: the tree of a target, its names as the configuration file takes them.
#include "info/asks/TargetTree.h"
#include "info/asks/TextTable.h"
#include "info/draft/TargetDraft.h"
#include "info/layout/labels.h"
#include "info/passedOptions.h"
#include "info/subcommands.h"
#include "inventory/CZorb2vKvnrdConnect.h"
#include "logging/Trace.h"

#include <algorithm>
#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* HELP =
    "OPTIONS are those of zorb2v that name a target: -vmserver NAME and -vmproxy HOST, also with two dashes; "
    "if wanted -S SERVER. Without a target the servers and the backup hosts are listed. Lines with a \"=\" "
    "are "
    "lines of a configuration file.\n"
    "Exit status: 0 asked and answered; 2 wrong usage; 3 something could not be asked.";

constexpr int MEBIBYTE_BITS = 20;

struct InventoryOptions {
    std::string server;
    std::string proxy;
    std::string master;
};

// As short as zorb2v lets options be cut; the two dashes of other tools are taken as well.
bool isOption(std::string word, std::string_view name, std::size_t shortest) {
    if (word.starts_with("--"))
        word.erase(0, 1);
    return word.size() >= shortest && name.starts_with(word);
}

InventoryOptions optionsOf(const std::vector<std::string>& words) {
    InventoryOptions options;
    for (auto word = words.begin(); word != words.end(); ++word) {
        std::string& value = isOption(*word, "-vmserver", 5)  ? options.server
                             : isOption(*word, "-vmproxy", 5) ? options.proxy
                             : isOption(*word, "-S", 2)
                                 ? options.master
                                 : throw InfoFailure(InfoExit::USAGE, "inventory does not take \"" + *word +
                                                                          "\"; see zorinfo inventory --help");
        if (word + 1 == words.end())
            throw InfoFailure(InfoExit::USAGE, *word + " needs a value");
        value = *++word;
    }
    if (options.server.empty() != options.proxy.empty())
        throw InfoFailure(InfoExit::USAGE, "-vmserver and -vmproxy belong together; zorinfo inventory alone "
                                           "lists what there is");
    return options;
}

// --- Text

/// Writes the tree, a thing a line.
class TreeText {
  public:
    TreeText(const TargetTree& target, const Session& session) : m_target(target), m_session(session) {}

    void write() {
        m_session.out() << m_session.colored(shown(m_target.server), color::BOLD)
                        << (m_target.isVCenter ? ", a vCenter" : ", a stand-alone ESX host") << ", through "
                        << shown(m_target.proxy) << '\n';
        for (const TargetDataCenter& dataCenter : m_target.dataCenters)
            write(dataCenter);
    }

  private:
    static constexpr std::size_t STEP = 2;

    void write(const TargetDataCenter& dataCenter) {
        m_session.out() << '\n';
        entry(0, "datacenter", dataCenter.name);
        missing(STEP, "folders", dataCenter.name);
        for (const std::string& folder : dataCenter.folders)
            entry(STEP, "folder", folder);
        for (const TargetCluster& cluster : dataCenter.clusters) {
            entry(STEP, "cluster", cluster.name);
            for (const TargetHost& host : cluster.hosts)
                write(host, 2 * STEP);
        }
        for (const TargetHost& host : dataCenter.hosts)
            write(host, STEP);
        machines(dataCenter.machines, STEP);
    }

    void write(const TargetHost& host, std::size_t indent) {
        entry(indent, "esxhost", host.name);
        indent += STEP;
        for (const char* what : {"resource pools", "networks", "data stores", "machines"})
            missing(indent, what, host.name);
        for (const std::string& pool : host.pools)
            entry(indent, "resourcepool", pool);
        for (const std::string& network : host.networks)
            entry(indent, "network", network);
        std::size_t width = 0;
        for (const auto& store : host.stores)
            width = std::max(width, terminalColumns(shown(store.first)));
        for (const auto& [name, freeMegabytes] : host.stores) {
            const std::string text = shown(name);
            std::string note = std::string(width - terminalColumns(text), ' ') + "  " +
                               sizeText(std::int64_t{freeMegabytes} << MEBIBYTE_BITS) + " free";
            if (name.find(':') != std::string::npos)
                note += " (a harddisk line can't name it)";
            entry(indent, "datastore", name, note);
        }
        machines(host.machines, indent);
    }

    // Names that are taken: nothing to paste.
    void machines(const std::vector<std::string>& names, std::size_t indent) {
        for (const std::string& name : names)
            m_session.out() << std::string(indent, ' ') << m_session.colored("machine", color::DIM) << ' '
                            << shown(name) << '\n';
    }

    void entry(std::size_t indent, const char* key, const std::string& name, const std::string& note = {}) {
        m_session.out() << std::string(indent, ' ') << m_session.colored(std::string(key) + "=", color::DIM)
                        << shown(name) << m_session.colored(note, color::DIM)
                        << (isWritable(name) ? "" : "  (the file can't name it)") << '\n';
    }

    void missing(std::size_t indent, const std::string& what, const std::string& place) {
        for (const UnansweredListing& listing : m_target.unanswered)
            if (listing.what == what && listing.place == place)
                m_session.out() << std::string(indent, ' ')
                                << m_session.colored(what + " not told (status " +
                                                         std::to_string(listing.status) + ")",
                                                     color::WARNS)
                                << '\n';
    }

    const TargetTree& m_target;
    const Session& m_session;
};

const char* typeOf(int type) {
    return type == VM_SERVER_VCENTER ? "vcenter" : "esx";
}

void writeServers(const TargetServers& known, const Session& session) {
    TextTable table({"OPTION", "NAME", "KIND"});
    for (const auto& [name, type] : known.servers)
        table.add({"-vmserver", name, type == VM_SERVER_VCENTER ? "vCenter" : "stand-alone ESX host"});
    for (const std::string& proxy : known.proxies)
        table.add({"-vmproxy", proxy, "backup host"});
    table.write(session);
}

// --- Documents

Json documentOf(const TargetServers& known) {
    Json servers = Json::array();
    for (const auto& [name, type] : known.servers)
        servers.push_back({{"name", name}, {"type", typeOf(type)}});
    return {{"servers", servers}, {"proxies", known.proxies}};
}

Json documentOf(const std::deque<TargetHost>& hosts) {
    Json documents = Json::array();
    for (const TargetHost& host : hosts) {
        Json stores = Json::array();
        for (const auto& [name, freeMegabytes] : host.stores)
            stores.push_back({{"name", name}, {"free", freeMegabytes}});
        documents.push_back({{"name", host.name},
                             {"pools", host.pools},
                             {"networks", host.networks},
                             {"stores", stores},
                             {"machines", host.machines}});
    }
    return documents;
}

Json documentOf(const TargetTree& target) {
    Json dataCenters = Json::array(), unanswered = Json::array();
    for (const TargetDataCenter& dataCenter : target.dataCenters) {
        Json clusters = Json::array();
        for (const TargetCluster& cluster : dataCenter.clusters)
            clusters.push_back({{"name", cluster.name}, {"hosts", documentOf(cluster.hosts)}});
        dataCenters.push_back({{"name", dataCenter.name},
                               {"folders", dataCenter.folders},
                               {"clusters", clusters},
                               {"hosts", documentOf(dataCenter.hosts)},
                               {"machines", dataCenter.machines}});
    }
    for (const UnansweredListing& listing : target.unanswered)
        unanswered.push_back({{"what", listing.what}, {"place", listing.place}, {"status", listing.status}});
    return {{"target",
             {{"server", target.server},
              {"type", target.isVCenter ? "vcenter" : "esx"},
              {"proxy", target.proxy},
              {"dataCenters", dataCenters},
              {"unanswered", unanswered}}}};
}

void run(const std::vector<std::string>& words, Session& session) {
    const InventoryOptions options = optionsOf(words);
    ClassTrace trace(g_appLog, "inventoryCommand:run()", ", server=", options.server);
    if (options.server.empty()) {
        const TargetServers known = askServers(options.master);
        return session.isJson() ? session.writeJson(documentOf(known)) : writeServers(known, session);
    }
    TargetTree target = askTarget(options.server, options.proxy, options.master);
    TargetListings(target, options.master).fillAll();
    if (session.isJson())
        session.writeJson(documentOf(target));
    else
        TreeText(target, session).write();
    if (!target.unanswered.empty())
        session.m_exit = InfoExit::NOT_ASKED;
}

} // namespace

void addInventory(CLI::App& app, Session& session) {
    CLI::App* command =
        app.add_subcommand("inventory", "Show the objects of a target, names ready to paste: OPTIONS.");
    takeOptionsOfZorb2v(*command);
    command->footer(HELP);
    command->callback([command, &session] { run(optionsOfZorb2v(*command, session), session); });
}

} // namespace Zorvane
