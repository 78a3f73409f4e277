// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane {

/// The lab's program, which stands beside the tests.
inline std::string zorlab() {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zorlab").string();
}

/// A program that runs beside the test, its output in files. It is killed with this object if it has not
/// ended.
class Process {
  public:
    Process(std::vector<std::string> command, std::filesystem::path out,
            const std::filesystem::path& err = {}, const std::map<std::string, std::string>& environment = {})
        : m_out(std::move(out)) {
        std::filesystem::remove(m_out); // an earlier program's word must not count as this one's
        std::vector<char*> argv;
        for (std::string& word : command)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        m_pid = ::fork();
        if (m_pid != 0)
            return;
        ::dup2(::open(m_out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        if (!err.empty())
            ::dup2(::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        for (const auto& [name, value] : environment)
            ::setenv(name.c_str(), value.c_str(), 1);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() { kill(); }

    /// False if the program ends, or a minute passes, before its output starts so.
    [[nodiscard]] bool waitFor(const std::string& output) {
        for (const auto end = deadline(); std::chrono::steady_clock::now() < end;) {
            if ((std::ostringstream() << std::ifstream(m_out).rdbuf()).str().starts_with(output))
                return true;
            if (hasEnded())
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }
    void terminate() const { ::kill(m_pid, SIGTERM); }
    void kill() {
        if (!hasEnded()) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, &m_status, 0);
            m_hasEnded = true;
        }
    }
    /// The exit status; -1 for a program that a signal has ended, or that had to be killed after a minute.
    int wait() {
        for (const auto end = deadline(); !hasEnded() && std::chrono::steady_clock::now() < end;)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        kill();
        return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : -1;
    }

  private:
    static std::chrono::steady_clock::time_point deadline() {
        return std::chrono::steady_clock::now() + std::chrono::minutes(1);
    }
    bool hasEnded() {
        m_hasEnded = m_hasEnded || ::waitpid(m_pid, &m_status, WNOHANG) == m_pid;
        return m_hasEnded;
    }

    std::filesystem::path m_out;
    pid_t m_pid = 0;
    int m_status = 0;
    bool m_hasEnded = false;
};

} // namespace Zorvane
