#include "primitives/acceleration.h"

#include <omp.h>

#include <atomic>
#include <mutex>

#include "primitives/ctiv_ippi.h"

namespace {

std::atomic<int> accelerationLevel{1};
std::atomic<int> threadCount{1};
std::mutex threadCountLock;

}  // namespace

int ctiv_GetAccelerationLevel() { return accelerationLevel; }

int ctiv_SetAccelerationLevel(int level) {
    if (level < 0 || level > 2) return 0;
    accelerationLevel = level;
    return 1;
}

int ctiv_GetNumThreads() { return threadCount; }

void ctiv_SetNumThreads(int count) {
    const std::lock_guard guard(threadCountLock);
    ctiv_ippSetNumThreads(count);
    omp_set_num_threads(count);
    threadCount = count;
}
