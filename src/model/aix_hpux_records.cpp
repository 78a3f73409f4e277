// SPDX-License-Identifier: Apache-2.0
#include "model/aix_hpux_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/aix_hpux.def"
#include "model/records/define.inc"
