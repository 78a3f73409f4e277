// SPDX-License-Identifier: Apache-2.0
#include "model/CZor.h"
#include "model/TableDescriptor.h"
#include "model/documents.h"
#include "model/records.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

using Test::documentOf;
using Test::readInto;
using Test::zorData;

CGateway* addGateway(CZor& zor, ID id, bool fromDb, bool changed = false) {
    auto* gateway = new CGateway;
    gateway->setId(id);
    gateway->setMetric("m" + std::to_string(id));
    gateway->setFromDb(fromDb);
    if (!changed)
        gateway->clearChanged();
    zor.m_vGateway.push_back(gateway);
    return gateway;
}

std::string idsIn(const CZor& zor) {
    std::string ids;
    for (const CGateway* gateway : zor.m_vGateway)
        ids += std::to_string(gateway->getId()) + " ";
    return ids;
}

std::vector<std::string> listedVectors() {
    const std::string heading = "# vectors: ";
    std::ifstream file(ZOR_TABLES_FILE);
    std::string line;
    while (std::getline(file, line) && !line.starts_with(heading)) {
    }
    std::istringstream words(line.substr(std::min(line.size(), heading.size())));
    return {std::istream_iterator<std::string>(words), {}};
}

// New, as read, and altered.
void fillWithEveryState(CZor& zor) {
    addGateway(zor, 1, false);
    addGateway(zor, 2, true);
    addGateway(zor, 3, true, true);
    zor.m_vQueryRequest.push_back(new CQueryRequest);
    zor.m_vTransactionRequest.push_back(new CTransactionRequest);
    for (auto* request : zor.m_vQueryRequest)
        request->setFromDb();
    for (auto* request : zor.m_vTransactionRequest)
        request->setFromDb();
}

TEST(CZorDocument, AFilterSelectsItsRows) {
    const struct {
        int filter;
        const char* gateways;
        std::size_t queries, transactions;
    } cases[] = {
        {FOR_ALL, "1 2 3 ", 1, 1},
        {FOR_QUERY, "", 1, 0},
        {FOR_INSERT, "1 ", 0, 0},
        {FOR_UPDATE, "3 ", 0, 0},
        {FOR_DELETE, "2 3 ", 1, 1},
        {FOR_TRANSACTION, "", 0, 1},
        {7, "", 0, 0},
    };
    CZor zor;
    fillWithEveryState(zor);
    for (const auto& c : cases) {
        CZor read;
        ASSERT_EQ(readInto(read, documentOf(zor, c.filter)), 0);
        EXPECT_EQ(idsIn(read), c.gateways) << c.filter;
        EXPECT_EQ(read.m_vQueryRequest.size(), c.queries) << c.filter;
        EXPECT_EQ(read.m_vTransactionRequest.size(), c.transactions) << c.filter;
    }
}

TEST(CZorDocument, ReadingMarksRowsAsTheFilterSays) {
    const std::string document =
        zorData("<Gateway><Id>4</Id><NetworkInterfaceId fromDb='0'>9</NetworkInterfaceId></Gateway>");
    const struct {
        int filter;
        bool fromDb, changed;
    } cases[] = {{FOR_ALL, false, false},   {FOR_QUERY, true, false},  {FOR_INSERT, true, false},
                 {FOR_UPDATE, false, true}, {FOR_DELETE, true, false}, {FOR_TRANSACTION, false, false}};
    for (const auto& c : cases) {
        CZor zor;
        ASSERT_EQ(readInto(zor, document, c.filter), 0);
        EXPECT_EQ(zor.m_vGateway[0]->isFromDb(), c.fromDb) << c.filter;
        EXPECT_EQ(zor.m_vGateway[0]->isNetworkInterfaceIdFromDb(), c.fromDb) << c.filter;
        EXPECT_EQ(zor.m_vGateway[0]->isChanged(), c.changed) << c.filter;
    }
}

TEST(CZorDocument, EqualIdsReplaceTheFirst) {
    CZor zor;
    CGateway* old = addGateway(zor, 5, true);
    addGateway(zor, 6, true);
    addGateway(zor, 5, true);
    ASSERT_EQ(
        readInto(zor,
                 zorData("<Gateway><Id>5</Id><Metric>new</Metric></Gateway>"
                         "<Gateway><Id>8</Id></Gateway><Gateway><Id>8</Id><Metric>last</Metric></Gateway>"
                         "<Config><Name>one</Name></Config><Config><Name>two</Name></Config>")),
        0);
    EXPECT_EQ(idsIn(zor), "5 6 5 8 ");
    EXPECT_EQ(old, zor.m_vGateway[0]) << "pointers to the row stay good";
    EXPECT_EQ(old->getMetric(), "new");
    EXPECT_EQ(zor.m_vGateway[2]->getMetric(), "m5") << "only the first is replaced";
    EXPECT_EQ(zor.m_vGateway[3]->getMetric(), "last");
    ASSERT_EQ(zor.m_vConfig.size(), 1U) << "rows of Id 0 replace each other";
    EXPECT_EQ(zor.m_vConfig[0]->getName(), "two");
}

// So many that they are not sought one by one any more.
TEST(CZorDocument, EqualIdsReplaceTheFirstOfMany) {
    CZor zor;
    std::string expected;
    for (ID id = 300; id > 0; --id) {
        addGateway(zor, id, true);
        expected += std::to_string(id) + " ";
    }
    addGateway(zor, 7, true);
    zor.m_vGateway.push_back(nullptr);
    std::string rows;
    for (ID id = 1; id <= 301; ++id)
        for (const char* metric : {"a", "b"})
            rows += "<Gateway><Id>" + std::to_string(id) + "</Id><Metric>" + metric + "</Metric></Gateway>";
    ASSERT_EQ(readInto(zor, zorData(rows)), 0);
    zor.m_vGateway.erase(zor.m_vGateway.begin() + 301); // the null
    EXPECT_EQ(idsIn(zor), expected + "7 301 ");
    for (std::size_t i = 0; i < 302; ++i)
        EXPECT_EQ(zor.m_vGateway[i]->getMetric(), i == 300 ? "m7" : "b") << i;
}

TEST(CZorDocument, UnknownElementsAreSkippedAndBadDocumentsRefused) {
    CZor zor;
    EXPECT_EQ(
        readInto(zor, zorData("<Later><Id>1</Id></Later><Gateway><Id>2</Id><Newer>x</Newer></Gateway>")), 0);
    EXPECT_EQ(idsIn(zor), "2 ");
    EXPECT_EQ(readInto(zor, "<ZorData><Gateway>"), 1);
    EXPECT_EQ(readInto(zor, ""), 1);
    EXPECT_EQ(idsIn(zor), "2 ");
    unsigned char* xml = nullptr;
    int len = 0;
    EXPECT_EQ(zor.writeXml(nullptr, &len, 0), 1);
    EXPECT_EQ(zor.writeXml(&xml, nullptr, 0), 1);
}

TEST(CZorDocument, AllVectorsTravelInTheirOrder) {
    CZor zor;
    for (const VectorDescriptor& vector : allVectors())
        vector.rows(zor).records().push_back(vector.table().create());
    const std::string document = documentOf(zor);
    std::size_t place = 0;
    const auto names = listedVectors();
    EXPECT_EQ(names.size(), 229U);
    EXPECT_EQ(allVectors().size(), names.size());
    for (const std::string& name : names) {
        const std::size_t at = document.find("<" + name + ">", place);
        ASSERT_NE(at, std::string::npos) << name;
        place = at;
    }
    CZor read;
    ASSERT_EQ(readInto(read, document), 0);
    EXPECT_EQ(documentOf(read), document);
}

TEST(CZorFile, IsWrittenAndRead) {
    const std::string path = testing::TempDir() + "zor_document.xml";
    CZor zor;
    addGateway(zor, 1, true);
    std::string name = path;
    ASSERT_EQ(zor.writeXml(name.data()), 0);
    CZor read;
    ASSERT_EQ(read.readXml(name), 0);
    EXPECT_EQ(idsIn(read), "1 ");
    std::filesystem::remove(path);

    std::string missing = path + ".none", folder = testing::TempDir();
    EXPECT_EQ(read.readXml(missing), 1);
    EXPECT_NE(read.readXml(folder), 0);
    EXPECT_EQ(read.readXml(static_cast<char*>(nullptr)), 1);
    EXPECT_EQ(zor.writeXml(folder.data()), 1);
    std::string full = "/dev/full";
    EXPECT_EQ(zor.writeXml(full.data()), 1);
}

TEST(CZorContainer, CopiesAreDeepAndAssignmentAppends) {
    CZor zor;
    addGateway(zor, 1, true);
    zor.m_vGateway.push_back(nullptr);
    CZor copy(zor);
    ASSERT_EQ(copy.m_vGateway.size(), 1U);
    copy.m_vGateway[0]->setMetric("other");
    EXPECT_EQ(zor.m_vGateway[0]->getMetric(), "m1");
    copy = zor;
    EXPECT_EQ(idsIn(copy), "1 1 ");
    const CZor& self = copy;
    copy = self;
    EXPECT_EQ(copy.m_vGateway.size(), 2U);
}

TEST(CZorContainer, ClearCanLeaveTheRowsToAnotherOwner) {
    CZor zor;
    const std::unique_ptr<CGateway> row(addGateway(zor, 1, true));
    zor.clear(false);
    EXPECT_TRUE(zor.m_vGateway.empty());
    EXPECT_EQ(row->getId(), 1U);
}

TEST(CZorContainer, RequestsAreFollowedUp) {
    const struct {
        int filter;
        const char* left;
        bool changedLeft;
    } cases[] = {{FOR_INSERT, "2 3 ", true},
                 {FOR_UPDATE, "1 2 3 ", false},
                 {FOR_DELETE, "1 ", false},
                 {FOR_QUERY, "1 2 3 ", true},
                 {9, "1 2 3 ", true}};
    for (const auto& c : cases) {
        CZor zor;
        fillWithEveryState(zor);
        zor.removeAfterRequest(c.filter);
        EXPECT_EQ(idsIn(zor), c.left) << c.filter;
        EXPECT_EQ(zor.m_vGateway.back()->isChanged(), c.changedLeft) << c.filter;
    }
}

TEST(CZorContainer, DeviceIdReferencesAreReplaced) {
    for (const bool onlyNew : {true, false}) {
        CZor zor;
        for (const bool fromDb : {true, false}) {
            auto* row = new CPackageToDeviceIds;
            row->setDeviceIdsId(5, fromDb);
            zor.m_vPackageToDeviceIds.push_back(row);
        }
        zor.replaceDeviceIdReference(5, 9, onlyNew);
        const auto& fromDb = *zor.m_vPackageToDeviceIds[0];
        const auto& madeUp = *zor.m_vPackageToDeviceIds[1];
        EXPECT_EQ(fromDb.getDeviceIdsId(), onlyNew ? 5U : 9U);
        EXPECT_EQ(madeUp.getDeviceIdsId(), 9U);
        EXPECT_EQ(madeUp.isDeviceIdsIdFromDb(), onlyNew) << "a made-up number stays marked as such";
    }
}

TEST(CZorContainer, PackageReferencesThatAreMadeUpAreReplaced) {
    CZor zor;
    for (const bool fromDb : {true, false}) {
        auto* row = new CWindowsServicePack;
        row->setPackageId(5, fromDb);
        zor.m_vWindowsServicePack.push_back(row);
    }
    zor.replacePackageReference(5, 9);
    EXPECT_EQ(zor.m_vWindowsServicePack[0]->getPackageId(), 5U);
    EXPECT_EQ(zor.m_vWindowsServicePack[1]->getPackageId(), 9U);
    EXPECT_TRUE(zor.m_vWindowsServicePack[1]->isPackageIdFromDb());
}

TEST(CZorContainer, DumpsVectorsThatHoldSomething) {
    CZor zor;
    addGateway(zor, 1, true);
    zor.m_vDomainSearchList.push_back(new CDomainSearchList);
    addGateway(zor, 2, true);
    std::ostringstream out;
    zor.dump(out);
    const std::string text = out.str();
    EXPECT_EQ(text.find("2 vGateway Entries:\n    Id = 1\n"), 0U) << text;
    EXPECT_NE(text.find("1 vDomainSearchList Entry:\n"), std::string::npos) << text;
}

TEST(CZorContainer, AllFlagsAreCleared) {
    CZor zor;
    addGateway(zor, 1, true)->setNetworkInterfaceId(3, true);
    zor.clearFromDbFlags();
    EXPECT_FALSE(zor.m_vGateway[0]->isFromDb() || zor.m_vGateway[0]->isNetworkInterfaceIdFromDb());
}

} // namespace
} // namespace Zorvane
