#include "foundation/CTivImage.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "foundation/native_record_impl.h"
#include "foundation/nur_image.h"

class ImplImage : public CTivManager {
public:
    NurImage record_;
    int significantBits_ = 8;
    bool external_ = false;

    ~ImplImage() override {
        if (!external_ && record_.data && nur_image_free(&record_) != 0) {
            ReportError("CTivImage::Free => Cannot free image data");
        }
    }
};

namespace {

constexpr const char* kRecordName = "CTivImage";
constexpr int kDefaultSignificantBits = 8;

std::uint64_t pixelIndex(const NurImage& record, int x, int y) {
    return static_cast<std::uint64_t>(std::int64_t{record.width} * y + x);
}

bool isInside(const NurImage& record, int x, int y) {
    return x >= 0 && x < record.width && y >= 0 && y < record.height;
}

}  // namespace

CTivImage::CTivImage() : impl_(std::make_unique<ImplImage>()) {}

CTivImage::CTivImage(const CTivImage& source) : CTivManager(source), impl_(std::make_unique<ImplImage>()) {
    *this = source;
}

CTivImage::CTivImage(int width, int height, CTivData::Format format, void* data, bool copy) : CTivImage() {
    Set(width, height, format, data, copy);
}

CTivImage::CTivImage(CTivImage&& source) noexcept : CTivManager(source), impl_(std::move(source.impl_)) {}

CTivImage& CTivImage::operator=(CTivImage&& source) noexcept {
    impl_ = std::move(source.impl_);
    return *this;
}

CTivImage& CTivImage::operator=(const CTivImage& source) {
    if (this == &source) return *this;
    impl_ = std::make_unique<ImplImage>();
    if (!source.impl_ || source.GetFormat() == CTivData::FormatNone) return *this;
    const NurImage& record = source.impl_->record_;
    if (!Set(record.width, record.height, record.format, record.data, true) || !SetRoi(record.roi)) return *this;
    const int bits = source.impl_->significantBits_;
    if (bits >= 8 && bits <= CTivData::GetBitsPerChannel(record.format)) impl_->significantBits_ = bits;
    return *this;
}

CTivImage::~CTivImage() = default;

bool CTivImage::Set(int width, int height, CTivData::Format format, void* data, bool copy) {
    return Assign(width, height, format, data, copy, false);
}

bool CTivImage::Assign(int width, int height, CTivData::Format format, void* data, bool copy, bool isPromise) {
    if (!impl_) return false;
    if (format == CTivData::FormatBinary && width % 8 != 0) {
        return Refuse("CTivImage::Set => Width of binary images must be multiple of 8");
    }
    if (!Free()) return false;
    if (width == 0 && height == 0) return true;
    if (data && !copy) {
        impl_->record_ = {format, data, width, height, {0, 0, width, height}};
        impl_->external_ = true;
        impl_->significantBits_ = CTivData::GetBitsPerChannel(format);
        return true;
    }
    const int answer = nur_image_alloc(&impl_->record_, format, width, height, isPromise);
    if (answer != 0 && data) return Refuse("CTivImage::Set => Cannot copy image data");
    if (answer == -2) {
        return Refuse("CTivImage::Set => Cannot allocate image with negative dimension(s) or invalid format");
    }
    if (answer != 0) return Refuse("CTivImage::Set => Not enough memory");
    if (data) {
        // Significant bits deliberately (C38) stay at 8 here; copies of images restore their own value.
        const std::int64_t bytes = GetImageBytes(width, height, format);
        if (impl_->record_.data) std::memcpy(impl_->record_.data, data, static_cast<std::size_t>(bytes));
    } else {
        impl_->significantBits_ = CTivData::GetBitsPerChannel(format);
    }
    return true;
}

bool CTivImage::Set(int width, int height, CTivData::Format format, const CTivRect& roi, void* data, bool copy) {
    return Set(width, height, format, data, copy) && SetRoi(roi);
}

bool CTivImage::Free() {
    if (!impl_) return false;
    if (impl_->record_.data && !impl_->external_ && nur_image_free(&impl_->record_) != 0) {
        return Refuse("CTivImage::Free => Cannot free image data");
    }
    impl_->record_ = {};
    impl_->significantBits_ = kDefaultSignificantBits;
    impl_->external_ = false;
    return true;
}

bool CTivImage::Clear() {
    if (!impl_) return false;
    NurImage& record = impl_->record_;
    if (!record.data) return true;
    const auto bytes = static_cast<std::size_t>(GetRowBytes(record.roi.width, record.format));
    for (int y = 0; y < record.roi.height; ++y) std::memset(record.RoiRow(y), 0, bytes);
    return true;
}

bool CTivImage::Copy(const CTivImage& source) {
    if (!impl_ || !source.impl_) return false;
    const NurImage& from = source.impl_->record_;
    if (GetFormat() != CTivData::FormatNone && GetFormat() != from.format) {
        return Refuse("CTivImage::Copy => source and destination formats must be the same");
    }
    if (from.format == CTivData::FormatBinary && from.roi.width % 8 != 0) {
        return Refuse("CTivImage::Copy => FormatBinary supports width of multiple of 8 pixels only");
    }
    if (from.format == CTivData::FormatBinary && from.roi.x % 8 != 0) {
        return Refuse("CTivImage::Copy => FormatBinary supports X alignment of multiple of 8 pixels only");
    }
    if (IsAllocated()) {
        const CTivRect& roi = impl_->record_.roi;
        if (roi.width < from.roi.width || roi.height < from.roi.height) {
            return Refuse("CTivImage::Copy => preallocated source ROI width and/or height not large enough");
        }
    } else if (!Set(from.roi.width, from.roi.height, from.format, nullptr, false)) {
        return Refuse("CTivImage::Copy => Error on allocation");
    }
    NurImage& to = impl_->record_;
    if (!from.data || !to.data) return true;
    const auto bytes = static_cast<std::size_t>(GetRowBytes(from.roi.width, from.format));
    for (int y = 0; y < from.roi.height; ++y) std::memmove(to.RoiRow(y), from.RoiRow(y), bytes);
    return true;
}

CTivData CTivImage::GetData(int x, int y) const {
    if (!IsAllocated()) {
        ReportError("CTivImage::GetData => image not allocated");
        return {};
    }
    const NurImage& record = impl_->record_;
    if (!isInside(record, x, y)) {
        ReportError("CTivImage::GetData => Coordinates out of range");
        return {};
    }
    return CTivData::ReadElement(record.format, record.data, pixelIndex(record, x, y));
}

bool CTivImage::SetData(int x, int y, const CTivData& value) {
    if (!IsAllocated()) return Refuse("CTivImage::SetData => image not allocated");
    NurImage& record = impl_->record_;
    if (!isInside(record, x, y)) return Refuse("CTivImage::SetData => Coordinates out of range");
    if (value.GetFormat() == CTivData::FormatNone) {
        return Refuse("CTivImage::SetData => unknown format in <data> argument");
    }
    CTivData::WriteElement(record.format, record.data, pixelIndex(record, x, y), value);
    return true;
}

bool CTivImage::SetRoi(const CTivRect& roi) {
    if (!impl_) return false;
    NurImage& record = impl_->record_;
    if (roi.x < 0 || roi.y < 0 || roi.width < 0 || roi.height < 0 || roi.width > record.width - roi.x ||
        roi.height > record.height - roi.y) {
        return Refuse("CTivImage::SetRoi => ROI rectangle out of range");
    }
    if (roi == CTivRect{}) {
        record.roi = {0, 0, record.width, record.height};
        return true;
    }
    record.roi = roi;
    if (record.format == CTivData::FormatBinary) {
        record.roi.x = roi.x / 8 * 8;
        record.roi.width = ((roi.x + 7 + roi.width) / 8 - roi.x / 8) * 8;
    }
    return true;
}

CTivRect CTivImage::GetRoi() const { return impl_ ? impl_->record_.roi : CTivRect{}; }
CTivData::Format CTivImage::GetFormat() const { return impl_ ? impl_->record_.format : CTivData::FormatNone; }
int CTivImage::GetWidth() const { return impl_ ? impl_->record_.width : -1; }
int CTivImage::GetHeight() const { return impl_ ? impl_->record_.height : -1; }
int CTivImage::GetSignificantBits() const { return impl_ ? impl_->significantBits_ : -1; }
bool CTivImage::IsAllocated() const { return impl_ && impl_->record_.data; }
bool CTivImage::IsExternal() const { return impl_ && impl_->external_; }
void* CTivImage::GetData() { return impl_ ? impl_->record_.data : nullptr; }
const void* CTivImage::GetData() const { return impl_ ? impl_->record_.data : nullptr; }
void* CTivImage::GetRoiData() { return IsAllocated() ? impl_->record_.RoiRow(0) : nullptr; }
const void* CTivImage::GetRoiData() const { return IsAllocated() ? impl_->record_.RoiRow(0) : nullptr; }
const NurImage* CTivImage::GetRecord() const { return impl_ ? &impl_->record_ : nullptr; }
NurImage* CTivImage::GetRecord() { return impl_ ? &impl_->record_ : nullptr; }

std::int64_t CTivImage::GetRowBytes(int width, CTivData::Format format) {
    return (std::int64_t{CTivData::GetFormatBits(format)} * width + 7) / 8;
}

std::int64_t CTivImage::GetImageBytes(int width, int height, CTivData::Format format) {
    return GetRowBytes(width, format) * height;
}

bool CTivImage::IsFile(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return false;
    RecordName name{};
    readOrZero(stream, name.data(), name.size());
    return std::strncmp(name.data(), kRecordName, name.size()) == 0;
}

bool CTivImage::ReadFile(std::istream& stream, bool reallocate) {
    if (!impl_) return false;
    if (!readRecordHead(stream, kRecordName)) return Refuse("CTivImage::ReadFile => incompatible file");
    std::int32_t fields[7];  // width, height, format, ROI
    readOrZero(stream, fields, sizeof fields);
    const int width = fields[0];
    const int height = fields[1];
    const auto format = static_cast<CTivData::Format>(fields[2]);
    const CTivRect roi{fields[3], fields[4], fields[5], fields[6]};
    if (reallocate) {
        if (width == 0 || height == 0 || format == CTivData::FormatNone) return Free();
        if (!Assign(width, height, format, nullptr, false, true) || !SetRoi(roi)) return false;
        if (IsAllocated()) {
            readIntoZeros(stream, GetData(), static_cast<std::uint64_t>(GetImageBytes(width, height, format)));
        }
        return true;
    }
    NurImage& record = impl_->record_;
    if (format != record.format) {
        return Refuse("CTivImage::ReadFile => source and destination formats must be the same");
    }
    if (record.width < width || record.height < height) {
        return Refuse("CTivImage::ReadFile => preallocated source width and/or height not large enough");
    }
    if (!record.data || width <= 0) return true;
    // The file's ROI height counts the rows, deliberately (C39); a record that lies about it stays inside this image.
    const int rows = std::min(roi.height, record.height);
    for (int y = 0; y < rows; ++y) {
        readOrZero(stream, record.Row(y), static_cast<std::uint64_t>(GetRowBytes(width, format)));
    }
    return true;
}

bool CTivImage::WriteFile(std::ostream& stream) const {
    if (!impl_) return false;
    const NurImage& record = impl_->record_;
    writeRecordHead(stream, kRecordName);
    const std::int32_t fields[7] = {record.width, record.height,    record.format,    record.roi.x,
                                    record.roi.y, record.roi.width, record.roi.height};
    stream.write(reinterpret_cast<const char*>(fields), sizeof fields);
    if (record.data) {
        stream.write(static_cast<const char*>(record.data), GetImageBytes(record.width, record.height, record.format));
    }
    return true;
}
