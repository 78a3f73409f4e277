// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/CatalogueCommands.h"
#include "lab/LabError.h"
#include "platform/fieldSplitting.h"

#include <fstream>

namespace Zorvane {

namespace {

class CatalogueTest : public testing::Test {
  protected:
    Catalogue read(const std::string& text) {
        std::ofstream(m_scratch.file("catalogue.toml")) << text;
        return readCatalogue(m_scratch.file("catalogue.toml"));
    }

    ScratchDirectory m_scratch;
};

constexpr const char* SAMPLE = R"toml(
[[client]]
name = "win"
type = 13
  [[client.image]]
  policy = "Weekly"
  schedule = "Full"
  time = 1000
  files = ["/C/old.txt"]
  [[client.image]]
  policy = "Daily"
  schedule = "Full"
  time = 2000
  files = ["/C/Windows/explorer.exe", "/System State/Registry/Registry"]
  [[client.image]]
  policy = "Daily"
  schedule = "Incremental"
  time = 2500
  files = ["/C/new.txt"]
  [[client.image]]
  policy = "Daily"
  schedule = "Full"
  time = 1970-01-01T00:50:00Z
  files = ["/C/Windows/explorer.exe"]
[[client]]
name = "offline"
type = 0
status = 192
[[client]]
name = "bare"
type = 0
[[client]]
name = "shared"
type = 0
  [[client.image]]
  policy = "Daily"
  schedule = "Full"
  time = 1000
  content = "usual"
  files = ["/etc/own"]
[[content]]
name = "usual"
files = ["/etc/hosts"]
)toml";

std::string field(const std::string& line, unsigned number) {
    std::string text;
    GetFieldFromLine(line, " ", number, text, 1);
    return text;
}

} // namespace

TEST_F(CatalogueTest, CommandsAnswerLikeACatalogue) {
    const Catalogue catalogue = read(SAMPLE);
    const struct {
        const char* command;
        int status;
        const char* begin; ///< of the output
    } cases[] = {
        {"kvnclimagelist -client WIN -X -s 0 -X -e 99 -t NOT_ARCHIVE -Listseconds -ct 13", 0, "Backed up"},
        {"kvnclimagelist -client win -ct 0", 227, ""}, // the other client type
        {"kvnclimagelist -client nobody -ct 13", 227, ""},
        {"kvnclimagelist -client offline -ct 13", 192, ""},
        {"kvnlist -C offline -t 0 /x", 192, ""},
        // The newest full image starts the span, the one before the next full image ends it.
        {"kvnclimagelist -client win -policy Daily -X -s 0 -ct 13 -t NOT_ARCHIVE -likelydate", 0, "3000 "},
        {"kvnclimagelist -client win -policy Daily -X -s 2000 -ct 13 -t NOT_ARCHIVE -likelydate", 0, "2500 "},
        {"kvnclimagelist -client win -policy Daily -X -s 3000 -ct 13 -t NOT_ARCHIVE -likelydate", 0, "3000 "},
        {"kvnclimagelist -client win -policy None -X -s 0 -ct 13 -likelydate", 227, ""},
        {"kvnlist -E -C win -k Daily -t 13 -X -s 2000 -X -e 2500 -I \"/C/*\"", 0, "/C/new.txt\n/C/Windows"},
        {"kvnlist -E -C win -k Daily -t 13 -X -s 3000 -X -e 3000 -I \"/C/new.txt\"", 227, ""},
        {"kvnlist -C win -k Weekly -t 13 /C/old.txt", 0, "/C/old.txt\n"},
        {"kvnlist -C win -k Daily -t 13 -I \"/system state/registry/\"", 0,
         "/System State/Registry/Registry"},
        {"kvnlist -C win -k Daily -t 13 \"/system state/registry/\"", 227, ""},
        {"kvnlist -C win -t 13 \"/C/Windows\"", 0, "/C/Windows/explorer.exe"}, // a folder by its name
        {"kvnlist -C win -t 13 \"/C/Win\"", 227, ""},
        {"kvnlist -C win -t 13 \"/?/o*d.t?t\"", 0, "/C/old.txt"},
        {"kvnlist -C shared -t 0 /etc", 0, "/etc/own\n/etc/hosts\n"},
        {"kvnlist -C win -t 13", 20, "kvnlist: exactly one path"},
        {"kvnlist -C win -t x /C", 20, "kvnlist: option -t needs a number"},
        {"kvnlist -C", 20, "kvnlist: option -C has no value"},
        {"kvnclimagelist -client win -force", 20, "kvnclimagelist: unknown option -force"},
        {"kvnclimagelist", 20, "kvnclimagelist: no client"},
        {"rm -rf /", 127, "only"},
        {"kvnlist \"", 127, "only"},
        {"", 127, "only"},
    };
    for (const auto& row : cases) {
        const CommandResult result = runCatalogueCommand(catalogue, row.command);
        EXPECT_EQ(result.status, row.status) << row.command;
        EXPECT_TRUE(result.output.starts_with(row.begin)) << row.command << "\n" << result.output;
    }
}

TEST_F(CatalogueTest, AListingServesReadersOfColumns) {
    const Catalogue catalogue = read(SAMPLE);
    const auto listing = [&](const std::string& command) {
        std::vector<std::string> lines;
        Split(runCatalogueCommand(catalogue, command).output, "\n", lines, 0);
        return lines;
    };
    const auto lines = listing("kvnclimagelist -client win -s 0 -e 2600 -ct 13 -Listseconds");
    ASSERT_EQ(lines.size(), 5U); // two lines of headings; the newest image first, later ones left out
    EXPECT_EQ(field(lines[2], 2), "00:41:40");
    EXPECT_EQ(field(lines[2], 7), "Incremental");
    EXPECT_EQ(field(lines[3], 7), "Full");
    EXPECT_EQ(field(lines[3], 9), "Daily");
    EXPECT_EQ(field(lines[4], 9), "Weekly");
    EXPECT_EQ(listing("kvnclimagelist -client win -policy Weekly -ct 13").size(), 3U);
    EXPECT_EQ(listing("kvnclimagelist -client bare").size(), 2U);
}

TEST_F(CatalogueTest, APatternOfManyStarsEndsSoon) {
    const Catalogue catalogue = read("[[client]]\nname = \"c\"\ntype = 0\n[[client.image]]\npolicy = \"p\"\n"
                                     "schedule = \"Full\"\ntime = 1\nfiles = [\"/" +
                                     std::string(2000, 'a') + "\"]");
    std::string pattern;
    for (int i = 0; i < 1000; ++i)
        pattern += "*a";
    EXPECT_EQ(runCatalogueCommand(catalogue, "kvnlist -C c -t 0 \"" + pattern + "b\"").status, 227);
    EXPECT_EQ(runCatalogueCommand(catalogue, "kvnlist -C c -t 0 \"" + pattern + "\"").status, 0);
}

TEST_F(CatalogueTest, FilesThatMakeNoSenseAreToldWithTheirPlace) {
    const struct {
        const char* text;
        const char* complaint;
    } cases[] = {
        {"[[client]\n", ":1:"},
        {"[[client]]\nname = 5\n", ":2:8: name must be a text"},
        {"[[client]]\ntype = 0\n", ":1:1: the table needs the key name"},
        {"[[client]]\nname = \"a b\"\n", "name must be a single word"},
        {"[[client]]\nname = \"a\"\ntype = 100\n", ":3:8: type must be a whole number from 0 to 99"},
        {"[[client]]\nname = \"a\"\ntype = 0\nimages = []\n", ":4:10: \"images\" is no key"},
        {"[[client]]\nname = \"a\"\ntype = 0\n[[client.image]]\npolicy = \"p\"\nschedule = \"s\"\ntime = 1\n"
         "content = \"none\"\n",
         "no [[content]] of the name \"none\""},
        {"client = 1\n", "client must be a list of tables"},
        {"[[client]]\nname = \"a\"\ntype = 0\n[[client.image]]\npolicy = \"p\"\nschedule = \"s\"\ntime = "
         "1\nfiles = [1]\n",
         ":8:10: files must be a list of texts"},
    };
    for (const auto& row : cases)
        try {
            read(row.text);
            ADD_FAILURE() << row.text;
        } catch (const LabError& failure) {
            EXPECT_NE(std::string(failure.what()).find(row.complaint), std::string::npos) << failure.what();
        }
}

// What a new lab's catalogue says of a client is what the conversion of such a client looks for.
TEST_F(CatalogueTest, AnEntryOfAConfigurationHoldsWhatAConversionNeeds) {
    CZor rows;
    rows.m_vConfig.push_back(new CConfig);
    rows.m_vConfig.front()->setRetrievalTime(1'000'000);
    rows.m_vEsm.push_back(new CEsm);
    rows.m_vEsm.front()->setNodeName("srv\"1");
    rows.m_vSystem.push_back(new CSystem);
    rows.m_vSystem.front()->setOs(OsType::LINUX);
    rows.m_vSystem.front()->setZorDirectory("/opt/zorvane/");
    const Catalogue catalogue = read(catalogueEntry(rows));
    ASSERT_EQ(catalogue.clients.size(), 1U);
    EXPECT_EQ(catalogue.clients.front().name, "srv\"1");
    EXPECT_EQ(catalogue.clients.front().images.front().schedule, "Full"); // the newest, and before the saving
    EXPECT_LT(catalogue.clients.front().images.front().time, 1'000'000);
    for (const char* wanted : {"/usr/*", "/etc/*", "/opt/zorvane/client/data"})
        EXPECT_EQ(runCatalogueCommand(catalogue, "kvnlist -C 'srv\"1' -k Daily -t 0 -s 900000 -I \"" +
                                                     std::string(wanted) + "\"")
                      .status,
                  0)
            << wanted;
}

} // namespace Zorvane
