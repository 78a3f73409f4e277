// SPDX-License-Identifier: Apache-2.0
#include "lab/tomlFile.h"

#include "lab/LabError.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <utility>

namespace Zorvane {

namespace {

// A lab's file is a few pages; the bound keeps a wrong name (a device, an image) from being taken in whole.
constexpr std::size_t MAX_FILE_SIZE = std::size_t{4} << 20;

[[noreturn]] void refuseAt(const toml::source_region& where, const std::string& why) {
    std::ostringstream place;
    if (where.path)
        place << *where.path << ":";
    place << where.begin.line << ":" << where.begin.column << ": ";
    throw LabError(place.str() + why);
}

std::int64_t secondsOf(const toml::date_time& value) {
    using namespace std::chrono;
    const sys_days day = year(value.date.year) / value.date.month / value.date.day;
    const auto seconds = sys_seconds(day) + hours(value.time.hour) + minutes(value.time.minute) +
                         std::chrono::seconds(value.time.second);
    return (seconds - minutes(value.offset ? value.offset->minutes : 0)).time_since_epoch().count();
}

} // namespace

const toml::node* TomlTable::get(std::string_view key) {
    m_known.emplace(key);
    return m_table->get(key);
}

void TomlTable::refuse(const std::string& why) const {
    refuseAt(m_table->source(), why);
}

void TomlTable::refuse(const toml::node& node, std::string_view key, std::string_view wanted) const {
    refuseAt(node.source(), std::string(key) + " must be " + std::string(wanted));
}

std::string TomlTable::text(std::string_view key) {
    const toml::node* node = get(key);
    if (!node)
        refuse("the table needs the key " + std::string(key));
    auto value = node->value_exact<std::string>();
    if (!value || value->empty())
        refuse(*node, key, "a text that is not empty");
    return *std::move(value);
}

std::string TomlTable::text(std::string_view key, std::string_view otherwise) {
    return get(key) ? text(key) : std::string(otherwise);
}

std::int64_t TomlTable::integer(std::string_view key, std::int64_t least, std::int64_t most) {
    const toml::node* node = get(key);
    if (!node)
        refuse("the table needs the key " + std::string(key));
    const auto value = node->value_exact<std::int64_t>();
    if (!value || *value < least || *value > most)
        refuse(*node, key, "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return *value;
}

std::int64_t TomlTable::integer(std::string_view key, std::int64_t least, std::int64_t most,
                                std::int64_t otherwise) {
    return get(key) ? integer(key, least, most) : otherwise;
}

std::int64_t TomlTable::time(std::string_view key) {
    const toml::node* node = get(key);
    if (const auto value = node ? node->value_exact<toml::date_time>() : std::nullopt)
        return secondsOf(*value);
    return integer(key, 0, std::int64_t{1} << 40);
}

std::vector<std::string> TomlTable::texts(std::string_view key) {
    std::vector<std::string> values;
    const toml::node* node = get(key);
    if (!node)
        return values;
    if (!node->is_array())
        refuse(*node, key, "a list of texts");
    for (const toml::node& entry : *node->as_array()) {
        auto value = entry.value_exact<std::string>();
        if (!value || value->empty())
            refuse(entry, key, "a list of texts that are not empty");
        values.push_back(*std::move(value));
    }
    return values;
}

std::vector<TomlTable> TomlTable::tables(std::string_view key) {
    std::vector<TomlTable> values;
    const toml::node* node = get(key);
    if (!node)
        return values;
    const toml::array* array = node->as_array();
    if (!array || (!array->empty() && !array->is_homogeneous<toml::table>()))
        refuse(*node, key, "a list of tables");
    for (const toml::node& entry : *array)
        values.emplace_back(*entry.as_table(), m_root);
    return values;
}

TomlTable TomlTable::table(std::string_view key) {
    const toml::node* node = get(key);
    if (!node || !node->is_table())
        refuse("there must be a table [" + std::string(key) + "]");
    return {*node->as_table(), m_root};
}

void TomlTable::finish() const {
    for (const auto& [key, node] : *m_table) {
        if (m_known.contains(key.str()))
            continue;
        std::string known;
        for (const std::string& name : m_known)
            known += (known.empty() ? "" : ", ") + name;
        refuseAt(node.source(),
                 "\"" + std::string(key.str()) + "\" is no key of this table, which knows " + known);
    }
}

TomlTable readToml(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw LabError("cannot read " + file.string() +
                       "; \"zorlab init\" makes a lab directory with all its files");
    std::string text(MAX_FILE_SIZE + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    if (text.size() > MAX_FILE_SIZE || in.bad())
        throw LabError(file.string() + " is no file of a lab");
    try {
        auto root = std::make_shared<const toml::table>(Suite::parseToml(text, file.string()));
        return {*root, root};
    } catch (const toml::parse_error& failure) {
        refuseAt(failure.source(), std::string(failure.description()));
    }
}

std::string tomlQuoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7f) {
            quoted += c;
        } else {
            std::array<char, 8> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
            quoted += escape.data();
        }
    }
    return quoted + "\"";
}

} // namespace Zorvane
