// SPDX-License-Identifier: Apache-2.0
#include "torture/Program.h"

#include <csignal>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane::Torture {

namespace {

std::string readFile(const std::string& path) {
    return (std::ostringstream() << std::ifstream(path).rdbuf()).str();
}

void readReport(std::istream& report, Ending& ending) {
    for (std::string line; std::getline(report, line);) {
        std::istringstream words(line);
        std::string kind, name;
        long number = 0;
        words >> kind >> name >> number;
        if (kind == "open")
            ending.leftOpen.push_back(line.substr(5));
        else if (kind == "failed") {
            ending.failed = true;
            ending.failedAt = number;
        } else if (kind == "end")
            ending.told = true;
        for (std::size_t i = 0; kind == "count" && i < CLASSES; ++i)
            if (name == CLASS_NAMES[i])
                ending.calls[i] = number;
    }
}

std::set<pid_t> children() {
    std::ifstream list("/proc/thread-self/children");
    return {std::istream_iterator<pid_t>(list), {}};
}

// Children of the program come to this process when it ends before them; others were there before.
bool reapChildrenBut(const std::set<pid_t>& others) {
    bool any = false;
    for (const pid_t child : children())
        if (!others.contains(child) && waitpid(child, nullptr, 0) == child)
            any = true;
    return any;
}

pid_t spawn(const std::vector<std::string>& command, const Environment& environment,
            const std::string& folder) {
    std::vector<std::string> settings;
    for (const auto& [name, value] : environment)
        settings.push_back(name + "=" + value);
    std::vector<char*> arguments, variables;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    for (const std::string& setting : settings)
        variables.push_back(const_cast<char*>(setting.c_str()));
    arguments.push_back(nullptr);
    variables.push_back(nullptr);

    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, (folder + "/out").c_str(), flags, 0600);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, (folder + "/err").c_str(), flags, 0600);
    pid_t child = -1;
    const int error = posix_spawn(&child, arguments[0], &files, nullptr, arguments.data(), variables.data());
    posix_spawn_file_actions_destroy(&files);
    return error == 0 ? child : -1;
}

} // namespace

Ending runProgram(const std::vector<std::string>& command, Environment environment, const std::string& folder,
                  std::chrono::seconds limit) {
    const std::string report = folder + "/report";
    unlink(report.c_str());
    environment.insert({{"LD_PRELOAD", TORTURE_SHIM}, {"TORTURE_REPORT", report}, {"PATH", "/usr/bin:/bin"}});
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const std::set<pid_t> others = children();
    Ending ending;
    const pid_t child = spawn(command, environment, folder);
    if (child < 0)
        return ending;
    pollfd ended{static_cast<int>(syscall(SYS_pidfd_open, child, 0)), POLLIN, 0};
    ending.inTime = poll(&ended, 1, static_cast<int>(std::chrono::milliseconds(limit).count())) > 0;
    close(ended.fd);
    if (!ending.inTime)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    ending.leftChildren = reapChildrenBut(others);
    ending.out = readFile(folder + "/out");
    ending.err = readFile(folder + "/err");
    std::ifstream told(report);
    readReport(told, ending);
    return ending;
}

} // namespace Zorvane::Torture
