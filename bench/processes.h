// SPDX-License-Identifier: Apache-2.0
// Programs that a benchmark runs, and what they took from start to exit.
#pragma once

#include "suite/descriptor.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane::Bench {

using Clock = std::chrono::steady_clock;
using Command = std::vector<std::string>;

struct Spent {
    double clock = 0;     ///< seconds from start to exit
    double processor = 0; ///< seconds of processor time, the system's included
};

/// A running program, ended with the scope. Its standard output goes to a file, its complaints nowhere.
class Process {
  public:
    Process(Command command, const std::string& output) : m_start(Clock::now()) {
        std::vector<char*> arguments;
        for (std::string& word : command)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        const int error = ::posix_spawn(&m_id, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0)
            throw std::runtime_error("can't start " + command.front());
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        if (m_id == 0)
            return;
        ::kill(m_id, SIGTERM);
        ::waitpid(m_id, nullptr, 0);
    }

    [[nodiscard]] pid_t id() const { return m_id; }

    /// Throws if the program ends otherwise than with this status: what it took would mean nothing.
    Spent wait(int expected) {
        int status = 0;
        rusage used{};
        ::wait4(std::exchange(m_id, 0), &status, 0, &used);
        const auto seconds = [](const timeval& time) {
            return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
        };
        const Spent spent{std::chrono::duration<double>(Clock::now() - m_start).count(),
                          seconds(used.ru_utime) + seconds(used.ru_stime)};
        if (!WIFEXITED(status) || WEXITSTATUS(status) != expected)
            throw std::runtime_error("a program ended with the wait status " + std::to_string(status));
        return spent;
    }

  private:
    Clock::time_point m_start;
    pid_t m_id = 0;
};

inline Spent run(const Command& command, int expected = 0) {
    return Process(command, "/dev/null").wait(expected);
}

} // namespace Zorvane::Bench
