#pragma once

#include "primitives/acceleration.h"

namespace tonewright {

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

// Loops that gain more than a tenth by AVX-512, or by its byte permutes, have a third form.
#define TONEWRIGHT_WIDEST [[gnu::target("avx512f,avx512bw,avx512vl,avx512dq,avx512vbmi")]]

enum class RowForm { Plain, Avx2, Avx512 };
inline constexpr RowForm kRowForms[] = {RowForm::Plain, RowForm::Avx2, RowForm::Avx512};

/// @return whether this machine has the instructions of a form
inline bool HasForm(RowForm form) {
    static const bool hasAvx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                                  __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
                                  __builtin_cpu_supports("avx512vbmi");
    return form == RowForm::Plain || (form == RowForm::Avx2 ? HasAvx2() : hasAvx512);
}

/// @return the widest form that this machine has; the plain one at acceleration level 0
inline RowForm GetRowForm() {
    if (ctiv_GetAccelerationLevel() == 0) return RowForm::Plain;
    return HasForm(RowForm::Avx512) ? RowForm::Avx512 : HasAvx2() ? RowForm::Avx2 : RowForm::Plain;
}

}  // namespace tonewright
