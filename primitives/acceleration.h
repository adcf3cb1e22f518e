#pragma once

/// Process-wide settings of the pixel primitives. Both are 1 until the configuration is read.

/// 0: plain fallbacks only, or the answer -2 where a primitive has none; 1: the primitives; 2: also the library's own
/// wide loops.
int ctiv_GetAccelerationLevel();
/// @return 1, or 0 for a level outside 0 to 2, which changes nothing
int ctiv_SetAccelerationLevel(int level);

/// Team size of the parallel regions.
int ctiv_GetNumThreads();
/// Stores the count and hands it to the threading runtime for the whole process.
void ctiv_SetNumThreads(int count);
