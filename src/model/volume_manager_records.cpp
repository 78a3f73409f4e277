// SPDX-License-Identifier: Apache-2.0
#include "model/volume_manager_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/volume_manager.def"
#include "model/records/define.inc"
