// SPDX-License-Identifier: Apache-2.0
#include "ops/FakeZord.h"
#include "ops/pullRetry.h"
#include "ops/zorop.h"

#include <set>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace Zorvane {

namespace {

constexpr const char* METHOD = "zord";
constexpr const char* BOOT_METHOD = "zorbd";
constexpr const char* PARAMETERS = "203"; ///< an exchange that wants parameters

// What each operation does with a call without parameters.
struct Expectation {
    int operation;
    std::set<int> resources;
    const char* what;
};
const Expectation EXPECTATIONS[] = {
    {1, {1, 2, 16}, PARAMETERS},
    {1, {6}, BOOT_METHOD},
    {2, {5, 6}, BOOT_METHOD},
    {3, {5, 6}, BOOT_METHOD},
    {4, {5, 6}, BOOT_METHOD},
    {5, {4, 8, 9, 15, 17, 22}, METHOD},
    {5, {5, 6}, BOOT_METHOD},
    {5, {10}, PARAMETERS},
    {6, {4}, METHOD},
    {6, {5}, BOOT_METHOD},
    {7, {3, 7}, PARAMETERS},
    {8, {4, 8}, PARAMETERS},
    {9, {9}, METHOD},
    {10, {10}, PARAMETERS},
    {11, {10}, PARAMETERS},
    {12, {10}, PARAMETERS},
    {13, {10}, PARAMETERS},
    {17, {3}, PARAMETERS},
    {18, {11, 13, 20}, METHOD},
    {19, {4, 23}, METHOD},
    {20, {11, 13, 20}, PARAMETERS},
    {22, {19}, BOOT_METHOD},
    {23, {19}, BOOT_METHOD},
    {24, {19}, BOOT_METHOD},
    {25, {20}, METHOD},
    {26, {22}, METHOD},
    {27, {9}, METHOD},
};

std::string expected(int operation, int resource) {
    if (operation == 14)
        return "0";
    std::string result = "201";
    for (const Expectation& row : EXPECTATIONS)
        if (row.operation == operation) {
            if (row.resources.contains(resource))
                return row.what;
            result = "202";
        }
    return result;
}

std::string method(unsigned operation, unsigned resource, const std::vector<std::string>& parameters,
                   unsigned type = 9) {
    std::string area;
    for (const std::string& parameter : parameters)
        area += S(parameter);
    return packet(type,
                  s(operation) + s(resource) + s(static_cast<unsigned>(parameters.size())) + area + S(""));
}

const std::string METHOD_DONE = packet(24, i(0) + i(0));

} // namespace

TEST(zorop, everyOperationKnowsItsResources) {
    FakeZord zord(METHOD_DONE);
    for (int operation = -1; operation <= 29; ++operation)
        for (int resource = -1; resource <= 25; ++resource) {
            const std::size_t before = zord.log().size();
            const int rc = ZorOpProcess(operation, resource, {}, nullptr, nullptr, nullptr);
            const std::string what = expected(operation, resource);
            if (what == METHOD)
                EXPECT_EQ(rc, 0) << operation << ' ' << resource;
            else if (what == BOOT_METHOD)
                EXPECT_EQ(rc, 200) << "no boot server is known: " << operation << ' ' << resource;
            else
                EXPECT_EQ(std::to_string(rc), what) << operation << ' ' << resource;
            EXPECT_STREQ(g_service, what == BOOT_METHOD ? "zorbd" : "zord") << operation << ' ' << resource;
            EXPECT_EQ(zord.log().size() == before, what == METHOD || what == PARAMETERS)
                << "each failure of the call itself is told";
        }
    EXPECT_EQ(zord.heard().size(), 16) << "one connection for each method";
}

TEST(zorop, tellsOfFailuresInTheLog) {
    const struct {
        int operation;
        int resource;
        const char* text;
    } cases[] = {
        {1, 3, "Bad resource for create operation"},
        {9, 4, "Bad resource for prepare operation"},
        {22, 5, "Bad resource for allocate operation"},
        {24, 5, "Bad resource for allocate operation"},
        {25, 22, "Bad resource for b2v operation."},
        {26, 20, "Bad resource for b2v operation."},
        {27, 3, "Bad resource for restore operation."},
        {28, 3, "Bad operation to zorops"},
        {0, 3, "Bad operation to zorops"},
        {15, 10, "Bad operation to zorops"},
        {14, 3, "Destroy operation not supported"},
    };
    for (const auto& test : cases) {
        FakeZord zord;
        ZorOps(test.operation, test.resource, "parameter");
        EXPECT_THAT(zord.log(), HasSubstr(test.text));
        EXPECT_THAT(zord.log(), Not(HasSubstr("diag"))) << "nothing for the administrator";
        EXPECT_TRUE(zord.heard().empty());
    }
    FakeZord network;
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CLIENT, "alpha"), 200);
    EXPECT_THAT(network.log(), HasSubstr("diag 1 zorop:ZorOpProcess() [128:749]"));
    FakeZord security("", COMPATIBLE, "zord", 0, "required");
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CLIENT, "alpha"), 205);
    EXPECT_THAT(security.log(), HasSubstr("diag 1 zorop:ZorOpProcess() [128:750]"));
}

TEST(zorop, methodsCarryTheirParameters) {
    FakeZord zord(METHOD_DONE);
    std::string errorText;
    std::stringstream output;
    const std::string one = "1";
    EXPECT_EQ(ZorOps(ZOROP_DOB2V, ZOROP_B2VRESTORETASK, one, "17", &errorText), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_VEPROFILE, one, one), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, one, one, one), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, one, one, one, one), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, one, one, one, one, one), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, "a", "b", "c"), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, "text", one, one, one), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, one, one, -5, 6), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, one, one, 7), 0);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, "text", 8), 0);
    EXPECT_EQ(ZorOps(ZOROP_RESTORE, ZOROP_CLIENT, one, one, one, one, output), 0);
    EXPECT_EQ(ZorOps(ZOROP_RESTORE, ZOROP_CLIENT, one, one, one, one, one, "6", output), 0);
    EXPECT_THAT(zord.heard(),
                ElementsAre(method(25, 20, {"1", "17"}, 137), method(5, 22, {"1", "1"}),
                            method(5, 4, {"1", "1", "1"}), method(5, 4, {"1", "1", "1", "1"}),
                            method(5, 4, {"1", "1", "1", "1", "1"}), method(5, 4, {"a", "b", "c"}),
                            method(5, 4, {"text", "1", "1", "1"}), method(5, 4, {"1", "1", "-5", "6"}),
                            method(5, 4, {"1", "1", "7"}), method(5, 4, {"text", "8"}),
                            method(27, 9, {"1", "1", "1", "1"}),
                            method(27, 9, {"1", "1", "1", "1", "1", "6"})));
}

TEST(zorop, methodsRefuseWhatIsNoText) {
    FakeZord zord(METHOD_DONE);
    unsigned char block[] = {'x'};
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, block, 1), 203);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, static_cast<const char*>(nullptr), 1), 203);
    EXPECT_EQ(ZorOps(ZOROP_DELETE, ZOROP_CONFIG, "`reboot`"), -1);
    EXPECT_THAT(zord.heard(), ElementsAre(""));
}

TEST(zorop, handsOutTheOutputOfMethods) {
    FakeZord zord(packet(24, i(0) + i(2)) + "line 1\nline 2\n");
    std::stringstream output;
    output << "before: ";
    EXPECT_EQ(ZorOps(ZOROP_PREPARE, ZOROP_CLIENT, "kvnlist -C alpha", output), 2)
        << "the command's exit status";
    EXPECT_EQ(output.str(), "before: line 1\nline 2\n");
    unsigned char* out = nullptr;
    int length = 0;
    EXPECT_EQ(ZorOps(ZOROP_RETRIEVE, ZOROP_CONFIGLIST, "alpha", 1, &out, &length), 2);
    EXPECT_EQ(length, 14);
    ASSERT_TRUE(out);
    EXPECT_STREQ(reinterpret_cast<char*>(out), "line 1\nline 2\n");
    delete[] out;
    out = nullptr;
    EXPECT_EQ(ZorOps(ZOROP_RETRIEVE, ZOROP_CONFIG, "alpha", 1, &out, &length), 2);
    EXPECT_EQ(out, nullptr) << "a plain method drops it";
}

TEST(zorop, exchangesGetTheirParameters) {
    unsigned char block[] = {'1', '2', '3'};
    const struct {
        std::function<int()> run;
        std::string reply;
        std::string request;
    } cases[] = {
        {[&] { return ZorOps(ZOROP_DELETE, ZOROP_DB, block, 3); }, packet(23, c(0) + i(0)),
         packet(22, i(5) + i(3)) + "123"},
        {[&] { return ZorOps(ZOROP_UPDATE, ZOROP_DB, "123", 3); }, packet(23, c(0) + i(0)),
         packet(22, i(13) + i(3)) + "123"},
        {[] { return ZorOps(ZOROP_CREATE, ZOROP_MESSAGE, "alpha", "!", "text"); }, packet(16, c(0)),
         packet(7, c('!') + s(5) + S("alpha")) + S("text")},
        {[&] { return ZorOps(ZOROP_IMPORT, ZOROP_PACKAGE, std::string("alpha"), "config", block, 2, true); },
         packet(18, c(0)), packet(17, i(2) + S("config") + S("alpha") + i(8)) + "12"},
        {[] { return ZorOps(ZOROP_IMPORT, ZOROP_CONFIG, "alpha", "config", "123", 2, true); },
         packet(18, c(0)), packet(17, i(2) + S("config") + S("alpha") + i(4)) + "12"},
        {[&] { return ZorOps(ZOROP_PUSH, ZOROP_INFO, std::string("alpha"), "config", "file", block, 3); },
         packet(13, c(0)), packet(12, i(3) + S("file") + S("config") + S("alpha")) + "123"},
        {[&] { return ZorOps(ZOROP_PUSH, ZOROP_INFO, "alpha", "config", "file", block, 3); },
         packet(13, c(0)), packet(12, i(3) + S("file") + S("config") + S("alpha")) + "123"},
        {[] { return ZorOps(ZOROP_PULL, ZOROP_PROCEDURE, "/dev/null", "source", "alpha"); },
         packet(15, c(0) + i(0) + i(0)), packet(21, S("source") + S("alpha"))},
        {[] { return ZorOps(ZOROP_CHANGE, ZOROP_RESTORETASK, "alpha", "ACTIVE", "17"); }, packet(27, c(0)),
         packet(26, i(11) + S("alpha") + i(2) + i(17))},
        {[] { return ZorOps(ZOROP_CHANGE, ZOROP_B2VRESTORETASK, "alpha", "5", "FORMATING"); },
         packet(27, c(0)), packet(26, i(20) + S("alpha") + i(5) + i(5))},
        {[] { return ZorOps(ZOROP_CHANGE, ZOROP_B2VRESTORETASK, std::string("alpha"), "active", 3); },
         packet(27, c(0)), packet(26, i(20) + S("alpha") + i(0) + i(3))},
    };
    for (const auto& test : cases) {
        FakeZord zord(test.reply);
        EXPECT_EQ(test.run(), 0);
        EXPECT_EQ(zord.heardOnce(), test.request);
    }
    FakeZord zord;
    EXPECT_EQ(ZorOps(ZOROP_CREATE, ZOROP_ERROR, "one", std::string("two"), 7, 1), 0);
    EXPECT_EQ(zord.heardOnce().substr(0, 20), s(25) + s(4072) + i(7) + i(4) + S("one") + S("two"));
}

TEST(zorop, exchangesRefuseMissingAndWrongParameters) {
    FakeZord zord;
    const std::string text = "1";
    const char* null = nullptr;
    EXPECT_EQ(ZorOps(ZOROP_CREATE, ZOROP_MESSAGE, text, text), 203);
    EXPECT_EQ(ZorOps(ZOROP_CREATE, ZOROP_LOG, null), 203);
    EXPECT_EQ(ZorOps(ZOROP_CREATE, ZOROP_ERROR, text, text, text, text), 203);
    EXPECT_EQ(ZorOps(ZOROP_QUERY, ZOROP_DB, text, text), 203);
    EXPECT_EQ(ZorOps(ZOROP_QUERY, ZOROP_DB, null, 5), 203);
    EXPECT_EQ(ZorOps(ZOROP_PULL, ZOROP_INFO, text, text), 203);
    EXPECT_EQ(ZorOps(ZOROP_PULL, ZOROP_INFO, "1", null, "1"), 203);
    EXPECT_EQ(ZorOps(ZOROP_IMPORT, ZOROP_CONFIG, "1", "1", null, 1, true), 203);
    EXPECT_EQ(ZorOps(ZOROP_PUSH, ZOROP_INFO, text, text, text, text), 203);
    EXPECT_EQ(ZorOps(ZOROP_CHANGE, ZOROP_RESTORETASK, text, text), 203);
    EXPECT_EQ(ZorOps(ZOROP_CHANGE, ZOROP_RESTORETASK, null, "1", "1"), 203);
    EXPECT_TRUE(zord.heard().empty());
}

TEST(zorop, pullsAreTriedThreeTimes) {
    const struct {
        std::vector<int> results;
        int expected;
        int pauses;
    } cases[] = {
        {{0}, 0, 0}, {{7}, 7, 0}, {{200, 0}, 0, 1}, {{200, 200, 204}, 204, 2}, {{200, 200, 200}, 200, 3},
    };
    for (const auto& test : cases) {
        FakeZord zord;
        std::size_t attempt = 0;
        int pauses = 0;
        EXPECT_EQ(retryPull([&] { return test.results.at(attempt++); },
                            [&](std::chrono::seconds pause) {
                                EXPECT_EQ(pause.count(), 5);
                                ++pauses;
                            }),
                  test.expected);
        EXPECT_EQ(attempt, test.results.size());
        EXPECT_EQ(pauses, test.pauses);
        EXPECT_EQ(zord.log().find("Network failure experienced. Waiting for 5 seconds before retrying.") !=
                      std::string::npos,
                  pauses > 0);
    }
}

TEST(zorop, namesAreLookedUpWithoutCase) {
    int value = 0;
    EXPECT_EQ(LookupZorOperationName("CrEaTe", &value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(LookupZorResourceName("DATABASE", &value), 0);
    EXPECT_EQ(value, 10);
    for (const char* unknown : {static_cast<const char*>(nullptr), "", "creat", "created", "veprofile"})
        EXPECT_EQ(LookupZorOperationName(unknown, &value), 1);
    EXPECT_EQ(LookupZorResourceName("wim", &value), 1);
    EXPECT_EQ(LookupZorResourceName("bi", nullptr), 1);
    EXPECT_EQ(value, 10);
    for (int operation = 1; operation <= 27; ++operation) {
        EXPECT_EQ(LookupZorOperationName(zorOperationName(operation).c_str(), &value), 0);
        EXPECT_EQ(value, operation);
    }
    for (int resource = 1; resource <= 23; ++resource) {
        const bool hasName = LookupZorResourceName(zorResourceName(resource).c_str(), &value) == 0;
        EXPECT_EQ(hasName, resource != 16 && resource != 19);
        EXPECT_TRUE(!hasName || value == resource);
    }
    EXPECT_EQ(zorResourceName(19), "19");
}

TEST(zorop, masterRegistered) {
    std::string text;
    {
        FakeZord zord;
        EXPECT_EQ(ZorMasterRegistered(text), 1);
        EXPECT_EQ(text, "");
    }
    FakeZord zord;
    zord.heard();
    EXPECT_EQ(ZorMasterRegistered(text), 0);
    EXPECT_NE(text, "");
    EXPECT_THAT(zord.log(), HasSubstr("Looks like the ZOR Master Server is NOT registered."));
}

} // namespace Zorvane
