// SPDX-License-Identifier: Apache-2.0
#include "ops/FakeZord.h"
#include "ops/client_utils.h"
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
    // clang-format off
    {1, {1, 2, 16}, PARAMETERS}, {1, {6}, BOOT_METHOD},  {2, {5, 6}, BOOT_METHOD}, {3, {5, 6}, BOOT_METHOD},
    {4, {5, 6}, BOOT_METHOD},    {5, {5, 6}, BOOT_METHOD}, {5, {4, 8, 9, 15, 17, 22}, METHOD},
    {5, {10}, PARAMETERS},       {6, {4}, METHOD},       {6, {5}, BOOT_METHOD},    {7, {3, 7}, PARAMETERS},
    {8, {4, 8}, PARAMETERS},     {9, {9}, METHOD},       {10, {10}, PARAMETERS},   {11, {10}, PARAMETERS},
    {12, {10}, PARAMETERS},      {13, {10}, PARAMETERS}, {17, {3}, PARAMETERS},    {18, {11, 13, 20}, METHOD},
    {19, {4, 23}, METHOD},       {20, {11, 13, 20}, PARAMETERS}, {22, {19}, BOOT_METHOD},
    {23, {19}, BOOT_METHOD},     {24, {19}, BOOT_METHOD}, {25, {20}, METHOD},      {26, {22}, METHOD},
    {27, {9}, METHOD},
    // clang-format on
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
    FakeZord bad;
    ZorOps(9, 4, "parameter");
    ZorOps(24, 5, "parameter");
    ZorOps(15, 10, "parameter");
    ZorOps(14, 3, "parameter");
    const std::string label = "debug 1 zorop:ZorOpProcess() ";
    EXPECT_THAT(bad.scratch().logLines(128),
                ElementsAre(label + "Bad resource for prepare operation",
                            label + "Bad resource for allocate operation", label + "Bad operation to zorops",
                            label + "Destroy operation not supported"));
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

TEST(zorop, refusesMissingAndWrongParametersWithoutAConnection) {
    FakeZord zord;
    constexpr const char* NONE = nullptr;
    unsigned char block[] = {'x'};
    const struct {
        int operation;
        int resource;
        ZorOpParameters parameters;
    } cases[] = {
        {1, 1, {NONE}},
        {1, 2, {"1", "2"}},
        {1, 16, {"1", "2", "3", "4"}},
        {5, 4, {block, 1}},
        {5, 4, {"1", NONE}},
        {5, 10, {NONE, 5}},
        {7, 3, {"1", "2"}},
        {7, 3, {"1", NONE, "3"}},
        {8, 4, {"1", "2", NONE, 1, 1}},
        {10, 10, {"1", "2"}},
        {17, 3, {"1", "2", "3", "4"}},
        {20, 11, {"1", "2"}},
        {20, 11, {NONE, "1", "1"}},
    };
    for (const auto& test : cases)
        EXPECT_EQ(ZorOpProcess(test.operation, test.resource, test.parameters, nullptr, nullptr, nullptr),
                  203)
            << test.operation << ' ' << test.resource;
    EXPECT_EQ(SendChangeRequest(9, "alpha", 1, 1), 203);
    EXPECT_EQ(SendChangeRequest(20, "alpha", -1, 1), 203);
    EXPECT_EQ(SendChangeRequest(20, "alpha", 1, -1), 203);
    EXPECT_EQ(SendDbRequest(-1, block, 1, nullptr, nullptr), 203);
    EXPECT_TRUE(zord.heard().empty());
}

TEST(zorop, pullsAreTriedThreeTimes) {
    const std::pair<std::vector<int>, std::size_t> cases[] = {
        {{0}, 0}, {{7}, 0}, {{200, 0}, 1}, {{200, 200, 204}, 2}, {{200, 200, 200}, 3},
    };
    for (const auto& [results, expectedPauses] : cases) {
        FakeZord zord;
        std::size_t attempts = 0;
        std::size_t pauses = 0;
        const auto attempt = [&, &given = results] { return given.at(attempts++); };
        const auto pause = [&](std::chrono::seconds length) { pauses += length.count() == 5 ? 1 : 0; };
        EXPECT_EQ(retryPull(attempt, pause), results.back());
        EXPECT_EQ(attempts, results.size());
        EXPECT_EQ(pauses, expectedPauses);
        EXPECT_EQ(zord.scratch().logLines(128),
                  std::vector<std::string>(pauses,
                                           "debug 1 pullRetry:retryPull() Network failure experienced. "
                                           "Waiting for 5 seconds before retrying."));
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
