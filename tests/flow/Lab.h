// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "suite/descriptor.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace Zorvane {

/// How a program ended, and what it wrote.
struct Ended {
    int status = -1; ///< -1: by a signal, or because it did not come to an end
    std::string out, err;
};

/// A lab of its own for a test, and the real command run against it.
class Lab {
  public:
    using Environment = std::map<std::string, std::string>;

    /// With the sample clients; nothing is served yet.
    Lab();
    Lab(const Lab&) = delete;
    Lab& operator=(const Lab&) = delete;
    ~Lab();

    [[nodiscard]] std::string path(const std::string& name) const { return (m_folder / name).string(); }
    void write(const std::string& name, const std::string& text) const;

    /// Serves the lab with these rules for failures; jobs stay in their first state.
    void serve(const std::vector<std::string>& rules = {});
    void stop();
    /// The process that serves, or 0.
    [[nodiscard]] int server() const { return m_server; }

    /// zorb2v with these arguments, against this lab unless the environment says otherwise.
    Ended zorb2v(const std::vector<std::string>& arguments, const Environment& environment = {}) const;
    /// The same for the companion.
    Ended zorinfo(const std::vector<std::string>& arguments, const Environment& environment = {}) const;
    /// Any program, by its path.
    Ended run(const std::string& program, const std::vector<std::string>& arguments,
              const Environment& environment = {}) const;

    /// What the daemons were asked since the last call, a word for each request: "config tree 9 10 start".
    /// Commands to the backup catalogue make one word together, listings are told by their numbers.
    std::string road();
    /// The rows of an SQL statement, a line each, with "|" between the columns; all of them on the recovery
    /// database.
    std::string sql(const std::string& statement) const;
    /// No profiles and no tasks any more.
    void forget();

  private:
    Suite::Descriptor m_ports{-1}; ///< holds its ports against other tests
    std::filesystem::path m_folder;
    std::vector<std::string> m_rules;
    int m_server = 0;
    std::size_t m_read = 0; ///< of the request log
};

/// A catalogue message of the command and the line end behind it, as the terminal gets it: "14 client|config"
/// is message 14 with two arguments. Nothing for no number.
std::string message(const std::string& text);
/// The same of a message without arguments; nothing for 0.
std::string message(int number);

/// Words, cut at blanks.
std::vector<std::string> words(const std::string& text);

} // namespace Zorvane
