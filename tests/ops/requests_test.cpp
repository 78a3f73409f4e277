// SPDX-License-Identifier: Apache-2.0
// The container's request verbs, against a daemon whose answers are written in advance.
#include "model/CZor.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "ops/FakeZord.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace Zorvane {

namespace {

std::string answer(const std::string& rows) {
    const std::string xml = "<ZorData>" + rows + "</ZorData>";
    return packet(23, c(0) + i(static_cast<long>(xml.size()))) + xml;
}
const std::string REFUSED = packet(23, c(99) + i(0));
const std::string DONE = packet(23, c(0) + i(0));

std::string gateway(int id, const std::string& metric) {
    return "<Gateway><Id fromDb=\"1\">" + std::to_string(id) + "</Id><Metric>" + metric +
           "</Metric></Gateway>";
}

CGateway* addGateway(CZor& zor, ID id, bool fromDb) {
    auto* row = new CGateway;
    row->setId(id);
    if (fromDb)
        row->setFromDb();
    zor.m_vGateway.push_back(row);
    return row;
}

// The rows that a client sent, and its command.
struct Sent {
    CZor rows;
    int command = 0;
    explicit Sent(std::string bytes) {
        EXPECT_EQ(bytes.substr(0, 4), s(22) + s(12));
        command = static_cast<unsigned char>(bytes[7]);
        bytes.erase(0, 12);
        EXPECT_EQ(
            rows.readXml(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size())), 0);
    }
};

} // namespace

TEST(requests, queryAddsTheRowsOfTheDatabase) {
    FakeZord zord(answer(gateway(5, "2") + gateway(6, "3")));
    CZor zor;
    addGateway(zor, 6, false);
    EXPECT_EQ(zor.queryRequest("*", CGateway::TableName, "a = 'b'"), 0);
    ASSERT_EQ(zor.m_vGateway.size(), 2);
    EXPECT_EQ(zor.m_vGateway[0]->getId(), 6);
    EXPECT_TRUE(zor.m_vGateway[0]->isFromDb()) << "the row of that Id is replaced";
    EXPECT_TRUE(zor.m_vGateway[1]->isFromDb());
    EXPECT_TRUE(zor.m_vQueryRequest.empty());
    const Sent sent(zord.heardOnce());
    EXPECT_EQ(sent.command, 10);
    EXPECT_TRUE(sent.rows.m_vGateway.empty());
    ASSERT_EQ(sent.rows.m_vQueryRequest.size(), 1);
    EXPECT_EQ(sent.rows.m_vQueryRequest.front()->getColumnClause(), "*");
    EXPECT_EQ(sent.rows.m_vQueryRequest.front()->getTableClause(), "ZorDba.ZOR_Gateway");
    EXPECT_EQ(sent.rows.m_vQueryRequest.front()->getWhereClause(), "a = 'b'");
}

TEST(requests, aFailedQueryGoesAlongWithTheNext) {
    CZor zor;
    {
        FakeZord zord(REFUSED);
        EXPECT_EQ(zor.queryRequest("*", "first", ""), 99);
        EXPECT_EQ(zor.m_vQueryRequest.size(), 1);
        EXPECT_THAT(zord.log(),
                    HasSubstr("ZorOps ZOROP_QUERY, ZOROP_DB, failed In CZor::queryRequest. rc =99"));
        EXPECT_EQ(zor.queryTreeRequest("second", 8), 99);
        EXPECT_THAT(zord.log(),
                    HasSubstr("ZorOps ZOROP_QUERY, ZOROP_DB, failed In CZor::queryTree. rc = 99"));
    }
    FakeZord zord(answer("<NoSuchTable/>"));
    EXPECT_EQ(zor.queryTreeRequest("third", 17), 0);
    EXPECT_TRUE(zor.m_vQueryRequest.empty());
    // All three have Id 0: each takes its predecessor's place in whoever reads them.
    const Sent sent(zord.heardOnce());
    ASSERT_EQ(sent.rows.m_vQueryRequest.size(), 1);
    EXPECT_EQ(sent.rows.m_vQueryRequest.front()->getTableClause(), "third");
    EXPECT_EQ(sent.rows.m_vQueryRequest.front()->getTreeId(), 17);
}

TEST(requests, aReplyThatIsNoDocumentFails) {
    FakeZord zord(packet(23, c(0) + i(4)) + "none");
    CZor zor;
    addGateway(zor, 1, false);
    EXPECT_EQ(zor.queryRequest("*", "table", ""), 1);
    EXPECT_TRUE(zor.m_vQueryRequest.empty()) << "it was asked";
    EXPECT_EQ(zor.insertRequest(), 1);
    EXPECT_EQ(zor.m_vGateway.size(), 1) << "the made-up row stays";
    EXPECT_THAT(zord.log(),
                HasSubstr("readXml (results from ZOROP_INSERT) failed In CZor::insertRequest. rc = 1"));
}

TEST(requests, insertTradesMadeUpRowsForThoseOfTheDatabase) {
    CZor zor;
    addGateway(zor, 1, false);
    addGateway(zor, 7, true);
    {
        FakeZord zord(REFUSED);
        EXPECT_EQ(zor.insertRequest(), 99);
        EXPECT_EQ(zor.m_vGateway.size(), 2);
    }
    FakeZord zord(answer(gateway(71, "4")));
    EXPECT_EQ(zor.insertRequest(), 0);
    ASSERT_EQ(zor.m_vGateway.size(), 2);
    EXPECT_EQ(zor.m_vGateway[0]->getId(), 7);
    EXPECT_EQ(zor.m_vGateway[1]->getId(), 71);
    EXPECT_TRUE(zor.m_vGateway[1]->isFromDb());
    const Sent sent(zord.heardOnce());
    EXPECT_EQ(sent.command, 12);
    ASSERT_EQ(sent.rows.m_vGateway.size(), 1);
    EXPECT_EQ(sent.rows.m_vGateway.front()->getId(), 1);
}

TEST(requests, updateClearsTheChangesEvenWhenItFails) {
    for (const auto& [reply, expected] : {std::pair(DONE, 0), std::pair(REFUSED, 99)}) {
        FakeZord zord(reply);
        CZor zor;
        addGateway(zor, 1, false);
        addGateway(zor, 2, true);
        addGateway(zor, 3, true)->clearChanged();
        EXPECT_EQ(zor.updateRequest(), expected);
        EXPECT_EQ(zor.m_vGateway.size(), 3);
        for (const CGateway* row : zor.m_vGateway)
            EXPECT_FALSE(row->isChanged()) << row->getId();
        const Sent sent(zord.heardOnce());
        EXPECT_EQ(sent.command, 13);
        ASSERT_EQ(sent.rows.m_vGateway.size(), 1);
        EXPECT_EQ(sent.rows.m_vGateway.front()->getId(), 2);
        EXPECT_EQ(zord.log().find("ZOROP_DB, failed  In CZor::updateRequest. rc = 99") != std::string::npos,
                  expected != 0);
    }
}

TEST(requests, deleteRemovesTheRowsThatAreGone) {
    CZor zor;
    addGateway(zor, 1, false);
    addGateway(zor, 2, true);
    {
        FakeZord zord(REFUSED);
        EXPECT_EQ(zor.deleteRequest(), 99);
        EXPECT_EQ(zor.m_vGateway.size(), 2);
    }
    FakeZord zord(DONE);
    EXPECT_EQ(zor.deleteRequest(), 0);
    ASSERT_EQ(zor.m_vGateway.size(), 1);
    EXPECT_EQ(zor.m_vGateway.front()->getId(), 1);
    const Sent sent(zord.heardOnce());
    EXPECT_EQ(sent.command, 5);
    ASSERT_EQ(sent.rows.m_vGateway.size(), 1);
    EXPECT_EQ(sent.rows.m_vGateway.front()->getId(), 2);
}

TEST(requests, aTransactionIsThreeDocumentsInOne) {
    for (const auto& [reply, expected] : {std::pair(DONE, 0), std::pair(REFUSED, 99)}) {
        FakeZord zord(reply);
        CZor zor;
        addGateway(zor, 1, false);
        addGateway(zor, 2, true);
        CZor gone;
        addGateway(gone, 3, true);
        EXPECT_EQ(zor.transactionRequest(gone), expected);
        EXPECT_EQ(zor.m_vGateway.size(), 2) << "made-up rows stay beside what the database has";
        EXPECT_EQ(gone.m_vGateway.size(), 1);
        EXPECT_TRUE(zor.m_vTransactionRequest.empty());

        const Sent sent(zord.heardOnce());
        EXPECT_EQ(sent.command, 11);
        ASSERT_EQ(sent.rows.m_vTransactionRequest.size(), 1);
        const CTransactionRequest& request = *sent.rows.m_vTransactionRequest.front();
        ID id = 0;
        for (const auto& [bytes, size] : {std::pair(request.getInsertXml(), request.getInsertXmlSize()),
                                          std::pair(request.getUpdateXml(), request.getUpdateXmlSize()),
                                          std::pair(request.getDeleteXml(), request.getDeleteXmlSize())}) {
            CZor document;
            EXPECT_EQ(document.readXml(const_cast<unsigned char*>(bytes), size), 0);
            ASSERT_EQ(document.m_vGateway.size(), 1);
            EXPECT_EQ(document.m_vGateway.front()->getId(), ++id);
        }
    }
}

TEST(requests, verbsPassOnThatNoDaemonAnswers) {
    FakeZord zord;
    zord.heard();
    CZor zor;
    CZor other;
    EXPECT_EQ(zor.queryRequest("*", "table", ""), 200);
    EXPECT_EQ(zor.insertRequest(), 200);
    EXPECT_EQ(zor.updateRequest(), 200);
    EXPECT_EQ(zor.deleteRequest(), 200);
    EXPECT_EQ(zor.transactionRequest(other), 200);
    EXPECT_EQ(zor.queryRequestAll(), 0);
    EXPECT_THAT(zord.log(), HasSubstr("queryRequestAll NOT IMPLEMENTED."));
}

} // namespace Zorvane
