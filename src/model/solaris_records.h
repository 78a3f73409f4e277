// SPDX-License-Identifier: Apache-2.0
// The record classes of records/solaris.def.
#pragma once

#include "model/RecordBase.h"
#include "model/storage_records.h"

#define ZOR_FAMILY "model/records/solaris.def"
#include "model/records/declare.inc"
