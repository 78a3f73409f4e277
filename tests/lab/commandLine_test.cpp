// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/LabDirectory.h"
#include "lab/commandLine.h"

#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

#include <sys/wait.h>

namespace Zorvane {

namespace {

class CommandLineTest : public testing::Test {
  protected:
    // One run of the program; `m_out` and `m_err` hold what it wrote.
    int run(std::vector<std::string> words) {
        words.insert(words.begin(), "zorlab");
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = runZorlab(static_cast<int>(arguments.size()), arguments.data());
        m_out = testing::internal::GetCapturedStdout();
        m_err = testing::internal::GetCapturedStderr();
        return status;
    }
    [[nodiscard]] std::string text(const char* name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(m_scratch.file(name)).rdbuf();
        return bytes.str();
    }

    ScratchDirectory m_scratch;
    std::string m_lab = m_scratch.file("lab").string();
    std::string m_out;
    std::string m_err;
};

} // namespace

TEST_F(CommandLineTest, ALabIsMadeOnceAndAgainWithForce) {
    ASSERT_EQ(run({"init", m_lab}), 0) << m_err;
    const LabPorts ports = LabDirectory(m_lab).ports();
    EXPECT_NE(ports.zord, ports.zorbd);
    EXPECT_NE(ports.zord, ports.kvnrd);
    std::filesystem::create_directory(m_scratch.file("lab/draft"));
    std::ofstream(m_scratch.file("lab/draft/own file")) << "stays";

    EXPECT_EQ(run({"init", m_lab}), 1);
    EXPECT_NE(m_err.find("--force"), std::string::npos) << m_err;
    const auto halfMade = m_scratch.file("lab/.zorlab-draft");
    std::filesystem::create_directory(halfMade);
    std::ofstream(halfMade / "own file") << "stays";
    EXPECT_EQ(run({"init", m_lab, "--force"}), 1);
    EXPECT_NE(m_err.find(halfMade.string()), std::string::npos) << m_err;
    ASSERT_TRUE(std::filesystem::remove(halfMade / "own file"));
    std::ofstream(halfMade / "recovery.db") << "of a run that was killed";
    ASSERT_EQ(run({"init", m_lab, "--force", "--base-port", "23456"}), 0) << m_err;
    EXPECT_EQ(LabDirectory(m_lab).ports().kvnrd, 23458);
    EXPECT_EQ(text("lab/draft/own file"), "stays");

    // One that comes to nothing leaves the lab as it is.
    const std::string before = text("lab/kvn.toml");
    std::filesystem::create_directory(m_scratch.file("samples"));
    std::ofstream(m_scratch.file("samples/bad.xml")) << "no document";
    EXPECT_EQ(run({"init", m_lab, "--force", "--samples", m_scratch.file("samples").string()}), 1);
    EXPECT_EQ(text("lab/kvn.toml"), before);
    EXPECT_EQ(run({"export", m_lab, "ledger01.corp.example"}), 0) << m_err;
    EXPECT_FALSE(std::filesystem::exists(halfMade));
}

TEST_F(CommandLineTest, ConfigurationsGoInAndOut) {
    ASSERT_EQ(run({"init", m_lab}), 0) << m_err;
    const std::string loaded = m_out.substr(0, m_out.find('\n'));
    const std::string client = loaded.substr(14, loaded.find(',') - 14); // "loaded client X, configuration Y"
    ASSERT_EQ(run({"export", m_lab, client}), 0) << m_err;
    std::ofstream(m_scratch.file("one.xml")) << m_out;
    ASSERT_EQ(run({"load", m_lab, m_scratch.file("one.xml").string()}), 0) << m_err;
    EXPECT_EQ(m_out, loaded + "\n");
    EXPECT_EQ(run({"jobs", m_lab}), 0);
    EXPECT_TRUE(m_out.starts_with("JOB  STATE")) << m_out;
}

TEST_F(CommandLineTest, FailuresNameTheCulprit) {
    ASSERT_EQ(run({"init", m_lab, "--samples", m_scratch.file("").string()}), 0) << m_err; // no clients
    std::ofstream(m_scratch.file("empty.xml")) << "<ZorData/>";
    std::ofstream(m_scratch.file("bad.xml")) << "nothing";
    const struct {
        std::vector<std::string> words;
        int status;
        const char* complaint;
    } cases[] = {
        {{}, 2, "A command (init"},
        {{"dance"}, 2, "dance"},
        {{"serve"}, 2, "DIR is required"},
        {{"serve", m_lab, "--fail", "query=boo"}, 2, "\"boo\" is no effect"},
        {{"serve", m_lab, "--job-seconds", "-1"}, 2, "--job-seconds"},
        {{"init", m_lab, "--base-port", "65534"}, 2, "--base-port"},
        {{"serve", m_lab, "--listen", "nowhere"}, 1, "\"nowhere\" is no address"},
        {{"serve", "/nonexistent"}, 1, "/nonexistent is no lab directory"},
        {{"jobs", "/nonexistent"}, 1, "zorlab init /nonexistent"},
        {{"init", "/proc/nope"}, 1, "/proc/nope"},
        {{"init", m_lab, "--force", "--samples", "/nonexistent"}, 1, "sample clients in /nonexistent"},
        {{"export", m_lab, "no\none"}, 1, "client \"no\\none\""},
        {{"load", m_lab, m_scratch.file("bad.xml").string()}, 1, "bad.xml: no document"},
        {{"load", m_lab, m_scratch.file("empty.xml").string()},
         1,
         "empty.xml: the document has no Config row"},
        {{"load", m_lab, m_lab}, 1, "not a file"},
        {{"load", m_lab, "/nonexistent"}, 1, "/nonexistent: "},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(run(row.words), row.status) << row.complaint;
        EXPECT_NE((m_out + m_err).find(row.complaint), std::string::npos) << m_err;
    }
    EXPECT_EQ(run({"--help"}), 0);
    EXPECT_NE(m_out.find("Exit status"), std::string::npos);
}

TEST_F(CommandLineTest, ServesUntilItIsTold) {
    ASSERT_EQ(run({"init", m_lab}), 0) << m_err;
    const std::string program =
        (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zorlab").string();
    int out[2];
    ASSERT_EQ(::pipe(out), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(out[1], 1);
        ::execl(program.c_str(), "zorlab", "serve", m_lab.c_str(), "--trace", nullptr);
        ::_exit(99);
    }
    ::close(out[1]);
    char line[16] = {};
    ASSERT_EQ(::read(out[0], line, sizeof line - 1), 6);
    EXPECT_STREQ(line, "ready\n");
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"serve", m_lab}, {"init", m_lab, "--force"}}) {
        EXPECT_EQ(run(words), 1);
        EXPECT_NE(m_err.find(m_lab + " is in use"), std::string::npos) << m_err;
    }
    // Another one that has the same ports.
    std::filesystem::create_directory(m_scratch.file("other"));
    for (const char* name : {"kvn.toml", "recovery.db", "inventory.toml", "catalogue.toml"})
        std::filesystem::copy(m_scratch.file("lab") / name, m_scratch.file("other"));
    EXPECT_EQ(run({"serve", m_scratch.file("other").string()}), 1);
    EXPECT_NE(m_err.find("zord cannot listen on 127.0.0.1 port"), std::string::npos) << m_err;
    ::kill(child, SIGTERM);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    ::close(out[0]);
}

} // namespace Zorvane
