// SPDX-License-Identifier: Apache-2.0
#include "suite/Scratch.h"
#include "suite/configuration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using testing::HasSubstr;
using testing::StartsWith;
using Zorvane::Suite::Configuration;
using Zorvane::Suite::configuration;
using Texts = std::vector<std::string>;
using Cases = std::initializer_list<std::pair<std::string, const char*>>;

namespace {

// What a look at the configuration tells on standard error.
std::string told() {
    testing::internal::CaptureStderr();
    configuration();
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(Configuration, readsEveryValue) {
    const Scratch scratch(R"(
[master]
servers = ["alpha", "beta"]
media_servers = ["gamma"]
client_name = "labhost"
required_interface = "if0"
quss = "allowed"
[services]
zord = 14701
[logging]
directory = "/tmp/logs"
debug = 2
max_bytes = 4096
max_files = 2
originator.433.debug = 5
[catalog]
directory = "/tmp/cat"
)");
    EXPECT_EQ(told(), "");
    const Configuration& c = configuration();
    EXPECT_EQ(c.master.servers, (Texts{"alpha", "beta"}));
    EXPECT_EQ(c.master.media_servers, Texts{"gamma"});
    EXPECT_EQ(c.master.client_name + c.master.required_interface, "labhostif0");
    EXPECT_EQ(c.master.quss_mode, KVN_QUSS_ALLOWED);
    EXPECT_EQ(c.services.at("zord"), 14701);
    EXPECT_EQ(c.logDirectory + c.catalogDirectory, "/tmp/logs/tmp/cat");
    EXPECT_EQ(c.logMaxBytes + c.logMaxFiles, 4098U);
    EXPECT_EQ(c.levelsOf(433).debug, 5);
    EXPECT_EQ(c.levelsOf(433).diag, 1) << "what an originator leaves out is the general level";
    EXPECT_EQ(c.levelsOf(128).debug, 2);
}

TEST(Configuration, malformedFilesAreToldOnceWithTheirPlaceAndCountAsAbsent) {
    std::string endless = "a";
    for (int i = 0; i < 100'000; ++i)
        endless += ".a";
    for (const auto& [text, place] : Cases{
             {"[master]\nservers = [\"alpha\"\nclient_name = 5\n", ":3:"},
             {"a = \"\x01\"\n", ":1:6: "},
             {"[}master]\n", ":1:2: "},
             {"o\xc3\x9c!=1\n", ":1:2: "},
             {"a = \"\xff\"\n", ":1:"},
             {"[logging]\n" + endless + " = 1\n", ":2:4097: "},
         }) {
        const Scratch scratch(text);
        const std::string first = told();
        EXPECT_THAT(first, StartsWith(scratch.path("kvn.toml") + place));
        EXPECT_THAT(first, HasSubstr("the file is not used"));
        EXPECT_EQ(told(), "") << "told once";
        EXPECT_NE(KVN_read_master_config(), 0);
        EXPECT_EQ(get_master_config_ptr(), nullptr);
    }
}

TEST(Configuration, wrongValuesAreToldAndPassedOver) {
    for (const auto& [text, complaint] : Cases{
             {"master = 5\n", ":1:10: master must be a table"},
             {"[master]\nservers = [\"alpha\", 5]\n", ":2:11: servers must be a list of texts"},
             {"[master]\nclient_name = [\"x\"]\n", ":2:15: client_name must be a text"},
             {"[services]\nzord = 65536\n", ":2:8: zord must be a whole number from 1 to 65535"},
             {"[logging]\ndebug = 4294967297\n", ":2:9: debug must be a whole number"},
             {"[logging]\nmax_bytes = 0\n", ":2:13: max_bytes must be a whole number"},
             {"[logging.originator]\n433 = 5\n", ":2:7: 433 must be a table"},
             {"[logging.originator.main]\ndebug = 5\n", "main must be an originator's number"},
         }) {
        const Scratch scratch(text + "[catalog]\ndirectory = \"/elsewhere\"\n");
        EXPECT_THAT(told(), HasSubstr(complaint));
        const Configuration& c = configuration();
        EXPECT_EQ(c.catalogDirectory, "/elsewhere") << "the other values stand";
        EXPECT_TRUE(c.master.servers.empty() && c.services.empty() &&
                    c.logMaxBytes == Configuration().logMaxBytes);
        EXPECT_EQ(c.levelsOf(433).debug, 1);
    }
    const Scratch scratch("[master]\nquss = \"requird\"\n");
    EXPECT_THAT(told(), HasSubstr(":2:8: quss must be"));
    EXPECT_EQ(configuration().master.quss_mode, KVN_QUSS_REQUIRED) << "a slip does not switch security off";
}

TEST(Configuration, changesCountAtTheNextLook) {
    const Scratch scratch;
    // Equal sizes, and no time passes: neither size nor file time tells the second text from the first.
    for (const char* name : {"a", "b", "c"}) {
        scratch.configure("[master]\nclient_name = \"" + std::string(name) + "\"\n");
        EXPECT_EQ(configuration().master.client_name, name);
    }
    ASSERT_EQ(KVN_read_master_config(), 0);
    scratch.write("new.toml", "[master]\nclient_name = \"d\"\n");
    std::filesystem::rename(scratch.path("new.toml"), scratch.path("kvn.toml"));
    EXPECT_EQ(configuration().master.client_name, "d");
    EXPECT_EQ(get_master_config_ptr()->client_name, "c") << "the loaded record stays until the next load";
    std::filesystem::remove(scratch.path("kvn.toml"));
    EXPECT_THAT(told(), HasSubstr("No such file")) << "somebody chose that name";
    EXPECT_FALSE(configuration().present);
}

TEST(Configuration, oddFilesAreTold) {
    const Scratch scratch(std::string(std::size_t{2} << 20, '\n'));
    EXPECT_THAT(told(), HasSubstr("File too large"));
    const std::string path = scratch.path("kvn.toml");
    std::filesystem::remove(path);
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_THAT(told(), HasSubstr("Invalid argument")) << "and no wait for a writer";
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_THAT(told(), HasSubstr("Is a directory"));
    EXPECT_FALSE(configuration().present);
}
