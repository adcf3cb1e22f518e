#include "foundation/CTivData.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using D = CTivData;

CTivData signedValue(D::Format format, std::int64_t value) { return {format, static_cast<std::uint64_t>(value)}; }

}  // namespace

TEST(FormatTable, LookupsOutsideTheTableGiveNothing) {
    for (const int outside : {-1, 44, 1000, -2147483647}) {
        const auto format = static_cast<D::Format>(outside);
        EXPECT_EQ(D::GetFormatBits(format), 0);
        EXPECT_EQ(D::GetFormatSize(format), 0);
        EXPECT_EQ(D::GetFormatName(format), nullptr);
        EXPECT_FALSE(D::IsColor(format));
        EXPECT_EQ(D::GetByteCount(format, 1000), 0u);
    }
}

TEST(FormatTable, DerivedSizes) {
    EXPECT_EQ(D::GetByteCount(D::FormatBinary, 8), 1u);
    EXPECT_EQ(D::GetByteCount(D::FormatBinary, 9), 2u);
    EXPECT_STREQ(D::GetFormatName(D::FormatLong), "FormatLong, 4, 32, 1, true, true");
    EXPECT_EQ(D::GetFormatBits(D::FormatLong), 0);
    EXPECT_EQ(D::GetBitsPerChannel(D::FormatUShort), 16);
    EXPECT_EQ(D::GetBitsPerChannel(D::FormatRgb), 8);
    EXPECT_EQ(D::GetBitsPerChannel(D::FormatRgb10), 10);
    EXPECT_EQ(D::GetBitsPerChannel(D::FormatRgb16), 16);
    EXPECT_EQ(D::GetBitsPerChannel(D::FormatColorFloat), 128);
    EXPECT_EQ(D::FindFormat("FormatRgb16"), D::FormatRgb16);
    EXPECT_EQ(D::FindFormat("FormatNothing"), D::FormatNone);
}

TEST(Data, NumbersReadBySignAndWidth) {
    const CTivData byte = signedValue(D::FormatByte, 0xFE);
    EXPECT_EQ(byte.AsInt(), -2);
    EXPECT_EQ(byte.AsUShort(), 0xFFFE);
    EXPECT_EQ(byte.AsUByte(), 0xFE);
    EXPECT_EQ(byte.AsFloat(), -2.0f);
    EXPECT_EQ(signedValue(D::FormatUByte, 0xFE).AsInt(), 254);
    EXPECT_EQ(signedValue(D::FormatShort, 0x8000).AsDouble(), -32768.0);
    EXPECT_EQ(signedValue(D::FormatUInt, 0xFFFFFFFF).AsFloat(), 4294967296.0f);
    EXPECT_EQ(signedValue(D::FormatInt64, -5).AsDouble(), -5.0);
    EXPECT_EQ(signedValue(D::FormatUInt64, -1).AsDouble(), 18446744073709551616.0);
    EXPECT_EQ(D::Float(-3.9f).AsInt(), -3);
    EXPECT_EQ(D::Double(300.7).AsUByte(), 300 - 256);
    EXPECT_EQ(D::Float(1e30f).AsInt(), 0);
    EXPECT_FALSE(D::Float(0.4f).AsBool());
    EXPECT_TRUE(signedValue(D::FormatInt64, std::int64_t{1} << 40).AsBool());
    EXPECT_FALSE(signedValue(D::FormatRgb16, 0xFFFF).AsBool());
    EXPECT_EQ(signedValue(D::FormatHex, 5).AsInt(), 0);
    EXPECT_EQ(CTivData().AsInt(), 0);
}

TEST(Data, ColorsMoveBetweenTheirForms) {
    const CTivData rgb = D::Rgb(1, 2, 3);
    EXPECT_EQ(rgb.AsRgb(), 0x010203u);
    EXPECT_EQ(rgb.AsRgb10(), 1u << 20 | 2u << 10 | 3u);
    EXPECT_EQ(rgb.AsRgb16(), 0u);
    EXPECT_EQ(D::Rgb16(1, 2, 3).AsRgb16(), 0x0000000100020003u);
    EXPECT_EQ(CTivData(D::FormatColorUByte, 0xA1B2C3D4).AsHsv(), 0xA1B2C3D4u);
    const float components[4] = {10.9f, 300.0f, 2.0f, 7.0f};
    const CTivData color = D::ColorFloat(components);
    EXPECT_EQ(color.AsRgb(), 0x070A2C02u);
    EXPECT_EQ(color.AsRgb10(), 10u << 20 | 300u << 10 | 2u);
    EXPECT_EQ(D::ColorFloat(nullptr).AsRgb(), 0u);
    EXPECT_EQ(color.AsColorFloat(), components);
    EXPECT_EQ(rgb.AsColorFloat(), nullptr);
    // White is white in every space: hue and saturation 0, luma 255 with neutral chroma.
    EXPECT_EQ(D::Rgb(255, 255, 255).AsHsv() & 0xFFFFFF, 0x0000FFu);
    EXPECT_EQ(D::Rgb(255, 255, 255).AsYuv() & 0xFFFFFF, 0xFF8080u);
}

TEST(Data, PointsAndRectangles) {
    const float at[2] = {2.7f, -2.7f};
    std::uint64_t payload;
    std::memcpy(&payload, at, sizeof payload);
    const CTivData point(D::FormatFPoint, payload);
    EXPECT_EQ(point.AsPoint().x, 2);
    EXPECT_EQ(point.AsPoint().y, -2);
    EXPECT_EQ(point.AsFPoint().y, -2.7f);
    EXPECT_EQ(D::Int(3).AsPoint().x, 0);
    EXPECT_EQ(D::Int(3).AsRect(), nullptr);
    EXPECT_EQ(D::Int(3).AsRef(), nullptr);
}
