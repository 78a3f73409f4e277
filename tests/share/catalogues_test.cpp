// SPDX-License-Identifier: Apache-2.0
// The languages of the messages: each says the same as the English one, and every terminal can show it.
#include "share/Texts.h"

#include <algorithm>
#include <clocale>
#include <map>
#include <memory>
#include <regex>

#include <gtest/gtest.h>
#include <iconv.h>
#include <nl_types.h>
#include <wchar.h>

namespace Zorvane {
namespace {

using Messages = std::map<std::pair<int, int>, std::string>; ///< by set and number

Messages messagesIn(const std::string& language) {
    const std::string source = sourceText("share/catalog/" + language + "/zorvane.msg");
    const std::string compiled = ZOR_BUILD_DIR "/share/locale/" + language + "/zorvane.cat";
    const nl_catd catalog = catopen(compiled.c_str(), 0);
    EXPECT_NE(catalog, reinterpret_cast<nl_catd>(-1)) << compiled;
    Messages messages;
    int set = 0;
    for (const std::string& line : matches(source, R"(^(\$set \d+|\d+ "))"))
        if (line.starts_with("$set "))
            set = std::stoi(line.substr(5));
        else
            messages[{set, std::stoi(line)}] = catgets(catalog, set, std::stoi(line), "(missing)");
    catclose(catalog);
    return messages;
}

// What stays as it is in every language: the places of the arguments, and what users type or look for.
std::vector<std::string> fixedWords(const std::string& text) {
    auto words = matches(
        text, R"((%s|(?:^|[^\w-])-[A-Za-z]\w*|\[(?!options)[a-z]+\]|(?:/[\w-]+)+(?:\.[a-z]+)?|[\w-]+\.toml|)"
              R"(\b[a-z]+Path\b|\bKVN_CONF\b|\bzorb?d\b|\bquss\b|\bservers\b|\d+(?:\.\d+)*))");
    for (std::string& word : words)
        if (const std::size_t dash = word.find('-'); dash == 1 && word[0] != '/')
            word.erase(0, 1); // what stood in front of an option
    std::ranges::sort(words);
    return words;
}

// The places in their order, with the quotation mark that names of objects have.
std::vector<std::string> places(const std::string& text) {
    return matches(std::regex_replace(text, std::regex("「"), "\""), "(\"?%s)");
}

bool canBeWritten(std::string text, const char* codeSet) {
    const iconv_t conversion = iconv_open(codeSet, "UTF-8");
    std::string out(2 * text.size(), '\0');
    char *from = text.data(), *to = out.data();
    std::size_t left = text.size(), room = out.size();
    const bool written = iconv(conversion, &from, &left, &to, &room) == 0;
    iconv_close(conversion);
    return written;
}

struct Language {
    const char* name;
    const char* codeSet; ///< of older terminals
};

class Catalogues : public testing::TestWithParam<Language> {};

TEST_P(Catalogues, sayTheSameAsTheEnglishOne) {
    const Messages english = messagesIn("en");
    const Messages own = messagesIn(GetParam().name);
    ASSERT_GT(english.size(), 40U);
    EXPECT_EQ(own.size(), english.size());
    for (const auto& [id, text] : english) {
        const auto found = own.find(id);
        ASSERT_NE(found, own.end()) << id.first << ":" << id.second;
        EXPECT_EQ(fixedWords(found->second), fixedWords(text)) << id.first << ":" << id.second;
        EXPECT_EQ(places(found->second), places(text)) << id.first << ":" << id.second;
        EXPECT_TRUE(found->second != text || *GetParam().name == 'e') << "not translated: " << text;
    }
}

TEST_P(Catalogues, fitTheTerminal) {
    const std::unique_ptr<char, void (*)(char*)> before(strdup(std::setlocale(LC_CTYPE, nullptr)),
                                                        [](char* name) {
                                                            std::setlocale(LC_CTYPE, name);
                                                            std::free(name);
                                                        });
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    for (const auto& [id, text] : messagesIn(GetParam().name)) {
        EXPECT_TRUE(canBeWritten(text, GetParam().codeSet)) << id.first << ":" << id.second;
        if (text.find('\n') == std::string::npos)
            continue; // one paragraph, for the terminal to break
        for (const std::string& line : matches(text, "^(.+)$")) {
            std::wstring wide(line.size(), L'\0');
            wide.resize(std::mbstowcs(wide.data(), line.c_str(), wide.size()));
            EXPECT_LE(wcswidth(wide.c_str(), wide.size()), 80) << line;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, Catalogues,
                         testing::Values(Language{"en", "US-ASCII"}, Language{"de", "ISO-8859-1"},
                                         Language{"ja", "EUC-JP"}),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace Zorvane
