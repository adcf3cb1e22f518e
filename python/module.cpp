#include "foundation/CTivManager.h"
#include "foundation/version.h"
#include "python/library_call.h"

PYBIND11_MODULE(_tonewright, module) {
    CTivManager::Initialize();
    ListenToLibrary();

    py::options options;
    options.disable_function_signatures();  // which would show C++; the stubs have them
    module.attr("__version__") = GetTonewrightVersion();
    AddErrors(module);
    AddPictures(module);
    AddQuality(module);
    AddCharts(module);
    AddCalibrations(module);
}
