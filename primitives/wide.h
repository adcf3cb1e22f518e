#pragma once

#include "primitives/acceleration.h"

// How a loop gets its wide form: one always-inline body, compiled plain and for AVX2 as two named functions, picked at
// run time. Tests call both by name and hold them equal.
#define TONEWRIGHT_BODY [[gnu::always_inline]] inline
#define TONEWRIGHT_WIDE [[gnu::target("avx2")]]

/// @return whether this machine has the instructions of the wide forms
inline bool HasAvx2() {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

/// @return whether loops take their wide form: where the machine has it and the acceleration level is not 0
inline bool RunsWide() { return HasAvx2() && ctiv_GetAccelerationLevel() != 0; }
