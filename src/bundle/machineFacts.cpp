// SPDX-License-Identifier: Apache-2.0
#include "bundle/machineFacts.h"

#include "bundle/Bundle.h"
#include "bundle/utf8.h"
#include "platform/hostRoot.h"
#include "suite/kvnclient.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gnu/libc-version.h>
#include <link.h>
#include <nlohmann/json.hpp>
#include <pwd.h>
#include <unistd.h>
#include <xercesc/util/XercesVersion.hpp>
#include <zlib.h>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* VARIABLES[] = {"KVN_CONF",    "NO_COLOR", "TERM", "LC_ALL",
                                     "LC_MESSAGES", "LC_CTYPE", "LANG"};

// The lines of the release file that name it; PRETTY_NAME="..." and the like.
Json operatingSystem() {
    Json system = Json::object();
    std::ifstream file(HostPath("/etc/os-release"));
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        const std::string key = line.substr(0, equals);
        if (equals == line.npos || (key != "PRETTY_NAME" && key != "ID" && key != "VERSION_ID"))
            continue;
        std::string value = line.substr(equals + 1);
        std::erase(value, '"');
        system[key] = value;
    }
    return system;
}

// The files of the shared libraries, whose names mostly tell their versions.
Json loadedLibraries() {
    std::vector<std::string> files;
    ::dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* list) {
            if (info->dlpi_name && *info->dlpi_name == '/') {
                std::array<char, 4096> file{};
                const ssize_t length = ::readlink(info->dlpi_name, file.data(), file.size() - 1);
                static_cast<std::vector<std::string>*>(list)->push_back(
                    info->dlpi_name + (length > 0 ? " -> " + std::string(file.data()) : std::string()));
            }
            return 0;
        },
        &files);
    return files;
}

std::string userName(Mask& mask) {
    const passwd* user = ::getpwuid(::geteuid());
    if (!user)
        return {};
    mask.learn(NameKind::User, user->pw_name);
    return user->pw_name;
}

} // namespace

void addMachineFacts(Bundle& bundle, const std::vector<std::pair<std::string, std::string>>& libraries) {
    kvn_uname_info host;
    getUnameInfoData(host);
    bundle.mask().learn(NameKind::Host, host.node);
    Json versions = {{"C library", ::gnu_get_libc_version()},
                     {"Xerces-C", XERCES_FULLVERSIONDOT},
                     {"zlib", ::zlibVersion()},
                     {"JSON for Modern C++", std::to_string(NLOHMANN_JSON_VERSION_MAJOR) + "." +
                                                 std::to_string(NLOHMANN_JSON_VERSION_MINOR) + "." +
                                                 std::to_string(NLOHMANN_JSON_VERSION_PATCH)}};
    for (const auto& [name, version] : libraries)
        versions[name] = version;
    Json environment = Json::object();
    for (const char* name : VARIABLES) {
        const char* value = ::secure_getenv(name);
        environment[name] = value ? Json(value) : Json();
        if (value) // of a file
            bundle.mask().learn(NameKind::Folder, std::filesystem::path(value).parent_path().string());
    }
    const EnvironmentLocale& locale = environmentLocale();
    const Json facts = {
        {"program", {{"name", bundle.options().program}, {"version", bundle.options().version}}},
        {"libraries", versions},
        {"loaded", loadedLibraries()},
        {"operatingSystem", operatingSystem()},
        {"kernel", {{"system", host.system}, {"release", host.release}, {"machine", host.machine}}},
        {"host", host.node},
        {"user", {{"name", userName(bundle.mask())}, {"id", ::geteuid()}}},
        {"locale", {{"name", locale.name.empty() ? Json() : Json(locale.name)}, {"codeSet", locale.codeSet}}},
        {"environment", environment},
    };
    bundle.add("machine.json", "versions, operating system, locale, and the environment that counts",
               Form::Json, jsonText(facts));
}

} // namespace Zorvane
