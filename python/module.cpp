#include <pthread.h>

#include "foundation/CTivManager.h"
#include "foundation/version.h"
#include "primitives/acceleration.h"
#include "python/library_call.h"

using namespace tonewright;

PYBIND11_MODULE(_tonewright, module) {
    CTivManager::Initialize();
    ListenToLibrary();
    // The threading runtime's team stays behind in the parent of a fork; the child works without one.
    pthread_atfork(nullptr, nullptr, [] { ctiv_SetNumThreads(1); });

    py::options options;
    options.disable_function_signatures();  // which would show C++; the stubs have them
    module.attr("__version__") = GetTonewrightVersion();
    AddErrors(module);
    AddPictures(module);
    AddQuality(module);
    AddCharts(module);
    AddCalibrations(module);
    AddDevices(module);
}
