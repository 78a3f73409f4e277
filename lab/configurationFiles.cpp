// SPDX-License-Identifier: Apache-2.0
#include "lab/configurationFiles.h"

#include "lab/LabError.h"
#include "lab/Store.h"
#include "lab/rows.h"
#include "suite/printable.h"

#include <ostream>
#include <vector>

namespace Zorvane {

namespace {

// What a document of one client may be: far more than any has, and far less than memory.
constexpr std::uintmax_t MAX_DOCUMENT_SIZE = std::uintmax_t{256} << 20;

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& why) {
    throw LabError(file.string() + ": " + Suite::printable(why));
}

} // namespace

void readConfiguration(const std::filesystem::path& file, CZor& rows) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        refuse(file, error ? error.message() : "not a file");
    if (std::filesystem::file_size(file) > MAX_DOCUMENT_SIZE)
        refuse(file, "too large for a configuration's document");

    std::string name = file.string();
    if (rows.readXml(name) != 0)
        refuse(file, "no document of a configuration; \"zorlab export\" writes one");
    if (!rows.m_vConfig.first())
        refuse(file, "the document has no Config row, so it is no configuration");
}

void loadConfiguration(Store& store, const std::filesystem::path& file, CZor& rows, std::ostream& out) {
    readConfiguration(file, rows);
    if (const StoreResult result = store.load(rows); !result.ok())
        refuse(file, "the database refused it: " + result.text);
    const CConfig& config = *rows.m_vConfig.first();
    out << "loaded client " << Suite::printable(config.getClientName()) << ", configuration "
        << Suite::printable(config.getName()) << "\n";
}

std::string exportConfiguration(const Store& store, const std::string& client,
                                const std::string& configuration) {
    CZor rows;
    if (const StoreResult result = store.exportTree(client, configuration, rows); !result.ok())
        throw LabError("client \"" + client + "\"" +
                       (configuration.empty() ? "" : ", configuration \"" + configuration + "\"") + ": " +
                       Suite::printable(result.text));
    const std::vector<unsigned char> document = writeDocument(rows);
    return {document.begin(), document.end()};
}

} // namespace Zorvane
