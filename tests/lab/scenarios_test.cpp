// SPDX-License-Identifier: Apache-2.0
// Every scenario, run as it tells its user to, against the real command.
#include "Process.h"
#include "StoreFixture.h"
#include "lab/LabDirectory.h"
#include "lab/Scenario.h"
#include "lab/loadScenario.h"

#include <fstream>
#include <set>
#include <sstream>

#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

std::string textOf(const std::filesystem::path& file) {
    return (std::ostringstream() << std::ifstream(file).rdbuf()).str();
}

// The numbers of the command's messages in the catalogue's source.
std::set<int> catalogueNumbers() {
    std::ifstream in(ZOR_SOURCE_DIR "/share/catalog/en/zorvane.msg");
    std::set<int> numbers;
    bool isCommands = false;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("$set "))
            isCommands = line == "$set 433";
        else if (isCommands && !line.empty() && line.front() >= '0' && line.front() <= '9')
            numbers.insert(std::stoi(line));
    }
    return numbers;
}

constexpr std::size_t PARTS = 4; // so that no test is long

class Scenarios : public testing::TestWithParam<std::size_t> {
  protected:
    nlohmann::json load(std::string_view name) {
        return nlohmann::json::parse(loadScenario(LabDirectory(m_lab), std::string(name), true));
    }
    // As the scenario says; what is wrong, or nothing.
    void run(std::string_view name) {
        SCOPED_TRACE(name);
        const nlohmann::json scenario = load(name);
        std::vector<std::string> serve = {zorlab(), "serve", m_lab};
        serve.insert(serve.end(), scenario["serve"].begin(), scenario["serve"].end());
        Process lab(serve, m_scratch.file("lab.out"));
        ASSERT_TRUE(lab.waitFor("ready\n")) << name;

        std::vector<std::string> command = {ZOR_ZORB2V};
        command.insert(command.end(), scenario["arguments"].begin(), scenario["arguments"].end());
        Process zorb2v(command, m_scratch.file("out"), m_scratch.file("err"),
                       {{"KVN_CONF", scenario["environment"]["KVN_CONF"]}, {"LC_ALL", "C.UTF-8"}});
        EXPECT_EQ(zorb2v.wait(), scenario["status"].get<int>());
        EXPECT_EQ(textOf(m_scratch.file("out")), scenario["out"].get<std::string>());
        EXPECT_EQ(textOf(m_scratch.file("err")), scenario["err"].get<std::string>());
        if (scenario.contains("logged")) {
            const std::string mark = "[433:" + std::to_string(scenario["logged"].get<int>()) + "]";
            EXPECT_NE(textOf(scenario["log"]).find(mark), std::string::npos);
        }
        lab.terminate();
        EXPECT_EQ(lab.wait(), 0);
    }

    ScratchDirectory m_scratch;
    std::string m_lab = m_scratch.file("lab").string();
};

} // namespace

TEST_P(Scenarios, EndAsTheySay) {
    const auto all = allScenarios();
    for (std::size_t i = GetParam(); i < all.size(); i += PARTS)
        run(all[i].name);
}
INSTANTIATE_TEST_SUITE_P(Parts, Scenarios, testing::Range(std::size_t{0}, PARTS));

class OneScenario : public Scenarios {};

// Loaded again, or with others in the same lab, a scenario is as new.
TEST_P(OneScenario, CanBeRunAgain) {
    for (const char* name : {"submitted", "submitted-by-console", "not-started", "submitted", "profile-taken",
                             "submitted-by-console", "profile-taken"})
        run(name);
}

INSTANTIATE_TEST_SUITE_P(All, OneScenario, testing::Values(0));

TEST(ScenarioTable, HasEveryMessageThatACommandLineCanGive) {
    std::set<int> wanted = catalogueNumbers();
    ASSERT_GT(wanted.size(), 30U);
    // The console's profile is made by the console: no command line meets one that is equal to it.
    wanted.erase(19);
    std::set<std::string_view> names;
    for (const Scenario& scenario : allScenarios()) {
        wanted.erase(scenario.message);
        wanted.erase(scenario.told);
        wanted.erase(scenario.logged);
        EXPECT_TRUE(names.insert(scenario.name).second) << scenario.name;
    }
    EXPECT_EQ(wanted, std::set<int>());
}

} // namespace Zorvane
