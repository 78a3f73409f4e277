// SPDX-License-Identifier: Apache-2.0
// What a masked bundle says in place of names and addresses.
#include "bundle/Mask.h"
#include "bundle/documentNames.h"
#include "bundle/maskedForms.h"
#include "bundle/tomlFiles.h"
#include "model/TableDescriptor.h"

#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

namespace Zorvane {
namespace {

TEST(Mask, putsTheSameStandInInPlaceOfAName) {
    Mask mask;
    mask.learn(NameKind::Client, "ledger01.corp.example");
    mask.learn(NameKind::Host, "esx01.corp.example");
    mask.learn(NameKind::Folder, "/Northgate/vm/Production");
    mask.learn(NameKind::Pool, "Gold");
    mask.learn(NameKind::Network, "VM Network");
    mask.learn(NameKind::User, "CORP\\anna");
    mask.learn(NameKind::Name, "root");
    mask.learn(NameKind::Machine, "M\xFCllerhost"); // ISO 8859-1
    mask.learn(NameKind::Machine, "example-box7");
    mask.learn(NameKind::Store, "[O'Hara & Co] iso/x.iso");
    for (const char* store : {"San one", "San one two", "San"})
        mask.learn(NameKind::Store, store);
    const std::pair<const char*, const char*> cases[] = {
        {"san, san one two, san one twofold, san ones", "store-5, store-4, store-3 twofold, store-5 ones"},
        {"client=LEDGER01.corp.example, rc=0", "client=client-1.domain-1, rc=0"},
        {"ledger01 esx01 other.corp.example", "client-1 host-1 other.domain-1"},
        {"oldledger01x", "oldclient-1x"},
        {"ledger01.corp.example-box7", "client-1.domain-1machine-2"}, // one begins inside of the other
        {"/Northgate/vm/Production/Web", "/folder-1/vm/folder-2/Web"},
        {"Gold golden gold\\nGold 「Gold」 Goldü", "pool-1 golden pool-1\\npool-1 「pool-1」 Goldü"},
        {"VM Network: VM, Network, root", "network-1: VM, Network, root"},
        {"owner corp\\Anna, Anna, MÜLLERHOST", "owner user-1, user-1, machine-1"},
        {"'O''Hara & Co' O'Hara &amp; Co O&apos;Hara &amp; Co", "'store-1' store-1 store-1"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(mask.masked(std::string_view(text)), expected) << text;
    EXPECT_NE(mask.legend().find("client-1\tledger01\n"), std::string::npos);
}

TEST(Mask, findsAddressesInAllSpellings) {
    Mask mask;
    const std::pair<const char*, const char*> cases[] = {
        {"10.20.0.21:14701, 10.20.0.22. 010.020.000.021", "0.0.0.1:14701, 0.0.0.2. 0.0.0.1"},
        {"addr:10.20.0.21 tcp:10.20.0.22:80 ip10.20.0.21 10.20.0.22and ip-10-20-0-21",
         "addr:0.0.0.1 tcp:0.0.0.2:80 ip0.0.0.1 0.0.0.2and ip-0-0-0-1"},
        {"127.0.0.1 255.255.252.0 1.2.3.4.5 6.3.9600.17396 2026-11-22-10",
         "127.0.0.1 255.255.252.0 1.2.3.4.5 6.3.9600.17396 2026-11-22-10"},
        {"[fe80::20c:29ff:fe5f:1] addr:fe80:0:0:0:20c:29ff:fe5f:1 fd::abcd dead:beef::cafe",
         "[100::0000:01] addr:100::0000:01 100::0000:02 100::0000:03"},
        {"::1 12:30:59 CZor::add() Cab::add()", "::1 12:30:59 CZor::add() Cab::add()"},
        {"00:50:56:AA:00:01 00-50-56-aa-00-01 0050.56aa.0001 005056AA0001 0x005056aa0001 0:50:56:aa:0:1",
         "02:00:00:00:00:01 02-00-00-00-00-01 0200.0000.0001 020000000001 0x020000000001 "
         "02:00:00:00:00:01"},
        {"0050.5601.0203, 202601020304", "0050.5601.0203, 202601020304"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(mask.masked(std::string_view(text)), expected) << text;
    EXPECT_EQ(mask.masked((10U << 24) + (20U << 16) + 21), 1U) << "as the text 10.20.0.21";
}

TEST(Mask, learnsFromTextsWhatGivesItselfAway) {
    const struct {
        Form form;
        const char *text, *expected;
    } cases[] = {
        {Form::Text, "see vc.lab.example, zorop.cpp and kvn.toml, ZorDba.ZOR_Config.Name, VER@6.1",
         "see host-1.domain-1, zorop.cpp and kvn.toml, ZorDba.ZOR_Config.Name, VER@6.1"},
        {Form::Text, "https://time.maker.com/ at a time", "https://host-1.domain-1/ at a time"},
        {Form::Text, "anna.schmidt@kunde-meier.de, kunde-meier.de, svc_sql.kunde.de büro.kunde.de",
         "user-1@host-1.de, host-1.de, host-2.domain-1 host-3.domain-1"},
        {Form::Text, "C:\\Users\\otto\\x home/otto C:\\\\Windows \\\\files7\\accounts\\x",
         "C:\\Users\\user-1\\x home/user-1 C:\\\\Windows \\\\host-1\\folder-1\\x"},
        {Form::Log, "line=7, client=alpha, config=current\nx() for client=alphaand config=,beta, return=0",
         "line=7, client=client-1, config=current\nx() for client=client-1 and config=,name-1, return=0"},
        {Form::Log, "Command line: zorb2v -C alpha -co the first -vmpr beta -vep gamma -O",
         "Command line: zorb2v -C client-1 -co name-1 -vmpr host-1 -vep profile-1 -O"},
        {Form::Log,
         "folder selected for restore:Delta\nstatus from kvnrd on server beta: 1\nto host gamma: no",
         "folder selected for restore:name-1\nstatus from kvnrd on server host-1: 1\nto host host-2: no"},
        {Form::Log, "lower(ZorDba.ZOR_Config.ClientName) = lower('al''pha')",
         "lower(ZorDba.ZOR_Config.ClientName) = lower('client-1')"},
        {Form::Log, "line :  <Network Name=\"Red &amp; Blue\"/>\\n", "line :  <Network Name=\"name-1\"/>\\n"},
        {Form::Log, "app 2 - [433:14] Der Client \"alpha\" kann\napp 2 - [433:14] クライアント「beta」は",
         "app 2 - [433:14] Der Client \"name-1\" kann\napp 2 - [433:14] クライアント「name-2」は"},
        {Form::Log, "kvnrd\tlisting 19\tvc9\tcv9, Northgate\t0",
         "kvnrd\tlisting 19\tname-1\tname-2, name-3\t0"},
        {Form::Toml,
         "[[server]] # of Meier\nname = \"Me\\u0069er's\"\ntype = 'esx'\nnote = \"\"\"\nMeier's\n'''x\"\"\"\n",
         "[[server]]\nname = \"host-1\"\nnote = \"host-1\\n'''x\"\ntype = \"esx\"\n"},
        {Form::Json, R"({"debug": ["C:\\Users\\otto"]})",
         "{\n  \"debug\": [\n    \"C:\\\\Users\\\\user-1\"\n  ]\n}\n"},
    };
    for (const auto& [form, text, expected] : cases) {
        Mask mask;
        const std::string readable = form == Form::Log ? readableLog(text) : text;
        learnFrom(form, readable, mask);
        EXPECT_EQ(maskedFile(form, readable, mask), expected);
    }
    Mask mask;
    EXPECT_FALSE(maskedFile(Form::Toml, "name = \"half", mask));
    EXPECT_FALSE(maskedFile(Form::Document, "<half", mask));
}

// Seconds to minutes each, if what a place of a text costs has no bound.
TEST(Mask, isDoneWithHostileTextsSoon) {
    const auto repeated = [](const std::string& part) {
        std::string text;
        while (text.size() < 300'000)
            text += part;
        return text;
    };
    for (const char* part :
         {"a:", "\\\\x\\ ", "and config=,", " - [433:\"", "kvnrd\tlisting \t,", "aa.", "a"}) {
        Mask mask;
        std::string name = "a";
        for (int i = 0; i < 1000; ++i)
            mask.learn(NameKind::Name, name += "a");
        mask.learn(NameKind::Client, "ledger01");
        const std::string text = readableLog(repeated(part) + "\nledger01");
        learnFrom(Form::Log, text, mask);
        EXPECT_TRUE(mask.masked(std::string_view(text)).ends_with("\nclient-1")) << part;
    }
}

TEST(Documents, goAlongWithoutSecrets) {
    const std::string kept =
        withoutSecrets(
            "<ZorData><RegistryValue><Name>DefaultPassword</Name><Value>hush</Value></RegistryValue>"
            "<RegistryValue><Name>Shell</Name><Value>a</Value></RegistryValue>"
            "<EsmConf><Name>CLIENT_SECRET</Name><Value>hush</Value></EsmConf>"
            "<FileContent><Content>aHVzaA==</Content></FileContent></ZorData>")
            .value_or("");
    EXPECT_THAT(kept, AllOf(HasSubstr("CLIENT_SECRET"), HasSubstr("<Value>a</Value>")));
    EXPECT_THAT(kept, Not(AnyOf(HasSubstr("hush"), HasSubstr("aHVzaA"))));
    EXPECT_FALSE(withoutSecrets("<ZorData><RegistryValue>")) << "what is left out can't be told";
}

TEST(Configuration, keepsTheKeysThatTheSuiteKnows) {
    const std::string kept =
        knownConfiguration("api_key = 'x1' # x2\n[master]\nservers = ['a']\nquss = {pwd = 'x3'}\n"
                           "[logging]\ndebug = 1\ntoken = \"\"\"\nx4\n\"\"\"\n[logging.originator.128]\n"
                           "debug = 2\n[secrets]\nuri = 'https://u:x5@h'\n[[services]]\nzord = 'x6'\n")
            .value_or("");
    EXPECT_EQ(kept,
              "left_out = [ \"api_key\", \"logging.token\", \"master.quss.pwd\", \"secrets.uri\", \"services\" ]\n\n"
              "[logging]\ndebug = 1\n\n    [logging.originator.128]\n    debug = 2\n\n"
              "[master]\nservers = [ \"a\" ]\n");
    EXPECT_FALSE(knownConfiguration("password = x"));
    EXPECT_FALSE(knownConfiguration(std::string(40'000, 'a').replace(1, 1, ".") + " = 1"));
}

// Devices, files, software and settings; any other field that is called so names something of a site.
TEST(Documents, haveADecisionOnEveryNameField) {
    const std::string expected =
        "AdapterName: WindowsDisk; ArcName: WindowsDisk QuswDisk; CacheName: QuvmVolume; DMPName: Disk; "
        "DaylightName: WindowsSystem; DcoName: QuvmVolume; DcoParentName: QuvmVolume; DeviceName: "
        "MountPoint QuswDisk QuswVolume; DiskName: DiskToDataStoreMap DiskToDataStoreMapLog; DistroName: "
        "Srt; DosNicDriverName: CustomFloppyFile; DriverName: LinuxScsiDriver; FileName: DosFile; Filename: "
        "LoadFile; FriendlyName: WindowsPhysicalDisk WindowsStorageSubsystem WindowsStorageTierTemplate "
        "WindowsVirtualDiskToStorageTier; FullName: ConfigFileList PartitionDatabase PackageFileList; "
        "LastDaName: QuvmDisk; MediaName: QuswDisk; Name: NetworkInterface Bi CurrentVersion EsmConf "
        "RegistryKey RegistryValue EventLog OverRide Disk Volume VolumeSet Plex SubDisk LinuxMountPoint "
        "LinuxMultiDevice LinuxPartition LinuxPhysicalVolume SubvolumeMountPoint WindowsResiliencySettings "
        "WindowsStoragePool WindowsStorageProvider WindowsStorageSubsystem WindowsVirtualDisk "
        "SolarisNativePartition ZfsBase ZfsVolume AixFileSystem HpuxPhysicalVolumePartition SvmHotSparePool "
        "SvmSoftPartition QuvmDiskGroupTag QuvmDiskTag SharedDevice SharedLogicalVolume "
        "SharedPhysicalVolume EmbeddedPackage FileContent Package WindowsDriver WindowsHotFix; "
        "OrigDiskName: QuvmSubDisk; PersistentName: HpuxPhysicalVolume HpuxPhysicalVolumePartition; "
        "PlexName: QuvmSubDisk; PrefName: QuvmVolume; ResiliencySettingName: WindowsVirtualDisk; "
        "StandardName: WindowsSystem; VName: QuvmPlex; VolumeName: SolarisDisk";
    std::map<std::string, std::string> others;
    for (const TableDescriptor* table : allTables())
        for (const Field& field : table->fields) {
            const std::string name = field.name;
            if (field.kind == FieldKind::Text && (name.ends_with("Name") || name.ends_with("name")) &&
                !kindOfField(table->name, name) && !(table->base && table->base->find(name)))
                others[name] += " " + std::string(table->name);
        }
    std::string found;
    for (const auto& [field, tables] : others)
        found += (found.empty() ? "" : "; ") + field + ":" + tables;
    EXPECT_EQ(found, expected);
}

} // namespace
} // namespace Zorvane
