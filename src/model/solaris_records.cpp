// SPDX-License-Identifier: Apache-2.0
#include "model/solaris_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/solaris.def"
#include "model/records/define.inc"
