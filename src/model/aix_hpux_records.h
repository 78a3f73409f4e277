// SPDX-License-Identifier: Apache-2.0
// The record classes of records/aix_hpux.def.
#pragma once

#include "model/RecordBase.h"
#include "model/storage_records.h"

#define ZOR_FAMILY "model/records/aix_hpux.def"
#include "model/records/declare.inc"
