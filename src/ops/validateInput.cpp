// SPDX-License-Identifier: Apache-2.0
#include "ops/validateInput.h"

#include "logging/Trace.h"

#include <string_view>

namespace Zorvane {

namespace {

bool isRefused(std::string_view text, char first, char second) {
    for (std::size_t i = text.find(first); i != text.npos; i = text.find(first, i + 1)) {
        if (first == '`')
            return true;
        // The character behind the blanks is not looked at again, so "$ $(" passes: the peers agree on that.
        i = text.find_first_not_of(" \t", i + 1);
        if (i == text.npos)
            return false;
        if (text[i] == second)
            return true;
    }
    return false;
}

} // namespace

int ValidateInput(const char* text) {
    return ValidateInput(std::string_view(orNull(text)));
}

// Not traced: it is asked for every parameter of every packet, and the text may be a secret.
int ValidateInput(std::string_view input) {
    const bool refused =
        isRefused(input, '$', '(') || isRefused(input, '\\', '"') || isRefused(input, '`', '*');
    return refused ? ZOR_ILLEGAL_TEXT : 0;
}

} // namespace Zorvane
