// SPDX-License-Identifier: Apache-2.0
// The record classes of records/windows.def.
#pragma once

#include "model/RecordBase.h"
#include "model/core_records.h"
#include "model/storage_records.h"

#define ZOR_FAMILY "model/records/windows.def"
#include "model/records/declare.inc"
