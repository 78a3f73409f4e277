// SPDX-License-Identifier: Apache-2.0
#include "model/solaris_records.h"
#include "model/volume_manager_records.h"
#include "storage/Rows.h"
#include "storage/solarisSlices.h"

namespace Zorvane {
namespace {

TEST(SolarisSlices, inUse) {
    const std::string slice = "SolarisSlice Id=1 SolarisPlexId=2; SolarisPlex Id=2 SolarisVolumeId=3;";
    check([](const CZor& zor) { return IsSliceInUse(zor, *zor.m_vSolarisSlice.front()); },
          {{slice + "SolarisVolume Id=3; SolarisMountPoint SolarisVolumeId=3", "1"},
           {slice + "SolarisVolume Id=3; SolarisSwap SolarisVolumeId=3", "1"},
           {slice + "SolarisSwap SolarisVolumeId=3", "0"}, // no volume
           {slice + "SolarisVolume Id=3; SolarisSwap SolarisVolumeId=2; SolarisMountPoint", "0"},
           {slice + "ZfsStoragePoolDeviceToSolarisSlice SolarisSliceId=1", "1"}});
}

/// The slices that the first pass marks, which must be those that the second one returns.
std::string encapsulated(CZor& zor) {
    const CQuvmVolume& volume = *zor.m_vQuvmVolume.front();
    for (const bool marked : {true, false})
        EXPECT_TRUE(FindEncapsulatedQuVMVolumeSlice(zor, volume, marked).empty());
    const auto found = FindEncapsulatedQuVMVolumeSlice(zor, volume, true);
    EXPECT_EQ(FindAllBy(zor.m_vSolarisSlice, &CSolarisSlice::getEncapsulated, true).size(), found.size());
    return asText(found);
}

TEST(SolarisSlices, encapsulatedByAVolume) {
    const std::string slices = "; QuvmPlex Id=1 QuvmVolumeId=9 | Id=2 QuvmVolumeId=9; QuvmDisk Id=3;"
                               "QuvmSolarisDiskAccess QuvmDiskId=3 SolarisDiskId=4; SolarisDisk Id=4;"
                               "SolarisSlice SolarisDiskId=4 Name=root Offset=0 Length=500"
                               " | SolarisDiskId=4 Name=public Offset=1000 Length=9000 Tag=14"
                               " | SolarisDiskId=4 Name=home Offset=1500 Length=300"
                               " | SolarisDiskId=4 Name=var Offset=1800 Length=100; QuvmSubDisk";
    const std::string one = "QuvmVolume Id=9 Copies=1" + slices, two = "QuvmVolume Id=9 Copies=2" + slices;
    const std::string root = " | QuvmPlexId=2 QuvmDiskId=3 DevOffset=16 Length=484";
    const std::string block = " | QuvmPlexId=2 QuvmDiskId=3 Name=xBlock0 Length=16";
    const std::string home = " | QuvmPlexId=1 QuvmDiskId=3 DevOffset=500 Length=300";
    const std::string home2 = " | QuvmPlexId=2 QuvmDiskId=3 DevOffset=500 Length=300";
    const std::string var = " | QuvmPlexId=1 QuvmDiskId=3 DevOffset=800 Length=100";
    const std::string half = " | QuvmPlexId=2 QuvmDiskId=3 Name=Block0 DevOffset=250 Length=250";
    const std::string diskless = " | QuvmPlexId=1 Length=300", lost = " | QuvmPlexId=1 QuvmDiskId=77";
    const std::string block1 = " | QuvmPlexId=1 QuvmDiskId=3 Name=Block0";
    check(encapsulated, {{one + home, "home"}, // behind the public offset
                         {one + root, ""},
                         {one + root + block, "root"}, // behind the block
                         {two + home + root + block, "home root"},
                         {two + block1 + home + home2, "home"}, // a block of no length
                         {two + block1 + home2 + root, ""},     // their plex begins behind the block
                         {two + home + root, "home"},
                         {one + home + half, "home"}, // the block is no data
                         {one + home + var, ""},      // too few copies
                         {two + home + var, "home var"},
                         {"QuvmVolume Id=9 Copies=2 Columns=2" + slices + home + var, ""},
                         {two + diskless + home, "home"},
                         {two + home + lost, "home"},
                         {two + lost + home, ""}, // the search ends there
                         {one + " | QuvmPlexId=1 QuvmDiskId=3 DevOffset=9223372036854775807", ""},
                         {one + root + " | QuvmPlexId=2 Name=Block0 Length=-9223372036854775808", ""}});
}

} // namespace
} // namespace Zorvane
