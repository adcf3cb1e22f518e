#include "imagefile/ConcreteImageReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "foundation/CTivImage.h"

namespace ctiv {

void requireRange(int offset, int size, std::int64_t dataSize) {
    if (offset < 0) {
        throw std::out_of_range("The requested sub-range goes beyond the beginning of the image data");
    }
    if (size < 0) throw std::out_of_range("The requested size is negative");
    if (std::int64_t{offset} + size > dataSize) {
        throw std::out_of_range("The requested sub-range goes beyond the end of the image data");
    }
}

int countedBytes(std::int64_t bytes) {
    return static_cast<int>(std::min<std::int64_t>(bytes, std::numeric_limits<int>::max()));
}

RecordImageReader::~RecordImageReader() {
    if (record_.data) nur_image_free(&record_);
}

void RecordImageReader::TakeResults() {
    dataSize_ = CTivImage::GetImageBytes(record_.width, record_.height, record_.format);
    width_ = Result<int>(record_.width);
    height_ = Result<int>(record_.height);
    format_ = Result<CTivData::Format>(record_.format);
    bytesPerPixel_ = Result<int>(CTivData::GetFormatSize(record_.format));
    roi_ = OptionalResult<CTivRect>(record_.roi);
}

void RecordImageReader::ReadData(int offset, int size, void* buffer) {
    requireRange(offset, size, dataSize_);
    if (size > 0) std::memcpy(buffer, static_cast<const char*>(record_.data) + offset, static_cast<std::size_t>(size));
}

bool RecordImageReader::ExchangePixels(void*& pixels) {
    if (!record_.data || !pixels) return false;
    std::swap(record_.data, pixels);
    return true;
}

}  // namespace ctiv
