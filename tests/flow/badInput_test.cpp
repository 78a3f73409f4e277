// SPDX-License-Identifier: Apache-2.0
// Files, configurations and daemons that are not as they should be: each run ends, and says why.
#include "flow/Lab.h"
#include "platform/inLocale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace Zorvane {
namespace {

class BadInput : public testing::Test {
  protected:
    Ended run(const Lab::Environment& environment = {}, const std::string& client = "ledger01.corp.example") {
        return m_lab.zorb2v({"-C", client, "-vmserver", "vcenter01.lab.example", "-vmproxy",
                             "convhost01.lab.example", "-veconfig", m_lab.path("target")},
                            environment);
    }
    Lab m_lab;
};

TEST_F(BadInput, configurationsOfTheSuite) {
    m_lab.write("target", "");
    m_lab.write("malformed", "[master]\nservers = [\"localhost\"\n[services\n");
    m_lab.write("silent", "master.servers = ['localhost']\nservices.zord = 1\n");
    m_lab.write("portless", "master.servers = ['localhost']\n");
    m_lab.write("typed", "master.servers = 'localhost'\nservices.zord = 70000\n");
    const std::pair<std::string, std::string> cases[] = {
        {"missing", "missing: No such file or directory"},
        {"malformed", "malformed:3:"},
        {"lab", "lab: Is a directory"},
        {"silent", ""},
        {"portless", ""},
        {"typed", "typed:"},
    };
    for (const auto& [file, complaint] : cases) {
        const Ended ended = run({{"KVN_CONF", m_lab.path(file)}});
        EXPECT_EQ(ended.status, 3) << file;
        EXPECT_THAT(ended.err, HasSubstr(complaint)) << file;
        EXPECT_TRUE(ended.err.ends_with(message(15))) << ended.err;
        EXPECT_TRUE(!complaint.empty() || ended.err == message(15)) << ended.err;
    }
}

TEST_F(BadInput, answersOfTheDaemons) {
    m_lab.write("target", "toolsIsoPath=t");
    struct Case {
        std::string point;
        std::vector<std::string> effects;
        int status;
        std::string err;
    };
    const Case cases[] = {
        {"connect:zord", {"close", "garbage"}, 3, message(15)},
        {"version", {"type", "long", "2"}, 3, message(15)},
        {"query:Config", {"garbage", "type", "empty", "notxml", "entity", "deep"}, 3, message(15)},
        {"tree:Config", {"deep"}, 3, message("17 current")},
        {"catalogue", {"close", "garbage"}, 1, message(33)},
        {"command", {"close", "garbage", "37"}, 1, ""},
        {"listing:10", {"close", "half", "notxml", "entity", "deep"}, 1, ""},
        {"insert:VmwareProfileOptions", {"notxml"}, 1, "\n"},
        {"insert:P2VRestoreTask", {"entity"}, 1, message(37)},
        {"dob2v", {"long"}, 1, message(38)},
    };
    for (const auto& [point, effects, status, err] : cases)
        for (const std::string& effect : effects) {
            m_lab.serve({point + "=" + effect});
            const Ended ended = run();
            EXPECT_EQ(ended.status, status) << point << " " << effect;
            EXPECT_EQ(ended.err, err) << point << " " << effect;
            EXPECT_EQ(ended.out, "") << point << " " << effect;
            m_lab.forget();
        }
}

TEST_F(BadInput, targetFiles) {
    m_lab.serve();
    std::string binary;
    for (unsigned i = 0; i < 1'000'000; ++i)
        binary += static_cast<char>(i * i >> 7);
    const std::string megabyte(1'000'000, 'x');
    std::string fifty;
    for (int i = 0; i < 50; ++i)
        fifty += "note=" + megabyte + "\n";
    const std::pair<std::string, std::string> cases[] = {
        {fifty, "10 toolsIsoPath"},
        {binary, "10 toolsIsoPath"},
        {"toolsIsoPath=t\nname=" + megabyte, ""},
        {"toolsIsoPath=t\nnetwork=B\xfcro\n", "27 B\xfcro"},
        {"toolsIsoPath=t\ndatastore=ng-san-01\nharddisk=0:\x1b[2J\n", "28 \x1b[2J"},
    };
    for (const auto& [text, told] : cases) {
        m_lab.write("target", text);
        const Ended ended = run();
        EXPECT_EQ(ended.status, told.empty() ? 0 : 1) << told;
        EXPECT_EQ(ended.err, message(told));
        m_lab.forget();
    }
}

TEST_F(BadInput, namesInTheLocaleOfTheTerminal) {
    if (!canMakeLatin1())
        GTEST_SKIP() << "no Latin-1 locale can be made here";
    const std::string make =
        "localedef -i en_US -f ISO-8859-1 " + m_lab.path("en_US.ISO-8859-1") + " 2>/dev/null";
    ASSERT_EQ(std::system(make.c_str()), 0);
    // The C library keeps its list of locale folders, which is a leak to the sanitizer.
    const Lab::Environment latin1 = {
        {"LOCPATH", m_lab.path("")}, {"LC_ALL", "en_US.ISO-8859-1"}, {"ASAN_OPTIONS", "detect_leaks=0"}};
    m_lab.serve();
    m_lab.sql("UPDATE ZOR_Config SET ClientName = 'B\xc3\xbcro' WHERE Id = 4");
    m_lab.write("target", "toolsIsoPath=t\nname=K\xfc"
                          "che\n");
    EXPECT_EQ(run(latin1, "B\xfcro").err, "");
    EXPECT_EQ(m_lab.sql("SELECT ClientName, VmName FROM ZOR_P2VRestoreTask"), "B\xc3\xbcro|K\xc3\xbc"
                                                                              "che\n");
    // Bytes that are no text of the locale are taken for what they may well be: it is the same client.
    EXPECT_EQ(run({{"LC_ALL", "C.UTF-8"}}, "B\xfcro").err, message(16));
    EXPECT_EQ(run({{"LC_ALL", "C"}}, "B\xc3\xbcro").err, message(16));
}

} // namespace
} // namespace Zorvane
