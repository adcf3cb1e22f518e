#include "imagefile/tiff.h"
#include "tests/fuzz/fuzz_file.h"

// Whatever a TIFF says, it is read or refused, into fresh memory and into memory of the caller's.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    const FuzzFile file(data, size);
    NurImage fresh;
    ImageParameters metadata;
    if (readTIFFFile(file.Path().c_str(), &fresh, &metadata) != 0) {
        if (fresh.data) __builtin_trap();
        return 0;
    }
    NurImage own;
    nur_image_alloc(&own, fresh.format, 8, 3);
    readTIFFFile(file.Path().c_str(), &own, nullptr);
    nur_image_free(&own);
    nur_image_free(&fresh);
    return 0;
}
