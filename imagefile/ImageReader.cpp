#include "imagefile/ImageReader.h"

#include <stdexcept>

#include "imagefile/CrcImageReader.h"
#include "imagefile/PngImageReader.h"
#include "imagefile/record_readers.h"

namespace ctiv {

namespace {

template <class Reader>
std::unique_ptr<ConcreteImageReader> make(const std::string& path) {
    return std::make_unique<Reader>(path);
}

struct Kind {
    const char* name;
    std::unique_ptr<ConcreteImageReader> (*make)(const std::string& path);
};

// In the order of trying.
constexpr Kind kKinds[] = {
    {"CRC", make<CrcImageReader>},
    {"PNG", make<PngImageReader>},
    {"Tiff", make<TiffImageReader>},
    {"CTivImage", make<CTivImageBasedImageReader>},
};

}  // namespace

ImageReader::ImageReader(const std::string& path) {
    std::string failures;
    for (const Kind& kind : kKinds) {
        const std::string prefix = std::string("\nError reading as ") + kind.name + ": ";
        try {
            reader_ = kind.make(path);
            kind_ = kind.name;
            return;
        } catch (const std::exception& failure) {
            failures += prefix + failure.what() + ".";
        } catch (...) {
            failures += prefix + "unknown error.";
        }
    }
    throw std::runtime_error("Failed to read image from file \"" + path + "\": " + failures);
}

}  // namespace ctiv
