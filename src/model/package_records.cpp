// SPDX-License-Identifier: Apache-2.0
#include "model/package_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/package.def"
#include "model/records/define.inc"
