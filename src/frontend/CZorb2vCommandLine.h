// SPDX-License-Identifier: Apache-2.0
// What a run is told, and the run itself.
#pragma once

#include "frontend/messageNumbers.h"
#include "frontend/veconfig.h"
#include "resources/B2VInput.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane {

/// An option: its name with the dash, and how short it may be cut, the dash included.
struct CommandOption {
    std::string_view name;
    int shortestLength;

    /// Whether an element of the command line is this option or an accepted abbreviation of it.
    [[nodiscard]] bool matches(std::string_view element) const;
};

class CZorb2vCommandLine {
  public:
    using Arguments = std::vector<std::string>;

    /// Steps report to `findings`, which is borrowed; by default the user's terminal.
    explicit CZorb2vCommandLine(Findings& findings = toldFindings());

    /// Runs a conversion from the arguments behind the program name. 0 when the job was submitted, 1 when it
    /// was refused, 3 when the client's configuration can't be read; bad usage ends the process with
    /// status 1.
    int execute(const Arguments& arguments);

    /// 0, or 1 when the master server's name can't be had; the other defaults are then not set.
    int initializeDefaults(B2VInput& input);
    /// Takes all options in their fixed order; 0, or the code of the first step that failed. The steps behind
    /// it are only taken if all findings are wanted.
    int parseArguments(const Arguments& arguments, B2VInput& input);
    /// Reads the client's configuration into the input; 0, or 3.
    int readConfiguration(B2VInput& input);
    /// Whether the input is complete, the resource's defaults included: 0, or 1.
    int validateInput(const B2VInput& input);
    /// Shows the usage page and ends the process with status 1.
    [[noreturn]] void usage();

    // The steps of parseArguments. Those of flags never fail; the others give a code when an option that must
    // be there is missing or lacks its argument.

    int extractHelp(const Arguments& arguments, bool& helpRequested);
    int extractZorb2v(const Arguments& arguments, bool& invokedByOthers);
    int extractGui(const Arguments& arguments, bool& guiJob);
    int extractSystemOnlyRestore(const Arguments& arguments, bool& systemOnly);
    int extractVersion(const Arguments& arguments, std::string& version);
    int extractVEtype(const Arguments& arguments, std::uint32_t& veType);
    int extractProfile(const Arguments& arguments, std::string& profileName);
    int extractClientAndConfig(const Arguments& arguments, std::string& clientName, std::string& configName);
    int extractMasterServer(const Arguments& arguments, std::string& masterServer);
    int extractVmproxy(const Arguments& arguments, std::string& vmProxy);
    int extractVMServerName(const Arguments& arguments, std::string& vmServer);
    int extractVEconfigDetails(const Arguments& arguments, B2VInput& input);
    int extractVmPowerOn(const Arguments& arguments, bool& powerOn);
    int extractStripNetwork(const Arguments& arguments, bool& stripNetwork);
    int extractOverwriteVM(const Arguments& arguments, bool& overwriteVm);

    [[nodiscard]] const B2VInput& input() const { return m_input; }
    [[nodiscard]] const std::string& veConfigFile() const { return m_veConfigFile; }
    [[nodiscard]] const VEconfigLines& veConfigLines() const { return m_veConfigLines; }
    [[nodiscard]] bool isHelpRequested() const { return m_helpRequested; }

  private:
    int convert();

    Findings& m_findings;
    std::string m_veConfigFile;
    VEconfigLines m_veConfigLines;
    bool m_helpRequested = false;
    bool m_invokedByOthers = false;
    std::string m_version;
    B2VInput m_input;
};

/// The names of all options.
std::vector<std::string> optionNames();

/// The suite's configured master server; 0, or 3 if there is none.
int GetMasterServerName(std::string& name);

/// The input, a line a value: a debugging aid. The form of the input record alone leaves out the ESX host,
/// the cluster, the profile and the flags at the end.
std::ostream& operator<<(std::ostream& out, const CZorb2vCommandLine& commandLine);
std::ostream& operator<<(std::ostream& out, const B2VInput& input);

} // namespace Zorvane
