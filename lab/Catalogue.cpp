// SPDX-License-Identifier: Apache-2.0
#include "lab/Catalogue.h"

#include "lab/tomlFile.h"

#include <algorithm>
#include <functional>
#include <map>

namespace Zorvane {

namespace {

// Listings are cut at blanks, so that these texts can hold none.
std::string oneWord(TomlTable& table, std::string_view key) {
    std::string value = table.text(key);
    if (value.find_first_of(" \t\r\n") != std::string::npos)
        table.refuse(std::string(key) + " must be a single word, not \"" + value + "\"");
    return value;
}

using Contents = std::map<std::string, std::vector<std::string>>;

// What an image holds: its own list, or one that is shared.
std::vector<std::string> readFiles(TomlTable& image, const Contents& contents) {
    const std::string name = image.text("content", "");
    std::vector<std::string> files = image.texts("files");
    if (name.empty())
        return files;
    const auto shared = contents.find(name);
    if (shared == contents.end())
        image.refuse("there is no [[content]] of the name \"" + name + "\"");
    files.insert(files.end(), shared->second.begin(), shared->second.end());
    return files;
}

CatalogueClient readClient(TomlTable table, const Contents& contents) {
    CatalogueClient client;
    client.name = oneWord(table, "name");
    client.type = static_cast<int>(table.integer("type", 0, 99));
    client.status = static_cast<int>(table.integer("status", 0, 255, 0));
    for (TomlTable& row : table.tables("image")) {
        CatalogueImage& image = client.images.emplace_back();
        image.policy = oneWord(row, "policy");
        image.schedule = oneWord(row, "schedule");
        image.time = row.time("time");
        image.files = readFiles(row, contents);
        row.finish();
    }
    table.finish();
    std::ranges::stable_sort(client.images, std::greater(), &CatalogueImage::time);
    return client;
}

} // namespace

Catalogue readCatalogue(const std::filesystem::path& file) {
    TomlTable root = readToml(file);
    Catalogue catalogue;
    Contents contents;
    for (TomlTable& table : root.tables("content")) {
        const std::string name = table.text("name");
        contents[name] = table.texts("files");
        table.finish();
    }
    for (TomlTable& table : root.tables("client"))
        catalogue.clients.push_back(readClient(std::move(table), contents));
    root.finish();
    return catalogue;
}

} // namespace Zorvane
