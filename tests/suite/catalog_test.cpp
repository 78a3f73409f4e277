// SPDX-License-Identifier: Apache-2.0
#include "suite/Scratch.h"
#include "suite/catalog.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <map>

#include <gtest/gtest.h>

namespace {

// The message through the library's calls, or "none".
std::string translate(std::uint64_t originator, std::uint64_t number, std::array<const char*, 3> texts = {}) {
    static const char* formats[] = {"", "%s", "%s %s", "%s %s %s"};
    const auto count = static_cast<std::size_t>(std::ranges::find(texts, nullptr) - texts.begin());
    mrthLisArgs_t list{};
    EXPECT_EQ(mrthLis(&list, number, formats[count], texts[0], texts[1], texts[2]), 0);
    char* text = nullptr;
    const std::int32_t result = xlatemsg(originator, number, &text, &list);
    EXPECT_EQ(result == 0, text != nullptr);
    const std::string out = text ? text : "none";
    std::free(text);
    mrthLisFree(&list);
    return out;
}

// A folder with a catalogue of its own.
struct CatalogFolder : Scratch {
    CatalogFolder() { configure("[catalog]\ndirectory = \"" + path("") + "\"\n"); }
    void compile(const std::string& language, const std::string& source) const {
        std::filesystem::create_directories(path(language));
        write("source.msg", source);
        ASSERT_EQ(
            std::system((ZOR_GENCAT " " + path(language + "/zorvane.cat ") + path("source.msg")).c_str()), 0);
    }
};

} // namespace

TEST(Catalog, placesAreFilledInOrder) {
    const CatalogFolder folder;
    EXPECT_EQ(translate(433, 2), "none") << "no catalogue yet";
    folder.compile("en", "$set 433\n1 %s of %s at 100% end\n2 plain\n");
    EXPECT_EQ(translate(433, 1, {"a", "b"}), "a of b at 100% end");
    EXPECT_EQ(translate(433, 1, {"%s", "b"}), "%s of b at 100% end") << "an argument is no format";
    EXPECT_EQ(translate(433, 1, {"a"}), "a of  at 100% end");
    EXPECT_EQ(translate(433, 2, {"a", "b", "c"}), "plain");
    EXPECT_EQ(translate(433, 1, {"x\n433:1", "\x1b[2J"}), "x\\n433:1 of \\x1b[2J at 100% end");
    EXPECT_EQ(translate(433, 3), "none");
    EXPECT_EQ(translate(128, 1), "none");
    EXPECT_EQ(translate(433 + (1ULL << 32), 1), "none") << "a number that a peer made up";
}

TEST(Catalog, speaksTheLanguageOfTheLocaleElseEnglish) {
    if (!std::filesystem::exists("/usr/lib/locale/C.utf8"))
        GTEST_SKIP() << "no locale to make one of";
    const CatalogFolder folder;
    folder.compile("en", "$set 433\n1 one\n2 two\n");
    folder.compile("qz", "$set 433\n1 eins\n");
    std::filesystem::copy("/usr/lib/locale/C.utf8", folder.path("qz_ZZ.utf8"),
                          std::filesystem::copy_options::recursive);
    EXPECT_EQ(translate(433, 1), "one") << "the portable locale";
    ::setenv("LOCPATH", folder.path("").c_str(), 1);
    ASSERT_NE(std::setlocale(LC_MESSAGES, "qz_ZZ.utf8"), nullptr);
    EXPECT_EQ(translate(433, 1), "eins");
    EXPECT_EQ(translate(433, 2), "two") << "a message that the language lacks";
    std::setlocale(LC_MESSAGES, "C");
    ::unsetenv("LOCPATH");
}

// The catalogue of this build, found beside the binary's folder.
TEST(Catalog, holdsEveryMessageWithItsPlaces) {
    const Scratch scratch;
    std::map<std::pair<int, int>, int> places = {{{433, 14}, 2}, {{128, 592}, 2}, {{128, 593}, 3}};
    for (const int number : {6, 10, 11, 17, 19, 21, 22, 23, 24, 25, 27, 28, 29, 30, 31})
        places[{433, number}] = 1;
    for (const int number : {3, 4, 5, 7, 8, 9, 15, 16, 18, 20, 26, 32, 33, 34, 35, 36, 37, 38, 39})
        places[{433, number}] = 0;
    for (const int number : {312, 595, 610, 926})
        places[{128, number}] = 1;
    for (const int number : {309, 749, 750, 995})
        places[{128, number}] = 0;
    for (const auto& [id, count] : places) {
        const std::string text = translate(static_cast<std::uint64_t>(id.first),
                                           static_cast<std::uint64_t>(id.second), {"<1>", "<2>", "<3>"});
        EXPECT_NE(text, "none") << id.first << ":" << id.second;
        for (int i = 1; i <= 3; ++i)
            EXPECT_EQ(text.find("<" + std::to_string(i) + ">") != text.npos, i <= count) << text;
    }
}
