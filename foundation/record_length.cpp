#include "foundation/record_length.h"

#include <algorithm>
#include <fstream>

#include "foundation/CTivImage.h"
#include "foundation/native_record_impl.h"

namespace tonewright {

namespace {

constexpr std::uint64_t kImageHead = 64;
constexpr std::uint64_t kVectorHead = 44;
constexpr std::int64_t kBeyondAnyFile = std::int64_t{1} << 62;

/// Bytes of the pixels; what has no size is the reader's to refuse.
std::uint64_t PixelBytes(std::int32_t width, std::int32_t height, CTivData::Format format) {
    if (width <= 0 || height <= 0) return 0;
    std::int64_t bytes = 0;
    const bool isBeyond = __builtin_mul_overflow(CTivImage::GetRowBytes(width, format), std::int64_t{height}, &bytes);
    return static_cast<std::uint64_t>(isBeyond ? kBeyondAnyFile : std::min(bytes, kBeyondAnyFile));
}

}  // namespace

std::uint64_t GetStreamLength(std::istream& stream) {
    stream.seekg(0, std::ios::end);
    const std::streamoff end = stream.tellg();
    stream.seekg(0);
    return end > 0 ? static_cast<std::uint64_t>(end) : 0;
}

std::string DescribeShortage(std::uint64_t length, std::uint64_t wanted) {
    if (wanted <= length) return {};
    return "the file breaks off: it has " + std::to_string(length) + " bytes of at least " + std::to_string(wanted);
}

std::string CheckImageLength(std::istream& stream) {
    const std::uint64_t length = GetStreamLength(stream);
    if (!readRecordHead(stream, "CTivImage")) return {};
    std::int32_t fields[3];  // width, height, format
    readOrZero(stream, fields, sizeof fields);
    const auto format = static_cast<CTivData::Format>(fields[2]);
    return DescribeShortage(length, kImageHead + PixelBytes(fields[0], fields[1], format));
}

std::string CheckImageFileLength(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return stream ? CheckImageLength(stream) : std::string();
}

std::string CheckVectorLength(std::istream& stream) {
    const std::uint64_t length = GetStreamLength(stream);
    if (!readRecordHead(stream, "CTivVector")) return {};
    std::int32_t fields[2];  // size, format
    readOrZero(stream, fields, sizeof fields);
    const auto size = static_cast<std::uint64_t>(std::max(fields[0], 0));
    const std::uint64_t bytes = CTivData::GetByteCount(static_cast<CTivData::Format>(fields[1]), size);
    if (size > 0 && bytes == 0) return "the vector's elements have no size";
    return DescribeShortage(length, kVectorHead + bytes);
}

}  // namespace tonewright
