// SPDX-License-Identifier: Apache-2.0
// Clients' configurations between files and the recovery database.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace Zorvane {

class CZor;
class Store;

/// The rows of a configuration's document, added to the container. LabError, with the file's name, if it is
/// none.
void readConfiguration(const std::filesystem::path& file, CZor& rows);

/// Puts a document's rows into the database as new ones, adds them to the container, and tells the
/// configuration's name. LabError, with the file's name, if it is no document of a
/// configuration or if the database refuses it.
void loadConfiguration(Store& store, const std::filesystem::path& file, CZor& rows, std::ostream& out);

/// The document of a configuration; an empty name means the client's latest. LabError if there is none.
std::string exportConfiguration(const Store& store, const std::string& client,
                                const std::string& configuration);

} // namespace Zorvane
