// SPDX-License-Identifier: Apache-2.0
#include "RowOrder.h"
#include "StoreFixture.h"
#include "lab/capture.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace Zorvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* BLOCK_DEVICES = R"json({"blockdevices": [
  {"name":"sda","kname":"sda","path":"/dev/sda","maj:min":"8:0","type":"disk","size":107374182400,"ro":false,
   "log-sec":512,"pttype":"gpt","hctl":"0:1:2:3","tran":"sas","children":[
    {"name":"sda1","kname":"sda1","path":"/dev/sda1","maj:min":"8:1","type":"part","size":536870912,
     "parttype":"c12a7328-f81f-11d2-ba4b-00a0c93ec93b","fstype":"vfat","uuid":"AB12-CD34"},
    {"name":"sda2","kname":"sda2","path":"/dev/sda2","maj:min":"8:2","type":"part","size":53687091200,
     "parttype":"a19d880f-05fc-4d3b-a006-743f0f84911e","fstype":"linux_raid_member","uuid":"4f1c-md","children":[
      {"name":"md0","kname":"md0","path":"/dev/md0","maj:min":"9:0","type":"raid1","size":53653536768,"ro":"0",
       "fstype":"ext4","label":"root","uuid":"1111-root","children":[
        {"name":"md0p1","kname":"md0p1","path":"/dev/md0p1","type":"part","size":1048576,"parttype":"0x83",
         "fstype":"ext3","uuid":"5555-part"}]}]},
    {"name":"sda3","kname":"sda3","path":"/dev/sda3","maj:min":"8:3","type":"part","size":42949672960,
     "parttype":"e6d6d379-f507-44c2-a23c-238f2a3df928","fstype":"LVM2_member","children":[
      {"name":"quay--vg-data--1","kname":"dm-0","path":"/dev/mapper/quay--vg-data--1","maj:min":"253:0","type":"lvm",
       "size":"21474836480","ra":128,"fstype":"btrfs","uuid":"2222-data"},
      {"name":"quay--vg-swap","kname":"dm-1","path":"/dev/mapper/quay--vg-swap","maj:min":"253:1","type":"lvm",
       "size":4294967296,"fstype":"swap","uuid":"3333-swap"},
      {"name":"quay--vg-wide","kname":"dm-2","path":"/dev/mapper/quay--vg-wide","maj:min":"253:2","type":"lvm",
       "size":8589934592,"fstype":"zonefs"}]}]},
  {"name":"sdb","kname":"sdb","path":"/dev/sdb","maj:min":"8:16","type":"disk","size":64424509440,"ro":"1",
   "log-sec":"512","pttype":"dos","children":[
    {"name":"sdb1","kname":"sdb1","path":"/dev/sdb1","maj:min":"8:17","type":"part","size":53687091200,
     "parttype":"0xfd","partflags":"0x80","fstype":"linux_raid_member","uuid":"4f1c-md","children":[
      {"name":"md0","kname":"md0","type":"raid1","size":53653536768}]},
    {"name":"sdb5","kname":"sdb5","path":"/dev/sdb5","maj:min":"8:21","type":"part","size":1073741824,
     "parttype":"0x8e","fstype":"LVM2_member","children":[{"name":"quay--vg-wide","kname":"dm-2","type":"lvm"}]},
    {"name":"sdb6","kname":"sdb6","path":"/dev/sdb6","maj:min":"8:22","type":"part","size":1073741824}]},
  {"name":"sdc","kname":"sdc","path":"/dev/sdc","maj:min":"8:32","type":"disk","size":1073741824,"log-sec":512,
   "fstype":"xfs","uuid":"4444-whole"},
  {"name":"sr0","kname":"sr0","path":"/dev/sr0","maj:min":"11:0","type":"rom","size":1073741312},
  {"name":"zram0","kname":"zram0","path":"/dev/zram0","maj:min":"253:9","type":"disk","size":1073741824}]})json";

constexpr const char* ADDRESSES = R"json([
  {"ifname":"lo","link_type":"loopback","addr_info":[{"family":"inet","local":"127.0.0.1","prefixlen":8}]},
  {"ifname":"eth0","link_type":"ether","operstate":"UP","address":"02:00:00:00:00:01","addr_info":[
    {"family":"inet","local":"10.20.90.7","prefixlen":24,"scope":"global","dynamic":true},
    {"family":"inet","local":"10.20.90.8","prefixlen":32,"scope":"global"},
    {"family":"inet6","local":"fd00::7","prefixlen":64,"scope":"global"}]},
  {"ifname":"eth1","link_type":"ether","operstate":"DOWN","address":"02:00:00:00:00:02","addr_info":[]},
  {"ifname":"veth3","link_type":"ether","operstate":"UP","addr_info":[]}])json";

constexpr const char* ROUTES = R"json([
  {"dst":"default","gateway":"10.20.90.1","dev":"eth0","metric":100},
  {"dst":"10.30.0.0/16","gateway":"10.20.90.254","dev":"eth0"},
  {"dst":"10.40.0.9","gateway":"10.20.90.254","dev":"eth1"},
  {"dst":"10.20.90.0/24","dev":"eth0","scope":"link"},
  {"dst":"10.99.0.0/16","gateway":"10.98.0.1","dev":"veth3"}])json";

constexpr struct {
    const char* name;
    const char* text;
} files[] = {
    {"proc/sys/kernel/hostname", "quay21.corp.example\n"},
    {"proc/sys/kernel/osrelease", "6.1.0-17\n"},
    {"proc/sys/kernel/arch", "x86_64\n"},
    {"proc/cpuinfo", "processor\t: 0\nmodel\t: x\n\nprocessor\t: 1\nmodel\t: x\n"},
    {"proc/meminfo", "MemFree:  12 kB\nMemTotal:       16384 kB\n"},
    {"proc/self/mountinfo",
     "21 1 0:20 / /proc rw - proc proc rw\n22 1 9:0 / / rw shared:1 - ext4 /dev/md0 rw\n"
     "23 22 8:1 / /boot/efi rw - vfat /dev/sda1 rw\n"
     "24 22 8:32 / /whole\\040disk rw,noatime - xfs /dev/sdc ro,noquota\n"
     "25 22 7:7 / /snap ro - squashfs /dev/loop7 ro\n26 22 9:0 /srv /export rw shared:1 - ext4 /dev/md0 rw\n"
     "27 22 0:40 /@home /home rw - btrfs /dev/mapper/quay--vg-data--1 rw,subvolid=258,subvol=/@home\n"
     "28 22 0:40 /@home/ann /ann rw - btrfs /dev/mapper/quay--vg-data--1 rw,subvolid=258,subvol=/@home\n"
     "29 22 0:40 /@ /all rw - btrfs /dev/mapper/quay--vg-data--1 rw,subvolid=256,subvol=/@\n"},
    {"etc/os-release", "NAME=x\nID=\"quay\x1bos\"\nVERSION_ID='12.4'\n"},
    {"etc/default/locale", "LANG=en_GB.UTF-8\n"},
    {"etc/resolv.conf", "search corp.example lab.example\nnameserver 10.20.0.2\nnameserver fe80::1\n"},
    {"etc/fstab",
     "# made by hand\nUUID=1111-root / ext4 errors=remount-ro 0 1\n/dev/sda1 /boot/efi vfat umask=0077 0 2\n"
     "/dev/quay-vg/data-1 /data btrfs subvol=/@data,subvolid=257 0 0\n"
     "/dev/mapper/quay--vg-data--1 /all btrfs defaults\nUUID=3333-swap none swap sw 0 0\n"
     "filer:/export /net nfs rw 0 0\n/data/pub /pub none rw,bind 0 0\n"},
    {"etc/lvm/backup/quay-vg", "quay-vg {\n\textent_size = 8192\n\tmax_lv = 64\n\tmax_pv = 8\n\tpv0 "
                               "{\n\t\tpe_count = 10239\n\t}\n\tpv1 {\n\t\tpe_count "
                               "= 255\n\t}\n}\n"},
    {"sys/firmware/efi/fw_platform_size", "64\n"},
    {"sys/class/tty/console/active", "tty0\n"},
    {"sys/class/net/eth0/device/uevent", "DRIVER=quaynet\nPCI_SLOT_NAME=0000:04:00.0\n"},
    {"sys/class/net/eth1/device/uevent", ""},
    {"sys/class/scsi_host/host0/proc_name", "ahci\n"},
    {"sys/class/scsi_host/host1/proc_name", "ahci\n"},
    {"sys/class/scsi_host/host2/proc_name", "mpt3sas\n"},
    {"sys/class/block/sda1/start", "2048\n"},
    {"sys/class/block/sda1/partition", "1\n"},
    {"sys/class/block/sda2/start", "1050624\n"},
    {"sys/class/block/sda2/partition", "2\n"},
    {"sys/class/block/sda3/start", "105908224\n"},
    {"sys/class/block/sda3/partition", "3\n"},
    {"sys/class/block/sdb1/start", "2048\n"},
    {"sys/class/block/sdb1/partition", "1\n"},
    {"sys/class/block/sdb5/start", "104861696\n"},
    {"sys/class/block/sdb5/partition", "5\n"},
    {"sys/class/block/md0/md/raid_disks", "2\n"},
    {"sys/class/block/md0/md/metadata_version", "1.2\n"},
    {"sys/class/block/md0/md/dev-sda2/state", "in_sync\n"},
    {"sys/class/block/md0/md/dev-sdb1/state", "faulty\n"},
    {"sys/class/block/dm-0/dm/name", "quay--vg-data--1\n"},
    {"sys/class/block/dm-0/dm/uuid",
     "LVM-q7Xb1c3kPzVw9e0aRtLmN2xY4uZs8dHkabcdefghijklmnopqrstuvwxyz012345\n"},
    {"boot/grub/grub.cfg", "set default=0\n"},
};

class CaptureTest : public StoreTest {
  protected:
    CaptureTest() {
        for (const auto& [name, text] : files) {
            fs::create_directories((root() / name).parent_path());
            std::ofstream(root() / name) << text;
        }
        fs::create_directories(root() / "dev/disk/by-path");
        fs::create_symlink("../../sda", root() / "dev/disk/by-path/pci-0000:03:00.0-sas-phy0-lun-0");
    }
    [[nodiscard]] fs::path root() const { return m_scratch.file("root"); }
    [[nodiscard]] MachineSources machine() const {
        return {root(), BLOCK_DEVICES, ADDRESSES, ROUTES, 1795384800};
    }
    /// Fields of all rows of a table: "value value / value value".
    static std::string values(CZor& rows, std::string_view table, const std::vector<std::string>& names) {
        std::string text;
        forEachRow(rows, [&](const TableDescriptor& of, const BaseTable& row) {
            if (of.name != table)
                return;
            text += text.empty() ? "" : " / ";
            std::ostringstream dump;
            RecordCodec::dump(of, row, dump);
            for (const std::string& name : names) {
                const std::string label = "    " + name + " = ";
                const std::size_t at = ("\n" + dump.str()).find("\n" + label) + label.size();
                text += (&name == names.data() ? "" : " ") +
                        dump.str().substr(at, dump.str().find('\n', at) - at);
            }
        });
        return text;
    }

    CZor m_rows;
};

} // namespace

TEST_F(CaptureTest, DescribesTheMachine) {
    captureMachine(machine(), m_rows);
    const struct {
        const char* table;
        std::vector<std::string> fields;
        const char* expected;
    } cases[] = {
        {"Config", {"ClientName", "Type", "CreateTime"}, "quay21.corp.example DISCOVERED 1795384800"},
        {"System",
         {"Hostname", "Os", "OsLevel", "OsQualifier", "KernelVersion", "Architecture", "Console", "Language",
          "Firmware", "NumberOfCPUs", "TotalPhysicalMemorySize"},
         "quay21 LINUX 12.4 quay_os 6.1.0-17 x86_64 tty0 en_GB.UTF-8 UEFI 2 16777216"},
        {"Network", {"DefaultGateway", "DomainName"}, "10.20.90.1 corp.example"},
        {"NetworkInterface",
         {"Name", "Description", "DhcpEnabled", "Boot", "Location", "ConnectionStatus"},
         "eth0 quaynet 1 1 0000:04:00.0 CONNECTED / eth1  0 0  DISCONNECTED"},
        {"NetworkIdentity",
         {"IPAddress", "Netmask", "Instance", "NetworkInterfaceId"},
         "10.20.90.7 255.255.255.0 0 1 / 10.20.90.8 255.255.255.255 1 1"},
        {"Gateway",
         {"IpAddress", "DestNetwork", "DestNetmask", "Metric", "NetworkInterfaceId"},
         "10.20.90.1 0.0.0.0 0.0.0.0 100 1 / 10.20.90.254 10.30.0.0 255.255.0.0  1 / 10.20.90.254 10.40.0.9 "
         "255.255.255.255  2"},
        {"HostList",
         {"Name", "IPAddress", "Role", "DNSSearchOrder"},
         "quay21.corp.example 10.20.90.7 CLIENT 0 / 10.20.0.2 10.20.0.2 DNS_SERVER 1"},
        {"DomainSearchList", {"SearchOrder", "Suffix"}, "1 corp.example / 2 lab.example"},
        {"LinuxDisk",
         {"Name", "DiskType", "Label", "ScsiHost", "ScsiChannel", "ScsiId", "ScsiLun", "Cylinders",
          "Location", "ReadOnly", "LabelType"},
         "/dev/sda SCSI gpt 0 1 2 3 13054 pci-0000:03:00.0-sas-phy0-lun-0 0 EFI / /dev/sdb EMPTY dos     "
         "7832  1 "
         "SMI / /dev/sdc EMPTY      130  0 EMPTY"},
        {"LinuxPartition",
         {"Name", "Number", "StartP", "EndP", "Major", "Minor", "Type", "Flags", "PartitionIdentifier",
          "LinuxDiskId"},
         "/dev/sda1 1 1048576 537919487 8 1 PRIMARY boot,esp 0 1 / /dev/sda2 2 537919488 54225010687 8 2 "
         "PRIMARY "
         "raid 0 1 / /dev/sda3 3 54225010688 97174683647 8 3 PRIMARY lvm 0 1 / /dev/sdb1 1 1048576 "
         "53688139775 8 17 "
         "PRIMARY boot,raid 253 2 / /dev/sdb5 5 53689188352 54762930175 8 21 LOGICAL lvm 142 2"},
        {"LinuxMultiDevice",
         {"Name", "Level", "NumberOfDevices", "Uuid", "Major", "Writeable", "HasDeviceSuperBlock"},
         "/dev/md0 RAID1 2 4f1c-md 9 1 1"},
        {"LinuxPartitionToMultiDevice",
         {"Active", "Faulty", "LinuxPartitionId", "LinuxMultiDeviceId"},
         "1 0 2 1 / 0 1 4 1"},
        {"LinuxVolumeGroup",
         {"Name", "Uuid", "Length", "PhysicalExtentSize", "AllocatedPhysicalExtents",
          "AvailablePhysicalExtents", "AutoBackup", "MaxPhysicalVolumes", "MaxLogicalVolumes"},
         "quay-vg q7Xb1c-3kPz-Vw9e-0aRt-LmN2-xY4u-Zs8dHk 44015026176 4096 8192 2302 1 8 64"},
        {"LinuxLogicalVolume",
         {"Name", "Number", "CurrentLogicalExtents", "Minor", "ReadAhead", "Swap", "Layout", "Columns",
          "Copies"},
         "/dev/quay-vg/data-1 0 5120 0 256 0 CONCATENATED 1 1 / /dev/quay-vg/swap 1 1024 1 0 1 CONCATENATED "
         "1 1 / "
         "/dev/quay-vg/wide 2 2048 2 0 0 EMPTY 0 0"},
        {"LinuxPhysicalVolume", {"Name", "LinuxVolumeGroupId"}, "/dev/sda3 1 / /dev/sdb5 1"},
        {"LinuxPartitionToPhysicalVolume", {"LinuxPartitionId", "LinuxPhysicalVolumeId"}, "3 1 / 5 2"},
        {"LinuxLogicalExtent",
         {"Length", "LinuxPhysicalVolumeId", "LinuxLogicalVolumeId"},
         "21474836480 1 1 / 4294967296 1 2"},
        {"LinuxFileSystem",
         {"Type", "Label", "Uuid"},
         "VFAT  AB12-CD34 / EXT4 root 1111-root / EXT3  5555-part / BTRFS  2222-data / SWAP  3333-swap / "
         "XFS  4444-whole"},
        {"LinuxFileSystemToPartition", {"LinuxPartitionId", "LinuxFileSystemId"}, "1 1"},
        {"LinuxFileSystemToMultiDevice", {"LinuxMultiDeviceId", "LinuxFileSystemId"}, "1 2"},
        {"LinuxFileSystemToLogicalVolume", {"LinuxLogicalVolumeId", "LinuxFileSystemId"}, "1 4 / 2 5"},
        {"LinuxMountPoint",
         {"Name", "MountOptions", "FsFreq", "FsPassNumber", "LinuxFileSystemId"},
         "/ errors=remount-ro 0 1 2 / /boot/efi umask=0077 0 2 1 / swap sw 0 0 5 / "
         "/whole disk ro,noatime,noquota 0 0 6"},
        {"Subvolume",
         {"SubvolumeNum", "SubvolumePath", "LinuxFileSystemId"},
         "257 /@data 4 / 256 /@ 4 / 258 /@home 4"},
        {"SubvolumeMountPoint", {"Name", "SubvolumeId"}, "/data 1 / /all 2 / /home 3"},
        {"LinuxScsiDriver", {"LoadOrder", "DriverName"}, "1 ahci / 2 mpt3sas"},
        {"LinuxBootLoader", {"Type"}, "EFIGRUBX64"},
        {"LinuxBootLoaderToPartition", {"LinuxPartitionId", "LinuxBootLoaderId"}, "1 1"},
        {"LinuxBootLoaderToDisk", {"LinuxDiskId", "LinuxBootLoaderId"}, "1 1"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(values(m_rows, row.table, row.fields), row.expected) << row.table;
}

TEST_F(CaptureTest, TellsWhatItLeavesOut) {
    const std::vector<std::string> leftOut = captureMachine(machine(), m_rows);
    const char* const expected[] = {
        "eth0: address fd00::7",
        "veth3: an interface",
        "name server fe80::1",
        "/dev/sr0: a device of type rom",
        "/dev/sdb6: a partition",
        "/dev/mapper/quay--vg-wide: how",
        "of type zonefs",
        "/dev/sdc: that its file system",
        "/net: mounted from",
        "/snap: mounted from",
        "/dev/zram0: a device",
        "/dev/sda1: the free space and the inodes",
        "-data--1: the free space and the inodes",
        "/dev/sdc: the free space and the inodes",
        "/dev/md0p1: a part of",
        "/dev/md0p1: that its file system",
        "/dev/md0p1: the free space and the inodes",
        "/export: a part",
        "/ann: a part",
        "/pub: a part",
        "System OsQualifier: control characters",
    };
    for (const char* thing : expected)
        EXPECT_TRUE(std::ranges::any_of(leftOut, [&](const std::string& line) {
            return line.find(thing) != std::string::npos;
        })) << thing;
    EXPECT_EQ(leftOut.size(), std::size(expected)) << testing::PrintToString(leftOut);
    EXPECT_GT(m_rows.m_vLinuxFileSystem[1]->getAvailableSpace(), 0) << "of the file system that is mounted";
}

TEST_F(CaptureTest, TellsWhatItCanNotRead) {
    const struct {
        const char *gone, *line;
    } cases[] = {
        {"etc/os-release", "the system's level"},
        {"etc/os-release", "the system's kind"},
        {"proc/sys/kernel/osrelease", "the kernel's version"},
        {"sys/class/tty", "the console"},
        {"etc/default", "the language"},
        {"proc/cpuinfo", "the number of processors"},
        {"proc/meminfo", "the memory's size"},
        {"sys/firmware", "the firmware"},
        {"etc/resolv.conf", "the name servers"},
        {"etc/fstab", "what is mounted when"},
        {"proc/self/mountinfo", "what is mounted now"},
        {"etc/lvm/backup", "volume group quay-vg: its extents"},
        {"sys/class/block/dm-0/dm/uuid", "volume group quay-vg: its identifier"},
        {"sys/class/block/md0/md", "/dev/md0: how it is made"},
        {"\"uuid\"", "/dev/md0: its identifier"},
        {"\"uuid\"", "/dev/sdc: its file system's identifier"},
        {"\"pttype\"", "/dev/sda: its partition table"},
        {"\"parttype\"", "/dev/sda1: its type"},
        {"routes", "the routes"},
    };
    for (const auto& [gone, line] : cases) {
        MachineSources source = machine();
        const std::string name = gone;
        const auto tells = [&] {
            CZor rows;
            const auto leftOut = captureMachine(source, rows);
            return std::ranges::any_of(leftOut, [&](const auto& thing) { return thing.starts_with(line); });
        };
        EXPECT_FALSE(tells()) << line;
        const bool isFile = fs::exists(root() / name);
        if (isFile)
            fs::rename(root() / name, root() / "away");
        else if (name == "routes")
            source.routes.clear();
        for (std::size_t at = 0; (at = source.blockDevices.find(name, at)) != std::string::npos;)
            source.blockDevices.replace(at, name.size(), "\"x\"");
        EXPECT_TRUE(tells()) << line;
        if (isFile)
            fs::rename(root() / "away", root() / name);
    }
}

TEST_F(CaptureTest, ComesBackFromTheDatabaseAsItWas) {
    for (const MachineSources& source : {machine(), askThisMachine()}) {
        CZor rows, exported;
        captureMachine(source, rows);
        const std::string client = rows.m_vConfig.front()->getClientName();
        const std::string expected = documentByOrder(rows);
        ASSERT_TRUE(m_store->load(rows).ok()) << client;
        ASSERT_TRUE(m_store->exportTree(client, "current", exported).ok()) << client;
        EXPECT_EQ(documentByOrder(exported), expected) << client;
    }
}

// Whatever the commands print, a capture comes to its end with rows whose references lead somewhere.
TEST_F(CaptureTest, BearsOddOutput) {
    constexpr int depth = 5000;
    std::string deep = "{\"blockdevices\":", end;
    for (int i = 0; i < depth; ++i) {
        deep += "[{\"kname\":\"d" + std::to_string(i % 50) + "\",\"type\":\"lvm\",\"children\":";
        end += "}]";
    }
    deep += "[]" + end + "}";
    const std::string outputs[] = {
        "",
        "no JSON",
        "[]",
        "7",
        "{\"blockdevices\":{}}",
        "{\"blockdevices\":[7,null,{\"kname\":7},{\"kname\":\"x\",\"type\":\"part\",\"size\":[]}]}",
        "{\"blockdevices\":[{\"kname\":\"x\",\"type\":\"raid10\",\"children\":[{\"kname\":\"x\",\"fstype\":"
        "\"ext4\"}]}]}",
        "[{\"ifname\":\"eth0\",\"addr_info\":[{\"family\":\"inet\",\"local\":\"x\",\"prefixlen\":99},7]},[]]",
        deep,
    };
    for (const std::string& output : outputs) {
        CZor rows;
        const auto leftOut = captureMachine({root(), output, output, output, 0}, rows);
        EXPECT_FALSE(leftOut.empty()) << output.substr(0, 80);
        documentByOrder(rows);
    }
    CZor rows;
    EXPECT_FALSE(captureMachine({m_scratch.file("nowhere"), "", "", "", 0}, rows).empty());
}

} // namespace Zorvane
