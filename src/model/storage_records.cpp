// SPDX-License-Identifier: Apache-2.0
#include "model/storage_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/storage.def"
#include "model/records/define.inc"
