#include "foundation/CTivData.h"

#include <cmath>
#include <cstring>
#include <type_traits>

#include "foundation/color_kernels.h"
#include "foundation/format_table_impl.h"
#include "foundation/nur_types.h"

using namespace tonewright;

namespace {

const FormatInfo* info(CTivData::Format format) {
    return format >= 0 && format < CTivData::FormatCount ? &kFormats[static_cast<std::size_t>(format)] : nullptr;
}

template <class T>
std::uint64_t toPayload(T value) {
    static_assert(sizeof(T) <= 8 && std::is_trivially_copyable_v<T>);
    std::uint64_t payload = 0;
    std::memcpy(&payload, &value, sizeof value);
    return payload;
}

template <class T>
T fromPayload(std::uint64_t payload) {
    T value;
    std::memcpy(&value, &payload, sizeof value);
    return value;
}

std::int64_t truncated(double value) {
    return std::abs(value) < 9223372036854775808.0 ? static_cast<std::int64_t>(value) : 0;
}

bool isPackedColor(CTivData::Format format) {
    return nur_is_type(format, {CTivData::FormatRgb, CTivData::FormatHsv, CTivData::FormatYuv, CTivData::FormatLab,
                                CTivData::FormatColorUByte});
}

// The value as a whole number; unsigned formats zero-extend, signed ones sign-extend. What has no number gives 0.
std::int64_t wholeNumber(CTivData::Format format, std::uint64_t payload) {
    switch (format) {
        case CTivData::FormatByte:
            return fromPayload<std::int8_t>(payload);
        case CTivData::FormatShort:
            return fromPayload<std::int16_t>(payload);
        case CTivData::FormatInt:
            return fromPayload<std::int32_t>(payload);
        case CTivData::FormatUByte:
        case CTivData::FormatBinary:
            return fromPayload<std::uint8_t>(payload);
        case CTivData::FormatUShort:
            return fromPayload<std::uint16_t>(payload);
        case CTivData::FormatUInt:
        case CTivData::FormatRgb10:
            return fromPayload<std::uint32_t>(payload);
        case CTivData::FormatInt64:
        case CTivData::FormatUInt64:
            return fromPayload<std::int64_t>(payload);
        case CTivData::FormatFloat:
            return truncated(fromPayload<float>(payload));
        case CTivData::FormatDouble:
            return truncated(fromPayload<double>(payload));
        default:
            return isPackedColor(format) ? fromPayload<std::uint32_t>(payload) : 0;
    }
}

// Components 0 to 3, truncated and masked to `bits`, go to the given bit positions.
std::uint32_t packColorFloat(const float* components, const int (&shifts)[4], int count, std::uint32_t mask) {
    std::uint32_t word = 0;
    if (!components) return word;
    for (int i = 0; i < count; ++i) word |= (static_cast<std::uint32_t>(truncated(components[i])) & mask) << shifts[i];
    return word;
}
constexpr int kByteShifts[4] = {16, 8, 0, 24};
constexpr int kRgb10Shifts[4] = {20, 10, 0, 0};

std::uint32_t bytesToRgb10(std::uint32_t word) {
    return (word >> 16 & 0xFF) << 20 | (word >> 8 & 0xFF) << 10 | (word & 0xFF);
}

}  // namespace

CTivData CTivData::Int(std::int32_t value) { return {FormatInt, toPayload(value)}; }
CTivData CTivData::Float(float value) { return {FormatFloat, toPayload(value)}; }
CTivData CTivData::Double(double value) { return {FormatDouble, toPayload(value)}; }
CTivData CTivData::Rgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return {FormatRgb, std::uint32_t{red} << 16 | std::uint32_t{green} << 8 | blue};
}
CTivData CTivData::Rgb10(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return {FormatRgb10, (red & 0x3FF) << 20 | (green & 0x3FF) << 10 | (blue & 0x3FF)};
}
CTivData CTivData::Rgb16(std::uint16_t red, std::uint16_t green, std::uint16_t blue) {
    return {FormatRgb16, std::uint64_t{red} << 32 | std::uint64_t{green} << 16 | blue};
}
CTivData CTivData::ColorFloat(const float* components) { return {FormatColorFloat, toPayload(components)}; }

std::uint8_t CTivData::AsUByte() const { return static_cast<std::uint8_t>(wholeNumber(format_, payload_)); }
std::uint16_t CTivData::AsUShort() const { return static_cast<std::uint16_t>(wholeNumber(format_, payload_)); }
std::int32_t CTivData::AsInt() const { return static_cast<std::int32_t>(wholeNumber(format_, payload_)); }
std::uint32_t CTivData::AsUInt() const { return static_cast<std::uint32_t>(wholeNumber(format_, payload_)); }

double CTivData::AsDouble() const {
    if (format_ == FormatFloat) return fromPayload<float>(payload_);
    if (format_ == FormatDouble) return fromPayload<double>(payload_);
    if (format_ == FormatUInt64) return static_cast<double>(payload_);
    return static_cast<double>(wholeNumber(format_, payload_));
}
float CTivData::AsFloat() const {
    if (format_ == FormatFloat) return fromPayload<float>(payload_);
    if (format_ == FormatUInt64) return static_cast<float>(payload_);
    if (format_ == FormatInt64) return static_cast<float>(fromPayload<std::int64_t>(payload_));
    return static_cast<float>(AsDouble());
}

bool CTivData::AsBool() const { return wholeNumber(format_, payload_) != 0; }

std::uint32_t CTivData::AsRgb() const {
    const auto word = static_cast<std::uint32_t>(payload_);
    switch (format_) {
        case FormatHsv:
            return HsvToRgb(word);
        case FormatYuv:
            return YuvToRgb(word);
        case FormatLab:
            return LabToRgb(word);
        case FormatColorFloat:
            return AsColorUByte();
        default:
            return AsUInt();
    }
}
std::uint32_t CTivData::AsHsv() const {
    if (format_ == FormatHsv || format_ == FormatColorUByte || format_ == FormatColorFloat) return AsColorUByte();
    return isPackedColor(format_) ? RgbToHsv(AsRgb()) : 0;
}
std::uint32_t CTivData::AsYuv() const {
    if (format_ == FormatYuv || format_ == FormatColorUByte || format_ == FormatColorFloat) return AsColorUByte();
    return isPackedColor(format_) ? RgbToYuv(AsRgb()) : 0;
}
std::uint32_t CTivData::AsLab() const {
    if (format_ == FormatLab || format_ == FormatColorUByte || format_ == FormatColorFloat) return AsColorUByte();
    return isPackedColor(format_) ? RgbToLab(AsRgb()) : 0;
}
std::uint32_t CTivData::AsColorUByte() const {
    if (format_ == FormatColorFloat) return packColorFloat(AsColorFloat(), kByteShifts, 4, 0xFF);
    return isPackedColor(format_) ? static_cast<std::uint32_t>(payload_) : 0;
}
std::uint32_t CTivData::AsRgb10() const {
    if (format_ == FormatRgb10) return static_cast<std::uint32_t>(payload_);
    if (format_ == FormatColorFloat) return packColorFloat(AsColorFloat(), kRgb10Shifts, 3, 0x3FF);
    return isPackedColor(format_) ? bytesToRgb10(AsRgb()) : 0;
}
std::uint64_t CTivData::AsRgb16() const { return format_ == FormatRgb16 ? payload_ : 0; }

CTivData::Point CTivData::AsPoint() const {
    if (format_ == FormatPoint) return fromPayload<Point>(payload_);
    if (format_ != FormatComplex && format_ != FormatFPoint) return {0, 0};
    const FPoint point = fromPayload<FPoint>(payload_);
    return {static_cast<std::int32_t>(truncated(point.x)), static_cast<std::int32_t>(truncated(point.y))};
}
CTivData::FPoint CTivData::AsFPoint() const {
    if (format_ == FormatComplex || format_ == FormatFPoint) return fromPayload<FPoint>(payload_);
    if (format_ != FormatPoint) return {0, 0};
    const Point point = fromPayload<Point>(payload_);
    return {static_cast<float>(point.x), static_cast<float>(point.y)};
}
const float* CTivData::AsColorFloat() const {
    return format_ == FormatColorFloat ? fromPayload<const float*>(payload_) : nullptr;
}
const CTivRect* CTivData::AsRect() const {
    return format_ == FormatRect ? fromPayload<const CTivRect*>(payload_) : nullptr;
}
const void* CTivData::AsRef() const {
    const bool served = nur_is_type(format_, {FormatVector, FormatImage, FormatRef, FormatColorFloat, FormatQuad}) ||
                        format_ == FormatString;
    return served ? fromPayload<const void*>(payload_) : nullptr;
}

std::int32_t CTivData::GetFormatSize(Format format) { return info(format) ? info(format)->size : 0; }
std::int32_t CTivData::GetFormatBits(Format format) { return info(format) ? info(format)->bits : 0; }
std::int32_t CTivData::GetBitsPerChannel(Format format) {
    const std::int32_t channels = GetChannels(format);
    return channels ? GetFormatBits(format) / channels : GetFormatBits(format);
}
const char* CTivData::GetFormatName(Format format) { return info(format) ? info(format)->name : nullptr; }
bool CTivData::IsColor(Format format) { return info(format) && info(format)->isColor; }
bool CTivData::IsInteger(Format format) { return info(format) && info(format)->isInteger; }
bool CTivData::IsSigned(Format format) { return info(format) && info(format)->isSigned; }
std::int32_t CTivData::GetChannels(Format format) { return info(format) ? info(format)->channels : 0; }
std::uint64_t CTivData::GetByteCount(Format format, std::uint64_t count) {
    return (static_cast<std::uint64_t>(GetFormatBits(format)) * count + 7) / 8;
}
CTivData::Format CTivData::FindFormat(const char* name) {
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        if (std::strcmp(kFormats[i].name, name) == 0) return static_cast<Format>(i);
    }
    return FormatNone;
}

namespace {

bool isReadable(CTivData::Format format) {
    using D = CTivData;
    return nur_is_type(format, {D::FormatByte,        D::FormatShort,        D::FormatInt,        D::FormatUByte,
                                D::FormatUShort,      D::FormatUInt,         D::FormatFloat,      D::FormatDouble,
                                D::FormatRgb,         D::FormatHsv,          D::FormatYuv,        D::FormatComplex,
                                D::FormatPoint,       D::FormatRef,          D::FormatBinary,     D::FormatFPoint,
                                D::FormatLab,         D::FormatRect,         D::FormatColorUByte, D::FormatColorFloat,
                                D::FormatRgb10,       D::FormatRgb16,        D::FormatCoord3dC16, D::FormatCoord3dAC16,
                                D::FormatCoord3dCR16, D::FormatCoord3dACRW16});
}

// The element's bytes for a value, by the format of the destination; false where nothing is written.
bool convertElement(CTivData::Format format, const CTivData& value, std::uint64_t& payload) {
    switch (format) {
        case CTivData::FormatByte:
        case CTivData::FormatUByte:
            payload = value.AsUByte();
            return true;
        case CTivData::FormatShort:
        case CTivData::FormatUShort:
            payload = value.AsUShort();
            return true;
        case CTivData::FormatInt:
            payload = toPayload(value.AsInt());
            return true;
        case CTivData::FormatUInt:
            payload = value.AsUInt();
            return true;
        case CTivData::FormatFloat:
            payload = toPayload(value.AsFloat());
            return true;
        case CTivData::FormatDouble:
            payload = toPayload(value.AsDouble());
            return true;
        case CTivData::FormatRgb:
            payload = value.AsRgb();
            return true;
        case CTivData::FormatHsv:
            payload = value.AsHsv();
            return true;
        case CTivData::FormatYuv:
            payload = value.AsYuv();
            return true;
        case CTivData::FormatLab:
            payload = value.AsLab();
            return true;
        case CTivData::FormatComplex:
        case CTivData::FormatFPoint:
            payload = toPayload(value.AsFPoint());
            return true;
        case CTivData::FormatPoint:
            payload = toPayload(value.AsPoint());
            return true;
        case CTivData::FormatRef:
            payload = toPayload(value.AsRef());
            return true;
        case CTivData::FormatColorUByte:
            payload = value.AsColorUByte();
            return true;
        case CTivData::FormatRgb10:
            payload = value.AsRgb10();
            return true;
        case CTivData::FormatRgb16:
            payload = value.AsRgb16();
            return true;
        case CTivData::FormatCoord3dC16:
        case CTivData::FormatCoord3dAC16:
        case CTivData::FormatCoord3dCR16:
        case CTivData::FormatCoord3dACRW16:
            payload = value.GetPayload();
            return true;
        default:
            return false;
    }
}

}  // namespace

CTivData CTivData::ReadElement(Format format, const void* base, std::uint64_t index) {
    if (!isReadable(format)) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(base);
    if (format == CTivData::FormatBinary) return {format, bytes[index / 8] >> (index % 8) & 1u};
    const auto size = static_cast<std::size_t>(CTivData::GetFormatSize(format));
    const std::uint8_t* element = bytes + index * size;
    if (size > 8) return {format, toPayload(element)};
    std::uint64_t payload = 0;
    std::memcpy(&payload, element, size);
    return {format, payload};
}

void CTivData::WriteElement(Format format, void* base, std::uint64_t index, const CTivData& value) {
    auto* bytes = static_cast<std::uint8_t*>(base);
    if (format == CTivData::FormatBinary) {
        const auto bit = static_cast<std::uint8_t>(1u << (index % 8));
        auto& byte = bytes[index / 8];
        byte = static_cast<std::uint8_t>(value.AsBool() ? byte | bit : byte & ~bit);
        return;
    }
    const auto size = static_cast<std::size_t>(CTivData::GetFormatSize(format));
    std::uint8_t* element = bytes + index * size;
    if (format == CTivData::FormatRect || format == CTivData::FormatColorFloat) {
        const void* source = format == CTivData::FormatRect ? static_cast<const void*>(value.AsRect())
                                                            : static_cast<const void*>(value.AsColorFloat());
        if (source) std::memmove(element, source, size);
        return;
    }
    std::uint64_t payload = 0;
    if (convertElement(format, value, payload)) std::memcpy(element, &payload, size);
}
