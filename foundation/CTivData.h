#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>

#include "foundation/CTivRect.h"

/// One element of a vector or an image: a format and 8 bytes read by it.
///
/// Packed colors (FormatRgb, Hsv, Yuv, Lab, ColorUByte) hold the first component in bits 16 to 23, the second in 8 to
/// 15, the third in 0 to 7, the fourth in 24 to 31; in memory FormatRgb is thus blue, green, red, reserved. FormatRgb10
/// holds red in bits 20 to 29, green in 10 to 19, blue in 0 to 9. FormatRgb16 is the words blue, green, red, reserved.
/// FormatRect and FormatColorFloat values point to 16 bytes that they do not own.
class CTivData {
public:
    enum Format : std::int32_t {
        FormatNone = -1,
        FormatGeneric = 0,
        FormatSync,
        FormatVector,
        FormatImage,
        FormatVolume,
        FormatChar,
        FormatByte,
        FormatShort,
        FormatInt,
        FormatLong,
        FormatUByte,
        FormatUShort,
        FormatUInt,
        FormatULong,
        FormatHex8,
        FormatHex16,
        FormatHex,
        FormatFloat,
        FormatDouble,
        FormatRgb,
        FormatHsv,
        FormatYuv,
        FormatObsolete3Band,
        FormatComplex,
        FormatPoint,
        FormatString,
        FormatFile,
        FormatRef,
        FormatBinary,
        FormatFPoint,
        FormatLab,
        FormatRect,
        FormatColorUByte,
        FormatColorFloat,
        FormatInt64,
        FormatUInt64,
        FormatRgb10,
        FormatQuad,
        FormatSegment,
        FormatRgb16,
        FormatCoord3dC16,
        FormatCoord3dAC16,
        FormatCoord3dCR16,
        FormatCoord3dACRW16,
        FormatCount
    };
    struct Point {
        std::int32_t x, y;
    };
    struct FPoint {
        float x, y;
    };

    CTivData() = default;
    CTivData(Format format, std::uint64_t payload) : format_(format), payload_(payload) {}

    static CTivData Int(std::int32_t value);
    static CTivData Float(float value);
    static CTivData Double(double value);
    static CTivData UByte(std::uint8_t value) { return {FormatUByte, value}; }
    static CTivData UShort(std::uint16_t value) { return {FormatUShort, value}; }
    static CTivData Rgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
    static CTivData Rgb10(std::uint32_t red, std::uint32_t green, std::uint32_t blue);
    static CTivData Rgb16(std::uint16_t red, std::uint16_t green, std::uint16_t blue);
    /// The four floats stay the caller's and must outlive the value.
    static CTivData ColorFloat(const float* components);

    /// FormatNone for a value that holds nothing.
    Format GetFormat() const { return format_; }
    std::uint64_t GetPayload() const { return payload_; }

    /// Reads never fail: a format that a read does not serve yields 0. Float and double truncate toward zero; what
    /// lies outside the range of the 64-bit integers, or is not a number, yields 0.
    std::uint8_t AsUByte() const;
    std::uint16_t AsUShort() const;
    std::int32_t AsInt() const;
    std::uint32_t AsUInt() const;
    float AsFloat() const;
    double AsDouble() const;
    bool AsBool() const;
    std::uint32_t AsRgb() const;
    std::uint32_t AsHsv() const;
    std::uint32_t AsYuv() const;
    std::uint32_t AsLab() const;
    std::uint32_t AsColorUByte() const;
    std::uint32_t AsRgb10() const;
    std::uint64_t AsRgb16() const;
    Point AsPoint() const;
    FPoint AsFPoint() const;
    const float* AsColorFloat() const;
    const CTivRect* AsRect() const;
    const void* AsRef() const;

    // The format table. Any value outside 0 to 43 yields 0, null or false.
    static std::int32_t GetFormatSize(Format format);      ///< bytes of one element
    static std::int32_t GetFormatBits(Format format);      ///< bits of one element
    static std::int32_t GetBitsPerChannel(Format format);  ///< bits / channels
    static const char* GetFormatName(Format format);       ///< "FormatRgb" and the like
    static bool IsColor(Format format);
    static bool IsInteger(Format format);
    static bool IsSigned(Format format);
    static std::int32_t GetChannels(Format format);
    /// Bytes of `count` elements: (bits x count + 7) / 8, in 64 bits.
    static std::uint64_t GetByteCount(Format format, std::uint64_t count);
    /// @return the format of a name as GetFormatName gives it, FormatNone if there is none
    static Format FindFormat(const char* name);

    /// Reads and writes one element at bit position `index x bits` of a block of elements, for vectors and images.
    /// Formats without a row here read as an empty value and write nothing.
    static CTivData ReadElement(Format format, const void* base, std::uint64_t index);
    static void WriteElement(Format format, void* base, std::uint64_t index, const CTivData& value);

private:
    Format format_ = FormatNone;
    std::uint64_t payload_ = 0;
};
