// SPDX-License-Identifier: Apache-2.0
// The backup catalogue of a lab, from catalogue.toml: which images stand for which client, and what they
// hold.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Zorvane {

class CZor;

/// The client types that catalogue commands know, "-ct" and "-t".
inline constexpr int CATALOGUE_STANDARD = 0;
inline constexpr int CATALOGUE_WINDOWS = 13;

struct CatalogueImage {
    std::string policy;
    std::string schedule;           ///< one word: "Full", "Incremental"
    std::int64_t time = 0;          ///< seconds since 1970
    std::vector<std::string> files; ///< paths as the catalogue has them, from "/" on
};

struct CatalogueClient {
    std::string name;
    int type = CATALOGUE_STANDARD;
    int status = 0;                     ///< not 0: every command for this client ends with it
    std::vector<CatalogueImage> images; ///< the newest first
};

struct Catalogue {
    std::vector<CatalogueClient> clients;
};

/// LabError for a file that can't be read or makes no catalogue, with file, line and what is wanted.
Catalogue readCatalogue(const std::filesystem::path& file);

/// The text of a [[client]] for a configuration: a full image just before the configuration was saved, with
/// what such a client's backup holds, and older incremental ones. Empty if the configuration names no backup
/// client.
std::string catalogueEntry(const CZor& configuration);

/// The [[content]] tables that backups of many clients share: what full backups of a kind of client hold.
std::string sharedContents();
/// The name of one of them, for a configuration of the usual folders.
std::string sharedContentOf(const CZor& configuration);

} // namespace Zorvane
