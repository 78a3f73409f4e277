// SPDX-License-Identifier: Apache-2.0
// Messages in the language and the code set of the terminal.
#include "flow/Lab.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iconv.h>

using testing::StartsWith;

namespace Zorvane {
namespace {

namespace fs = std::filesystem;

std::string inCodeSet(std::string text, const std::string& codeSet) {
    const iconv_t conversion = iconv_open(codeSet.c_str(), "UTF-8");
    std::string out(2 * text.size(), '\0');
    char *from = text.data(), *to = out.data();
    std::size_t left = text.size(), room = out.size();
    EXPECT_EQ(iconv(conversion, &from, &left, &to, &room), 0U) << text;
    iconv_close(conversion);
    out.resize(out.size() - room);
    return out;
}

class Languages : public testing::Test {
  protected:
    // Makes a locale in the lab's folder, as far as this machine can; false if it can't.
    bool make(const std::string& language, const std::string& codeSet) {
        const std::string folder = m_lab.path(language + "." + codeSet);
        const fs::path utf8 = "/usr/lib/locale/C.utf8";
        if (codeSet == "UTF-8" && fs::exists(utf8))
            fs::copy(utf8, m_lab.path(language + ".utf8"),
                     fs::copy_options::recursive); // the letters are all it takes
        else if (std::system(("localedef -i " + language + " -f " + codeSet + " " + folder + " 2>/dev/null")
                                 .c_str()) != 0)
            return false;
        return true;
    }
    Ended run(const std::string& locale, const std::string& client, const std::string& target) {
        // The C library keeps its list of locale folders, which is a leak to the sanitizer.
        return m_lab.zorb2v(
            {"-C", client, "-vmserver", "vcenter01.lab.example", "-vmproxy", "convhost01.lab.example",
             "-veconfig", target},
            {{"LOCPATH", m_lab.path("")}, {"LC_ALL", locale}, {"ASAN_OPTIONS", "detect_leaks=0"}});
    }
    Lab m_lab;
};

TEST_F(Languages, areThoseOfTheLocaleInItsCodeSet) {
    const std::string german[] = {"Büro", "Küche.conf",
                                  "Die Konfigurationsdatei \"Küche.conf\" lässt sich nicht öffnen. ",
                                  "Aufruf: zorb2v ", "Der Konvertierungsauftrag ist übergeben. "};
    // With letters of half the width, whose first bytes are controls in other code sets.
    const std::string japanese[] = {"台帳ﾀﾞｲ", "倉庫ｿｳｺ.conf", "設定ファイル「倉庫ｿｳｺ.conf」を開けません。",
                                    "使用法: zorb2v ", "変換ジョブを投入しました。"};
    m_lab.serve();
    for (const auto& [language, codeSet, texts] :
         {std::tuple("de_DE", "ISO-8859-1", german), std::tuple("de_DE", "UTF-8", german),
          std::tuple("ja_JP", "EUC-JP", japanese), std::tuple("ja_JP", "UTF-8", japanese)}) {
        const std::string locale = std::string(language) + "." + codeSet;
        ASSERT_TRUE(make(language, codeSet)) << locale << ": scripts/setup installs what it is made of";
        const auto own = [&](int i) { return inCodeSet(texts[i], codeSet); };
        const Ended refused = run(locale, own(0), own(1));
        EXPECT_EQ(refused.status, 1) << locale;
        EXPECT_THAT(refused.err, StartsWith(own(2))) << locale;
        EXPECT_THAT(refused.out, StartsWith(own(3))) << locale;

        m_lab.sql("UPDATE ZOR_Config SET ClientName = '" + texts[0] + "' WHERE Id = 4");
        m_lab.write("target", "toolsIsoPath=t\nname=" + own(0) + "\n");
        const Ended submitted = run(locale, own(0), m_lab.path("target"));
        EXPECT_EQ(submitted.err, "") << locale;
        EXPECT_THAT(submitted.out, StartsWith(own(4))) << locale;
        EXPECT_EQ(m_lab.sql("SELECT VmName FROM ZOR_P2VRestoreTask"), texts[0] + "\n") << locale;
        m_lab.forget();
    }
}

TEST_F(Languages, areEnglishWhereTheCodeSetCannotWriteThem) {
    ASSERT_TRUE(make("ja_JP", "UTF-8"));
    const Ended ended =
        m_lab.zorb2v({"-C", "x", "-vmserver", "x", "-vmproxy", "x"}, {{"LOCPATH", m_lab.path("")},
                                                                      {"LC_ALL", ""},
                                                                      {"LC_MESSAGES", "ja_JP.UTF-8"},
                                                                      {"LC_CTYPE", "C"},
                                                                      {"ASAN_OPTIONS", "detect_leaks=0"}});
    EXPECT_EQ(ended.err, message(3));
}

} // namespace
} // namespace Zorvane
