// SPDX-License-Identifier: Apache-2.0
// Prepared situations of a lab: for each message of zorb2v at least one run that gives it.
#pragma once

#include <span>
#include <string_view>

namespace Zorvane {

class CZor;

/// One situation, as a row of the table. Texts may hold CLIENT, the scenario's client, and FILE, its target's
/// configuration file; lists are cut at "|".
struct Scenario {
    enum class Configuration {
        Lab,      ///< the lab's own kvn.toml
        NoMaster, ///< one that names no server
    };

    std::string_view name;
    std::string_view purpose;
    int message = 0;                        ///< of originator 433, on standard error; 0: none
    std::string_view parameters{};          ///< of the message, a list
    int status = 1;                         ///< of the run
    int told = 0;                           ///< the message on standard output; 0: none
    std::string_view base = "ledger01";     ///< the sample that the client is made from
    void (*change)(CZor& client) = nullptr; ///< what is different of it
    std::string_view target{};              ///< list: "key=value" replaces a line of the file, "key" drops it
    std::string_view without{};             ///< list: options that are left out, with their values
    std::string_view options{};             ///< list: words behind those that a run needs
    std::string_view rules{};               ///< list: failures that the lab is served with
    int logged = 0;                         ///< a diagnostic that goes to the log alone; 0: none
    bool blankLine = false;                 ///< an empty line stands where the message should
    Configuration configuration = Configuration::Lab;
};

/// In order of their messages.
std::span<const Scenario> allScenarios();

} // namespace Zorvane
