// SPDX-License-Identifier: Apache-2.0
// What the shells offer, asked of the shells themselves.
#include "share/Texts.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::IsSupersetOf;

namespace Zorvane {
namespace {

const std::string FOLDER = ZOR_SOURCE_DIR "/share/completions/";
const std::string TESTS = ZOR_SOURCE_DIR "/tests/share/";

class Completions : public testing::TestWithParam<const char*> {
  protected:
    Completions() {
        std::string name = (std::filesystem::temp_directory_path() / "zor-share-XXXXXX").string();
        m_scratch = mkdtemp(name.data());
        std::filesystem::create_directories(m_scratch / "lab");
    }
    ~Completions() override { std::filesystem::remove_all(m_scratch); }

    void SetUp() override {
        ASSERT_TRUE(isInstalled(GetParam())) << "scripts/setup installs it";
    }

    // The companion that asks the recovery daemon.
    void answerNames(const std::string& script) const {
        const std::filesystem::path file = m_scratch / "zorinfo";
        std::ofstream(file) << "#!/bin/sh\n" << script;
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }

    // What is offered at the end of a line.
    [[nodiscard]] Names offers(const std::string& line) const {
        const std::string shell = GetParam();
        const std::string program = line.substr(0, line.find(' '));
        std::vector<std::string> command = {"env",
                                            "-C",
                                            m_scratch,
                                            "PATH=" + m_scratch.string() + ":/usr/bin:/bin",
                                            "HOME=" + m_scratch.string(),
                                            "TERM=dumb"};
        if (shell == "bash")
            command.insert(command.end(), {TESTS + "offers.bash", FOLDER + "bash/" + program, line});
        else if (shell == "zsh")
            command.insert(command.end(), {TESTS + "offers.zsh", FOLDER + "zsh", line});
        else
            command.insert(command.end(),
                           {"fish", "--no-config", "-c", "source $argv[1]; complete -C $argv[2]",
                            FOLDER + ("fish/" + program + ".fish"), line});
        return names(outputOf(command), R"(^([^\t\n]+))");
    }

    std::filesystem::path m_scratch;
};

TEST_P(Completions, knowTheOptionsOfZorb2v) {
    Names options;
    for (const std::string& option : optionsOfZorb2v())
        options.insert("-" + option);
    EXPECT_EQ(offers("zorb2v -"), options);
    EXPECT_THAT(offers("zorinfo check -"), IsSupersetOf(options));
}

TEST_P(Completions, knowTheSubcommandsAndTheirOptions) {
    for (const std::string program : {"zorlab", "zorinfo"}) {
        const Names subcommands = subcommandsIn(helpOf(program));
        EXPECT_THAT(offers(program + " "), IsSupersetOf(subcommands));
        const Names general = longOptionsIn(helpOf(program));
        for (const std::string& subcommand : subcommands) {
            Names options;
            for (const Names& some : {longOptionsIn(helpOf(program, subcommand)), general})
                for (const std::string& option : some)
                    options.insert("--" + option);
            options.erase("--version"); // comes without a subcommand
            EXPECT_EQ(offers(program + " " + subcommand + " --"), options) << program << " " << subcommand;
        }
    }
}

TEST_P(Completions, askTheDaemonForNames) {
    answerNames(
        "case \"$KVN_CONF $*\" in\n"
        "' configs --names' | 'lab/kvn.toml configs --names' | \"$HOME/lab/kvn.toml configs --names\") "
        "printf 'alpha\\nbeta\\nbig one\\n' ;;\n"
        "' configs alpha --names' | 'lab/kvn.toml configs alpha --names') printf 'current\\nbefore\\n' ;;\n"
        "' configs big one --names') printf 'big\\n' ;;\n"
        "esac\n");
    const std::string blank = GetParam() == std::string("fish") ? "big one" : "big\\ one"; // it quotes later
    const std::pair<std::string, Names> cases[] = {
        {"zorb2v -C ", {"alpha", "beta", blank}},
        {"zorb2v -C b", {"beta", blank}},
        {"zorb2v -C alpha -config ", {"before", "current"}},
        {"zorb2v -C alpha -co ", {"before", "current"}},
        {"zorb2v -gui -C 'big one' -config ", {"big"}},
        {"zorb2v -C unknown -config ", {}},
        {"zorinfo check -C b", {"beta", blank}},
        {"zorinfo layout --svg ", {"alpha", "beta", blank}},
        {"zorinfo layout alpha ", {"before", "current"}},
        {"zorinfo bundle --client alpha --config ", {"before", "current"}},
        {"zorlab bundle lab --client ", {"alpha", "beta", blank}},
        {"zorlab bundle lab --client alpha --config ", {"before", "current"}},
        {"zorlab export ~/lab ", {"alpha", "beta", blank}},
        {"zorlab export lab ", {"alpha", "beta", blank}},
        {"zorlab export lab alpha ", {"before", "current"}},
    };
    for (const auto& [line, names] : cases)
        EXPECT_EQ(offers(line), names) << line;
}

TEST_P(Completions, waitForNoDaemon) {
    answerNames("sleep 2; echo I come >late\n"); // the half second is up long before
    EXPECT_EQ(offers("zorb2v -C "), Names());
    EXPECT_FALSE(std::filesystem::exists(m_scratch / "late"));
}

TEST_P(Completions, knowWhatAnOptionTakes) {
    for (const char* line : {"zorb2v -veconfig l", "zorb2v -vec l"})
        EXPECT_EQ(offers(line), (Names{GetParam() == std::string("fish") ? "lab/" : "lab"})) << line;
    EXPECT_EQ(offers("zorb2v -version "), Names());
    EXPECT_THAT(offers("zorlab serve --fail "), IsSupersetOf({"connect", "listing"}));
}

INSTANTIATE_TEST_SUITE_P(, Completions, testing::Values("bash", "zsh", "fish"),
                         [](const auto& test) { return std::string(test.param); });

} // namespace
} // namespace Zorvane
