// SPDX-License-Identifier: Apache-2.0
// The record classes of records/package.def.
#pragma once

#include "model/RecordBase.h"

#define ZOR_FAMILY "model/records/package.def"
#include "model/records/declare.inc"
