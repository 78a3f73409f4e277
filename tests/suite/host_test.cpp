// SPDX-License-Identifier: Apache-2.0
// Host names and dates.
#include "suite/Scratch.h"
#include "suite/kvnclient.h"

#include <gtest/gtest.h>

TEST(Host, namesThatMeanTheSameHost) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"alpha.example.invalid", "ALPHA.Example.Invalid", true},
        {"alpha", "alpha.example.invalid", true},
        {"alpha.example.invalid", "alpha.example2.invalid", false},
        {"alphabet", "alpha.example.invalid", false},
        {"10", "10.0.0.1", false},
        {"localhost", "127.0.0.1", true},
        {"127.0.0.1", "127.0.0.2", false},
        {"", ".example.invalid", false},
        {nullptr, "alpha", false},
    };
    for (const auto& [first, second, equal] : cases)
        EXPECT_EQ(hosts_equal(first, second), equal) << second;
}

TEST(Host, clientNameIsTheConfiguredOneElseTheHosts) {
    const Scratch scratch;
    char host[KVN_HOSTNAME_SIZE];
    ASSERT_EQ(kvn_gethostname(host, sizeof host), 0);
    std::string name;
    EXPECT_EQ(kvn_client_name(name), 0);
    EXPECT_EQ(name, host);
    scratch.configure("[master]\nclient_name = \"labhost\"\n");
    EXPECT_EQ(kvn_client_name(name), 0);
    EXPECT_EQ(name, "labhost");
}

TEST(Dates, forms) {
    ::setenv("TZ", "UTC0", 1);
    constexpr std::time_t day = 1577923200; // 2 January 2020
    const std::tuple<const char*, const char*, std::time_t> cases[] = {
        {"01/02/2020 03:04:05", "C", day + 11045},
        {"1/2/2020 3:04", "C", day + 11040},
        {"12/31/99 ", "C", 946598400},
        {"12/31/3000 23:00:00", "C", 32535212400},
        {"02/29/2020", "C", 1582934400},
        {"02/29/2021", "C", 0},
        {"01/02/202", "C", 0},
        {"01/02/2020 03:04:05 x", "C", 0},
        {"2020-01-02", "C", 0},
        {"", "C", 0},
        {"02.01.2020 03:04", "%d.%m.%y", day + 11040},
        {"2. Jan 2020", "%d. %b %Y", day},
        {"01/02/2020", "%d.%m.%Y", 0},
    };
    for (const auto& [text, format, expected] : cases) {
        std::time_t ticks = 0;
        EXPECT_EQ(convert2unixdatel(text, format, &ticks) != 0, expected != 0) << text << " as " << format;
        EXPECT_EQ(ticks, expected) << text << " as " << format;
    }
    ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    std::time_t summer = 0;
    EXPECT_NE(convert2unixdatel("07/02/2020 02:00:00", "C", &summer), 0);
    EXPECT_EQ(summer, 1593648000);
}

TEST(Formats, ofALocaleAndNeverPastTheBuffer) {
    char date[16];
    char time[16];
    for (const char* locale : {"C", "", static_cast<const char*>(nullptr), "no_SUCH.locale"}) {
        tvgetlocaleEx(locale, date, sizeof date, time, sizeof time);
        EXPECT_STREQ(date, "%m/%d/%y");
        EXPECT_STREQ(time, "%H:%M:%S");
    }
    tvgetlocaleEx("C", date, 4, time, 1);
    EXPECT_STREQ(date, "%m/");
    EXPECT_STREQ(time, "");
}
