// SPDX-License-Identifier: Apache-2.0
#include "bundle/siteFacts.h"

#include "bundle/Bundle.h"
#include "bundle/tomlFiles.h"
#include "bundle/withinLimit.h"
#include "logging/CZorLog.h"
#include "suite/configuration.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

#include <netdb.h>
#include <nlohmann/json.hpp>
#include <sys/socket.h>
#include <sys/stat.h>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

// A conversion needs all but the boot server's.
constexpr std::pair<const char*, bool> SERVICES[] = {{"zord", true}, {"kvnrd", true}, {"zorbd", false}};

std::string addressText(const sockaddr* address, socklen_t length, bool withPort) {
    std::array<char, NI_MAXHOST> host;
    std::array<char, NI_MAXSERV> port;
    if (::getnameinfo(address, length, host.data(), host.size(), port.data(), port.size(),
                      NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        return {};
    return withPort ? std::string(host.data()) + " port " + port.data() : host.data();
}

// The addresses of a name, separated by line feeds.
std::string resolve(const std::string& name) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (const int error = ::getaddrinfo(name.c_str(), nullptr, &hints, &found))
        throw std::runtime_error(::gai_strerror(error));
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
    std::string addresses;
    for (const addrinfo* entry = found; entry; entry = entry->ai_next)
        addresses += (addresses.empty() ? "" : "\n") + addressText(entry->ai_addr, entry->ai_addrlen, false);
    return addresses;
}

// The address and the port that took the connection, as the suite's own library makes it.
std::string connectTo(const std::string& host, const char* service) {
    int descriptor = -1;
    if (const int status = kvlink_connect_to_service(host.c_str(), service, 0, 0, 0, 0, &descriptor))
        throw std::runtime_error(std::string(getECmsg(status)) + " (status " + std::to_string(status) + ")");
    sockaddr_storage peer{};
    socklen_t length = sizeof peer;
    const bool isKnown = ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &length) == 0;
    kvlink_closesocket(descriptor);
    return isKnown ? addressText(reinterpret_cast<sockaddr*>(&peer), length, true) : std::string();
}

std::vector<std::string> serverNames(const kvn_master_config& master) {
    std::vector<std::string> names = master.servers;
    for (const auto& more : {master.media_servers, std::vector{master.client_name}})
        for (const std::string& name : more)
            if (!name.empty() && std::ranges::find(names, name) == names.end())
                names.push_back(name);
    return names;
}

Json configurationInForce(const Suite::Configuration& site) {
    const auto levels = [](const Suite::Levels& of) { return Json{{"debug", of.debug}, {"diag", of.diag}}; };
    Json services = Json::object();
    for (const auto& [name, isNeeded] : SERVICES)
        if (const auto port = site.services.find(name); port != site.services.end())
            services[name] = port->second;
    constexpr std::array modes = {"required", "allowed", "prohibited"};
    return {
        {"file", Suite::configurationPath()},
        {"isPresent", site.present},
        {"master",
         {{"servers", site.master.servers},
          {"mediaServers", site.master.media_servers},
          {"clientName", site.master.client_name},
          {"requiredInterface", site.master.required_interface},
          {"quss", modes.at(static_cast<std::size_t>(site.master.quss_mode))}}},
        {"services", services},
        {"logging",
         {{"directory", site.logDirectory},
          {"maxBytes", site.logMaxBytes},
          {"maxFiles", site.logMaxFiles},
          {"command", levels(site.levelsOf(ZOR_COMMAND_ORIGINATOR))},
          {"library", levels(site.levelsOf(ZOR_LIBRARY_ORIGINATOR))}}},
        {"catalog", {{"directory", site.catalogDirectory}}},
    };
}

} // namespace

void addConfigurationFile(Bundle& bundle, const std::string& file) {
    bundle.mask().learn(NameKind::Folder, file.substr(0, file.rfind('/') + 1));
    bundle.addFile("site/kvn.toml", "the keys of the suite's configuration file that the suite knows",
                   Form::Toml, file, &knownConfiguration);
}

void addSite(Bundle& bundle) {
    const Suite::Configuration& site = Suite::configuration();
    addConfigurationFile(bundle, Suite::configurationPath());
    bundle.add("site/configuration.json", "the configuration in force, and the file that it comes from",
               Form::Json, jsonText(configurationInForce(site)));
    if (site.logDirectory.empty())
        bundle.miss("logs", "no log directory is configured; set directory in [logging]");
    else
        addLogs(bundle, site.logDirectory);
}

void addServers(Bundle& bundle, std::chrono::seconds limit) {
    const kvn_master_config& master = Suite::configuration().master;
    if (master.servers.empty()) {
        bundle.miss("the servers", "no master server is configured; set servers in [master]");
        return;
    }
    Json names = Json::array(), services = Json::array();
    for (const std::string& name : serverNames(master)) {
        const Outcome outcome = withinLimit(limit, [&] { return resolve(name); });
        names.push_back({{"name", name}, {"resolves", outcome.isDone}, {"result", outcome.text}});
    }
    for (const auto& [service, isNeeded] : SERVICES) {
        const auto begin = Clock::now();
        const std::string& host = master.servers.front();
        const Outcome outcome = withinLimit(limit, [&, name = service] { return connectTo(host, name); });
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
        services.push_back({{"host", host},
                            {"service", service},
                            {"answers", outcome.isDone},
                            {"result", outcome.text},
                            {"milliseconds", took.count()}});
        if (!outcome.isDone && isNeeded)
            bundle.miss(std::string("service ") + service + " of the master server", outcome.text, true);
    }
    bundle.add("site/servers.json",
               "what the servers' names resolve to, and whether the services take connections", Form::Json,
               jsonText({{"names", names}, {"services", services}}));
}

void addLogs(Bundle& bundle, const std::string& directory) {
    for (const std::uint64_t originator : {ZOR_COMMAND_ORIGINATOR, ZOR_LIBRARY_ORIGINATOR}) {
        const std::string name = std::to_string(ZOR_PRODUCT_ID) + "-" + std::to_string(originator);
        const std::string whose = originator == ZOR_COMMAND_ORIGINATOR ? "the command" : "the shared code";
        // A log that was rotated a moment ago tells nothing by itself.
        const std::string rotated = directory + "/" + name + ".1.log";
        struct stat facts {};
        if (::lstat(rotated.c_str(), &facts) == 0)
            bundle.addEnd("logs/" + name + ".1.log", "the last lines of the log before, of " + whose,
                          rotated);
        bundle.addEnd("logs/" + name + ".log", "the last lines of the log of " + whose,
                      directory + "/" + name + ".log");
    }
}

} // namespace Zorvane
