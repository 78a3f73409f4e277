// SPDX-License-Identifier: Apache-2.0
#include "logging/getMessage.h"
#include "model/windows_records.h"
#include "resources/CB2VResource.h"
#include "storage/Rows.h"

namespace Zorvane {
namespace {

TEST(ClientEligibility, isRefusedForTheFirstRuleThatIsBroken) {
    const auto rule = [](const CZor& zor) {
        bool isSupported = false;
        const Lines log = logOf(1, [&] { isSupported = CB2VResource().isClientSupported(zor); });
        const std::string label = "debug 1 CB2VResource:CB2VResource::isClientSupported() ";
        const bool isTold = !log.empty() && log.back().starts_with(label);
        return isTold ? log.back().substr(label.size()) : isSupported ? "supported" : "refused";
    };
    const std::string windows = "System Os=NT OsLevel=6.1;";
    const std::string config = "Config Type=SAVED ZorVersion=7.6.0;";
    const std::string empty = "Either Client system or config table is empty";
    const std::string type = "Unsupported Config type";
    const std::string level = "Unsupported client's kvn version";
    const std::string os = "Unsupported OS Type for Backup to Virtual restores";
    check(rule, {
                    {windows, empty},
                    {config, empty},
                    {windows + config, "supported"},
                    {windows + "Config Type=PIT ZorVersion=10.1", "supported"},
                    {windows + "Config Type=B2V_COPIED ZorVersion=7.6", "supported"},
                    {windows + "Config Type=COPIED ZorVersion=8", type},
                    {windows + "Config Type=DISCOVERED ZorVersion=8;" + config, type},
                    {"System Os=LINUX; Config ZorVersion=1", type},
                    {"System Os=LINUX; Config Type=SAVED ZorVersion=7.5.9.9", level},
                    {windows + "Config Type=SAVED ZorVersion=7.6.0.0.1", level},
                    {windows + "Config Type=SAVED", level},
                    {"System Os=LINUX OsLevel=9.1;" + config + windows, os},
                    {"System OsLevel=9;" + config, os},
                    {"System Os=NT OsLevel=5.1;" + config, "refused"},
                    {"System Os=NT OsLevel=5.2;" + config, "supported"},
                    {"System Os=NT OsLevel=VER@10.0#RID@1809#;" + config, "supported"},
                    {"System Os=NT OsLevel=VER@5.1#RID@1809#;" + config, "refused"},
                    {"System Os=NT OsLevel=10.0.1;" + config, "refused"},
                });
}

const std::string VOLUME = "WindowsVolume Id=1 ";
const std::string ON_DISK_5 =
    "; WindowsPlex Id=1 WindowsVolumeId=1; WindowsRegion WindowsPlexId=1 WindowsDiskId=5;";
const std::string WINDOWS = "System Os=NT OsLevel=6.1;";

// The number of the message that refuses the client, 0 if none does.
int refusal(const CZor& zor, bool systemOnly = false) {
    const Scratch scratch;
    B2VInput input;
    input.clientConfig = zor;
    input.systemOnly = systemOnly;
    CB2VResource resource;
    const std::uint32_t rc = resource.preSubmitCheck(input);
    for (const int number : {35, 36, 39})
        if (resource.getError() == getMessage(ZOR_COMMAND_ORIGINATOR, static_cast<std::uint64_t>(number)))
            return rc == 1 ? number : -1;
    return rc == 0 && resource.getError().empty() ? 0 : -1;
}

TEST(ClientEligibility, preSubmitCheckRefusesDisksThatNoMachineHas) {
    const std::string newer = "System Os=NT OsLevel=VER@6.2#RID@1#;";
    const std::string bootDisk =
        VOLUME + "IsBoot=1" + ON_DISK_5 + "WindowsDisk Id=5 DeviceType=7 Restricted=1";
    check([](const CZor& zor) { return refusal(zor); },
          {
              {"", "0"},
              {"System Os=LINUX; WindowsDisk DeviceType=7", "0"},
              {WINDOWS + "WindowsDisk DeviceType=5 BusType=7; WindowsDisk DeviceType=8", "0"},
              {WINDOWS + "WindowsDisk DeviceType=7 Restricted=1; WindowsDisk DeviceType=6", "36"},
              {WINDOWS + bootDisk, "35"},
              {WINDOWS + VOLUME + "IsSystem=1" + ON_DISK_5 + "WindowsDisk Id=5 DeviceType=6", "35"},
              {WINDOWS + VOLUME + ON_DISK_5 + "WindowsDisk Id=5 DeviceType=7 Restricted=1", "0"},
              {WINDOWS + "WindowsVolume Id=2 IsBoot=1;" + bootDisk, "0"},    // the first boot volume counts
              {WINDOWS + "WindowsDisk Id=4 DeviceType=6;" + bootDisk, "36"}, // the disks' order decides
              {newer + "WindowsDisk BusType=7", "39"},
              {newer + "WindowsDisk BusType=7 Restricted=1; WindowsDisk BusType=8", "0"},
              {newer + "WindowsDisk DeviceType=7 BusType=7", "36"},
          });
    check([](const CZor& zor) { return refusal(zor, true); }, {{WINDOWS + "WindowsDisk DeviceType=6", "0"},
                                                               {WINDOWS + bootDisk, "35"},
                                                               {newer + "WindowsDisk BusType=7", "0"}});
}

// The boot volume lies on the disks 5, 4 and 6, in this order; their names decide which one counts.
TEST(ClientEligibility, theLowestNameIsTheDiskOfAVolume) {
    const auto bootDisk = [](const CZor& zor) {
        for (const ID id : {4U, 5U, 6U}) {
            CZor tried(zor);
            for (CWindowsDisk* disk : tried.m_vWindowsDisk)
                if (disk && disk->getId() == id)
                    disk->setDeviceType(7);
            if (refusal(tried) == 35)
                return id;
        }
        return ID{0};
    };
    const std::string layout = WINDOWS + VOLUME + "IsBoot=1" + ON_DISK_5 +
                               "WindowsRegion WindowsPlexId=1 WindowsDiskId=4;"
                               "WindowsRegion WindowsPlexId=1 WindowsDiskId=6;";
    check(bootDisk,
          {
              {layout + "WindowsDisk Id=4 Name=ab; WindowsDisk Id=5 Name=b; WindowsDisk Id=6 Name=a", "6"},
              {layout + "WindowsDisk Id=4 Name=a; WindowsDisk Id=5 Name=Z; WindowsDisk Id=6 Name=b", "5"},
              {layout + "WindowsDisk Id=4; WindowsDisk Id=5 Name=\xc3\xa4; WindowsDisk Id=6 Name=z", "6"},
              {layout + "WindowsDisk Id=4 Name=a; WindowsDisk Id=5; WindowsDisk Id=6 Name=b", "5"},
          });
}

} // namespace
} // namespace Zorvane
