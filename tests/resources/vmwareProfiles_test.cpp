// SPDX-License-Identifier: Apache-2.0
#include "logging/getMessage.h"
#include "resources/AnsweringZord.h"
#include "resources/CVmwareB2VResource.h"
#include "resources/documents.h"

#include <ctime>

#include <gmock/gmock.h>

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace Zorvane {
namespace {

// A condition on the table of profiles, for which "#" stands.
std::string onProfiles(std::string condition) {
    const std::string table = "ZorDba.ZOR_VmwareProfileOptions";
    for (std::size_t at; (at = condition.find('#')) != std::string::npos;)
        condition.replace(at, 1, table + ".");
    return "query " + table + " " + condition;
}

TEST(VmwareProfiles, anEqualOneIsAskedForByAllSettingsThatAreGiven) {
    AnsweringZord zord([](const std::string&) { return Reply{0, documentOf("")}; });
    B2VInput full;
    full.vmProxy = "px";
    full.vmServer = "vc";
    full.esxHost = "esx";
    full.toolsIsoPath = "[d] t.iso";
    full.vmNetwork = "net";
    full.dataStore = "d'1";
    full.dataStoreSize = 77;
    full.dataCenter = "/DC";
    full.cluster = "cl";
    full.resourcePool = "/DC/p";
    full.vmFolder = "/DC/vm";
    EXPECT_EQ(CVmwareB2VResource().insertVeProfile(full), 0U);
    const std::time_t seconds = std::stol(full.profileName.substr(full.profileName.find('_') + 1));
    EXPECT_EQ(full.profileName, "B2VProfile_" + std::to_string(seconds));
    EXPECT_LT(std::abs(std::time(nullptr) - seconds), 60);

    B2VInput bare; // a stand-alone host; the given name is looked up, and the profile gets another
    bare.vmProxy = "px";
    bare.vmServer = bare.esxHost = "esx";
    bare.stripNetwork = bare.overwriteVm = bare.powerOn = true;
    bare.vmNetwork = "net";
    bare.dataStoreSize = 77;
    bare.diskFormat = 0;
    bare.profileName = "mine";
    EXPECT_EQ(CVmwareB2VResource().insertVeProfile(bare), 0U);
    EXPECT_THAT(
        zord.asked(),
        ElementsAre(
            onProfiles("lower(#VICName) = lower('px') AND lower(#EsxServer) = lower('esx') AND "
                       "(#StripeNwInterfaces = 0) AND (#VdiskFormat = 2) AND (#OverwriteVM = 0) AND "
                       "(#BootInstance = 0)AND lower(#VCenterServer) = lower('vc')"
                       "AND lower(#DataCenter) = lower('/DC')AND lower(#ESXCluster) = lower('cl')"
                       "AND lower(#DataStore) = lower('d''1')AND lower(#ResourcePool) = lower('/DC/p')"
                       "AND lower(#Folder) = lower('/DC/vm')AND lower(#Network) = lower('net')"
                       "AND lower(#ToolPath) = lower('[d] t.iso')"),
            AllOf(StartsWith("insert"), HasSubstr("<Id fromDb=\"0\">1</Id>"), HasSubstr(full.profileName),
                  HasSubstr("<AvailableSize>77<"), HasSubstr("<HiddenProfile>0<")),
            onProfiles("lower(#ProfileName) = lower('mine')"),
            onProfiles("lower(#VICName) = lower('px') AND lower(#EsxServer) = lower('esx') AND "
                       "(#StripeNwInterfaces = 1) AND (#VdiskFormat = 0) AND (#OverwriteVM = 1) AND "
                       "(#BootInstance = 1)"),
            AllOf(HasSubstr("<VCenterServer>esx<"), HasSubstr("<Network><"), HasSubstr("<AvailableSize>0<"),
                  HasSubstr("<VdiskFormat>EMPTY<"))));
}

TEST(VmwareProfiles, anEqualOneIsReusedAndATakenNameRefused) {
    const std::string named = "VmwareProfileOptions ProfileName=P",
                      equal = "VmwareProfileOptions ProfileName=old Id=9";
    const struct {
        std::string given; ///< the name
        bool guiJob;
        int byName, bySettings, insert; ///< the daemon's statuses
        std::string named, equal;       ///< the rows that it finds
        std::uint32_t result;
        int message;
        std::string nameAfter;
    } cases[] = {
        {"p", false, 0, 0, 0, "", equal, 0, 0, "old"}, {"", false, 0, 0, 7, "", equal, 0, 0, "old"},
        {"p", true, 0, 0, 0, "", equal, 19, 19, "p"},  {"p", true, 0, 0, 0, "", "", 0, 0, "p"},
        {"p", true, 0, 0, 0, named, "", 18, 18, "p"},  {"p", false, 0, 0, 0, named, equal, 18, 18, "p"},
        {"p", false, 9, 0, 0, "", "", 3, 15, "p"},     {"p", false, 0, 9, 0, "", "", 3, 0, "p"},
        {"p", false, 0, 0, 9, "", "", 3, 0, "p"},
    };
    for (const auto& c : cases) {
        AnsweringZord zord([&](const std::string& asked) -> Reply {
            if (asked.starts_with("insert"))
                return {c.insert, documentOf("")};
            const bool byName = asked.find("ProfileName") != std::string::npos;
            return {byName ? c.byName : c.bySettings, documentOf(byName ? c.named : c.equal)};
        });
        B2VInput input;
        input.profileName = c.given;
        input.guiJob = c.guiJob;
        CVmwareB2VResource resource;
        EXPECT_EQ(resource.insertVeProfile(input), c.result);
        EXPECT_EQ(input.profileName, c.nameAfter);
        const std::string arguments[] = {"old"};
        EXPECT_EQ(resource.getError(),
                  c.message == 0 ? "" : getMessage(ZOR_COMMAND_ORIGINATOR, c.message, arguments));
    }
}

} // namespace
} // namespace Zorvane
