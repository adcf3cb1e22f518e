#include <sstream>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/parameter_file.h"
#include "tests/fuzz/fuzz_file.h"

using namespace tonewright;

// Parameter files: held against their length, loaded, calibrated, and, where that went well, applied.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    static CTivTonewrightDC engine;  // making one takes longer than most inputs
    std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
    CheckParameterLength(stream);
    engine.Reset();
    try {
        if (!engine.Load(FuzzFile(data, size).Path())) return 0;
    } catch (const char*) {
        return 0;  // colors that are not finite
    }
    CTivImage source(37, 3, engine.GetCalibratedFormat(), nullptr, true), destination;
    engine.Execute(source, destination);
    engine.SaveXForm("/dev/null", true);
    return 0;
}
