// SPDX-License-Identifier: Apache-2.0
#include "model/task_records.h"

#include "model/recordDefinitions.h"

#define ZOR_FAMILY "model/records/task.def"
#include "model/records/define.inc"
