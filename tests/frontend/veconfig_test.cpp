// SPDX-License-Identifier: Apache-2.0
#include "frontend/given.h"
#include "frontend/veconfig.h"
#include "resources/CommandLog.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace Zorvane {
namespace {

TEST(VeConfig, lines) {
    const struct {
        std::string text;
        int rc;
        std::string input;
    } cases[] = {
        {"", 0, ""},
        {"datastore=d\nfolder=/f\nresourcepool=r\ndatacenter=c\ncluster=cl\nesxhost=e\nname=n\nnetwork=w\n"
         "toolsIsoPath=[d] t.iso\ndiskformat=ThickVdisk\n",
         0, "tools=[d] t.iso name=n format=1 folder=/f dc=c cluster=cl esx=e network=w pool=r store=d"},
        {"name=n\r\nesxhost=e\r\r\n\r\n\n\nnetwork=w", 0, "name=n esx=e network=w"},
        {"name=a\nname=b\n", 0, "name=b"},
        {"Name=n\n# esxhost=e\nNAME=n\n name=n\nname =n\nesxhost\n", 0, ""},
        {"datastore=\n=x\n=\nfolder=f\n", 0, "folder=f"},
        {"=name=x\n", 0, "name=x"},
        {"name=a=b\nfolder==f\n", 0, "name=a folder=f"},
        {"name= My VM \n", 0, "name= My VM "},
        // Quotes.
        {"name=\"My VM\"\n", 0, "name=My VM"},
        {"name=\"\"a\"b\"\"\n", 0, "name=a\"b"},
        {"name=My \"VM\"\n", 0, "name=My \"VM\""},
        {"name=\"\"\nfolder=\"f\n", 0, "folder=f"},
        {"diskformat=\"ThickLazy\"\n", 0, "format=3"},
        {"diskformat=ThickVdisk\ndiskformat=ThinVdisk\n", 0, ""},
        {"diskformat=thinvdisk\n", 0, "format=0"},
        // Hard disks.
        {"harddisk=0:a\nharddisk=1:b\nharddisk=0:c\n", 0, "store=a Harddisk0=a Harddisk1=b Harddisk0=c"},
        {"harddisk=0:a\ndatastore=d\n", 0, "store=d Harddisk0=a"},
        {"harddisk=0:a:b:\"c\"\n", 0, "store=ab\"c Harddisk0=ab\"c"},
        {"harddisk=0:\"my store\"\n", 0, "store=my store Harddisk0=my store"},
        {"harddisk=\"0:a\"\n", 0, "store=a Harddisk0=a"},
        {"harddisk=:0:a\n", 0, "store=a Harddisk0=a"},
        {"esxhost=e\nharddisk=1\nname=n\n", 1, "esx=e"},
        {"harddisk=1:\nname=n\n", 1, ""},
        {"harddisk=\"\"\nname=n\n", 1, ""},
        {"harddisk=\nname=n\n", 0, "name=n"},
        // Text that is none of this locale, and bytes that are no text.
        {"name=B\xc3\xbcro\nfolder=\"B\xfcro\"\nnetwork=\x80\xff\x01\n", 0,
         "name=B\xc3\xbcro folder=B\xfcro network=\x80\xff\x01"},
    };
    CommandLog log;
    for (const auto& [text, rc, expected] : cases) {
        log.scratch().write("F", text);
        B2VInput input;
        EXPECT_EQ(parseVEconfig(log.scratch().path("F"), input), rc) << text;
        EXPECT_EQ(given(input), expected) << text;
        EXPECT_EQ(log.takeMessages(), "") << "lines are a matter for the log: " << text;
    }
}

TEST(VeConfig, linesThatAreNotTakenAreLogged) {
    CommandLog log;
    log.scratch().write("F", "esxhost\nunknown=x\nharddisk=1\n");
    B2VInput input;
    EXPECT_EQ(parseVEconfig(log.scratch().path("F"), input), 1);
    EXPECT_EQ(log.take("debug 1 veconfig:parseVEconfig() "),
              "Invalid line found in VEconfiguration file. line=esxhost\nInvalid Datastore Map entry1");
}

TEST(VeConfig, aFileThatCannotBeReadIsNamed) {
    CommandLog log;
    std::filesystem::create_symlink("loop", log.scratch().path("loop"));
    sockaddr_un address{AF_UNIX, {}};
    log.scratch().path("sock").copy(address.sun_path, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    for (const std::string& path :
         {log.scratch().path("missing"), log.scratch().path(""), log.scratch().path("loop"),
          log.scratch().path("sock"), std::string(300, 'x'), std::string(), std::string("/dev/zero"),
          std::string("/proc/self/mem")}) {
        B2VInput input;
        EXPECT_EQ(parseVEconfig(path, input), 1) << path;
        EXPECT_TRUE(log.takeMessages().starts_with("31] The configuration file \"" + path + "\"")) << path;
    }
    close(socket);
}

} // namespace
} // namespace Zorvane
