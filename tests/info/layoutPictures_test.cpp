// SPDX-License-Identifier: Apache-2.0
#include "info/layout/BarPlan.h"
#include "info/layoutTexts.h"
#include "info/schema.h"

#include <cmath>

#include <sys/wait.h>

using namespace Zorvane;

namespace {

constexpr const char* SAMPLES[] = {
    "ledger01",          "atlas07",          "harbor03",         "families/basalt12", "families/cedar13",
    "families/copper11", "families/delta14", "families/ember15", "families/garnet16", "families/flint17"};

// The program's status with the text as its file; -1 if it is not installed.
int statusOf(const std::string& program, const std::string& text) {
    const Scratch scratch;
    scratch.write("picture", text);
    const int status = std::system((program + ' ' + scratch.path("picture") + " >/dev/null 2>&1").c_str());
    return WEXITSTATUS(status) == 127 ? -1 : WEXITSTATUS(status);
}

// Cells of a row stand side by side within their bar, and a holder's parts within the holder.
void expectOrder(const Bar& bar, const std::string& name) {
    constexpr double slack = 0.01;
    for (const BarCell& cell : bar.cells) {
        EXPECT_GE(cell.x, -slack) << name;
        EXPECT_LE(cell.x + cell.width, bar.width + slack) << name;
        EXPECT_LT(cell.row, bar.rows) << name;
        for (const BarCell& other : bar.cells) {
            const bool isApart = other.row != cell.row || cell.x + cell.width <= other.x + slack ||
                                 other.x + other.width <= cell.x + slack;
            EXPECT_TRUE(&cell == &other || isApart) << name << ": " << cell.x << ' ' << other.x;
        }
    }
}

TEST(LayoutPictures, areWellFormed) {
    for (const char* sample : SAMPLES) {
        const Layout layout = layoutOfSample(sample);
        EXPECT_LE(statusOf("xmllint --noout", rendered(layout, Form::Svg)), 0) << sample;
        EXPECT_LE(statusOf("dot -Tcanon", rendered(layout, Form::Dot)), 0) << sample;
        for (const BarSection& section : planBars(layout, 860).sections)
            for (const Bar& bar : section.bars)
                expectOrder(bar, sample);
    }
}

TEST(LayoutPictures, drawSizesInProportion) {
    const BarPlan plan =
        planBars(layoutOfRows("WindowsDisk Id=1 Length=1000 | Id=2 Length=500 | Id=3 Length=1;"
                              "WindowsRegion Length=250 Offset=500 WindowsDiskId=1 |"
                              " Length=125 Offset=0 WindowsDiskId=1"),
                 1000);
    ASSERT_EQ(plan.sections.size(), 1U);
    const auto& bars = plan.sections[0].bars;
    EXPECT_EQ(bars[0].width, 1000);
    EXPECT_EQ(bars[1].width, 500);
    EXPECT_TRUE(bars[1].isToScale);
    EXPECT_EQ(bars[2].width, MIN_BAR);
    EXPECT_FALSE(bars[2].isToScale);
    // Each part in its place, with the free space between and behind.
    std::string cells;
    for (const BarCell& cell : bars[0].cells)
        cells += (cell.chain.empty() ? "free " : "part ") + std::to_string(std::lround(cell.x)) + '+' +
                 std::to_string(std::lround(cell.width)) + "; ";
    EXPECT_EQ(cells, "part 0+125; free 125+375; part 500+250; free 750+250; ");
}

TEST(LayoutPictures, giveTinyPartsRoomAndCountWhatHasNone) {
    std::string rows = "LinuxDisk Id=1 Length=1000000000;LinuxPartition";
    for (int i = 0; i < 100; ++i)
        rows += (i ? " | StartP=" : " StartP=") + std::to_string(i * 1000) +
                " EndP=" + std::to_string(i * 1000 + 999) + " LinuxDiskId=1";
    const BarPlan plan = planBars(layoutOfRows(rows), 860);
    const Bar& bar = plan.sections.at(0).bars.at(0);
    expectOrder(bar, "tiny");
    std::size_t parts = 0;
    for (const BarCell& cell : bar.cells) {
        parts += cell.hidden + (cell.chain.empty() ? 0 : 1);
        EXPECT_GE(cell.width, MIN_CELL / 2 - 0.01);
    }
    EXPECT_EQ(parts, 100U);
}

TEST(LayoutPictures, putLogicalPartitionsUnderTheExtendedOne) {
    const BarPlan plan = planBars(layoutOfRows("LinuxDisk Id=1 Length=1000;"
                                               "LinuxPartition Name=ext StartP=500 EndP=999 LinuxDiskId=1 |"
                                               " Name=log1 StartP=510 EndP=700 LinuxDiskId=1 |"
                                               " Name=log2 StartP=701 EndP=999 LinuxDiskId=1"),
                                  1000);
    const Bar& bar = plan.sections.at(0).bars.at(0);
    EXPECT_EQ(bar.rows, 2U);
    std::vector<unsigned> rows;
    for (const BarCell& cell : bar.cells)
        if (!cell.chain.empty())
            rows.push_back(cell.row);
    EXPECT_EQ(rows, (std::vector{0U, 1U, 1U}));
}

TEST(LayoutPictures, drawAPoolOverSeveralDisksOnce) {
    const BarPlan plan = planBars(layoutOfSample("families/copper11"), 860);
    std::map<std::string, std::size_t> bars;
    std::string across;
    const Layout layout = layoutOfSample("families/copper11");
    for (const BarSection& section : plan.sections) {
        bars[section.title] = section.bars.size();
        for (const Bar& bar : section.bars)
            if (section.title == "Across several disks")
                across += layout.nodes[bar.node].name + ' ';
    }
    EXPECT_EQ(across, "rpool tank ");
    EXPECT_EQ(bars["Disks"], 7U);
}

// A picture's parts of one disk or of what spans several, row by row: "flint01 600; steel-01 450, free 150".
std::string drawnOn(const Layout& layout, const std::string& name, double width) {
    std::map<unsigned, std::string> rows;
    for (const BarSection& section : planBars(layout, width).sections)
        for (const Bar& bar : section.bars)
            if (layout.nodes[bar.node].name == name)
                for (const BarCell& cell : bar.cells)
                    rows[cell.row] +=
                        (rows[cell.row].empty() ? "" : ", ") +
                        (cell.chain.empty() ? "free" : titleOf(layout.nodes[cell.chain.back()])) + ' ' +
                        std::to_string(std::lround(cell.width)) + ' ' + sizeText(cell.bytes);
    std::string text;
    for (const auto& [row, cells] : rows)
        text += (row > 0 ? "; " : "") + cells;
    return text;
}

TEST(LayoutPictures, drawWhatIsSmallerThanWhatItLiesOn) {
    EXPECT_EQ(drawnOn(layoutOfSample("families/flint17"), "hdisk8", 600),
              "flint01 400 200 GiB; QUFS 300 150 GiB, free 100 50 GiB");
    // What takes the same slice lies one over the other, and half of it is nobody's.
    EXPECT_EQ(drawnOn(layoutOfSample("families/copper11"), "c2t0d0", 1536),
              "UFS 60 120 GiB, c2t0d0s1 20 40 GiB, /dev/dsk/c2t0d0s6 15 30 GiB, free 5 10 GiB;"
              " tank 20 40 GiB; /dev/dsk/c2t0d0s1 20 40 GiB");
}

struct HostileCase {
    const char* name;
    std::string rows;

    friend void PrintTo(const HostileCase& shown, std::ostream* out) { *out << shown.name; }
};

std::string chain(std::size_t length) {
    std::string volumes = "QuvmVolume", plexes = ";QuvmPlex", pieces = ";QuvmSubDisk";
    for (std::size_t i = 1; i <= length; ++i) {
        const std::string id = std::to_string(i), bar = i > 1 ? " |" : "";
        volumes += bar + " Id=" + id;
        plexes += bar + " Id=" + id + " QuvmVolumeId=" + id;
        pieces +=
            bar + " Id=" + id + " SubVolume=1 QuvmPlexId=" + id + " QuvmVolumeId=" + std::to_string(i + 1);
    }
    return volumes + plexes + pieces;
}

// Levels of two objects, each on both of the level below: two to the power of the levels are the ways up.
std::string lattice(std::size_t levels) {
    std::string volumes = "QuvmVolume", plexes = ";QuvmPlex", pieces = ";QuvmSubDisk";
    for (std::size_t i = 0; i < 2 * levels; ++i) {
        const std::string id = std::to_string(i + 1), bar = i ? " |" : "";
        volumes += bar + " Id=" + id + " Length=5000";
        plexes += bar + " Id=" + id + " QuvmVolumeId=" + id;
        for (std::size_t lower = i / 2 * 2 + 3; lower < i / 2 * 2 + 5; ++lower)
            pieces += std::string(i || lower > 3 ? " |" : "") +
                      " Name=s SubVolume=1 Length=5000 QuvmPlexId=" + id +
                      " QuvmVolumeId=" + std::to_string(lower);
    }
    return volumes + plexes + pieces;
}

std::string many(std::size_t count) {
    std::string rows = "WindowsDisk Id=1 Length=100000;WindowsRegion";
    for (std::size_t i = 0; i < count; ++i)
        rows += (i ? " | WindowsDiskId=1 Length=" : " WindowsDiskId=1 Length=") + std::to_string(i);
    return rows;
}

void expectWithinBounds(const Layout& layout, const std::string& name) {
    const Schema schema(std::string(ZOR_SOURCE_DIR) + "/share/schema/layout.schema.json");
    EXPECT_EQ(schema.breach(nlohmann::json::parse(rendered(layout, Form::Json))), "") << name;
    const std::string svg = rendered(layout, Form::Svg), dot = rendered(layout, Form::Dot);
    EXPECT_LE(statusOf("xmllint --noout", svg), 0) << name;
    if (layout.nodes.size() < 1000) { // a layout of thousands takes the program minutes
        EXPECT_LE(statusOf("dot -Tcanon", dot), 0) << name;
    }
    const std::size_t bound = 8192 + 3072 * layout.nodes.size();
    for (const std::string& text : {svg, dot, rendered(layout, Form::Tree)}) {
        EXPECT_LE(text.size(), bound) << name;
        EXPECT_EQ(std::count_if(text.begin(), text.end(),
                                [](char letter) { return letter >= 0 && letter < ' ' && letter != '\n'; }),
                  0)
            << name;
    }
    for (const BarSection& section : planBars(layout, 860).sections)
        for (const Bar& bar : section.bars)
            expectOrder(bar, name);
}

class HostileLayout : public testing::TestWithParam<HostileCase> {};

TEST_P(HostileLayout, isShownWithinBounds) {
    expectWithinBounds(layoutOfRows(GetParam().rows), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(
    all, HostileLayout,
    testing::Values(
        HostileCase{"nothing", "Config Name=current"},
        HostileCase{"circle", "QuvmVolume Id=1 Name=a; QuvmPlex Id=2 QuvmVolumeId=1;"
                              "QuvmSubDisk Id=3 SubVolume=1 QuvmPlexId=2 QuvmVolumeId=1"},
        HostileCase{"itself",
                    "LinuxDisk Id=1; LinuxMultiDevice Id=1; LinuxPhysicalVolume Id=1;"
                    "LinuxMultiDeviceToPhysicalVolume LinuxMultiDeviceId=1 LinuxPhysicalVolumeId=1"},
        HostileCase{"dangling",
                    "WindowsRegion WindowsDiskId=7 WindowsPlexId=8; WindowsFileSystem WindowsVolumeId=9;"
                    "WindowsMountPoint Location=X WindowsVolumeId=9"},
        HostileCase{"noIds", "WindowsDisk Id=0; WindowsRegion Id=0 WindowsDiskId=0"},
        HostileCase{"badSizes",
                    "WindowsDisk Id=1 Length=-5 | Id=2 Length=9223372036854775807 |"
                    " Id=3 Length=9223372036854775807 | Id=4 Length=0;"
                    "WindowsRegion WindowsDiskId=1 Offset=-1 Length=-1 |"
                    " WindowsDiskId=2 Offset=9223372036854775807 Length=9223372036854775807 |"
                    " WindowsDiskId=2 Length=9223372036854775807 | WindowsDiskId=4 Offset=5 Length=9;"
                    "LinuxDisk Id=1; LinuxPartition LinuxDiskId=1 StartP=9 EndP=3 |"
                    " LinuxDiskId=1 EndP=9223372036854775807;"
                    "WindowsFileSystem UnitSize=2147483647 TotalUnits=9223372036854775807"},
        HostileCase{"chain", chain(300)}, HostileCase{"lattice", lattice(24)},
        HostileCase{"tenThousandParts", many(10'000)}),
    [](const auto& given) { return given.param.name; });

TEST(LayoutPictures, takeNamesAsTheyCome) {
    const std::string names[] = {"</text><script>alert(1)</script>&\"'",
                                 "\\N\"]; evil -> n1; \"",
                                 std::string("\0\x1b[2J\r\n\t\x7f", 9),
                                 "\xE2\x80\xAE\xC2\x85\xE2\x80\xA8\xEF\xBF\xBF\xED\xA0\x80\xF4\x90\x80\x80",
                                 "\xFF\xC3",
                                 std::string(50'000, '\\'),
                                 std::string(50'000, 'W')};
    for (const std::string& name : names) {
        Layout layout = layoutOfSample("harbor03");
        layout.client = layout.configuration = layout.system = name;
        for (LayoutNode& node : layout.nodes) {
            node.name = node.detail = node.group = node.cluster = node.dataStore = name;
            node.mountedAt.push_back(name);
        }
        for (LayoutInterface& interface : layout.interfaces)
            interface.name = interface.mac = name;
        layout.target = LayoutTarget{name, name, {name}};
        expectWithinBounds(layout, name.substr(0, 20));
    }
}

TEST(LayoutBounds, aDocumentBeyondThemIsCutAndSaysSo) {
    const Layout layout = layoutOfRows(many(MAX_LAYOUT_NODES + 5));
    EXPECT_EQ(layout.nodes.size(), MAX_LAYOUT_NODES);
    EXPECT_NE(rendered(layout, Form::Tree).find("6 more objects are left out."), std::string::npos);
}

} // namespace
