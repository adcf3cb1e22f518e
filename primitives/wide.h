#pragma once

// How a loop gets its wide form: one always-inline body, compiled plain and for AVX2 as two named functions, picked
// once at run time. Tests call both by name and hold them equal.
#define TONEWRIGHT_BODY [[gnu::always_inline]] inline
#define TONEWRIGHT_WIDE [[gnu::target("avx2")]]

/// @return whether this machine runs the wide forms
inline bool HasAvx2() {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}
