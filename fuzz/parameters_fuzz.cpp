// SPDX-License-Identifier: Apache-2.0
// Looking up a parameter or a line in a text: name, separators, and the text.
#include "fuzz/fuzzing.h"
#include "platform/stringManipulation.h"

#include <sstream>
#include <stdexcept>

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const auto location = static_cast<int>(input.choice(4));
    const auto caseFlag = static_cast<int>(input.choice(2));
    const std::string name = input.line();
    const std::string separators = input.line();
    const std::string text = input.rest();

    std::string value;
    std::istringstream stream(text);
    try {
        GetParameterValueFromFileStream(stream, name, value, separators);
    } catch (const std::out_of_range&) {
        // As told in the header.
    }
    std::istringstream again(text);
    GetLineFromFile(again, location, caseFlag, name, value);

    std::vector<std::string> fields;
    Split(text, separators, fields);
    Tokenize(text, separators, fields, caseFlag != 0);
    for (unsigned field = 0; field < 3; ++field)
        GetFieldFromLine(text, separators, field, value, caseFlag != 0);
    StrInStringList(name, text, separators);
    value = text;
    StrReplace(value, name, separators, location != 0, caseFlag != 0);
    return 0;
}
