#pragma once

#include "foundation/CTivManager.h"

/// The process settings of the library, read once from its INI file, section [Configuration]:
/// "CPU Thread Count", "Optimization Level", "GPU Coprocessor Acceleration Enabled", "GPU Coprocessor Default Index".
/// The file is $ZELVAN_PROCESSING_CONFIG if set, else "Brennick Korva/Zelvan Processing.ini" under $XDG_CONFIG_HOME
/// (default ~/.config), else the same under /etc/xdg.
class CTivConfig : public CTivManager {
public:
    CTivConfig();  ///< runs the one-time read

    static void EnsureRead();
    static int GetCoprocessorDefaultIndex();
    static bool IsCoprocessorEnabled();
    static int GetOptimizationLevel();
    static int GetThreadCount();
    /// Sets the team size of parallel regions, here and in the threading runtime.
    static void SetThreadCount(int count);
    static int GetCoprocessorCount() { return 0; }

    /// Forgets what was read, so that the next use reads again; for tests.
    static void Forget();
};
