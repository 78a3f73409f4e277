// SPDX-License-Identifier: Apache-2.0
#include "platform/inLocale.h"
#include "platform/zorTimeFuncs.h"

#include <limits>

namespace Zorvane {
namespace {

constexpr std::time_t SECOND_OF_JANUARY_2020 = 1577923200; // 00:00 UTC
constexpr std::time_t MIDNIGHT = SECOND_OF_JANUARY_2020 - 5 * 3600;

void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

class TimeFuncs : public testing::Test {
  protected:
    void SetUp() override { setZone("XST-5"); } // five hours ahead of UTC
    void TearDown() override { unsetenv("TZ"); }
};

TEST_F(TimeFuncs, TextToTicks) {
    EXPECT_EQ(TimeStringToTicks("01/02/2020", "03:04:05", 0), MIDNIGHT + 11045);
    EXPECT_EQ(TimeStringToTicks("1/2/2020", nullptr, 0), MIDNIGHT);
    EXPECT_EQ(TimeStringToTicks("02/30/2020", "00:00:00", 0), 0);
    EXPECT_EQ(TimeStringToTicks(nullptr, "00:00:00", 0), 0);
    checkInLocale("en_GB.ISO-8859-1", [] {
        EXPECT_EQ(TimeStringToTicks("02/01/2020", "00:00:00", TIME_LOCALE_FORM), MIDNIGHT);
        EXPECT_EQ(TimeStringToTicks("01/02/2020", "00:00:00", ~TIME_LOCALE_FORM), MIDNIGHT);
    });
}

TEST_F(TimeFuncs, DateToTicks) {
    const std::pair<const char*, std::time_t> cases[] = {{"1/2/2020", MIDNIGHT},
                                                         {"01/02/2020x", MIDNIGHT},
                                                         {"1/2", 0},
                                                         {"1/2/2020/3", 0},
                                                         {"", 0},
                                                         {"a/b/c", DateToEpoch(0, 0, 0)},
                                                         {"-2147483648/1/-2147483648", -1}};
    for (const auto& [date, ticks] : cases)
        EXPECT_EQ(DateToEpoch2(date), ticks) << date;
}

TEST_F(TimeFuncs, TicksToText) {
    EXPECT_EQ(EpochToDate(SECOND_OF_JANUARY_2020 - 1), "1/1/2020") << "another day than the local one";
    EXPECT_EQ(TicksToTimeString(SECOND_OF_JANUARY_2020 - 1, 0), "01/02/2020 04:59:59");
    constexpr std::time_t BEYOND = std::numeric_limits<std::time_t>::max();
    EXPECT_EQ(EpochToDate(BEYOND) + TicksToTimeString(BEYOND, 0), "");
    setZone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(TicksToTimeString(DateToEpoch2("7/4/2020"), 0), "07/04/2020 00:00:00") << "summer time";
}

} // namespace
} // namespace Zorvane
