#include <span>

#include "imagefile/PngImageReader.h"
#include "tests/fuzz/fuzz_file.h"

// A PNG from memory is read or thrown out.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    try {
        ctiv::PngImageReader reader(std::span(data, size));
        std::uint8_t last = 0;
        if (reader.GetDataSize() > 0) reader.ReadData(reader.GetDataSize() - 1, 1, &last);
    } catch (const std::exception&) {
    }
    return 0;
}
