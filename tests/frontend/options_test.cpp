// SPDX-License-Identifier: Apache-2.0
#include "frontend/given.h"
#include "resources/CommandLog.h"

#include <sstream>

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

struct Case {
    std::string arguments; ///< "F" stands for a configuration file
    int rc;
    std::string result; ///< what the input holds, or the message and a word that it must have
    std::string why = "";
};

const std::string NEEDED = "-C a -vmserver s -vmproxy p -veconfig F ";
const std::string HAS = "C=a S=m1 server=s proxy=p";

TEST(Options, fillTheInputInTheirOrder) {
    const Case cases[] = {
        {NEEDED, 0, HAS, "the master server is the first of the configured ones"},
        // What is mandatory is asked for in the steps' order.
        {"", 1, "5] -C <"},
        {"-C a", 1, "8] -vmproxy"},
        {"-C a -vmproxy p", 1, "4] -vmserver"},
        {"-C a -vmproxy p -vmserver s", 1, "3] -veconfig"},
        {"-veprofile", 2, "6] -veprofile ", "taken before the client"},
        // Arguments that are missing.
        {"-C", 2, "6] -C "},
        {"-C a -config", 3, "6] -config "},
        {"-C a -S", 2, "6] -vmserver ", "the word that stands for -S, too"},
        {"-C a -vmproxy", 2, "6] -vmproxy "},
        {"-C a -vmproxy p -vmserver", 2, "6] -vmserver "},
        {"-C a -vmproxy p -vmserver s -veconfig", 2, "6] -vmserver ", "and for -veconfig"},
        {"-version", 2, "6] -version "},
        {"-C a -vmproxy p -vmserver s -veconfig /no/such", 1, "31] \"/no/such\""},
        // Abbreviations, down to the shortest.
        {"-C a -vmse s -vmpr p -vec F", 0, HAS},
        {"-C a -vms s -vmpr p -vec F", 1, "4] "},
        {"-C a -vmse s -vmp p -vec F", 1, "8] "},
        {"-C a -vmse s -vmpr p -ve F", 1, "3] "},
        {"-C a -vmse s -vmpr p -veconfigs F", 1, "3] ", "longer than the name"},
        {NEEDED + "-co night", 0, "C=a S=m1 config=night server=s proxy=p"},
        {NEEDED + "-c night", 0, HAS},
        {NEEDED + "-CON night -GUI -o -vm -vmp -s -S", 2, "6] ", "case counts, and -S is the only option"},
        {NEEDED + "-vmpo", 0, HAS + " on"},
        {NEEDED + "-vmsn", 0, HAS + " strip"},
        {NEEDED + "-O", 0, HAS + " overwrite"},
        {NEEDED + "-sy", 0, HAS + " systemOnly"},
        {NEEDED + "-g -h -z -ver 1", 0, HAS + " gui"},
        {NEEDED + "-vep P", 0, HAS + " profile=P"},
        {NEEDED + "-e esx -esxhost esx", 0, HAS, "an option that nothing reads"},
        {NEEDED + "-vmh", 0, HAS + " type=2"},
        {NEEDED + "-vmhv -vmw", 0, HAS},
        // Values that look like options, repetition, and words that are no options.
        {"-C -gui -vmserver s -vmproxy p -veconfig F", 0, "C=-gui S=m1 server=s proxy=p gui"},
        {"-C -S -vmserver s -vmproxy p -veconfig F", 0, "C=-S S=-vmserver server=s proxy=p"},
        {"-C a -C b -vmserver s -vmserver t -vmproxy p -veconfig F", 0, HAS},
        {"- x -vmserver s -vmproxy p -veconfig F", 0, "C=x S=x server=s proxy=p", "it is -S and -C"},
        {NEEDED + "what -nots --help -S=m3 -C=b", 0, HAS},
    };
    CommandLog log("master.servers = ['m1', 'm2']");
    log.scratch().write("F", "");
    for (const Case& c : cases) {
        std::istringstream words(c.arguments);
        std::vector<std::string> arguments;
        for (std::string word; words >> word;)
            arguments.push_back(word == "F" ? log.scratch().path("F") : word);
        CZorb2vCommandLine commandLine;
        B2VInput input;
        commandLine.initializeDefaults(input);
        EXPECT_EQ(commandLine.parseArguments(arguments, input), c.rc) << c.arguments << "; " << c.why;
        const std::string told = log.takeMessages();
        if (c.rc == 0) {
            EXPECT_EQ(given(input) + told, c.result) << c.arguments << "; " << c.why;
        } else {
            const std::string number = c.result.substr(0, c.result.find(' '));
            EXPECT_EQ(told.substr(0, number.size()), number) << c.arguments << "; " << c.why;
            EXPECT_NE(told.find(c.result.substr(number.size() + 1)), std::string::npos) << told;
            EXPECT_EQ(told.find('\n'), std::string::npos) << told;
        }
    }
}

TEST(Options, anEmptyWordIsNoOption) {
    CommandLog log;
    CZorb2vCommandLine commandLine;
    bool isSet = false;
    EXPECT_EQ(commandLine.extractOverwriteVM({"", "-OO"}, isSet), 0);
    EXPECT_FALSE(isSet);
}

TEST(Options, withoutAMasterServerTheDefaultsAreNotSetAndTheRunGoesOn) {
    for (const char* toml : {"", "master.servers = []"}) {
        CommandLog log(toml);
        CZorb2vCommandLine commandLine;
        EXPECT_EQ(given(commandLine.input()), "");
        EXPECT_NE(log.take("diag 1 CZorb2vCommandLine:CZorb2vCommandLine::initializeDefaults() [433:9")
                      .find("master server"),
                  std::string::npos);
        B2VInput input;
        input.powerOn = true;
        EXPECT_EQ(commandLine.initializeDefaults(input), 1);
        EXPECT_TRUE(input.powerOn);
        EXPECT_EQ(commandLine.parseArguments({"-C", "a"}, input), 1);
        EXPECT_EQ(input.configName, "current");
    }
}

TEST(ValidateInput, asksForOneValueAfterTheOther) {
    CommandLog log;
    CZorb2vCommandLine commandLine;
    B2VInput input;
    input.veType = HYPERV_VE_TYPE;
    const auto refusal = [&] {
        EXPECT_EQ(commandLine.validateInput(input), 1);
        const std::string told = log.takeMessages();
        return told.substr(0, told.find(']')) +
               (told.starts_with("10]") ? told.substr(told.find(" for ")) : "");
    };
    EXPECT_EQ(refusal(), "");
    input.veType = VMWARE_VE_TYPE;
    EXPECT_EQ(refusal(), "4");
    input.vmServer = "s";
    EXPECT_EQ(refusal(), "8");
    input.vmProxy = "p";
    EXPECT_TRUE(refusal().starts_with("10 for toolsIsoPath,"));
    input.toolsIsoPath = "iso";
    EXPECT_TRUE(refusal().starts_with("10 for esxhost,"));
    input.esxHost = "e";
    EXPECT_TRUE(refusal().starts_with("10 for network,"));
    input.stripNetwork = true;
    EXPECT_TRUE(refusal().starts_with("10 for datastore,"));
    input.diskMap.push_back({"Harddisk0", "d"});
    EXPECT_EQ(commandLine.validateInput(input), 0);
    input.diskMap.clear();
    input.stripNetwork = false;
    input.dataStore = input.vmNetwork = "x";
    EXPECT_EQ(commandLine.validateInput(input), 0);
}

TEST(Options, anInputIsPrintedInWords) {
    B2VInput input;
    input.clientName = "alpha";
    input.esxHost = "esx01";
    input.powerOn = true;
    input.diskMap = {{"Harddisk0", "gold", 7}};
    const std::string head = "ClientName = alpha\nMaster server = \nConfig Name = \nvmServer Name = \n";
    const std::string middle = "\nPowerOn option = 1\nStrip Network Option= 0\nOverwrite VM Option= 0\n"
                               "Tools Iso Path = \nVM Display Name = \n";
    const std::string place = "VM Destination Folder = \nData Center Name = \n";
    const std::string rest = "VM Network Name = \nResource Pool Name = \nData Store Name = \n";
    const std::string disks = " Harddisk0 gold 7\n";
    const struct {
        std::uint32_t veType, diskFormat;
        const char *type, *format;
    } cases[] = {{VMWARE_VE_TYPE, DISK_FORMAT_THIN, "VeType = VMWARE_VE_TYPE", " VM Disk Format= Thin Pro"},
                 {HYPERV_VE_TYPE, DISK_FORMAT_THICK, "VeType = HYPERV_VE_TYPE", " VM Disk Format= Thick Pro"},
                 {77, DISK_FORMAT_THICK_LAZY, "Invalid VE_TYPE", " VM Disk Format= Thick Lazy"},
                 {77, 77, "Invalid VE_TYPE", " Invalid VDisk Format "}};
    for (const auto& c : cases) {
        input.veType = c.veType;
        input.diskFormat = c.diskFormat;
        std::ostringstream printed;
        printed << input;
        EXPECT_EQ(printed.str(), head + "VM proxy Name = \n" + c.type + middle + c.format + '\n' + place + rest + disks);
    }
    std::ostringstream printed;
    printed << CZorb2vCommandLine();
    EXPECT_NE(printed.str().find("EsxServer Name= \n"), std::string::npos);
    EXPECT_NE(printed.str().find("Cluster Name= \n"), std::string::npos);
    EXPECT_TRUE(printed.str().ends_with("Profile Name = \nSystemOnly = false\nGui enabled job = false\n"));
}

} // namespace
} // namespace Zorvane
