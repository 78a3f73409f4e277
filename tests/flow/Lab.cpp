// SPDX-License-Identifier: Apache-2.0
#include "flow/Lab.h"

#include "logging/CZorLog.h"
#include "logging/getMessage.h"

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane {

namespace {

using namespace std::chrono_literals;
constexpr auto PATIENCE = 60s;

std::string readFile(const std::string& path) {
    return (std::ostringstream() << std::ifstream(path).rdbuf()).str();
}

pid_t start(std::vector<std::string> command, const Lab::Environment& environment, const std::string& out,
            const std::string& err) {
    const pid_t child = fork();
    if (child != 0)
        return child;
    dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> argv;
    for (std::string& word : command)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
}

int finish(pid_t child) {
    int status = 0;
    for (const auto end = std::chrono::steady_clock::now() + PATIENCE;
         waitpid(child, &status, WNOHANG) == 0;) {
        if (std::chrono::steady_clock::now() > end)
            kill(child, SIGKILL);
        std::this_thread::sleep_for(2ms);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The word for a line of the request log.
std::string wordFor(const std::string& operation, const std::string& subject, const std::string& arguments) {
    if (operation.starts_with("listing "))
        return operation.substr(8);
    if (operation == "prepare")
        return "backups";
    if (operation == "querytree")
        return "tree";
    if (operation == "query" && subject == "ZorDba.ZOR_Config")
        return "config";
    if (operation == "query" && subject == "ZorDba.ZOR_P2VRestoreTask")
        return "pending?";
    if (operation == "query")
        return arguments.find("ProfileName") == std::string::npos ? "equal?" : "profile?";
    if (operation == "insert")
        return subject == "VmwareProfileOptions" ? "profile+" : "task+";
    const std::map<std::string, std::string> others = {
        {"delete", "profile-"}, {"update", "profile!"}, {"verifyb2v", "verify"}, {"dob2v", "start"}};
    const auto other = others.find(operation);
    return other == others.end() ? operation : other->second;
}

// Below what a lab chooses by itself.
constexpr int FIRST_PORT = 9000;
constexpr int PORT_SLOTS = 900;

// Three ports that no other test's lab has while the descriptor is open: a name that is bound is taken. A lab
// listens some time after its ports were chosen, and another might have chosen them meanwhile.
std::pair<Suite::Descriptor, int> takePorts() {
    for (int i = 0; i < PORT_SLOTS; ++i) {
        const int port = FIRST_PORT + 3 * ((::getpid() + i) % PORT_SLOTS);
        Suite::Descriptor lock(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        sockaddr_un name{.sun_family = AF_UNIX, .sun_path = {}};
        const int size = std::snprintf(name.sun_path + 1, sizeof name.sun_path - 1, "zor-lab-ports-%d", port);
        if (::bind(lock.get(), reinterpret_cast<const sockaddr*>(&name),
                   static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + size)) == 0)
            return {std::move(lock), port};
    }
    throw std::runtime_error("no ports are left for a lab");
}

} // namespace

Lab::Lab() {
    auto [lock, port] = takePorts();
    m_ports = std::move(lock);
    std::string name = (std::filesystem::temp_directory_path() / "zor-lab-XXXXXX").string();
    m_folder = mkdtemp(name.data());
    EXPECT_EQ(finish(start({ZOR_ZORLAB, "init", path("lab"), "--base-port", std::to_string(port)}, {},
                           path("out"), path("err"))),
              0)
        << readFile(path("err"));
    setenv("KVN_CONF", path("lab/kvn.toml").c_str(), 1); // for the texts of the messages
}

Lab::~Lab() {
    stop();
    std::filesystem::remove_all(m_folder);
}

void Lab::write(const std::string& name, const std::string& text) const {
    std::ofstream(path(name), std::ios::binary) << text;
}

void Lab::serve(const std::vector<std::string>& rules) {
    if (m_server != 0 && rules == m_rules)
        return;
    stop();
    std::vector<std::string> command = {ZOR_ZORLAB, "serve",         path("lab"),
                                        "--trace",  "--job-seconds", "86400"};
    for (const std::string& rule : rules)
        command.insert(command.end(), {"--fail", rule});
    // The word of the server before must not count as this one's.
    std::filesystem::remove(path("ready"));
    m_server = start(command, {}, path("ready"), path("complaints"));
    const auto end = std::chrono::steady_clock::now() + PATIENCE;
    while (readFile(path("ready")) != "ready\n") {
        ASSERT_EQ(waitpid(m_server, nullptr, WNOHANG), 0) << readFile(path("complaints"));
        ASSERT_LT(std::chrono::steady_clock::now(), end);
        std::this_thread::sleep_for(2ms);
    }
    m_rules = rules;
    m_read = 0;
}

void Lab::stop() {
    if (m_server == 0)
        return;
    kill(m_server, SIGTERM);
    EXPECT_EQ(finish(m_server), 0) << readFile(path("complaints"));
    m_server = 0;
}

Ended Lab::zorb2v(const std::vector<std::string>& arguments, const Environment& environment) const {
    return run(ZOR_ZORB2V, arguments, environment);
}

Ended Lab::zorinfo(const std::vector<std::string>& arguments, const Environment& environment) const {
    return run(ZOR_ZORINFO, arguments, environment);
}

Ended Lab::run(const std::string& program, const std::vector<std::string>& arguments,
               const Environment& environment) const {
    std::vector<std::string> command = {program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Ended ended;
    ended.status = finish(start(command, environment, path("out"), path("err")));
    ended.out = readFile(path("out"));
    ended.err = readFile(path("err"));
    return ended;
}

std::string Lab::road() {
    std::istringstream lines(readFile(path("lab/requests.log")).substr(m_read));
    std::string text, last;
    for (std::string line; std::getline(lines, line); m_read += line.size() + 1) {
        std::istringstream columns(line);
        std::string service, operation, subject, arguments;
        for (std::string* column : {&service, &operation, &subject, &arguments})
            std::getline(columns, *column, '\t');
        const std::string word = wordFor(operation, subject, arguments);
        if (word != "backups" || last != word)
            text += (text.empty() ? "" : " ") + word;
        last = word;
    }
    return text;
}

std::string Lab::sql(const std::string& statement) const {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(path("lab/recovery.db").c_str(), &database), SQLITE_OK);
    sqlite3_busy_timeout(database, 10'000);
    std::string rows;
    const auto row = [](void* text, int count, char** values, char**) {
        for (int i = 0; i < count; ++i)
            *static_cast<std::string*>(text) += (i > 0 ? "|" : "") + std::string(values[i] ? values[i] : "");
        *static_cast<std::string*>(text) += '\n';
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(database, statement.c_str(), row, &rows, nullptr), SQLITE_OK)
        << statement << ": " << sqlite3_errmsg(database);
    sqlite3_close(database);
    return rows;
}

void Lab::forget() {
    sql("DELETE FROM ZOR_VmwareProfileOptions; DELETE FROM ZOR_DiskToDataStoreMap; DELETE FROM "
        "ZOR_P2VRestoreTask");
}

std::string message(const std::string& text) {
    if (text.empty())
        return {};
    const std::size_t blank = text.find(' ');
    std::vector<std::string> arguments;
    std::istringstream stream(blank == std::string::npos ? "" : text.substr(blank + 1));
    for (std::string argument; std::getline(stream, argument, '|');)
        arguments.push_back(argument);
    return getMessage(ZOR_COMMAND_ORIGINATOR, std::stoul(text), arguments) + "\n";
}

std::string message(int number) {
    return message(number == 0 ? "" : std::to_string(number));
}

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace Zorvane
