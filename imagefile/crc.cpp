#include "imagefile/crc.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "imagefile/CrcImageReader.h"
#include "imagefile/buffer_format.h"
#include "imagefile/crc_impl.h"

using namespace tonewright;

namespace {

constexpr double kNoInvalidZ = 65535.0;

template <class T>
T valueOr(const ctiv::OptionalParameter<T>& parameter, T otherwise) {
    return parameter.IsPresent() ? parameter.Value() : otherwise;
}

template <class Record>
void write(CTivOutputStream& stream, const Record& record) {
    stream.Write(reinterpret_cast<const char*>(&record), sizeof record);
}

CrcHead headOf(ImageParameters& image) {
    const int width = *image.width.Get();
    const int height = *image.height.Get();
    const CTivData::Format format = *image.format.Get();
    const CTivRect roi = valueOr(image.roi, CTivRect{0, 0, width, height});
    CrcHead head{};
    head.magic = kCrcMagic;
    head.width = width;
    head.height = height;
    head.roiX = std::max(roi.x, 0);
    head.roiY = std::max(roi.y, 0);
    head.roiWidth = std::min(roi.width, width - head.roiX);
    head.roiHeight = std::min(roi.height, height - head.roiY);
    head.formatCode = bufferFormatOf(format);
    head.bytesPerPixel = CTivData::GetFormatSize(format);
    head.bitsPerPixel = CTivData::GetFormatBits(format);
    head.one = 1;
    return head;
}

}  // namespace

void tonewright::writeCrc(const ImageParameters& parameters, const void* data, int bytes, CTivOutputStream* stream) {
    ImageParameters image = parameters;
    write(*stream, headOf(image));
    if (bytes > 0) stream->Write(static_cast<const char*>(data), static_cast<unsigned>(bytes));
    write(*stream, kCrcVersion);
    CrcFooter footer{};
    footer.scale[0] = valueOr(image.scaleX, 1.0);
    footer.scale[1] = valueOr(image.scaleY, 1.0);
    footer.scale[2] = valueOr(image.scaleZ, 1.0);
    footer.offset[0] = valueOr(image.offsetX, 0.0);
    footer.offset[1] = valueOr(image.offsetY, 0.0);
    footer.offset[2] = valueOr(image.offsetZ, 0.0);
    footer.invalidFlag = image.invalidZ.IsPresent() ? 1 : 0;
    footer.invalidZ = valueOr(image.invalidZ, kNoInvalidZ);
    if (image.unitName.IsPresent()) {
        const std::string& name = image.unitName.Value();
        std::memcpy(footer.unitName, name.data(), std::min(name.size(), sizeof footer.unitName - 1));
    }
    write(*stream, footer);
}

namespace ctiv {

CrcImageReader::CrcImageReader(const std::string& path) : stream_(path, std::ios::binary) {
    CrcHead head{};
    if (!stream_.read(reinterpret_cast<char*>(&head), sizeof head)) {
        throw std::runtime_error("Error reading CRC header from input stream");
    }
    if (head.magic != kCrcMagic) throw std::runtime_error("The input stream is not in CRC format");
    static constexpr const char* kMissingPixels = "The input stream does not contain all the image data";
    std::int64_t size = 0;
    if (head.width < 0 || head.height < 0 || head.bytesPerPixel < 0 ||
        __builtin_mul_overflow(std::int64_t{head.width} * head.height, std::int64_t{head.bytesPerPixel}, &size) ||
        size > std::numeric_limits<int>::max()) {
        throw std::runtime_error(kMissingPixels);
    }
    dataSize_ = static_cast<int>(size);
    stream_.seekg(0, std::ios::end);
    if (stream_.tellg() < static_cast<std::streamoff>(sizeof head) + size) throw std::runtime_error(kMissingPixels);
    stream_.seekg(static_cast<std::streamoff>(sizeof head) + size);

    width_ = Result<int>(head.width);
    height_ = Result<int>(head.height);
    bytesPerPixel_ = Result<int>(head.bytesPerPixel);
    // The pixels must be as many as the format asks for: an image of another size would be filled in part only.
    const CTivData::Format format = formatOfBuffer(head.formatCode);
    const std::int64_t row = std::int64_t{CTivData::GetFormatBits(format)} * head.width / 8;
    std::int64_t needed = 0;
    const bool fits = !__builtin_mul_overflow(row, std::int64_t{head.height}, &needed) && needed <= size;
    format_ = Result<CTivData::Format>(fits ? format : CTivData::FormatNone);
    roi_ = OptionalResult<CTivRect>(
        {head.roiX, head.roiY, std::min(head.roiWidth, head.width), std::min(head.roiHeight, head.height)});
    if (stream_.peek() != std::ifstream::traits_type::eof()) ReadFooter();
}

void CrcImageReader::ReadFooter() {
    if (!stream_.read(reinterpret_cast<char*>(&version_), sizeof version_)) {
        throw std::runtime_error("Error reading CRC footer version from input stream");
    }
    CrcFooter footer{};
    for (const CrcBlock& block : kCrcBlocks) {
        if (block.firstVersion > version_) break;
        if (!stream_.read(reinterpret_cast<char*>(&footer) + block.begin,
                          static_cast<std::streamsize>(block.end - block.begin))) {
            throw std::runtime_error("Error reading the CRC footer #" + std::to_string(block.firstVersion) +
                                     " from input stream");
        }
    }
    if (version_ >= 2) {
        scaleX_ = OptionalResult<double>(footer.scale[0]);
        scaleY_ = OptionalResult<double>(footer.scale[1]);
        scaleZ_ = OptionalResult<double>(footer.scale[2]);
        offsetX_ = OptionalResult<double>(footer.offset[0]);
        offsetY_ = OptionalResult<double>(footer.offset[1]);
        offsetZ_ = OptionalResult<double>(footer.offset[2]);
        if (footer.invalidFlag != 0) invalidZ_ = OptionalResult<double>(footer.invalidZ);
        distanceUnit_ = OptionalResult<int>(footer.distanceUnit);
    }
    if (version_ >= 7) {
        unitName_ = OptionalResult<std::string>(std::string(footer.unitName, sizeof footer.unitName));
    }
}

void CrcImageReader::ReadData(int offset, int size, void* buffer) {
    if (offset < 0) {
        throw std::out_of_range("The requested sub-range goes beyond the beginning of the image data");
    }
    if (std::int64_t{offset} + size > dataSize_) {
        throw std::out_of_range("The requested sub-range goes beyond the end of the image data");
    }
    stream_.clear();
    stream_.seekg(sizeof(CrcHead));
    if (!stream_.read(static_cast<char*>(buffer), std::max(size, 0))) {
        throw std::runtime_error("Error reading image data");
    }
}

}  // namespace ctiv
