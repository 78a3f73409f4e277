// SPDX-License-Identifier: Apache-2.0
#include "bundle/tomlFiles.h"

#include "suite/toml.h"

#include <algorithm>
#include <string_view>

#include <fnmatch.h>

namespace Zorvane {

namespace {

constexpr const char* KNOWN_KEYS[] = {
    "master.servers",
    "master.media_servers",
    "master.client_name",
    "master.required_interface",
    "master.quss",
    "services.zord",
    "services.kvnrd",
    "services.zorbd",
    "logging.directory",
    "logging.max_bytes",
    "logging.max_files",
    "logging.debug",
    "logging.diag",
    "logging.originator.*.debug",
    "logging.originator.*.diag",
    "catalog.directory",
};

// What a text names, by its key and, for the word "name", the table around it.
constexpr struct {
    std::string_view key;
    NameKind kind;
} NAME_KEYS[] = {
    {"servers", NameKind::Host},       {"media_servers", NameKind::Host},
    {"client_name", NameKind::Host},   {"required_interface", NameKind::Host},
    {"directory", NameKind::Folder},   {"proxies", NameKind::Host},
    {"server.name", NameKind::Host},   {"datacenter.name", NameKind::DataCenter},
    {"host.name", NameKind::Host},     {"datastores.name", NameKind::Store},
    {"client.name", NameKind::Client}, {"pod", NameKind::Store},
    {"cluster", NameKind::Cluster},    {"folders", NameKind::Folder},
    {"pools", NameKind::Pool},         {"networks", NameKind::Network},
    {"machines", NameKind::Machine},   {"policy", NameKind::Name},
};

std::optional<toml::table> parsed(std::string_view text) {
    try {
        return Suite::parseToml(text, {});
    } catch (const toml::parse_error&) {
        return std::nullopt;
    }
}

// Visits every text with its key and that of the table that it stands in.
template <class Visit>
void eachText(toml::node& node, std::string_view table, std::string_view key, const Visit& visit) {
    if (auto* text = node.as_string())
        visit(text->get(), table, key);
    else if (auto* inner = node.as_table())
        for (auto&& [name, value] : *inner)
            eachText(value, key, name.str(), visit);
    else if (auto* list = node.as_array())
        for (toml::node& each : *list)
            eachText(each, table, key, visit);
}

bool isKnown(const std::string& key, const toml::node& value) {
    const toml::array* list = value.as_array();
    const bool isPlain =
        value.is_string() || value.is_integer() || (list && list->is_homogeneous<std::string>());
    return isPlain && std::ranges::any_of(KNOWN_KEYS, [&](const char* known) {
               return ::fnmatch(known, key.c_str(), FNM_NOESCAPE) == 0;
           });
}

toml::table knownKeys(const toml::table& table, const std::string& path, toml::array& others) {
    toml::table known;
    for (const auto& [key, value] : table) {
        const std::string name = path + std::string(key.str());
        if (const toml::table* inner = value.as_table()) {
            if (toml::table kept = knownKeys(*inner, name + ".", others); !kept.empty())
                known.insert(key, std::move(kept));
        } else if (isKnown(name, value)) {
            known.insert(key, value);
        } else {
            others.push_back(name);
        }
    }
    return known;
}

} // namespace

void learnToml(const std::string& text, Mask& mask) {
    auto root = parsed(text);
    if (!root)
        return;
    eachText(*root, {}, {}, [&](const std::string& value, std::string_view table, std::string_view key) {
        const std::string full = std::string(table) + "." + std::string(key);
        for (const auto& [known, kind] : NAME_KEYS)
            if (known == key || known == full)
                mask.learn(kind, value);
        mask.survey(value);
    });
}

std::optional<std::string> maskedToml(const std::string& text, Mask& mask) {
    auto root = parsed(text);
    if (!root)
        return std::nullopt;
    eachText(*root, {}, {}, [&](std::string& value, std::string_view, std::string_view) {
        value = mask.masked(std::string_view(value));
    });
    return Suite::tomlText(*root);
}

std::optional<std::string> knownConfiguration(const std::string& text) {
    const auto root = parsed(text);
    if (!root)
        return std::nullopt;
    toml::array others;
    toml::table known = knownKeys(*root, "", others);
    if (!others.empty())
        known.insert("left_out", std::move(others));
    return Suite::tomlText(known);
}

} // namespace Zorvane
