#include "imagefile/record_readers.h"

#include <stdexcept>

#include "foundation/CTivImage.h"
#include "imagefile/native_file_impl.h"
#include "imagefile/read_image.h"

namespace ctiv {

namespace {

template <class T>
void take(OptionalResult<T>& result, const OptionalParameter<T>& parameter) {
    if (parameter.IsPresent()) result = OptionalResult<T>(parameter.Value());
}

}  // namespace

TiffImageReader::TiffImageReader(const std::string& path) {
    ImageParameters metadata;
    if (ctiv_readImageFromFile(&record_, path.c_str(), &metadata) != 0) {
        throw std::runtime_error("ctiv_readImageFromFile failed\n");
    }
    TakeResults();
    take(scaleX_, metadata.scaleX);
    take(scaleY_, metadata.scaleY);
    take(scaleZ_, metadata.scaleZ);
    take(offsetX_, metadata.offsetX);
    take(offsetY_, metadata.offsetY);
    take(offsetZ_, metadata.offsetZ);
    take(invalidZ_, metadata.invalidZ);
    take(distanceUnit_, metadata.distanceUnit);
    take(unitName_, metadata.unitName);
}

CTivImageBasedImageReader::CTivImageBasedImageReader(const std::string& path) {
    CTivImage image;
    if (!LoadNativeFile(image, path, true)) {
        throw std::runtime_error("error loading image from file: " + CTivManager::GetLastErrorString());
    }
    record_ = *image.GetRecord();
    *image.GetRecord() = {};  // the pixels are this reader's from here on
    TakeResults();
}

}  // namespace ctiv
