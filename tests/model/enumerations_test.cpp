// SPDX-License-Identifier: Apache-2.0
#include "model/enumerations.h"

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

TEST(Enumerations, NamesAreTheDatabases) {
    std::ostringstream text;
    for (const EnumNames* names : allEnumerations()) {
        text << names->enumeration << ':';
        std::int32_t value = 0;
        for (const char* name : names->names) {
            EXPECT_EQ(names->value(name), ++value) << names->enumeration << ' ' << name;
            text << ' ' << names->name(value);
        }
        text << '\n';
    }
    std::ostringstream listed;
    listed << std::ifstream(ZOR_ENUMERATIONS_FILE).rdbuf();
    EXPECT_EQ(text.str(), listed.str());
}

TEST(Enumerations, WhatIsNotInTheListIsUnset) {
    ConfigType type = ConfigType::PIT;
    for (const char* name : {"saved", "NO_SUCH", "", "EMPTY"}) {
        EXPECT_EQ(fromName(&type, name), ConfigType::EMPTY) << name;
        EXPECT_EQ(type, ConfigType::EMPTY) << name;
    }
    for (const int value : {0, 8, 99, -1})
        EXPECT_EQ(toName(static_cast<ConfigType>(value)), "EMPTY") << value;
}

} // namespace
} // namespace Zorvane
