// SPDX-License-Identifier: Apache-2.0
// What the programs leave to others: descriptors, files, lines of the log.
#include "flow/Lab.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace Zorvane {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
    return (std::ostringstream() << std::ifstream(file).rdbuf()).str();
}

// The open files of a process that a program started by it would get, beside the standard ones.
std::vector<std::string> inheritable(pid_t process) {
    const fs::path folder = "/proc/" + std::to_string(process);
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(folder / "fdinfo")) {
        const std::string number = entry.path().filename();
        const std::string facts = contents(entry.path());
        const unsigned long flags = std::stoul(facts.substr(facts.find("flags:") + 6), nullptr, 8);
        if (std::stoi(number) > STDERR_FILENO && !(flags & O_CLOEXEC))
            files.push_back(fs::read_symlink(folder / "fd" / number));
    }
    return files;
}

void logEverything(const Lab& lab) {
    std::string text = contents(lab.path("lab/kvn.toml"));
    text.replace(text.find("debug = 1"), 9, "debug = 6");
    lab.write("lab/kvn.toml", text);
}

} // namespace

// The run hangs in its first query, with its log files and its connection open.
TEST(Hardening, noDescriptorSurvivesTheStartOfAProgram) {
    Lab lab;
    lab.write("target", "toolsIsoPath=t");
    lab.serve({"query:Config=silent"});
    const std::string target = lab.path("target");
    const pid_t run = fork();
    if (run == 0) {
        close_range(STDERR_FILENO + 1, ~0U, 0); // the test's own
        execl(ZOR_ZORB2V, ZOR_ZORB2V, "-C", "alpha", "-vmserver", "s", "-vmproxy", "p", "-veconfig",
              target.c_str(), nullptr);
        _exit(127);
    }
    for (int i = 0; i < 1000 && lab.road().empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_THAT(inheritable(run), IsEmpty());
    EXPECT_THAT(inheritable(lab.server()), IsEmpty());
    EXPECT_GT(std::distance(fs::directory_iterator("/proc/" + std::to_string(run) + "/fd"), {}), 3);
    kill(run, SIGKILL);
    waitpid(run, nullptr, 0);
}

TEST(Hardening, filesAreTheirOwnersWhateverTheMaskOfTheCaller) {
    const mode_t mask = umask(0);
    Lab lab;
    logEverything(lab);
    lab.write("target", "toolsIsoPath=t");
    lab.serve();
    lab.zorb2v({"-C", "ledger01.corp.example", "-vmserver", "vcenter01.lab.example", "-vmproxy",
                "convhost01.lab.example", "-veconfig", lab.path("target")});
    lab.stop();
    umask(mask);
    int logs = 0;
    for (const auto& entry : fs::recursive_directory_iterator(lab.path("lab"))) {
        // The log is for whoever supports the site to read; all else is the lab's.
        const bool isLog = entry.path().string().starts_with(lab.path("lab/log"));
        logs += isLog && entry.is_regular_file();
        const auto forOthers = fs::perms(isLog ? 022 : 077);
        const bool isWrittenByTheTest = entry.path().filename() == "kvn.toml";
        EXPECT_TRUE(isWrittenByTheTest || (entry.status().permissions() & forOthers) == fs::perms::none)
            << entry.path();
    }
    EXPECT_EQ(logs, 2);
    EXPECT_EQ(fs::status(lab.path("lab")).permissions(), fs::perms(0700));
}

TEST(Hardening, aNameCannotForgeALine) {
    Lab lab;
    logEverything(lab);
    lab.write("target", "toolsIsoPath=t\nname=\x1b[2Jcleared\n");
    lab.serve();
    const std::string forged = "2026-01-01T00:00:00.000Z 1 51216 433 app 2 - [433:1] forged";
    const std::string name = "x\n" + forged + "\r\x1b[31m\xc2\x85\xe2\x80\xa9";
    for (const auto& [client, configuration] :
         {std::pair(name, std::string("current")), std::pair(std::string("ledger01.corp.example"), name)}) {
        const Ended ended =
            lab.zorb2v({"-C", client, "-config", configuration, "-S", name, "-vmserver", name, "-vmproxy",
                        name, "-veprofile", name, "-veconfig", lab.path("target")});
        EXPECT_NE(ended.status, 0);
        EXPECT_EQ(std::ranges::count(ended.err, '\n'), 1) << ended.err;
        EXPECT_THAT(ended.err, Not(HasSubstr("\x1b")));
    }
    for (const char* file : {"lab/log/51216-433.log", "lab/log/51216-128.log", "lab/requests.log"}) {
        std::istringstream lines(contents(lab.path(file)));
        int count = 0;
        for (std::string line; std::getline(lines, line); ++count) {
            EXPECT_FALSE(line.starts_with(forged.substr(0, 20))) << line;
            EXPECT_EQ(line.find_first_of("\x1b\r"), std::string::npos) << line;
        }
        EXPECT_GT(count, 0) << file;
    }
    EXPECT_THAT(contents(lab.path("lab/log/51216-433.log")),
                HasSubstr("x\\n" + forged + "\\r\\x1b[31m\\x85\\u2029"));
}

// A conversion that takes its profile back, without the standard descriptors and without a reader.
TEST(Hardening, whoListensChangesNothing) {
    Lab lab;
    logEverything(lab);
    lab.write("target", "toolsIsoPath=t\nnetwork=Dark net\n");
    lab.serve();
    const std::string command = ZOR_ZORB2V " -C ledger01.corp.example -vmserver vcenter01.lab.example -vmproxy "
                                           "convhost01.lab.example -veconfig " +
                                lab.path("target");
    for (const std::string around : {"", " <&- >&- 2>&-", " 2>&1 | :", " # no file may grow"}) {
        const std::string status = "; echo $? >" + lab.path("status") + ")";
        const std::string limit = around.ends_with("grow") ? "ulimit -f 0; " : "";
        lab.run("/bin/sh", {"-c", "((" + limit + command + ")" + status + around});
        EXPECT_EQ(contents(lab.path("status")), "1\n") << around;
        EXPECT_EQ(lab.sql("SELECT count(*) FROM ZOR_VmwareProfileOptions"), "0\n") << around;
    }
    std::istringstream lines(contents(lab.path("lab/log/51216-433.log")));
    for (std::string line; std::getline(lines, line);)
        EXPECT_THAT(line, testing::StartsWith("20")) << "nothing but lines of the log";
}

} // namespace Zorvane
