// SPDX-License-Identifier: Apache-2.0
#include "lab/FailRules.h"
#include "lab/LabError.h"

#include <gtest/gtest.h>

namespace Zorvane {

using namespace std::chrono_literals;

TEST(FailRule, IsReadAsWritten) {
    using enum FailPoint;
    using enum FailEffect;
    const struct {
        const char* text;
        FailRule rule;
    } cases[] = {
        {"query", {Query, "", 0, {Status, 1}}},
        {"query=7", {Query, "", 0, {Status, 7}}},
        {"query:P2VRestoreTask@2=close", {Query, "P2VRestoreTask", 2, {Close, 1}}},
        {"tree:Config=half", {Tree, "Config", 0, {Half, 1}}},
        {"version:zord=2", {Version, "zord", 0, {Status, 2}}},
        {"listing:22=deep", {Listing, "22", 0, {Deep, 1}}},
        {"listing@3=-1", {Listing, "", 3, {Status, -1}}},
        {"catalogue:kvnlist=116", {Catalogue, "kvnlist", 0, {Status, 116}}},
        {"update=half", {Update, "", 0, {Half, 1}}},
        {"version:zord=other", {Version, "zord", 0, {Other, 1}}},
        {"query=delay", {Query, "", 0, {Delay, 1, 1000ms}}},
        {"listing:9@2=delay:250", {Listing, "9", 2, {Delay, 1, 250ms}}},
        {"deleteprofile:a:b=type", {DeleteProfile, "a:b", 0, {Type, 1}}},
        // Cut from the end: names may hold the separators.
        {"deleteprofile:a=b@c@1=long", {DeleteProfile, "a=b@c", 1, {Long, 1}}},
    };
    for (const auto& row : cases)
        EXPECT_EQ(parseFailRule(row.text), row.rule) << row.text;
}

TEST(FailRule, ThatMakesNoSenseIsRefusedWithTheWord) {
    const struct {
        const char* text;
        const char* complaint;
    } cases[] = {
        {"", "is no point"},
        {"Query", "\"Query\" is no point"},
        {"query:", "a table of the query"},
        {"transaction:Config", "has no detail"},
        {"query@0", "from 1"},
        {"query@x", "from 1"},
        {"query=", "\"\" is no effect"},
        {"query=explode", "\"explode\" is no effect"},
        {"query=256", "at most 255"},
        {"query=-1", "at most 255"},
        {"query=other", "\"other\" is no effect"},
        {"query=delay:", "at most 600000"},
        {"query=delay:-1", "at most 600000"},
        {"query=delay:600001", "at most 600000"},
        {"update=notxml", "update can have a number, close"}, // no document comes back
        {"listing=long", "no effect at this point"},          // no packets there
    };
    for (const auto& row : cases)
        try {
            parseFailRule(row.text);
            ADD_FAILURE() << row.text;
        } catch (const LabError& failure) {
            EXPECT_NE(std::string(failure.what()).find(row.complaint), std::string::npos) << failure.what();
        }
}

TEST(FailRules, CountWhatFits) {
    FailRules rules({parseFailRule("query:config@2=9"), parseFailRule("query=close"),
                     parseFailRule("query=delay:5"), parseFailRule("query:system=delay:20")});
    std::chrono::milliseconds delay{};
    const auto ask = [&](FailPoint point, const std::vector<std::string>& names) {
        const auto [failure, wait] = rules.judge(point, names);
        delay = wait;
        return failure ? failureText(*failure) : "";
    };
    EXPECT_EQ(ask(FailPoint::Tree, {"Config"}), "");
    EXPECT_EQ(ask(FailPoint::Query, {"System", "Config"}), "close");
    EXPECT_EQ(delay, 25ms) << "of all that fit";
    EXPECT_EQ(ask(FailPoint::Query, {"System"}), "close"); // fits the second rule alone
    EXPECT_EQ(ask(FailPoint::Query, {"Config"}), "9");
    EXPECT_EQ(ask(FailPoint::Query, {"Config"}), "close");
}

} // namespace Zorvane
