// SPDX-License-Identifier: Apache-2.0
#include "suite/configurationDocument.h"

#include "suite/printable.h"
#include "suite/toml.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

namespace Zorvane::Suite {

namespace {

// Takes values out of a parsed file; those of a wrong type or out of range are told and passed over.
class Reader {
  public:
    Reader(const std::string& file, std::string& complaints) : m_file(file), m_complaints(complaints) {}

    const toml::table* section(const toml::table& parent, std::string_view name) {
        const toml::node* node = parent.get(name);
        if (!node || node->is_table())
            return node ? node->as_table() : nullptr;
        complain(*node, name, "a table");
        return nullptr;
    }

    void read(const toml::table& table, std::string_view key, std::string& target) {
        if (const toml::node* node = table.get(key)) {
            if (const auto* text = node->as_string())
                target = text->get();
            else
                complain(*node, key, "a text");
        }
    }

    void read(const toml::table& table, std::string_view key, std::vector<std::string>& target) {
        const toml::node* node = table.get(key);
        if (!node)
            return;
        const toml::array* array = node->as_array();
        if (!array || (!array->empty() && !array->is_homogeneous<std::string>()))
            return complain(*node, key, "a list of texts");
        target.clear();
        for (const toml::node& entry : *array)
            target.push_back(entry.as_string()->get());
    }

    template <std::integral Number>
    void read(const toml::table& table, std::string_view key, Number& target, std::int64_t least,
              std::int64_t most) {
        if (const toml::node* node = table.get(key)) {
            const auto* number = node->as_integer();
            if (number && number->get() >= least && number->get() <= most)
                target = static_cast<Number>(number->get());
            else
                complain(*node, key,
                         "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
        }
    }

    void complain(const toml::node& node, std::string_view key, const std::string& wanted) {
        complain(node.source(), std::string(key) + " must be " + wanted + "; the value is not used");
    }

    void complain(const toml::source_region& where, std::string_view text) {
        complain(where.begin.line, where.begin.column, text);
    }

    void complain(std::size_t line, std::size_t column, std::string_view text) {
        m_complaints += printable(m_file) + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " +
                        printable(text) + "\n";
    }

  private:
    const std::string& m_file;
    std::string& m_complaints;
};

void readMaster(Reader& reader, const toml::table& table, kvn_master_config& master) {
    reader.read(table, "servers", master.servers);
    reader.read(table, "media_servers", master.media_servers);
    reader.read(table, "client_name", master.client_name);
    reader.read(table, "required_interface", master.required_interface);
    if (const toml::node* quss = table.get("quss")) {
        static constexpr std::array modes = {std::pair("required", KVN_QUSS_REQUIRED),
                                             std::pair("allowed", KVN_QUSS_ALLOWED),
                                             std::pair("prohibited", KVN_QUSS_PROHIBITED)};
        const auto word = quss->value<std::string>().value_or("");
        const auto mode = std::ranges::find(modes, word, [](const auto& row) { return row.first; });
        // A slip of the pen must not switch the security off.
        master.quss_mode = mode != modes.end() ? mode->second : KVN_QUSS_REQUIRED;
        if (mode == modes.end())
            reader.complain(quss->source(), "quss must be \"prohibited\", \"allowed\" or \"required\"; "
                                            "it is taken as \"required\"");
    }
}

void readLevels(Reader& reader, const toml::table& table, Levels& levels) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    reader.read(table, "debug", levels.debug, 0, most);
    reader.read(table, "diag", levels.diag, 0, most);
}

void readLogging(Reader& reader, const toml::table& table, Configuration& out) {
    reader.read(table, "directory", out.logDirectory);
    reader.read(table, "max_bytes", out.logMaxBytes, 1024, std::int64_t{1} << 40);
    reader.read(table, "max_files", out.logMaxFiles, 1, 10'000);
    readLevels(reader, table, out.levels);
    const toml::table* originators = reader.section(table, "originator");
    if (!originators)
        return;
    for (const auto& [key, node] : *originators) {
        const std::string_view name = key.str();
        std::uint64_t number = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
        if (error != std::errc() || end != name.data() + name.size())
            reader.complain(node, name, "an originator's number");
        else if (const toml::table* own = reader.section(*originators, name))
            readLevels(reader, *own, out.originatorLevels.emplace(number, out.levels).first->second);
    }
}

Configuration readDocument(Reader& reader, const toml::table& root) {
    Configuration out;
    out.present = true;
    if (const toml::table* master = reader.section(root, "master"))
        readMaster(reader, *master, out.master);
    if (const toml::table* services = reader.section(root, "services"))
        for (const auto& [name, node] : *services) {
            std::uint16_t port = 0;
            reader.read(*services, name.str(), port, 1, 65535);
            if (port != 0)
                out.services.emplace(name.str(), port);
        }
    if (const toml::table* logging = reader.section(root, "logging"))
        readLogging(reader, *logging, out);
    if (const toml::table* catalog = reader.section(root, "catalog"))
        reader.read(*catalog, "directory", out.catalogDirectory);
    return out;
}

} // namespace

Configuration parseConfiguration(std::string_view text, const std::string& file, std::string& complaints) {
    Reader reader(file, complaints);
    try {
        return readDocument(reader, parseToml(text, file));
    } catch (const toml::parse_error& failure) {
        reader.complain(failure.source(), std::string(failure.description()) + "; the file is not used");
        return {};
    }
}

} // namespace Zorvane::Suite
