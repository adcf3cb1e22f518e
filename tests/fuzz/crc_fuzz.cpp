#include "foundation/CTivImage.h"
#include "imagefile/CTivImageReader.h"
#include "tests/fuzz/fuzz_file.h"

// A CRC image stream through the whole dispatch, the other kinds behind it included.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    const FuzzFile file(data, size);
    CTivImage image;
    if (image.Load(file.Path(), true)) image.GetData(image.GetWidth() - 1, image.GetHeight() - 1);
    return 0;
}
