// SPDX-License-Identifier: Apache-2.0
// Clients that can't be converted, one of each family.
#include "flow/Lab.h"

#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

namespace Zorvane {

TEST(Families, areRefused) {
    Lab lab;
    const std::string folder = std::string(ZOR_SOURCE_DIR) + "/share/samples/families/";
    const std::string load =
        ZOR_ZORLAB " load " + lab.path("lab") + " " + folder + "*.xml > " + lab.path("loaded");
    ASSERT_EQ(std::system(load.c_str()), 0) << load;
    lab.serve();
    lab.write("target", "name=new-vm\n");
    for (const char* name :
         {"copper11", "basalt12", "cedar13", "delta14", "ember15", "garnet16", "flint17"}) {
        const std::string client = std::string(name) + ".corp.example";
        std::vector<std::string> arguments{"-C",        client,
                                           "-vmserver", "vcenter01.lab.example",
                                           "-vmproxy",  "convhost01.lab.example",
                                           "-veconfig", lab.path("target")};
        const Ended ended = lab.zorb2v(arguments);
        EXPECT_EQ(ended.status, 1) << client;
        EXPECT_EQ(ended.out, "");
        EXPECT_EQ(ended.err, message("14 " + client + "|current"));
        EXPECT_EQ(lab.road(), "config tree") << client; // nothing further is asked

        // By its operating system each.
        arguments.insert(arguments.begin(), {"check", "--json"});
        const char* rule = std::strcmp(name, "garnet16") == 0 ? "client.windows" : "client.os";
        EXPECT_NE(lab.zorinfo(arguments).out.find(std::string("\"first\": \"") + rule), std::string::npos)
            << name;
        lab.road();
    }
}

} // namespace Zorvane
