// SPDX-License-Identifier: Apache-2.0
// Date texts and ticks, the seconds since the epoch. The standard text is "MM/DD/YYYY hh:mm:ss".
#pragma once

#include <ctime>
#include <string>

namespace Zorvane {

/// The date that stands for "never ends".
inline constexpr const char* FAR_FUTURE_DATE = "12/31/3000";

/// Option of TimeStringToTicks: the text is in the locale's form, not in month/day/year.
inline constexpr unsigned TIME_LOCALE_FORM = 1;

/// Local time in date and time text, each of which may be null. 0 if the suite's parser refuses it.
std::time_t TimeStringToTicks(const char* date, const char* time, unsigned options);

/// The standard text in local time; empty if the year is beyond what the C library can tell. No options yet.
std::string TicksToTimeString(std::time_t ticks, unsigned options);

/// Local midnight at the start of a day; -1 if the C library can't tell it.
std::time_t DateToEpoch(const int& year, const int& month, const int& day);

/// Local midnight of a "month/day/year" text; 0 if it hasn't three fields.
std::time_t DateToEpoch2(const std::string& date);

/// "month/day/year" in UTC, without padding; empty if the year is beyond what the C library can tell.
std::string EpochToDate(std::time_t ticks);

} // namespace Zorvane
