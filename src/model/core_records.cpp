// SPDX-License-Identifier: Apache-2.0
#include "model/core_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/core.def"
#include "model/records/define.inc"
