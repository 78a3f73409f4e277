// SPDX-License-Identifier: Apache-2.0
#include "lab/defaultInventory.h"

namespace Zorvane {

const std::string_view DEFAULT_INVENTORY =
    R"toml(# The virtualisation targets of this lab. "zorlab serve" reads this file when it starts.
#
# Names are compared without case. Paths of folders and pools are below the root folder of their data center and the
# root pool of their host: clients name them "/Northgate/vm/Production" and "/Northgate/host/ng-cluster1/Resources/Gold".

# The backup hosts that can do conversions (-vmproxy).
proxies = ["convhost01.lab.example", "convhost02.lab.example"]

[[server]]
name = "vcenter01.lab.example"
type = "vcenter"

  [[server.datacenter]]
  name = "Northgate"
  folders = ["Production", "Production/Web", "Production/Databases", "Test"]

    [[server.datacenter.host]]
    name = "esx01.lab.example"
    cluster = "ng-cluster1"
    pools = ["Gold", "Gold/Databases", "Gold/Web", "Silver", "Test"]
    networks = ["VM Network", "Production 120", "Backup 900"]
    machines = ["ng-dc01", "ng-web01", "ng-web02"]
    datastores = [
      { name = "ng-san-01", free_mib = 2457600 },
      { name = "ng-san-02", free_mib = 1310720 },
      { name = "ng-pod1-a", free_mib = 819200, pod = "ng-pod1" },
      { name = "ng-pod1-b", free_mib = 921600, pod = "ng-pod1" },
    ]

    [[server.datacenter.host]]
    name = "esx02.lab.example"
    cluster = "ng-cluster1"
    pools = ["Gold", "Gold/Databases", "Gold/Web", "Silver", "Test"]
    networks = ["VM Network", "Production 120", "Backup 900"]
    machines = ["ng-sql01", "ng-sql02"]
    datastores = [
      { name = "ng-san-01", free_mib = 2457600 },
      { name = "ng-san-02", free_mib = 1310720 },
      { name = "ng-esx02-local", free_mib = 204800 },
    ]

  [[server.datacenter]]
  name = "Southbank"
  folders = ["Production", "Retired"]

    [[server.datacenter.host]]
    name = "esx11.lab.example"
    pools = ["Standard", "Standard/Small", "Reserved"]
    networks = ["VM Network", "Southbank 210"]
    machines = ["sb-file01", "sb-print01"]
    datastores = [
      { name = "sb-nfs-01", free_mib = 3145728 },
      { name = "sb-esx11-local", free_mib = 102400 },
    ]

    [[server.datacenter.host]]
    name = "esx12.lab.example"
    pools = ["Standard"]
    networks = ["VM Network", "Southbank 210"]
    machines = []
    datastores = [
      { name = "sb-nfs-01", free_mib = 3145728 },
    ]

# A host that no vCenter manages.
[[server]]
name = "esx90.lab.example"
type = "esx"

  [[server.datacenter]]
  name = "ha-datacenter"

    [[server.datacenter.host]]
    name = "esx90.lab.example"
    pools = ["Branch"]
    networks = ["VM Network"]
    machines = ["branch-dc01"]
    datastores = [
      { name = "esx90-local1", free_mib = 614400 },
      { name = "esx90-local2", free_mib = 40960 },
    ]
)toml";

} // namespace Zorvane
