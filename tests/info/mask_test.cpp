// SPDX-License-Identifier: Apache-2.0
// What a masked bundle says in place of names and addresses.
#include "bundle/Mask.h"
#include "bundle/maskedForms.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

Mask knownSite() {
    Mask mask;
    mask.learn(NameKind::Client, "ledger01.corp.example");
    mask.learn(NameKind::Host, "esx01.corp.example");
    mask.learn(NameKind::Folder, "/Northgate/vm/Production");
    mask.learn(NameKind::Pool, "Gold");
    mask.learn(NameKind::Network, "VM Network");
    mask.learn(NameKind::User, "CORP\\anna");
    mask.learn(NameKind::Name, "root");
    return mask;
}

TEST(Mask, putsTheSameStandInInPlaceOfAName) {
    Mask mask = knownSite();
    const std::pair<const char*, const char*> cases[] = {
        {"client=LEDGER01.corp.example, rc=0", "client=client-1.domain-1, rc=0"},
        {"ledger01.corp.exampleand", "client-1.domain-1and"},
        {"ledger01 esx01 other.corp.example", "client-1 host-1 other.domain-1"},
        {"oldledger01x", "oldclient-1x"},
        {"/Northgate/vm/Production/Web", "/folder-1/vm/folder-2/Web"},
        {"Gold golden gold\\nGold", "pool-1 golden pool-1\\npool-1"},
        {"VM Network: VM, Network", "network-1: VM, Network"},
        {"owner corp\\Anna, Anna", "owner user-1, user-1"},
        {"root stays", "root stays"},
        {"10.20.0.21:14701, 10.20.0.22. 10.20.0.21", "0.0.0.1:14701, 0.0.0.2. 0.0.0.1"},
        {"127.0.0.1 255.255.252.0 1.2.3.4.5 6.3.9600.17396",
         "127.0.0.1 255.255.252.0 1.2.3.4.5 6.3.9600.17396"},
        {"[fe80::20c:29ff:fe5f:1] ::1 12:30:59 CZor::add()", "[100::0000:01] ::1 12:30:59 CZor::add()"},
        {"00:50:56:AA:00:01 00-50-56-aa-00-01", "02:00:00:00:00:01 02-00-00-00-00-01"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(mask.masked(std::string_view(text)), expected) << text;
    EXPECT_EQ(mask.masked((10U << 24) + (20U << 16) + 21), 1U) << "as the text 10.20.0.21";
    EXPECT_NE(mask.legend().find("client-1\tledger01\n"), std::string::npos);
}

TEST(Mask, learnsFromTextsWhatGivesItselfAway) {
    const struct {
        Form form;
        const char *text, *expected;
    } cases[] = {
        {Form::Text, "see vc.lab.example, zorop.cpp and kvn.toml",
         "see host-1.domain-1, zorop.cpp and kvn.toml"},
        {Form::Text, "https://time.maker.com/ at a time", "https://host-1.domain-1/ at a time"},
        {Form::Text, "C:\\Users\\otto\\x /home/otto", "C:\\Users\\user-1\\x /home/user-1"},
        {Form::Log, "x() Entering, line=7, client=alpha, config=current",
         "x() Entering, line=7, client=client-1, config=current"},
        {Form::Log, "x(), host=a1.lab.example\nx(), client=a1.lab.exampleand config=,current",
         "x(), host=host-1.domain-1\nx(), client=host-1.domain-1and config=,current"},
        {Form::Log, "lower(ZorDba.ZOR_Config.ClientName) = lower('alpha')",
         "lower(ZorDba.ZOR_Config.ClientName) = lower('client-1')"},
        {Form::Log, "line :  <Network Name=\"VM Network\"/>\\n", "line :  <Network Name=\"name-1\"/>\\n"},
    };
    for (const auto& [form, text, expected] : cases) {
        Mask mask;
        learnFrom(form, text, mask);
        EXPECT_EQ(maskedFile(form, text, mask), expected);
    }
}

TEST(Mask, leavesTheKeysOfFilesAlone) {
    Mask mask;
    mask.learn(NameKind::Host, "debug");
    EXPECT_EQ(maskedFile(Form::Toml, "debug = \"debug\" # on debug\n[debug]\nx = 'it\\'\n", mask),
              "debug = \"host-1\" # on host-1\n[debug]\nx = 'it\\'\n");
    EXPECT_EQ(maskedFile(Form::Json, R"({"debug":["debug"]})", mask),
              "{\n  \"debug\": [\n    \"host-1\"\n  ]\n}\n");
}

} // namespace
} // namespace Zorvane
