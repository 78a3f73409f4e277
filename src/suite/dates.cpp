// SPDX-License-Identifier: Apache-2.0
#include "suite/kvnclient.h"

#include <cstdio>
#include <cstring>
#include <string>

#include <langinfo.h>
#include <locale.h>
#include <time.h>

namespace {

constexpr const char* PORTABLE_DATE = "%m/%d/%y";
constexpr const char* PORTABLE_TIME = "%H:%M:%S";

class Locale {
  public:
    explicit Locale(const char* name) : m_locale(::newlocale(LC_TIME_MASK, name, nullptr)) {}
    Locale(const Locale&) = delete;
    Locale& operator=(const Locale&) = delete;
    ~Locale() {
        if (m_locale)
            ::freelocale(m_locale);
    }
    [[nodiscard]] const char* text(nl_item item, const char* otherwise) const {
        return m_locale ? ::nl_langinfo_l(item, m_locale) : otherwise;
    }

  private:
    locale_t m_locale;
};

// Local time from a text that the format takes whole; trailing blanks don't count.
bool parse(const char* text, const std::string& format, std::time_t& ticks) {
    tm parts{};
    parts.tm_mday = 1;
    const char* rest = ::strptime(text, format.c_str(), &parts);
    if (!rest || rest[std::strspn(rest, " ")] != '\0' || parts.tm_year < 0)
        return false;
    tm normal = parts;
    normal.tm_isdst = -1;
    normal.tm_wday = -1;
    const std::time_t result = ::mktime(&normal);
    // mktime turns 31 February into a day of March; such a date was never meant.
    if (normal.tm_wday == -1 || normal.tm_mday != parts.tm_mday || normal.tm_mon != parts.tm_mon)
        return false;
    ticks = result;
    return true;
}

} // namespace

void tvgetlocaleEx(const char* locale, char* dateFormat, std::size_t dateSize, char* timeFormat,
                   std::size_t timeSize) {
    const bool own = !locale || !*locale;
    const Locale named(own ? "C" : locale);
    std::snprintf(dateFormat, dateSize, "%s", own ? ::nl_langinfo(D_FMT) : named.text(D_FMT, PORTABLE_DATE));
    std::snprintf(timeFormat, timeSize, "%s", own ? ::nl_langinfo(T_FMT) : named.text(T_FMT, PORTABLE_TIME));
}

int convert2unixdatel(const char* text, const char* format, std::time_t* ticks) {
    if (!text || !format || !ticks)
        return 0;
    const std::string date = std::strcmp(format, "C") == 0 ? PORTABLE_DATE : format;
    // People write years with two and with four digits, whatever their locale prefers.
    std::string longYear = date;
    if (const auto year = longYear.find("%y"); year != longYear.npos)
        longYear.replace(year, 2, "%Y");
    for (const std::string& form : {date, longYear})
        for (const char* time : {" %H:%M:%S", " %H:%M", ""})
            if (parse(text, form + time, *ticks))
                return 1;
    return 0;
}
