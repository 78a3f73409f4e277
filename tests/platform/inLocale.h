// SPDX-License-Identifier: Apache-2.0
// Checks that need a locale of their own: the native code set is kept for the life of a process.
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include <gtest/gtest.h>

namespace Zorvane {

inline constexpr const char* UTF8_LOCALE = "C.UTF-8";
inline constexpr const char* LATIN1_LOCALE = "en_US.ISO-8859-1";

/// False where no Latin-1 locale can be made: tests that need one are skipped.
inline bool canMakeLatin1() {
    return std::filesystem::exists("/usr/share/i18n/charmaps/ISO-8859-1.gz") &&
           std::system("command -v localedef >/dev/null 2>&1") == 0;
}

/// Sets a locale; one in Latin-1 is made first.
inline bool enterLocale(const std::string& locale) {
    if (!locale.ends_with("ISO-8859-1"))
        return std::setlocale(LC_ALL, locale.c_str());
    char folder[] = "/tmp/zor_localeXXXXXX";
    if (!mkdtemp(folder))
        return false;
    const std::string language = locale.substr(0, locale.find('.'));
    const std::string command = "localedef -i " + language + " -f ISO-8859-1 " + folder + "/" + locale;
    setenv("LOCPATH", folder, 1);
    const bool entered = std::system(command.c_str()) == 0 && std::setlocale(LC_ALL, locale.c_str());
    std::filesystem::remove_all(folder); // the locale is loaded by now
    return entered;
}

/// Runs the checks in a fresh process, with the locale set before them; skips the test where there is none.
inline void checkInLocale(const char* locale, void (*checks)()) {
    if (std::string(locale).ends_with("ISO-8859-1") && !canMakeLatin1())
        GTEST_SKIP();
    const auto run = [&] {
        EXPECT_TRUE(enterLocale(locale)) << locale;
        checks();
        const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
        for (int i = 0; i < result.total_part_count(); ++i)
            std::cerr << result.GetTestPartResult(i).line_number() << ": "
                      << result.GetTestPartResult(i).message() << "\n";
        std::exit(result.Failed() ? 1 : 0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

} // namespace Zorvane
