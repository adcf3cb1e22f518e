#include <sstream>

#include "foundation/CTivImage.h"
#include "foundation/CTivVector.h"
#include "tests/fuzz/fuzz_file.h"

// Native records of images and vectors, with and without reallocation; what was read is read back pixel by pixel.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto with = [&](auto action) {
        std::istringstream stream(bytes);
        action(stream);
    };
    CTivImage image;
    with([&](std::istream& stream) { image.ReadFile(stream, true); });
    image.GetData(image.GetWidth() - 1, image.GetHeight() - 1);
    CTivImage own(8, 4, CTivData::FormatUByte, nullptr, true);
    with([&](std::istream& stream) { own.ReadFile(stream, false); });
    CTivVector vector;
    with([&](std::istream& stream) { vector.ReadFile(stream); });
    vector.GetData(vector.GetSize() - 1);
    CTivVector ownVector(16, CTivData::FormatFloat, nullptr, true);
    with([&](std::istream& stream) { ownVector.ReadFileInPlace(stream); });
    return 0;
}
