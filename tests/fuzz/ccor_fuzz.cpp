#include <sstream>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/coefficient_file.h"
#include "tests/fuzz/fuzz_file.h"

using namespace tonewright;

// Coefficient files: held against their length, loaded, and applied to an image.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    static CTivTonewrightDC engine;  // making one takes longer than most inputs
    std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
    CheckCoefficientLength(stream);
    if (!engine.LoadXForm(FuzzFile(data, size).Path())) return 0;
    CTivImage source(37, 3, CTivData::FormatRgb, nullptr, true), destination;
    for (int x = 0; x < 37; ++x) source.SetData(x, 1, CTivData::Rgb(static_cast<std::uint8_t>(7 * x), 255, 1));
    engine.Execute(source, destination);
    return 0;
}
