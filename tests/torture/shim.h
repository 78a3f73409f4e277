/* SPDX-License-Identifier: Apache-2.0 */
/* What the preloaded library and its users agree on; plain C. */
#pragma once

#include <stdbool.h>

enum {
#define CLASS(name) CLASS_##name,
#include "torture/classes.def"
#undef CLASS
    CLASSES
};

/* The status of a program that was stopped because it asked a peer that is gone again and again. */
enum { TORTURE_SPINNING = 98, SPINS = 1000 };

/* Counts a call of the class; true if it is the one that is to fail. */
bool tortureFails(int class_);
