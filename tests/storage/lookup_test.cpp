// SPDX-License-Identifier: Apache-2.0
#include "model/windows_records.h"
#include "storage/Rows.h"

#include <set>

namespace Zorvane {

// The walk along references tells a table's references apart by their targets.
TEST(Lookup, noTableRefersToAnotherOneTwice) {
    for (const TableDescriptor* table : allTables()) {
        std::set<std::string_view> targets;
        for (const Field& field : table->fields)
            if (field.kind == FieldKind::Reference && !targets.insert(field.target).second)
                ADD_FAILURE() << table->name << '.' << field.name;
    }
}

TEST(Lookup, firstRowWithTheValues) {
    CZor zor;
    addRows(zor, "WindowsDisk Name=D Port=1 | Name=d Port=1 | Name=d Port=2 BusType=7");
    const auto& disks = zor.m_vWindowsDisk;
    EXPECT_EQ(FindByName(disks, "d"), disks[1]);
    EXPECT_EQ(FindByName(disks, ""), nullptr);
    EXPECT_EQ(FindBy(disks, &CWindowsDisk::getPort, 2, &CWindowsDisk::getName, "d"), disks[2]);
    EXPECT_EQ(FindBy(disks, &CWindowsDisk::getPort, 2, &CWindowsDisk::getName, "D"), nullptr);
    for (const unsigned int busType : {7, 0}) {
        CWindowsDisk other(*disks[2]);
        other.setId(0);
        other.setBusType(busType);
        EXPECT_EQ(
            HasEqual(disks, other, &CWindowsDisk::getName, &CWindowsDisk::getPort, &CWindowsDisk::getBusType),
            busType == 7);
    }
}

TEST(Lookup, alongReferencesOwnerByOwnerAndEachTargetOnce) {
    for (const std::string far : {"", "000000"}) { // identifiers that follow each other, and such that do not
        CZor zor;
        addRows(zor,
                "WindowsDisk Id=1 Name=c | Id=2" + far + " Name=d; WindowsPlex Id=1 | Id=2" + far +
                    "; WindowsRegion Name=r WindowsPlexId=2" + far +
                    " WindowsDiskId=1 | Name=s WindowsPlexId=1 | Name=t WindowsPlexId=1 WindowsDiskId=2" +
                    far + " | Name=u WindowsDiskId=2" + far + " | Name=v WindowsPlexId=2" + far +
                    " WindowsDiskId=2" + far);
        const std::vector plexes = {zor.m_vWindowsPlex[0], zor.m_vWindowsPlex[1]};
        const auto regions = FindReferring<CWindowsRegion>(zor, plexes);
        EXPECT_EQ(asText(regions), "s t r v");
        EXPECT_EQ(asText(FindReferred<CWindowsDisk>(zor, regions)), "d c");
    }
}

} // namespace Zorvane
