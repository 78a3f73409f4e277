// SPDX-License-Identifier: Apache-2.0
#include "lab/Catalogue.h"
#include "lab/Estate.h"
#include "lab/LabDirectory.h"
#include "lab/LabError.h"
#include "lab/Store.h"
#include "lab/configurationFiles.h"
#include "lab/defaultInventory.h"
#include "lab/tomlFile.h"
#include "suite/printable.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <vector>

#include <asio.hpp>

namespace Zorvane {

namespace {

namespace fs = std::filesystem;

constexpr const char* INSTALLED_SHARE = "/usr/tarnv/share";

constexpr int FIRST_FREE_PORT = 12000;
constexpr int LAST_FREE_PORT = 32000;
constexpr int PORT_ATTEMPTS = 200;

constexpr std::string_view CATALOGUE_HEAD =
    R"toml(# The backup catalogue of this lab: what kvnclimagelist and kvnlist answer. "zorlab serve" reads this file when it
# starts.
#
# type is 13 for a Windows client and 0 for all others. schedule "Full" makes a full image; policy and schedule are
# single words. time is a date and time (2026-11-22T22:00:00Z) or seconds since 1970. A client with status = 192, 193
# or 116 answers every command with that status, as a catalogue does that can't be read. An image may name the list of
# a [[content]] in place of one of its own, or in addition to it.
)toml";

// A folder of what is shipped: beside the program's folder in a build tree, one folder further up in the
// suite's tree, wherever that stands; else where the suite has it.
fs::path shipped(const char* name) {
    std::error_code error;
    const fs::path top = fs::read_symlink("/proc/self/exe", error).parent_path().parent_path();
    for (const fs::path& folder : {top, top.parent_path()})
        if (fs::path found = folder / "share" / name; !error && fs::exists(found))
            return found;
    return fs::path(INSTALLED_SHARE) / name;
}

void write(const fs::path& file, const std::string& text) {
    std::ofstream out(file, std::ios::trunc);
    out << text;
    if (!out.flush())
        throw LabError("cannot write " + file.string());
}

bool isFree(int port) {
    using asio::ip::tcp;
    asio::io_context io;
    asio::error_code error;
    tcp::acceptor acceptor(io, tcp::v4());
    acceptor.bind({asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(port)}, error);
    return !error;
}

LabPorts choosePorts(std::optional<std::uint16_t> base) {
    if (base)
        return {*base, static_cast<std::uint16_t>(*base + 1), static_cast<std::uint16_t>(*base + 2)};
    // Below the range that the kernel gives out itself, so that nobody's outgoing connection has taken one of
    // them when the lab is served; by chance, so that labs that are made at the same time differ.
    std::random_device seed;
    std::uniform_int_distribution<int> first(FIRST_FREE_PORT, LAST_FREE_PORT - 2);
    for (int attempt = 0; attempt < PORT_ATTEMPTS; ++attempt) {
        const auto port = static_cast<std::uint16_t>(first(seed));
        if (isFree(port) && isFree(port + 1) && isFree(port + 2))
            return choosePorts(port);
    }
    throw LabError("no three free ports in a row were found; name the first with --base-port");
}

std::string configurationText(const LabDirectory& directory, const LabPorts& ports) {
    return "# The suite's configuration for this lab. Point clients at it: export KVN_CONF=" +
           Suite::printable(directory.configuration().string()) +
           "\n[master]\nservers = [\"localhost\"]\nclient_name = \"labhost\"\nquss = "
           "\"prohibited\"\n\n[services]\nzord = " +
           std::to_string(ports.zord) + "\nzorbd = " + std::to_string(ports.zorbd) +
           "\nkvnrd = " + std::to_string(ports.kvnrd) +
           "\n\n[logging]\ndirectory = " + tomlQuoted(directory.logs().string()) +
           "\ndebug = 1\ndiag = 1\n\n[catalog]\ndirectory = " + tomlQuoted(shipped("locale").string()) + "\n";
}

std::vector<fs::path> documentsIn(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error))
        if (entry.path().extension() == ".xml")
            files.push_back(entry.path());
    if (error)
        throw LabError("cannot read the sample clients in " + folder.string() + ": " + error.message() +
                       "; name their folder with --samples");
    std::ranges::sort(files);
    return files;
}

// All files of a lab, in the order in which they take an older one's places: a database never meets the log
// of another, and what has a configuration is a lab.
std::array<fs::path, 9> filesOf(const LabDirectory& directory) {
    const std::string database = directory.database().string();
    return {database + "-journal",  database + "-wal",     database + "-shm",
            directory.requestLog(), directory.received(),  database,
            directory.inventory(),  directory.catalogue(), directory.configuration()};
}

// A lab in the making, beside the one that it may take the place of, and gone when it doesn't come to that.
// Whatever else is in its folder is somebody's, and stays.
class Draft {
  public:
    explicit Draft(const LabDirectory& directory) : m_directory(directory) {
        clear(); // what a run left that was killed
        if (!fs::create_directory(m_draft.path()))
            throw LabError(m_draft.path().string() +
                           " is in the way: it holds other files than a lab's; move it");
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() { clear(); }

    [[nodiscard]] const LabDirectory& directory() const { return m_draft; }
    /// Other files in the lab's directory are none of ours, and stay.
    void install() const {
        const auto from = filesOf(m_draft);
        const auto to = filesOf(m_directory);
        for (std::size_t i = 0; i < from.size(); ++i)
            if (fs::exists(from[i]))
                fs::rename(from[i], to[i]);
            else
                fs::remove_all(to[i]);
    }

  private:
    void clear() const {
        std::error_code error;
        if (!fs::is_directory(fs::symlink_status(m_draft.path(), error)))
            return;
        for (const fs::path& file : filesOf(m_draft))
            fs::remove(file, error);
        fs::remove(m_draft.path(), error);
    }

    const LabDirectory& m_directory;
    LabDirectory m_draft{m_directory.path() / ".zorlab-draft"};
};

void writeFiles(const LabDirectory& draft, const LabDirectory& directory, const LabPorts& ports,
                const std::vector<fs::path>& documents, const EstateOptions& estate, std::ostream& out) {
    write(draft.inventory(), std::string(DEFAULT_INVENTORY) + estateInventory(estate));
    Store store(draft.database());
    std::string catalogue(CATALOGUE_HEAD);
    for (const fs::path& document : documents) {
        CZor rows;
        loadConfiguration(store, document, rows, out);
        catalogue += catalogueEntry(rows);
    }
    catalogue += loadEstate(store, estate, shipped("samples"), out);
    write(draft.catalogue(), catalogue);
    write(draft.configuration(), configurationText(directory, ports));
}

} // namespace

void initLab(const LabDirectory& directory, const InitOptions& options) {
    const std::vector<fs::path> documents = documentsIn(options.samples.value_or(shipped("samples")));
    const LabPorts ports = choosePorts(options.basePort);
    std::ostringstream unheard;
    std::ostream& out = options.quiet ? unheard : std::cout;
    try {
        fs::create_directories(directory.logs());
        const Suite::Descriptor lock = directory.lock();
        if (!options.force &&
            std::ranges::any_of(filesOf(directory), [](const fs::path& file) { return fs::exists(file); }))
            throw LabError(directory.path().string() + " holds a lab already; replace it with --force");
        const Draft draft(directory);
        writeFiles(draft.directory(), directory, ports, documents, options.estate, out);
        draft.install();
    } catch (const fs::filesystem_error& failure) {
        throw LabError("cannot make the lab directory " + directory.path().string() + ": " +
                       failure.code().message());
    }
    out << "lab made in " << directory.path().string() << "; serve it with: zorlab serve "
        << directory.path().string()
        << "\nclients find it with: export KVN_CONF=" << directory.configuration().string() << "\n";
}

} // namespace Zorvane
