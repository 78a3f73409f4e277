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
    std::set<std::string> jobs; ///< the tasks whose job was submitted
    std::string broken; ///< what must never be: a task without its profile, a disk or job without its task
    auto operator<=>(const Rows&) const = default;
};

/// The undisturbed run.
struct Model {
    Ending ending;
    Rows before, after;
    std::set<std::string> profiles; ///< with the run's own
    std::vector<Traffic> traffic;
};

/// What is wrong in one repetition of a run.
struct Case {
    std::string name;
    std::size_t run = 0; ///< its index
    Environment environment{};
    Damage damage{};
    bool mustSucceed = false;
    /// A client that waits for the rest of a document asks for it without end when its daemon is gone.
    bool maySpin = false;
    /// Else it is slowed down only.
    [[nodiscard]] bool isToFail() const {
        return damage.connection != Damage::NEVER || environment.contains("TORTURE_FAIL");
    }
};

class Site {
  public:
    Site();
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;
    ~Site();

    /// The run as it is without a failure; told on standard error and thrown if it is not as it should be.
    Model model(const Run& run);
    /// The run under the case's environment and damage. What is wrong with how it ended is told, or nothing.
    std::string attempt(const Model& model, const Case& test, Ending& ending);

  private:
    /// Throws std::runtime_error if the lab has ended: without it every run fails, and no call that matters.
    void expectLab() const;
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
