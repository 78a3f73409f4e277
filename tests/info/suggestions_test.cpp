// SPDX-License-Identifier: Apache-2.0
#include "info/check/similarNames.h"
#include "info/draft/TargetDraft.h"
#include "info/paragraphs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace Zorvane {
namespace {

TEST(SimilarNames, areTheNearestFirst) {
    const std::vector<std::string> hosts = {"esx01.lab.example", "esx02.lab.example", "/North/vm/Web",
                                            "/North/vm/Web/Old", "VM Network"};
    EXPECT_THAT(similarNames("esx01", hosts), ElementsAre("esx01.lab.example")) << "without its domain";
    EXPECT_THAT(similarNames("ESX01.lab.exmple", hosts),
                ElementsAre("esx01.lab.example", "esx02.lab.example"));
    EXPECT_THAT(similarNames("esx1", hosts), ElementsAre("esx01.lab.example"));
    EXPECT_THAT(similarNames("vcentre1", {"vcenter1.lab.example"}), ElementsAre("vcenter1.lab.example"));
    EXPECT_THAT(similarNames("/x/Norhtgate", {"Northgate"}), ElementsAre("Northgate"));
    EXPECT_THAT(similarNames("web", hosts), ElementsAre("/North/vm/Web")) << "the full path";
    EXPECT_THAT(similarNames("VM Netwrok", hosts), ElementsAre("VM Network"));
    EXPECT_THAT(similarNames("quite another", hosts), IsEmpty());
    EXPECT_THAT(similarNames("", hosts), IsEmpty());
    EXPECT_EQ(suggestionFor("Gould", {"Silver", "Gold", "Gold"}), "Did you mean \"Gold\"?");
    EXPECT_EQ(suggestionFor("x", {"b", "a", "b"}), "There are \"a\", \"b\".");
    EXPECT_EQ(suggestionFor("x", {}), "");
    EXPECT_THAT(similarNames(std::string(1'000'000, 'x'), {std::string(1'000'000, 'y')}), IsEmpty());
}

std::string mapOf(const std::vector<long long>& sizes, const std::map<std::string, long long>& stores) {
    std::vector<ClientDisk> disks;
    for (const long long size : sizes)
        disks.push_back({std::to_string(size), size});
    const DiskPlacement placement = placeDisks(disks, stores);
    std::string map;
    for (const PlacedDisk& each : placement.placed)
        map += each.disk.name + each.store + " ";
    return placement.homeless ? map + "but " + placement.homeless->name + " into " +
                                    std::to_string(placement.most) + " of " + placement.roomiest
                              : map;
}

TEST(PlaceDisks, takesTheLargestFirst) {
    EXPECT_EQ(mapOf({1, 5, 3}, {{"a", 9}, {"b", 4}}), "5a 3a 1a ");
    EXPECT_EQ(mapOf({4, 4, 2, 6}, {{"a", 10}, {"b", 6}}), "6a 4a 4b 2b ");
    EXPECT_EQ(mapOf({7, 6, 8}, {{"a", 13}, {"b", 8}}), "8a 7b but 6 into 5 of a");
    EXPECT_EQ(mapOf({}, {}), "");
    EXPECT_TRUE(isWritable("a b"));
    for (const char* value : {"", "a=b", "\"a", "a\nb"})
        EXPECT_FALSE(isWritable(value)) << value;
}

TEST(Paragraphs, stayWithinTheTerminal) {
    const std::string text = paragraph(std::string(70, 'a') + " " + std::string(9, 'b') + "\x1b[2J", 2, 4);
    EXPECT_EQ(text, "  " + std::string(70, 'a') + "\n    " + std::string(9, 'b') + "\\x1b[2J\n");
    const std::string fill(70, 'a');
    for (const std::string name : {"\"VM  Network 1\"", "\"a\"b c d e\"", "「VM  Network 1」"}) {
        EXPECT_EQ(paragraph(fill + " " + name + ", too", 0), fill + "\n" + name + ", too\n");
        EXPECT_EQ(paragraph("(" + name + ")  " + name, 0), "(" + name + ")  " + name + "\n");
    }
    EXPECT_EQ(paragraph(fill + " 55\" or 66\"", 0), fill + " 55\" or\n66\"\n") << "no names";
}

} // namespace
} // namespace Zorvane
