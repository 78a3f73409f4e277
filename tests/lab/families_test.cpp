// SPDX-License-Identifier: Apache-2.0
// The sample clients of all families: each goes through the database without loss.
#include "RowOrder.h"
#include "StoreFixture.h"
#include "lab/configurationFiles.h"

#include <sstream>

namespace Zorvane {
namespace {

const std::string SAMPLES = ZOR_SOURCE_DIR "/share/samples/";

class FamiliesTest : public StoreTest, public testing::WithParamInterface<const char*> {};

} // namespace

TEST_P(FamiliesTest, IsExportedAsItWasLoaded) {
    std::string file = SAMPLES + "families/" + GetParam() + ".xml";
    CZor original;
    ASSERT_EQ(original.readXml(file), 0) << file;
    const std::string expected = documentByOrder(original);

    CZor loaded;
    std::ostringstream told;
    loadConfiguration(*m_store, SAMPLES + "ledger01.xml", loaded, told);
    loaded.clear(true); // other rows stand before, so that the numbers differ
    loadConfiguration(*m_store, file, loaded, told);
    std::string text = exportConfiguration(*m_store, std::string(GetParam()) + ".corp.example", "");
    CZor exported;
    ASSERT_EQ(exported.readXml(reinterpret_cast<unsigned char*>(text.data()), static_cast<int>(text.size())),
              0);
    EXPECT_EQ(documentByOrder(exported), expected);
}

INSTANTIATE_TEST_SUITE_P(All, FamiliesTest,
                         testing::Values("copper11", "basalt12", "cedar13", "delta14", "ember15", "garnet16",
                                         "flint17"),
                         [](const auto& client) { return std::string(client.param); });

} // namespace Zorvane
