// SPDX-License-Identifier: Apache-2.0
// Containers from text, and the answers of the storage rules as text: a case of a rule is a line.
#pragma once

#include "logging/CZorLog.h"
#include "storage/lookup.h"
#include "suite/Scratch.h"

#include <gtest/gtest.h>

namespace Zorvane {

/// Adds rows such as "WindowsDisk Id=4 Name=c | Name=d; WindowsPlex", which have Ids of their own or are
/// numbered, and a null element behind the last of each table.
inline void addRows(CZor& zor, const std::string& text) {
    static int lastId = 999;
    std::string xml = "<ZorData>";
    std::istringstream tables(text);
    for (std::string rows, table, word; std::getline(tables, rows, ';');) {
        std::istringstream words(rows);
        words >> table;
        ASSERT_TRUE(findVector(table)) << rows;
        const std::string begin = '<' + table + "><Id>", end = "</" + table + '>';
        xml += begin + std::to_string(++lastId) + "</Id>";
        while (words >> word) {
            if (word == "|") {
                xml += end + begin + std::to_string(++lastId) + "</Id>";
                continue;
            }
            const std::string field = word.substr(0, word.find('='));
            ASSERT_TRUE(findTable(table)->find(field)) << word;
            xml += '<' + field + '>' + word.substr(field.size() + 1) + "</" + field + '>';
        }
        xml += end;
    }
    xml += "</ZorData>";
    ASSERT_EQ(zor.readXml(reinterpret_cast<unsigned char*>(xml.data()), static_cast<int>(xml.size())), 0)
        << xml;
    for (const VectorDescriptor& vector : allVectors())
        if (!vector.rows(zor).empty())
            vector.rows(zor).records().push_back(nullptr);
}

template <class Answer>
std::string asText(const Answer& answer) {
    if constexpr (std::is_arithmetic_v<Answer>)
        return std::to_string(answer);
    else if constexpr (std::is_pointer_v<Answer>)
        return answer ? answer->getName() : "-";
    else if constexpr (std::is_same_v<Answer, std::string>)
        return answer;
    else {
        std::string names;
        for (const auto* record : answer)
            names += (names.empty() ? "" : " ") + record->getName();
        return names;
    }
}

struct Case {
    std::string rows;
    std::string answer; ///< numbers in decimal, records by their names, "-" for none
};

/// Holds a rule against its table.
template <class Rule>
void check(Rule rule, std::initializer_list<Case> cases) {
    for (const auto& c : cases) {
        CZor zor;
        addRows(zor, c.rows);
        EXPECT_EQ(asText(rule(zor)), c.answer) << c.rows;
    }
}

/// What a call writes to the shared log, up to a level.
template <class Call>
std::vector<std::string> logOf(int level, Call call) {
    const Scratch scratch;
    scratch.configureLog(level);
    CZorLog log(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR);
    g_libLog = &log;
    call();
    g_libLog = nullptr;
    return scratch.logLines(ZOR_LIBRARY_ORIGINATOR);
}
using Lines = std::vector<std::string>;

} // namespace Zorvane
