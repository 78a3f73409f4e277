// SPDX-License-Identifier: Apache-2.0
// Conversions that are submitted: the rows that they leave.
#include "flow/Lab.h"
#include "platform/stringManipulation.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

constexpr const char* PROFILE =
    "SELECT VICName, ToolPath, EsxServer, VCenterServer, DataStore, AvailableSize, Folder, ResourcePool, "
    "DataCenter, "
    "ESXCluster, Network, VdiskFormat, OverwriteVM, BootInstance, StripeNwInterfaces, HiddenProfile "
    "FROM ZOR_VmwareProfileOptions";
constexpr const char* TASK =
    "SELECT t.ClientName, t.ConfigName, c.ClientName, t.State, t.Operation, t.SystemOnly, t.EndDate = "
    "c.RetrievalTime, "
    "abs(t.CreateTime - strftime('%s')) < 100, t.VeType, t.VmName, p.ProfileName IS NOT NULL FROM "
    "ZOR_P2VRestoreTask t "
    "JOIN ZOR_Config c ON c.Id = t.ConfigId "
    "LEFT JOIN ZOR_VmwareProfileOptions p ON p.ProfileName = t.ProfileName ORDER BY t.Id";
constexpr const char* DISKS =
    "SELECT DiskName, DataStoreName, AvailableSize FROM ZOR_DiskToDataStoreMap m JOIN ZOR_P2VRestoreTask t "
    "ON t.Id = m.P2VRestoreTaskId AND t.ConfigId = m.ConfigId ORDER BY m.Id";

class Conversions : public testing::Test {
  protected:
    void submit(const std::string& client, const std::string& target, const std::string& options = "",
                const std::string& server = "vcenter01.lab.example") {
        m_lab.serve();
        m_lab.write("target", target);
        std::vector<std::string> arguments = {"-C",        client,
                                              "-vmserver", server,
                                              "-vmproxy",  "convhost01.lab.example",
                                              "-veconfig", m_lab.path("target")};
        for (const std::string& option : words(options))
            arguments.push_back(option);
        const Ended run = m_lab.zorb2v(arguments);
        EXPECT_EQ(run.status, 0) << client;
        EXPECT_EQ(run.out + run.err, message(32)) << client;
    }

    Lab m_lab;
};

TEST_F(Conversions, takeDefaultsFromTheVCenter) {
    submit("LEDGER01.corp.example", "toolsIsoPath=t.iso");
    EXPECT_EQ(m_lab.sql(PROFILE),
              "convhost01.lab.example|t.iso|esx01.lab.example|vcenter01.lab.example|ng-pod1|1740800|"
              "/Northgate/vm|/Northgate/host/ng-cluster1/Resources|Northgate||VM Network|2|0|0|0|0\n");
    EXPECT_EQ(m_lab.sql(TASK), "LEDGER01.corp.example|current|ledger01.corp.example|1|1|0|1|1|1||1\n");
    EXPECT_EQ(m_lab.sql(DISKS), "");
    m_lab.road();

    submit("atlas07.corp.example", "toolsIsoPath=T.iso\nname=vm", "-systemOnly");
    EXPECT_EQ(m_lab.sql("SELECT count(*), count(DISTINCT ProfileName) FROM ZOR_P2VRestoreTask"), "2|1\n");
    EXPECT_EQ(m_lab.road(),
              "config tree config tree backups 9 10 7 22 11 7 19 17 equal? pending? 9 10 7 7 19 11 7 22 17 "
              "profile? verify profile? task+ start")
        << "the profile of the first one is used again";
}

TEST_F(Conversions, keepWhatTheUserGives) {
    submit(
        "ledger01.corp.example",
        "toolsIsoPath=\"[x] "
        "t.iso\"\nesxhost=esx11.LAB.example\ndatacenter=/top/Southbank\nfolder=/Southbank/vm/retired\n"
        "resourcepool=Small\nname=it's\nnetwork=Southbank 210\ndiskformat=ThickLazy\nharddisk=0:sb-nfs-01\n"
        "harddisk=1:\"sb-esx11-local\"\n",
        "-vmpo -O -con CURRENT -veprofile mine");
    EXPECT_EQ(m_lab.sql(PROFILE),
              "convhost01.lab.example|[x] t.iso|esx11.LAB.example|vcenter01.lab.example|sb-nfs-01|0|"
              "/Southbank/vm/retired|Small|/top/Southbank||Southbank 210|3|1|1|0|0\n");
    EXPECT_EQ(m_lab.sql(TASK), "ledger01.corp.example|CURRENT|ledger01.corp.example|1|1|0|1|1|1|it's|1\n");
    EXPECT_EQ(m_lab.sql(DISKS), "Harddisk0|sb-nfs-01|3145728\nHarddisk1|sb-esx11-local|102400\n");
}

TEST_F(Conversions, goToAHostOfItsOwn) {
    submit("atlas07.corp.example", "toolsIsoPath=t\ncluster=none\nfolder=none\n", "-vmsn",
           "esx90.lab.example");
    EXPECT_EQ(m_lab.sql(PROFILE),
              "convhost01.lab.example|t|esx90.lab.example|esx90.lab.example|esx90-local1|614400|none|"
              "/ha-datacenter/host/esx90.lab.example/Resources|ha-datacenter|||2|0|0|1|0\n");
    EXPECT_EQ(m_lab.sql(TASK), "atlas07.corp.example|current|atlas07.corp.example|1|1|0|1|1|1||1\n");
}

// Names that could end a literal, a command or a line.
TEST_F(Conversions, ofClientsWithAnyName) {
    for (const std::string name : {"o'brien's", "a\"b\" c", "x'; DELETE FROM ZOR_Config; --", "`id`$(id)\\\"",
                                   "two\nlines", "B\xc3\xbcro-\xe6\x9c\xba", "<a>&amp;]]>", "-O"}) {
        m_lab.sql("UPDATE ZOR_Config SET ClientName = " + QuoteSqlLiteral(name) + " WHERE Id = 4");
        submit(name, "toolsIsoPath=t");
        EXPECT_EQ(m_lab.sql("SELECT ClientName FROM ZOR_P2VRestoreTask"), name + "\n");
        m_lab.forget();
    }
}

} // namespace
} // namespace Zorvane
