#pragma once

#include "foundation/CTivManager.h"

/// Base of the operators' handle classes: what the process settings say about acceleration.
class CTivOperator : public CTivManager {
public:
    static int GetCoprocessorCount();  ///< 0 in this system
    static int GetCoprocessorDefaultIndex();
    static bool IsCoprocessorEnabled();
    static int GetOptimizationLevel();  ///< 0 none, 1 the pixel primitives, 2 also the library's own wide loops
    /// @return false, reported, for an index above the number of coprocessors
    static bool SetCoprocessorDefaultIndex(int index);
    /// @return false, reported, when acceleration is asked for where no coprocessor is
    static bool SetCoprocessorOptim(bool enable);
};
