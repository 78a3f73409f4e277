// SPDX-License-Identifier: Apache-2.0
#include "platform/fieldSplitting.h"

#include "logging/Trace.h"
#include "platform/codeSetCommon.h"
#include "platform/returnCodes.h"

#include <algorithm>

namespace Zorvane {

namespace {

// Text on its way into the work and back, through the db form if asked for.
std::string taken(const std::string& text, bool convert) {
    return convert ? ZorMbsToDbCommon(text) : text;
}
std::string given(const std::string& text, bool convert) {
    return convert ? ZorDbToMbsCommon(text) : text;
}

} // namespace

int Tokenize(const std::string& input, const std::string& delimiter, std::vector<std::string>& out,
             bool convert) {
    Trace trace(g_libLog, "fieldSplitting:Tokenize()");
    out.clear();
    if (input.empty()) {
        trace.write(LEVEL_FAILURE, "Invalid input parameters");
        return ZOR_FAIL;
    }
    const std::string text = taken(input, convert);
    std::size_t begin = 0;
    if (!delimiter.empty()) {
        for (std::size_t end = 0; (end = text.find(delimiter.front(), begin)) != std::string::npos;
             begin = end + 1)
            out.push_back(given(text.substr(begin, end - begin), convert));
    }
    out.push_back(given(text.substr(begin), convert));
    return ZOR_SUCCESS;
}

int Split(const std::string& input, const std::string& delimiters, std::vector<std::string>& out,
          bool convert) {
    Trace trace(g_libLog, "fieldSplitting:Split()");
    if (input.empty() || delimiters.empty()) {
        trace.write(LEVEL_FAILURE, "Invalid input parameters, exiting, line=", __LINE__);
        return ZOR_FAIL;
    }
    const std::string text = taken(input, convert);
    out.clear();
    std::size_t begin = text.find_first_not_of(delimiters);
    while (begin != std::string::npos) {
        const std::size_t end = text.find_first_of(delimiters, begin);
        const std::string field = text.substr(begin, end - begin);
        if (const std::size_t last = field.find_last_not_of('\n'); last != std::string::npos)
            out.push_back(given(field.substr(0, last + 1), convert));
        begin = text.find_first_not_of(delimiters, end);
    }
    return ZOR_SUCCESS;
}

namespace {

int splitAt(const std::string& text, std::size_t at, std::string& left, std::string& right) {
    if (at == std::string::npos)
        return ZOR_FAIL;
    left = ZorDbToMbsCommon(text.substr(0, at));
    right = ZorDbToMbsCommon(text.substr(at + 1));
    return ZOR_SUCCESS;
}

} // namespace

int StrSplitAtFirst(const std::string& input, char character, std::string& left, std::string& right) {
    Trace trace(g_libLog, "fieldSplitting:StrSplitAtFirst()");
    const std::string text = ZorMbsToDbCommon(input);
    return splitAt(text, text.find(character), left, right);
}

int StrSplitAtLast(const std::string& input, char character, std::string& left, std::string& right) {
    Trace trace(g_libLog, "fieldSplitting:StrSplitAtLast()");
    const std::string text = ZorMbsToDbCommon(input);
    return splitAt(text, text.rfind(character), left, right);
}

int GetFieldFromLine(const std::string& line, const std::string& separators, unsigned field, std::string& out,
                     bool convert) {
    Trace trace(g_libLog, "fieldSplitting:GetFieldFromLine()", ", field=", field);
    std::vector<std::string> fields;
    const bool usable = !line.empty() && !separators.empty();
    if (usable && separators.find_first_of(WHITE_SPACE) != std::string::npos)
        Split(line, separators, fields, convert);
    else if (usable)
        Tokenize(line, separators, fields, convert);

    out.clear();
    if (!usable)
        trace.write(LEVEL_FAILURE, "Invalid/empty input paramaters");
    else if (fields.empty())
        trace.write(LEVEL_WARNING, "Blank line was passed");
    else if (field > fields.size())
        trace.write(LEVEL_WARNING, "Insufficient number of fields, looking for field ", field,
                    " in line with ", fields.size(), " fields");
    else {
        out = field == 0 ? fields.back() : fields[field - 1];
        return ZOR_SUCCESS;
    }
    return ZOR_FAIL;
}

int StrInStringList(const std::string& word, const std::string& list, const std::string& separators) {
    Trace trace(g_libLog, "fieldSplitting:StrInStringList()");
    if (word.empty() || list.empty() || separators.empty()) {
        trace.write(LEVEL_FAILURE, "Invalid parameters - Empty string not expected");
        return 0;
    }
    std::vector<std::string> words;
    Split(list, separators, words, true);
    return std::find(words.begin(), words.end(), word) != words.end();
}

} // namespace Zorvane
