#include "foundation/nur_image.h"
#include "imagefile/bmp.h"
#include "imagefile/bmp_strips.h"
#include "tests/fuzz/fuzz_file.h"

using namespace tonewright;

// Whatever a bitmap says, it is read or refused, into fresh memory, into memory of the caller's, and strip by strip.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    const FuzzFile file(data, size);
    NurImage fresh;
    if (readBMP(file.Path().c_str(), &fresh) == 0) nur_image_free(&fresh);
    for (const CTivData::Format format : {CTivData::FormatRgb, CTivData::FormatUByte, CTivData::FormatBinary}) {
        NurImage own;
        nur_image_alloc(&own, format, 8, 3);
        readBMP(file.Path().c_str(), &own);
        nur_image_free(&own);
    }
    static const std::string written = "/dev/shm/tonewright-bmp-fuzz-" + std::to_string(getpid()) + ".bmp";
    RewriteBitmap(file.Path(), written, [](const CTivImage&, CTivImage&) { return false; });
    return 0;
}
