// SPDX-License-Identifier: Apache-2.0
#include "platform/parameterFile.h"

#include "logging/Trace.h"
#include "platform/codeSetCommon.h"
#include "platform/fieldSplitting.h"
#include "platform/returnCodes.h"
#include "platform/stringManipulation.h"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace Zorvane {

int GetParameterValueFromFile(const std::string& fileName, const std::string& parameter, std::string& value,
                              const std::string& separators) {
    Trace trace(g_libLog, "parameterFile:GetParameterValueFromFile()", ", fileName=", fileName);
    std::ifstream stream(fileName);
    if (!stream) {
        trace.write(LEVEL_FAILURE, "open(", fileName, ") failed: ", std::strerror(errno));
        return ZOR_ERROR;
    }
    return GetParameterValueFromFileStream(stream, parameter, value, separators);
}

int GetParameterValueFromFileStream(std::istream& stream, const std::string& parameter, std::string& value,
                                    const std::string& separators) {
    Trace trace(g_libLog, "parameterFile:GetParameterValueFromFileStream()", ", parameter=", parameter);
    if (stream.fail()) {
        trace.write(LEVEL_TRACE, "Unable to open a file stream. Exiting, line=", __LINE__);
        return trace.leave(ZOR_ERROR, ", return ZOR_ERROR");
    }

    const std::string name = ZorMbsToDbCommon(parameter);
    std::string line;
    while (std::getline(stream, line)) {
        line = ZorMbsToDbCommon(line);
        if (!line.starts_with(name))
            continue;
        std::size_t begin = line.find_first_not_of(WHITE_SPACE, name.size());
        begin = line.find_first_not_of(separators, begin);
        begin = line.find_first_not_of(WHITE_SPACE, begin);
        if (begin == name.size())
            continue; // a longer word
        // A line that ends before its value leaves npos here, and substr throws. That stays: callers are not
        // given an empty value that nobody wrote.
        value = ZorDbToMbsCommon(line.substr(begin, line.find_last_not_of(WHITE_SPACE) + 1 - begin));
        return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
    }
    trace.write(LEVEL_FAILURE, "parameter not found");
    return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
}

namespace {

bool matches(const std::string& text, const std::string& pattern, int location) {
    const std::size_t at = text.find(pattern);
    if (at == std::string::npos)
        return false;
    switch (location) {
    case LINE_CONTAINS:
        return true;
    case LINE_BEGINS_WITH:
        return at == 0;
    case LINE_ENDS_WITH:
        return at + pattern.size() == text.size();
    default:
        return false;
    }
}

} // namespace

int GetLineFromFile(std::istream& stream, int location, int caseFlag, const std::string& pattern,
                    std::string& line) {
    Trace trace(g_libLog, "parameterFile:GetLineFromFile()", ", location=", location, ", pattern=", pattern);
    const auto compared = [caseFlag](const std::string& text) {
        return ZorMbsToDbCommon(caseFlag == 0 ? StrToUpper(text) : text);
    };
    const std::string sought = compared(pattern);
    line.clear();
    std::string read;
    while (std::getline(stream, read)) {
        if (matches(compared(read), sought, location)) {
            line = ZorDbToMbsCommon(read);
            return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
        }
    }
    if (!stream.eof()) {
        trace.write(LEVEL_FAILURE, "Error processing the stream");
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    }
    return trace.leave(ZOR_SUCCESS, ", no line, return ZOR_SUCCESS");
}

} // namespace Zorvane
