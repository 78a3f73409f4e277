// SPDX-License-Identifier: Apache-2.0
// The daemons of a lab, spoken to by the client's own code.
#include "ServedLab.h"
#include "inventory/CZorb2vKvnrdConnect.h"
#include "lab/methods.h"
#include "ops/zorop.h"

namespace Zorvane {

namespace {

constexpr const char* TASKS = "ZorDba.ZOR_P2VRestoreTask";
constexpr const char* PROFILES = "ZorDba.ZOR_VmwareProfileOptions";

ID insertTask(const std::string& client) {
    CZor rows;
    auto* task = new CP2VRestoreTask;
    task->setId(1);
    task->setClientName(client);
    task->setState(TaskState::QUEUED);
    rows.m_vP2VRestoreTask.push_back(task);
    EXPECT_EQ(rows.insertRequest(), 0);
    return rows.m_vP2VRestoreTask.size() == 1 ? rows.m_vP2VRestoreTask.front()->getId() : 0;
}

ID insertProfile(const std::string& name, const std::string& store) {
    CZor rows;
    auto* profile = new CVmwareProfileOptions;
    profile->setId(1);
    profile->setProfileName(name);
    profile->setVICName("convhost01.lab.example");
    profile->setVCenterServer("vcenter01.lab.example");
    profile->setEsxServer("esx01.lab.example");
    profile->setDataStore(store);
    rows.m_vVmwareProfileOptions.push_back(profile);
    EXPECT_EQ(rows.insertRequest(), 0);
    return rows.m_vVmwareProfileOptions.front()->getId();
}

std::size_t count(const char* table, const std::string& where) {
    CZor rows;
    EXPECT_EQ(rows.queryRequest("*", table, where), 0);
    return rows.m_vP2VRestoreTask.size() + rows.m_vVmwareProfileOptions.size();
}

int dob2v(const std::string& task, std::string& text) {
    return ZorOps(ZOROP_DOB2V, ZOROP_B2VRESTORETASK, task, task, &text);
}

std::vector<FailRule> rules(std::initializer_list<const char*> texts) {
    std::vector<FailRule> read;
    for (const char* text : texts)
        read.push_back(parseFailRule(text));
    return read;
}

} // namespace

TEST(Sessions, RowsGoInAndOutAndEveryRequestIsLogged) {
    ServedLab lab;
    const ID id = insertTask("srv'1");
    ASSERT_NE(id, 0U);
    CZor rows;
    ASSERT_EQ(rows.queryRequest("*", TASKS, "ZorDba.ZOR_P2VRestoreTask.ClientName = 'srv''1'"), 0);
    ASSERT_EQ(rows.m_vP2VRestoreTask.size(), 1U);
    rows.m_vP2VRestoreTask.front()->setVmName("new\tname");
    ASSERT_EQ(rows.updateRequest(), 0);
    ASSERT_EQ(rows.queryTreeRequest(TASKS, id), 0);
    EXPECT_EQ(rows.m_vP2VRestoreTask.front()->getVmName(), "new\tname");
    ASSERT_EQ(rows.deleteRequest(), 0);
    EXPECT_EQ(count(TASKS, "1"), 0U);
    EXPECT_EQ(rows.queryRequest("*", TASKS, "no such"), STORE_BAD_QUERY);

    const std::string number = std::to_string(id);
    const std::vector<std::string> wanted = {
        "zord\tinsert\tP2VRestoreTask\t1\t0\t-",
        "zord\tquery\tZorDba.ZOR_P2VRestoreTask\tZorDba.ZOR_P2VRestoreTask.ClientName = 'srv''1'\t0\t-",
        "zord\tupdate\tP2VRestoreTask\t1\t0\t-",
        "zord\tquerytree\tZorDba.ZOR_P2VRestoreTask\t" + number + "\t0\t-",
        "zord\tdelete\tP2VRestoreTask\t1\t0\t-",
        "zord\tquery\tZorDba.ZOR_P2VRestoreTask\t1\t0\t-",
    };
    auto lines = lab.requests();
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_TRUE(lines.back().starts_with("zord\tquery\tZorDba.ZOR_P2VRestoreTask\tno such\t53\t"))
        << lines.back();
    lines.pop_back();
    EXPECT_EQ(lines, wanted);
}

TEST(Sessions, ASubmittedTaskRunsToItsEnd) {
    ServedLab lab;
    const ID id = insertTask("srv1");
    std::string text;
    ASSERT_EQ(dob2v(std::to_string(id), text), 0);
    for (int i = 0; i < 500 && lab.store().taskLogs().empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(lab.store().taskLogs().size(), 1U);
}

TEST(Sessions, FailedMethodsTellTheReason) {
    ServedLab lab;
    const std::string good = std::to_string(insertProfile("Good", "ng-san-01"));
    const std::string bad = std::to_string(insertProfile("Bad", "nowhere"));
    const struct {
        int operation;
        int resource;
        std::string first;
        std::string second;
        int status;
        const char* text;
    } cases[] = {
        {ZOROP_VERIFYB2V, ZOROP_VEPROFILE, "1", good, 0, ""},
        {ZOROP_VERIFYB2V, ZOROP_VEPROFILE, "1", bad, 1,
         "The profile \"Bad\" sets datastore to \"nowhere\""},
        {ZOROP_VERIFYB2V, ZOROP_VEPROFILE, "1", "9999", STORE_NO_SUCH_ROW, "There is no profile \"9999\""},
        {ZOROP_DELETE, ZOROP_VEPROFILE, "1", "good", 0, ""},
        {ZOROP_DELETE, ZOROP_VEPROFILE, "1", "good", STORE_NO_SUCH_ROW, "There is no profile \"good\""},
        {ZOROP_DOB2V, ZOROP_B2VRESTORETASK, "x", "x", STORE_NO_SUCH_ROW,
         "no conversion task with the number x"},
        {ZOROP_COPY, ZOROP_CONFIG, "a", "b", 1, "does not offer the operation copy on config"},
    };
    for (const auto& row : cases) {
        std::string text;
        EXPECT_EQ(ZorOps(row.operation, row.resource, row.first, row.second, &text), row.status) << row.text;
        EXPECT_NE(text.find(row.text), std::string::npos) << text;
    }
    EXPECT_EQ(count(PROFILES, "1"), 1U);
}

TEST(Sessions, CatalogueCommandsGiveOutputAndStatus) {
    ServedLab lab;
    std::stringstream output;
    std::string text;
    EXPECT_EQ(ZorOps(ZOROP_PREPARE, ZOROP_CLIENT, "kvnlist -E -C srv1 -k Daily -t 13 -X -s 0 -I \"/C/*\"",
                     output, &text),
              0);
    EXPECT_EQ(output.str(), "/C/a\n");
    EXPECT_EQ(ZorOps(ZOROP_PREPARE, ZOROP_CLIENT, "kvnclimagelist -client srv1 -ct 0", output, &text), 227);
    EXPECT_EQ(output.str(), "/C/a\n");
}

TEST(Sessions, ListingsAreReadByTheirClient) {
    ServedLab lab;
    CZorb2vKvnrdConnect client;
    std::map<std::string, long long> stores;
    EXPECT_EQ(client.getDsList(stores, "p", "esx90.lab.example", "esx90.lab.example", "127.0.0.1"), 0);
    EXPECT_EQ(stores.size(), 2U);
    std::vector<std::string> machines;
    EXPECT_EQ(client.getVmList(machines, "p", "esx90.lab.example", "esx90.lab.example", "127.0.0.1"), 0);
    EXPECT_EQ(machines, std::vector<std::string>{"branch-dc01"});
    EXPECT_EQ(client.getVmList(machines, "p", "a", "nobody", "127.0.0.1"), 48);
    EXPECT_EQ(lab.requests().front(), "kvnrd\tlisting 22\tesx90.lab.example\tp, esx90.lab.example\t0");
}

TEST(Sessions, FilesAndTextsAreTaken) {
    ServedLab lab;
    const std::string bytes(100'000, 'x');
    const auto* block = reinterpret_cast<const unsigned char*>(bytes.data());
    const int size = static_cast<int>(bytes.size());
    EXPECT_EQ(ZorOps(ZOROP_PUSH, ZOROP_INFO, "../client", "config", "../../a file", block, size), 0);
    const ScratchDirectory place;
    EXPECT_EQ(ZorOps(ZOROP_PULL, ZOROP_INFO, place.file("got").c_str(), "../../a file", "../client"), 0);
    EXPECT_EQ(std::filesystem::file_size(place.file("got")), bytes.size());
    EXPECT_NE(ZorOps(ZOROP_PULL, ZOROP_INFO, place.file("none").c_str(), "another", "../client"), 0);
    EXPECT_EQ(ZorOps(ZOROP_CHANGE, ZOROP_RESTORETASK, "client", "2", "6"), 0);
    EXPECT_EQ(ZorOps(ZOROP_CREATE, ZOROP_MESSAGE, "client", "1", "text"), 0);
    // A client's name is never a way out of the folder.
    const auto entries = std::filesystem::directory_iterator(lab.received());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST(Sessions, PacketRequestsFailOnDemand) {
    const struct {
        const char* rule;
        int query; ///< what the client's query gives
    } cases[] = {
        {"connect:zord=close", ZOROP_VERSION_FAILURE},
        {"version=2", ZOROP_VERSION_FAILURE},
        {"version=garbage", ZOROP_VERSION_FAILURE},
        {"version=long", ZOROP_VERSION_FAILURE},
        {"query:P2VRestoreTask=9", 9},
        {"query:Config=9", 0},
        {"query@2=9", 0},
        {"version=other", ZOROP_VERSION_FAILURE},
        {"version=half", ZOROP_VERSION_FAILURE},
        {"query=close", ZOROP_NETWORK_FAILURE},
        {"query=garbage", ZOROP_NETWORK_FAILURE},
        {"query=type", ZOROP_NETWORK_FAILURE},
        {"query=long", 255},
        {"query=empty", 1},
        {"query=notxml", 1},
        {"query=entity", 1},
        {"query=deep", 1},
    };
    for (const auto& row : cases) {
        ServedLab lab(rules({row.rule}));
        CZor rows;
        EXPECT_EQ(rows.queryRequest("*", TASKS, "1"), row.query) << row.rule;
        EXPECT_TRUE(rows.m_vP2VRestoreTask.empty());
    }
}

TEST(Sessions, AnswersComeLateOnDemand) {
    using Clock = std::chrono::steady_clock;
    ServedLab lab(rules({"query@1=delay:400", "query@1=9", "listing=delay:150", "update=half"}),
                  {.exchange = std::chrono::milliseconds(300)});
    const auto begin = Clock::now();
    CZor rows;
    EXPECT_EQ(rows.queryRequest("*", TASKS, "1"), 9) << "a delay takes no time from the answer";
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(400));
    CZorb2vKvnrdConnect client;
    std::vector<std::string> proxies;
    EXPECT_EQ(client.getVmProxyList(proxies, "127.0.0.1"), 0);
    EXPECT_EQ(proxies.size(), 2U);
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(550));

    insertTask("srv1");
    EXPECT_EQ(rows.queryRequest("*", TASKS, "1"), 0);
    rows.m_vP2VRestoreTask.front()->setVmName("x");
    EXPECT_NE(rows.updateRequest(), 0) << "the update's answer breaks off";
}

TEST(Sessions, MethodsAndListingsFailOnDemand) {
    ServedLab lab(rules({"dob2v@1=5", "dob2v@2=close", "dob2v@3=type", "catalogue:kvnlist=116",
                         "listing:9@1=300", "listing:9@2=notxml", "listing:9@3=half", "listing:9@4=close",
                         "command@5=37", "connect:kvnrd@6=7"}));
    std::string text;
    EXPECT_EQ(dob2v("1", text), 5);
    EXPECT_NE(text.find("--fail"), std::string::npos) << text;
    EXPECT_EQ(dob2v("1", text), ZOROP_NETWORK_FAILURE);
    EXPECT_EQ(dob2v("1", text), ZOROP_NETWORK_FAILURE);
    EXPECT_EQ(ZorOps(ZOROP_PREPARE, ZOROP_CLIENT, "kvnlist -C srv1 -t 13 /C", &text), 116);

    CZorb2vKvnrdConnect client;
    for (const int status : {100, 1, 1, 1, 37, 7}) {
        std::vector<std::string> proxies;
        EXPECT_EQ(client.getVmProxyList(proxies, "127.0.0.1"), status);
    }
}

} // namespace Zorvane
