// SPDX-License-Identifier: Apache-2.0
#include "model/linux_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/linux.def"
#include "model/records/define.inc"
