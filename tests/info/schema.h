// SPDX-License-Identifier: Apache-2.0
// Holds a document against a JSON Schema, as far as the schemas under share/schema go.
#pragma once

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace Zorvane {

class Schema {
  public:
    explicit Schema(const std::string& path) : m_root(nlohmann::json::parse(std::ifstream(path))) {}

    /// The first breach, with its place; empty if there is none. A keyword that this does not know throws, so
    /// that no rule of a schema goes unchecked.
    [[nodiscard]] std::string breach(const nlohmann::json& document) const {
        return check(document, m_root, "$");
    }

  private:
    using Json = nlohmann::json;

    static bool isOf(const Json& value, const std::string& type) {
        if (type == "integer")
            return value.is_number_integer();
        return type == (value.is_number() ? "number" : value.type_name());
    }

    // Compiled once: a document has thousands of texts of one pattern.
    const std::regex& regexOf(const std::string& pattern) const {
        const auto known = m_regexes.find(pattern);
        return known != m_regexes.end() ? known->second : m_regexes.emplace(pattern, pattern).first->second;
    }

    std::string check(const Json& value, const Json& schema, const std::string& at) const {
        for (const auto& [key, rule] : schema.items()) {
            std::string found;
            if (key == "$ref")
                found = check(value, m_root.at(Json::json_pointer(rule.get<std::string>().substr(1))), at);
            else if (key == "type") {
                const auto types = rule.is_array() ? rule.get<std::vector<std::string>>()
                                                   : std::vector{rule.get<std::string>()};
                if (std::none_of(types.begin(), types.end(),
                                 [&](const auto& type) { return isOf(value, type); }))
                    found = at + " is no " + rule.dump();
            } else if (key == "enum") {
                if (std::find(rule.begin(), rule.end(), value) == rule.end())
                    found = at + " is none of " + rule.dump();
            } else if (key == "pattern") {
                if (!value.is_string() || !std::regex_search(value.get<std::string>(), regexOf(rule)))
                    found = at + " does not match " + rule.dump();
            } else if (key == "minimum") {
                if (value.is_number() && value < rule)
                    found = at + " is below " + rule.dump();
            } else if (key == "required") {
                for (const auto& name : rule)
                    if (value.is_object() && !value.contains(name))
                        found = at + " lacks " + name.dump();
            } else if (key == "items") {
                for (std::size_t i = 0; value.is_array() && i < value.size() && found.empty(); ++i)
                    found = check(value[i], rule, at + '[' + std::to_string(i) + ']');
            } else if (key == "properties") {
                for (const auto& [name, property] : rule.items())
                    if (value.is_object() && value.contains(name) && found.empty())
                        found = check(value[name], property, at + '.' + name);
            } else if (key == "additionalProperties" && rule == false) {
                if (value.is_object())
                    for (const auto& [name, ignored] : value.items())
                        if (!schema.at("properties").contains(name))
                            found = at + " has a " + name;
            } else if (!std::set<std::string>{"$schema", "$defs", "title", "description"}.contains(key))
                throw std::runtime_error("this does not check the schema's keyword " + key);
            if (!found.empty())
                return found;
        }
        return {};
    }

    Json m_root;
    mutable std::map<std::string, std::regex> m_regexes;
};

} // namespace Zorvane
