// SPDX-License-Identifier: Apache-2.0
#include "storage/Rows.h"
#include "storage/configurations.h"

namespace Zorvane {
namespace {

/// What the recovery daemon answers.
struct Daemon {
    int queryResult = 0;
    int treeResult = 0;
    std::string configs = "Config";
    std::string tree = "NetworkInterface MacAddress=a; NetworkInterface MacAddress=b";
};
Daemon daemonState;
std::string asked;

} // namespace

// In place of the request verbs, which this program therefore doesn't link.
int CZor::queryRequest(const std::string& columns, const std::string& table, const std::string& where) {
    asked = columns + '|' + table + '|' + where;
    addRows(*this, daemonState.configs);
    return daemonState.queryResult;
}
int CZor::queryTreeRequest(const std::string& table, ID id) {
    asked += '|' + table + '|' + std::to_string(id);
    addRows(*this, daemonState.tree);
    return daemonState.treeResult;
}

namespace {

const std::string COPY = "Config Type=COPIED ClientName=o'host; ConfigEditSession OriginalConfigId=42;";
const std::string CARD = "NetworkInterface MacAddress=";

TEST(Configurations, dissimilarIfAnInterfaceOfTheSourceIsMissing) {
    daemonState = {};
    check(isDSRConfig, {{COPY + CARD + "b;" + CARD + "a", "0"},
                        {COPY + CARD + "a;" + CARD + "b;" + CARD + "c", "0"},
                        {COPY + CARD + "a;" + CARD + "c", "1"},
                        {COPY + CARD + "a;" + CARD + "B", "1"},
                        {COPY, "1"}});
    EXPECT_EQ(asked, "*|ZorDba.ZOR_Config|ZorDba.ZOR_Config.Id='42' AND "
                     "lower(ZorDba.ZOR_Config.ClientName) = lower('o''host')|ZorDba.ZOR_Config|42");
    asked = "";
    check(isDSRConfig,
          {{COPY.substr(0, COPY.find(';')), "0"}, {"Config Type=SAVED; ConfigEditSession", "0"}});
    EXPECT_EQ(asked, "");
    daemonState.tree = "";
    check(isDSRConfig, {{COPY + CARD + "a", "0"}});
}

TEST(Configurations, unreadableSourceIsLogged) {
    const std::string label = "debug 2 configurations:isDSRConfig() ";
    const std::string unread = label + "Unable to read config; config id:42";
    const std::pair<Daemon, std::string> cases[] = {
        {{.queryResult = 200},
         label + "Unable to fetch table details.Query: ZorDba.ZOR_Config.Id='42' AND "
                 "lower(ZorDba.ZOR_Config.ClientName) = lower('o''host'), rc=200"},
        {{.configs = ""}, unread},
        {{.treeResult = 1}, unread}};
    for (const auto& [answers, line] : cases) {
        daemonState = answers;
        EXPECT_EQ(logOf(4, [] { check(isDSRConfig, {{COPY, "0"}}); }), Lines{line});
    }
}

} // namespace
} // namespace Zorvane
