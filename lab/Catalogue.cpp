// SPDX-License-Identifier: Apache-2.0
#include "lab/Catalogue.h"

#include "lab/tomlFile.h"

#include <algorithm>
#include <functional>

namespace Zorvane {

namespace {

// Listings are cut at blanks, so that these texts can hold none.
std::string oneWord(TomlTable& table, std::string_view key) {
    std::string value = table.text(key);
    if (value.find_first_of(" \t\r\n") != std::string::npos)
        table.refuse(std::string(key) + " must be a single word, not \"" + value + "\"");
    return value;
}

CatalogueClient readClient(TomlTable table) {
    CatalogueClient client;
    client.name = oneWord(table, "name");
    client.type = static_cast<int>(table.integer("type", 0, 99));
    client.status = static_cast<int>(table.integer("status", 0, 255, 0));
    for (TomlTable& row : table.tables("image")) {
        CatalogueImage& image = client.images.emplace_back();
        image.policy = oneWord(row, "policy");
        image.schedule = oneWord(row, "schedule");
        image.time = row.time("time");
        image.files = row.texts("files");
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
    for (TomlTable& table : root.tables("client"))
        catalogue.clients.push_back(readClient(std::move(table)));
    root.finish();
    return catalogue;
}

} // namespace Zorvane
