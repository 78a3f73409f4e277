// SPDX-License-Identifier: Apache-2.0
// All record classes. For the lab and the tests: a source of the program includes the families that it uses.
#pragma once

#include "model/aix_hpux_records.h"
#include "model/cluster_records.h"
#include "model/core_records.h"
#include "model/linux_records.h"
#include "model/package_records.h"
#include "model/solaris_records.h"
#include "model/storage_records.h"
#include "model/task_records.h"
#include "model/volume_manager_records.h"
#include "model/windows_records.h"
