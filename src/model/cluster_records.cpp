// SPDX-License-Identifier: Apache-2.0
#include "model/cluster_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/cluster.def"
#include "model/records/define.inc"
