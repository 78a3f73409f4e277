// SPDX-License-Identifier: Apache-2.0
// A lab with a proxy in front of it, where runs are made one after the other and looked at.
#pragma once

#include "flow/Lab.h"
#include "torture/Program.h"
#include "torture/Proxy.h"
#include "torture/runs.h"

#include <memory>
#include <set>

struct sqlite3;

namespace Zorvane::Torture {

/// The rows that a conversion leaves, without what differs from run to run.
struct Rows {
    std::set<std::string> profiles, tasks, disks;
    std::string broken; ///< what must never be: a task without its profile, a disk without its task
    auto operator<=>(const Rows&) const = default;
};

/// The undisturbed run.
struct Model {
    Ending ending;
    Rows before, after;
    std::set<std::string> profiles; ///< with the run's own
    std::vector<Traffic> traffic;
};

class Site {
  public:
    Site();
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;
    ~Site();

    /// The run as it is without a failure; told on standard error and thrown if it is not as it should be.
    Model model(const Run& run);
    /// The run under this environment and damage. What is wrong with how it ended is told, or nothing.
    std::string attempt(const Run& run, const Model& model, const Environment& environment,
                        const Damage& damage, Ending& ending);

  private:
    Ending make(const Run& run, Environment environment, const Damage& damage, std::vector<Traffic>* traffic);
    void writeFiles(const Run& run);
    void restore(const Run& run);
    Rows rows();
    std::vector<std::string> select(const std::string& statement);

    Lab m_lab;
    std::unique_ptr<Suite::Descriptor> m_closed; ///< holds a port on which nobody listens
    std::uint16_t m_closedPort = 0;
    std::unique_ptr<Proxy> m_proxy;
    sqlite3* m_database = nullptr;
    std::string m_standsFor; ///< the run that the files and rows stand for
    Rows m_initial;
};

} // namespace Zorvane::Torture
