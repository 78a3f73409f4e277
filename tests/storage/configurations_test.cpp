// SPDX-License-Identifier: Apache-2.0
#include "storage/Rows.h"
#include "storage/configurations.h"

namespace Zorvane {
namespace {

/// What the recovery daemon answers, and was asked.
struct Daemon {
    int queryResult = 0;
    int treeResult = 0;
    std::string configs = "Config";
    std::string tree = "NetworkInterface MacAddress=a; NetworkInterface MacAddress=b";
    std::string asked{};
} recoveryDaemon;

} // namespace

// In place of the request verbs, which this program therefore doesn't link.
int CZor::queryRequest(const std::string& columns, const std::string& table, const std::string& where) {
    recoveryDaemon.asked = columns + '|' + table + '|' + where;
    addRows(*this, recoveryDaemon.configs);
    return recoveryDaemon.queryResult;
}
int CZor::queryTreeRequest(const std::string& table, ID id) {
    recoveryDaemon.asked += '|' + table + '|' + std::to_string(id);
    addRows(*this, recoveryDaemon.tree);
    return recoveryDaemon.treeResult;
}

namespace {

const std::string COPY = "Config Type=COPIED ClientName=o'host; ConfigEditSession OriginalConfigId=42;";
const std::string CARD = "NetworkInterface MacAddress=";
const std::string QUERY =
    "ZorDba.ZOR_Config.Id='42' AND lower(ZorDba.ZOR_Config.ClientName) = lower('o''host')";

TEST(Configurations, dissimilarIfAnInterfaceOfTheSourceIsMissing) {
    const struct {
        Daemon answers;
        std::string rows, dissimilar, log{};
    } cases[] = {
        {{}, COPY + CARD + "b;" + CARD + "a;" + CARD + "c", "0"},
        {{}, COPY + CARD + "a;" + CARD + "c", "1"},
        {{}, COPY + CARD + "a;" + CARD + "B", "1"},
        {{}, COPY, "1"},
        {{.tree = ""}, COPY + CARD + "a", "0"},
        {{.queryResult = 200}, COPY, "0", "Unable to fetch table details.Query: " + QUERY + ", rc=200"},
        {{.configs = ""}, COPY, "0", "Unable to read config; config id:42"},
        {{.treeResult = 1}, COPY, "0", "Unable to read config; config id:42"}};
    for (const auto& c : cases) {
        recoveryDaemon = c.answers;
        Lines log = logOf(4, [&] { check(isDSRConfig, {{c.rows, c.dissimilar}}); });
        std::erase_if(log, [](const std::string& line) { return line.find(" configurations:") == line.npos; });
        EXPECT_EQ(log, c.log.empty() ? Lines() : Lines{"debug 2 configurations:isDSRConfig() " + c.log});
    }
    EXPECT_EQ(recoveryDaemon.asked, "*|ZorDba.ZOR_Config|" + QUERY + "|ZorDba.ZOR_Config|42");
    recoveryDaemon = {};
    check(isDSRConfig, {{"Config Type=COPIED", "0"}, {"Config Type=SAVED; ConfigEditSession", "0"}});
    EXPECT_EQ(recoveryDaemon.asked, "");
}

} // namespace
} // namespace Zorvane
