// SPDX-License-Identifier: Apache-2.0
#include "info/layout/RowView.h"
#include "info/layout/families.h"
#include "info/layoutTexts.h"
#include "info/schema.h"
#include "resources/B2VInput.h"

#include <clocale>

using namespace Zorvane;

namespace {

bool isLayoutTable(const char* name) {
    return std::any_of(layoutTables().begin(), layoutTables().end(),
                       [&](const LayoutTable& table) { return std::string_view(table.table) == name; });
}

// A name that is misspelt in the tables of the families would only make objects vanish.
TEST(LayoutFamilies, nameTablesAndFieldsThatTheModelHas) {
    for (const LayoutTable& table : layoutTables()) {
        ASSERT_TRUE(findVector(table.table)) << table.table;
        EXPECT_TRUE(!table.detail || findTable(table.table)->find(table.detail)) << table.table;
    }
    for (const LayoutRelation& relation : layoutRelations()) {
        const std::string text = std::string(relation.upper) + " on " + relation.lower;
        ASSERT_TRUE(isLayoutTable(relation.upper) && isLayoutTable(relation.lower)) << text;
        const auto refers = [](const char* table, const char* target) {
            return findVector(table) && findReference(*findTable(table), target);
        };
        EXPECT_TRUE(relation.pairs
                        ? refers(relation.pairs, relation.upper) && refers(relation.pairs, relation.lower)
                        : refers(relation.upper, relation.lower) || refers(relation.lower, relation.upper))
            << text;
    }
    for (const LayoutMounts& mounts : layoutMounts())
        EXPECT_TRUE(findVector(mounts.table) && findTable(mounts.table)->find(mounts.place)) << mounts.table;
    for (const char* group : layoutGroups())
        EXPECT_TRUE(findVector(group)) << group;
}

struct SampleCase {
    const char *sample, *disks, *place, *stack;

    friend void PrintTo(const SampleCase& shown, std::ostream* out) {
        *out << shown.sample << ' ' << shown.place;
    }
};

class LayoutOfSample : public testing::TestWithParam<SampleCase> {};

TEST_P(LayoutOfSample, reachesTheDisksOfWhatIsMounted) {
    const SampleCase& expected = GetParam();
    const Layout layout = layoutOfSample(expected.sample);
    EXPECT_EQ(layout.dangling, 0U);
    EXPECT_NE(summaryOf(layout).find(expected.disks), std::string::npos) << summaryOf(layout);
    EXPECT_EQ(stack(layout, expected.place), expected.stack);
    // Every object is drawn in a tree, and no line of it stands outside of a disk.
    EXPECT_EQ(rendered(layout, Form::Tree).find("Not on any disk"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    all, LayoutOfSample,
    testing::Values(
        SampleCase{"ledger01", "2 disks, 620 GiB; boots from \\Device\\Harddisk0", "L:\\",
                   "Logs < L < Region0-3 < \\Device\\Harddisk0"},
        SampleCase{"atlas07", "3 disks", "C:\\Mounts\\Maps\\", "Maps < D < Region1-2 < \\Device\\Harddisk1"},
        SampleCase{"harbor03", "3 disks, 1.8 TiB; boots from /dev/sda, /dev/sdb", "/boot",
                   "boot < /dev/md0 < /dev/sda2 < /dev/sda"},
        SampleCase{"harbor03", "3 disks", "/srv/data",
                   "lv_data < /dev/vg_harbor/lv_data < /dev/sdc1 < /dev/sdc1 < /dev/sdc"},
        SampleCase{"families/basalt12", "5 disks, 1.7 TiB; boots from hdisk0, hdisk1", "/usr",
                   "/usr < hd2 < hd2-1 < hd2-1-hdisk0 < hdisk0"},
        SampleCase{"families/cedar13", "4 disks, 1.4 TiB; boots from /dev/dsk/c2t0d0, /dev/dsk/c2t1d0",
                   "/stand",
                   "HFS < /dev/vg00/lvol1 < lvol1.0 < lvol1.0.0 < /dev/dsk/c2t0d0s2 < /dev/dsk/c2t0d0"},
        SampleCase{"families/copper11", "7 disks, 4.8 TiB; boots from c0t0d0, c0t1d0", "/",
                   "rpool/ROOT/solaris < rpool < mirror < c0t0d0s0 < c0t0d0 < c0t0d0p1 < c0t0d0p0"},
        SampleCase{"families/copper11", "7 disks", "zone web: /spool", "c2t0d0s0 < c2t0d0"},
        SampleCase{"families/delta14", "7 disks", "/export", "UFS < d4 < d14 < d14-0 < c0t0d0s4 < c0t0d0"},
        SampleCase{"families/ember15", "7 disks", "/",
                   "UFS < root < root-01 < rootdisk-01 < rootdisk < c0t0d0s4 < c0t0d0"},
        SampleCase{"families/garnet16", "6 disks", "G:\\",
                   "Cut stones < Cut < Cut-01 < Harddisk2-01 < Harddisk2"},
        SampleCase{"families/flint17", "6 disks", "/steel",
                   "QUFS < steel < steel-01 < flint01-01 < flint01 < hdisk8"}),
    [](const auto& given) {
        std::string name = std::string(given.param.sample) + std::to_string(given.index);
        std::replace(name.begin(), name.end(), '/', '_');
        return name;
    });

struct RowsCase {
    const char *name, *rows, *top, *stack;

    friend void PrintTo(const RowsCase& shown, std::ostream* out) { *out << shown.name; }
};

class LayoutOfRows : public testing::TestWithParam<RowsCase> {};

TEST_P(LayoutOfRows, followsTheRelationsThatTheSamplesLack) {
    EXPECT_EQ(stack(layoutOfRows(GetParam().rows), GetParam().top), GetParam().stack);
}

INSTANTIATE_TEST_SUITE_P(
    all, LayoutOfRows,
    testing::Values(
        RowsCase{"storageSpace",
                 "WindowsPhysicalDisk Id=1 FriendlyName=slot1 | Id=2 FriendlyName=slot2;"
                 "WindowsStoragePool Id=3 FriendlyName=pool;"
                 "WindowsStoragePoolToPhysicalDisk WindowsStoragePoolId=3 WindowsPhysicalDiskId=1 |"
                 " WindowsStoragePoolId=3 WindowsPhysicalDiskId=2;"
                 "WindowsStorageTierTemplate Id=4 FriendlyName=fast WindowsStoragePoolId=3;"
                 "WindowsVirtualDisk Id=5 FriendlyName=space WindowsStoragePoolId=3;"
                 "WindowsVirtualDiskToStorageTier WindowsStorageTierTemplateId=4 WindowsVirtualDiskId=5;"
                 "WindowsVirtualDiskToPhysicalDisk WindowsVirtualDiskId=5 WindowsPhysicalDiskId=1;"
                 "WindowsDisk Id=6 Name=disk; WindowsVirtualDiskToWindowsDisk WindowsDiskId=6 "
                 "WindowsVirtualDiskId=5",
                 "disk", "disk < space < fast < pool < slot1"},
        RowsCase{"volumeWithoutExtents",
                 "LinuxVolumeGroup Id=1 Name=vg; LinuxDisk Id=2 Name=sda;"
                 "LinuxPhysicalVolume Id=3 Name=pv LinuxVolumeGroupId=1;"
                 "LinuxDiskToPhysicalVolume LinuxDiskId=2 LinuxPhysicalVolumeId=3;"
                 "LinuxLogicalVolume Id=4 Name=lv LinuxVolumeGroupId=1",
                 "lv", "lv < pv < sda"},
        RowsCase{"subvolume",
                 "LinuxDisk Id=1 Name=sda; LinuxPartition Id=2 Name=sda1 LinuxDiskId=1; LinuxFileSystem Id=3 "
                 "Label=top;"
                 "LinuxFileSystemToPartition LinuxPartitionId=2 LinuxFileSystemId=3;"
                 "Subvolume Id=4 SubvolumePath=@home LinuxFileSystemId=3; SubvolumeMountPoint Name=/home "
                 "SubvolumeId=4",
                 "/home", "@home < top < sda1 < sda"},
        RowsCase{"layeredVolume",
                 "QuvmVolume Id=1 Name=outer | Id=2 Name=inner; QuvmPlex Id=3 QuvmVolumeId=1 | Id=4 "
                 "QuvmVolumeId=2;"
                 "QuvmSubDisk Id=5 Name=sd5 SubVolume=1 QuvmPlexId=3 QuvmVolumeId=2 |"
                 " Id=6 Name=sd6 QuvmPlexId=4 QuvmDiskId=7 QuvmVolumeId=2; QuvmDisk Id=7 Name=dm",
                 "outer", "outer < sd5 < inner < sd6 < dm"},
        RowsCase{"hpuxPartitionsOfOneKindAreNotGuessed",
                 "HpuxPhysicalVolume Id=1 Name=disk; HpuxPhysicalVolumePartition Name=s2 Type=HPUX "
                 "HpuxPhysicalVolumeId=1"
                 " | Name=s4 Type=HPUX HpuxPhysicalVolumeId=1; HpuxSubDisk Name=sub HpuxPhysicalVolumeId=1",
                 "sub", "sub < disk"}),
    [](const auto& given) { return given.param.name; });

TEST(Layout, marksWhatBootsSwapsAndIsShared) {
    const Layout windows = layoutOfSample("ledger01");
    EXPECT_EQ(withFlag(windows, LayoutFlag::Boots), "\\Device\\Harddisk0, SystemReserved");
    EXPECT_EQ(withFlag(windows, LayoutFlag::System), "SystemReserved, C");
    EXPECT_EQ(withFlag(windows, LayoutFlag::Free), "Region0-4, Region1-3");
    EXPECT_EQ(withFlag(layoutOfSample("families/basalt12"), LayoutFlag::Boots), "hdisk0, hdisk1, hd5");
    EXPECT_EQ(withFlag(layoutOfSample("families/copper11"), LayoutFlag::Swap), "rpool/swap");
    EXPECT_EQ(withFlag(layoutOfSample("families/cedar13"), LayoutFlag::Dump), "/dev/vg00/lvol9");
    const Layout cluster = layoutOfSample("families/flint17");
    EXPECT_EQ(withFlag(cluster, LayoutFlag::Shared), "hdisk4, hdisk5, flint01, flint02, sparklv, steel");
    EXPECT_NE(rendered(cluster, Form::Tree).find("shared by spark_grp"), std::string::npos);
    // A disk set's name stands before that of the platform's group.
    EXPECT_NE(rendered(layoutOfSample("families/delta14"), Form::Tree).find("in river"), std::string::npos);
}

TEST(LayoutTree, isATableOfNestedNames) {
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(
        rendered(layoutOfRows("Config Name=current ClientName=quay; WindowsDisk Id=1 Name=d0 Length=3072"
                              " | Id=2 Name=d1 Length=1024;"
                              "WindowsVolume Id=3 Name=C Length=1024 IsSystem=1 Layout=MIRROR;"
                              "WindowsFileSystem Id=4 Type=NTFS Label=Sys WindowsVolumeId=3;"
                              "WindowsMountPoint Location=C:\\ WindowsFileSystemId=4;"
                              "WindowsPlex Id=5 WindowsVolumeId=3 Name=p1 | Id=6 WindowsVolumeId=3 Name=p2;"
                              "WindowsRegion Name=r1 Length=1024 WindowsDiskId=1 WindowsPlexId=5 |"
                              " Name=r2 Length=1024 WindowsDiskId=2 WindowsPlexId=6;"
                              "WindowsVolume Id=7 Name=lost"),
                 Form::Tree),
        "quay, configuration current: 2 disks, 4 KiB; boots from d0, d1.\n"
        "\n"
        "NAME         SIZE  WHAT\n"
        "d0          3 KiB  disk; boots\n"
        "`- r1       1 KiB  region\n"
        "   `- p1           plex\n"
        "      `- C  1 KiB  volume, mirror; NTFS \"Sys\" at C:\\; boots\n"
        "d1          1 KiB  disk; boots\n"
        "`- r2       1 KiB  region\n"
        "   `- p2           plex\n"
        "      `- C  1 KiB  volume, mirror; shown above\n"
        "\n"
        "Not on any disk:\n"
        "lost               volume\n");
}

TEST(LayoutTree, breaksLinesThatAreTooWide) {
    std::setlocale(LC_ALL, "C");
    const std::string store(30, 's');
    Layout layout =
        layoutOfRows("WindowsDisk Id=1 Name=d0 Length=1024; WindowsRegion Name=r1 WindowsDiskId=1");
    layout.nodes[0].mountedAt = {store, store, "end"};
    const std::string text = rendered(layout, Form::Tree);
    EXPECT_NE(text.find("d0     1 KiB  disk at " + store + ",\n|             " + store + ", end\n`- r1 "),
              std::string::npos)
        << text;
}

TEST(LayoutTarget, sendsDisksToDataStores) {
    Layout layout = layoutOfSample("ledger01");
    B2VInput input;
    input.dataStore = "nas";
    input.vmNetwork = "VM Network 7";
    input.diskMap = {{"Harddisk1", "ssd", 0}, {"Harddisk7", "ssd", 0}};
    addTarget(layout, input);
    const auto document = nlohmann::json::parse(rendered(layout, Form::Json));
    for (const auto& object : document.at("objects"))
        if (object.at("kind") == "disk") {
            const bool isMapped = object.at("name") == "\\Device\\Harddisk1";
            EXPECT_EQ(object.at("dataStore"),
                      (nlohmann::json{{"name", isMapped ? "ssd" : "nas"}, {"isDefault", !isMapped}}));
        }
    EXPECT_EQ(document.at("target").at("unknownDisks"), nlohmann::json{"Harddisk7"});
    for (const Form form : {Form::Tree, Form::Svg, Form::Dot}) {
        const std::string text = rendered(layout, form);
        for (const char* part : {"nas", "ssd", "VM Network 7", "00:1B:21:01:10:02", "Harddisk7"})
            EXPECT_NE(text.find(part), std::string::npos) << part << " in form " << static_cast<int>(form);
    }
}

TEST(LayoutDocument, isAsTheSchemaSays) {
    const Schema schema(std::string(ZOR_SOURCE_DIR) + "/share/schema/layout.schema.json");
    for (const char* sample : {"ledger01", "harbor03", "families/copper11", "families/flint17"}) {
        Layout layout = layoutOfSample(sample);
        EXPECT_EQ(schema.breach(layoutDocument(layout)), "") << sample;
        addTarget(layout, B2VInput());
        EXPECT_EQ(schema.breach(layoutDocument(layout)), "") << sample;
    }
    EXPECT_NE(schema.breach({{"client", 1}}), "");
}

TEST(LayoutLabels, areShortAndHarmless) {
    const std::pair<std::int64_t, const char*> sizes[] = {{0, "0 B"},
                                                          {1023, "1023 B"},
                                                          {1024, "1 KiB"},
                                                          {1536, "1.5 KiB"},
                                                          {1048575, "1 MiB"},
                                                          {107374182400, "100 GiB"},
                                                          {1649267441664, "1.5 TiB"},
                                                          {INT64_MAX, "8 EiB"}};
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(sizeText(bytes), text);
    const std::array<const char*, 2> texts[] = {{"plain", "plain"},
                                                {"a\nb\x1b[31m", "a\\nb\\x1b[31m"},
                                                {"M\xC3\xBCller", "M\xC3\xBCller"},
                                                {"\xC3(", "\xEF\xBF\xBD("},
                                                {"\xE2\x80\xAEtxt", "\\u202etxt"},
                                                {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\\x80"},
                                                {"\xEF\xBF\xBF", "\\uffff"}};
    for (const auto& [text, expected] : texts)
        EXPECT_EQ(shown(text), expected);
    EXPECT_EQ(shown("123456", 6), "123456");
    EXPECT_EQ(shown("1234567", 6), "12345\xE2\x80\xA6");
    EXPECT_EQ(shortened("M\xC3\xBCller", 6), "M\xC3\xBCller");
    EXPECT_EQ(shortened("M\xC3\xBCllerM\xC3\xBC", 6), "M\xC3\xBC\xE2\x80\xA6rM\xC3\xBC");
    EXPECT_EQ(lettersIn(shown(std::string(1 << 20, 'x'))), MAX_SHOWN_NAME);
}

} // namespace
