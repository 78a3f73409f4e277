// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

/// A folder of its own for one test, holding the suite's configuration while the test runs.
class Scratch {
  public:
    explicit Scratch(const std::string& toml = "") {
        std::string name = (std::filesystem::temp_directory_path() / "zor-test-XXXXXX").string();
        m_folder = ::mkdtemp(name.data());
        configure(toml);
        ::setenv("KVN_CONF", path("kvn.toml").c_str(), 1);
    }
    explicit Scratch(int debugLevel) : Scratch() { configureLog(debugLevel); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        ::unsetenv("KVN_CONF");
        std::filesystem::remove_all(m_folder);
    }

    [[nodiscard]] std::string path(const std::string& name) const { return (m_folder / name).string(); }

    void write(const std::string& name, const std::string& text) const { std::ofstream(path(name)) << text; }
    [[nodiscard]] std::string read(const std::string& name) const {
        return (std::ostringstream() << std::ifstream(path(name)).rdbuf()).str();
    }

    void configure(const std::string& toml) const { write("kvn.toml", toml); }
    /// Log files in the folder, at a debug and diagnostic level.
    void configureLog(int debug, int diag = 1) const {
        configure("[logging]\ndirectory = \"" + m_folder.string() + "\"\ndebug = " + std::to_string(debug) +
                  "\ndiag = " + std::to_string(diag) + "\n");
    }

    /// The lines of a channel's log from the kind on: "debug 5 zorop:ZorOps() Entering, line=7".
    [[nodiscard]] std::vector<std::string> logLines(int originator) const {
        std::istringstream text(read("51216-" + std::to_string(originator) + ".log"));
        std::vector<std::string> lines;
        for (std::string time, process, line;
             text >> time >> process >> line >> line && std::getline(text, line);)
            lines.push_back(line.substr(1));
        return lines;
    }

  private:
    std::filesystem::path m_folder;
};
