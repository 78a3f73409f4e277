// SPDX-License-Identifier: Apache-2.0
#include "model/windows_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/windows.def"
#include "model/records/define.inc"
