// SPDX-License-Identifier: Apache-2.0
#include "model/enumerations.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

TEST(Enumerations, NamesOfTheDatabaseGiveTheirValues) {
    const struct {
        int value;
        const EnumNames& names;
        const char* name;
    } cases[] = {
        {1, enumNames::OsType, "NT"},
        {5, enumNames::OsType, "LINUX"},
        {1, enumNames::SrtState, "READY"},
        {2, enumNames::DefinedState, "READY"},
        {7, enumNames::ConfigType, "B2V_COPIED"},
        {5, enumNames::TaskSubState, "FORMATING"},
        {22, enumNames::FileSystemType, "REFS"},
        {2, enumNames::FirmwareType, "UEFI"},
        {3, enumNames::VdiskFormat, "THICK_LAZY"},
        {36, enumNames::WindowsOsLevel, "W2K19_1809_CORE_SP0_X64"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.names.value(c.name), c.value) << c.names.enumeration << ' ' << c.name;
        EXPECT_STREQ(c.names.name(c.value), c.name) << c.names.enumeration;
    }
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
