// SPDX-License-Identifier: Apache-2.0
#include "platform/zorTimeFuncs.h"

#include "logging/Trace.h"
#include "platform/fieldSplitting.h"
#include "platform/returnCodes.h"
#include "suite/kvnclient.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace Zorvane {

std::time_t TimeStringToTicks(const char* date, const char* time, unsigned options) {
    Trace trace(g_libLog, "zorTimeFuncs:TimeStringToTicks()", ", date=", orNull(date),
                ", time=", orNull(time), ", options=", options);
    std::string text = date ? date : "";
    text += ' ';
    text += time ? time : "";

    std::array<char, 128> dateFormat{};
    std::array<char, 128> timeFormat{};
    tvgetlocaleEx(nullptr, dateFormat.data(), dateFormat.size(), timeFormat.data(), timeFormat.size());
    const char* const format = (options & TIME_LOCALE_FORM) ? dateFormat.data() : "C";

    std::time_t ticks = 0;
    if (convert2unixdatel(text.c_str(), format, &ticks) == 0) {
        trace.write(LEVEL_FAILURE, "Invalid end date");
        ticks = 0;
    }
    trace.write(LEVEL_TRACE, "Exiting, ticks=", ticks); // in these words: support looks for the line
    return ticks;
}

std::string TicksToTimeString(std::time_t ticks, unsigned options) {
    Trace trace(g_libLog, "zorTimeFuncs:TicksToTimeString()", ", ticks=", ticks, ", options=", options);
    std::tm local{};
    if (!localtime_r(&ticks, &local)) {
        trace.write(LEVEL_FAILURE, "localtime API has returned NULL");
        return {};
    }
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%02d/%02d/%04lld %02d:%02d:%02d", local.tm_mon + 1,
                  local.tm_mday, local.tm_year + 1900LL, local.tm_hour, local.tm_min, local.tm_sec);
    return text.data();
}

std::time_t DateToEpoch(const int& year, const int& month, const int& day) {
    Trace trace(g_libLog, "zorTimeFuncs:DateToEpoch()", ", year=", year, ", month=", month, ", day=", day);
    std::tm record{};
    record.tm_mday = day;
    // In 64 bits, so that a number from the edge of int wraps and does not overflow; mktime refuses it.
    record.tm_mon = static_cast<int>(month - 1LL);
    record.tm_year = static_cast<int>(year - 1900LL);
    record.tm_isdst = -1;
    const std::time_t ticks = std::mktime(&record);
    return trace.leave(ticks, ", ticks=", ticks);
}

std::time_t DateToEpoch2(const std::string& date) {
    Trace trace(g_libLog, "zorTimeFuncs:DateToEpoch2()", ", date=", date);
    if (date.empty()) {
        trace.write(LEVEL_FAILURE, "Empty date string.");
        return 0;
    }
    std::vector<std::string> fields;
    if (Split(date, "/", fields, true) != ZOR_SUCCESS || fields.size() != 3) {
        trace.write(LEVEL_FAILURE, "Unexpected date format");
        return 0;
    }
    const auto number = [&fields](std::size_t i) {
        return static_cast<int>(std::strtol(fields[i].c_str(), nullptr, 10));
    };
    return DateToEpoch(number(2), number(0), number(1));
}

std::string EpochToDate(std::time_t ticks) {
    Trace trace(g_libLog, "zorTimeFuncs:EpochToDate()", ", ticks=", ticks);
    std::tm utc{};
    if (!gmtime_r(&ticks, &utc)) {
        trace.write(LEVEL_FAILURE, "gmtime API has returned NULL");
        return {};
    }
    // Stays in UTC and without padding, although TicksToTimeString has local time and padding.
    return std::to_string(utc.tm_mon + 1) + "/" + std::to_string(utc.tm_mday) + "/" +
           std::to_string(utc.tm_year + 1900LL);
}

} // namespace Zorvane
