// Corrects a stream of frames in the camera's own memory: no copy, no allocation once the first frame is through.
//   correct_stream camera.twkp WIDTH HEIGHT < frames.bgr0 > corrected.bgr0
// Frames are rows of pixels without padding, four bytes each: blue, green, red, unused.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "calibration/CTivTonewrightDC.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivManager.h"

int main(int argc, char** argv) {
    const int width = argc == 4 ? std::atoi(argv[2]) : 0;
    const int height = argc == 4 ? std::atoi(argv[3]) : 0;
    if (width < 1 || height < 1 || width > 65535 || height > 65535) {
        std::fprintf(stderr, "usage: correct_stream CAMERA.twkp WIDTH HEIGHT\n");
        return 2;
    }
    CTivManager::Initialize();                 // without it no refusal is told
    CTivManager::SetErrorMode(ErrorModeNone);  // texts are asked for, not shown

    CTivTonewrightDC engine;
    if (!engine.Load(argv[1])) {
        std::fprintf(stderr, "%s: %s\n", argv[1], CTivManager::GetLastErrorString().c_str());
        return 1;
    }

    // An image that wraps the frame's memory: false says that it is neither copied nor owned.
    std::vector<unsigned char> frame(std::size_t{4} * static_cast<std::size_t>(width) *
                                     static_cast<std::size_t>(height));
    CTivImage image(width, height, CTivData::FormatRgb, frame.data(), false);
    std::size_t count = 0;
    for (; std::fread(frame.data(), 1, frame.size(), stdin) == frame.size(); ++count) {
        if (!engine.Execute(image, image)) {  // source and destination may be one image
            std::fprintf(stderr, "frame %zu: %s\n", count, CTivManager::GetLastErrorString().c_str());
            return 1;
        }
        if (std::fwrite(frame.data(), 1, frame.size(), stdout) != frame.size()) {
            std::fprintf(stderr, "frame %zu: cannot be written\n", count);
            return 1;
        }
    }
    std::fprintf(stderr, "%zu frames\n", count);
    return 0;
}
