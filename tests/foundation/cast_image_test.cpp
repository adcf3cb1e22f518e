#include "foundation/cast_image.h"

#include <cmath>
#include <limits>

#include "foundation/CTivImage.h"
#include "foundation/cast_rows.h"
#include "primitives/acceleration.h"
#include "primitives/wide.h"
#include "tests/support/library.h"
#include "tests/support/row_buffers.h"

using namespace tonewright;

using D = CTivData;

namespace {

constexpr D::Format kNumeric[] = {D::FormatByte, D::FormatUByte, D::FormatShort, D::FormatUShort, D::FormatFloat};

CTivImage rowOf(D::Format format, const std::vector<double>& values) {
    CTivImage image(static_cast<int>(values.size()), 1, format, nullptr, true);
    for (std::size_t i = 0; i < values.size(); ++i) image.SetData(static_cast<int>(i), 0, D::Double(values[i]));
    return image;
}

std::vector<double> valuesOf(const CTivImage& image) {
    std::vector<double> values;
    for (int y = 0; y < image.GetHeight(); ++y) {
        for (int x = 0; x < image.GetWidth(); ++x) values.push_back(image.GetData(x, y).AsDouble());
    }
    return values;
}

struct Case {
    D::Format from;
    int code;
    int mode;
    std::vector<double> in;
    std::vector<double> out;
};

const Case kCases[] = {
    // Mode 0 clips.
    {D::FormatByte, CAST_UBYTE, 0, {-128, -1, 0, 127}, {0, 0, 0, 127}},
    {D::FormatUByte, CAST_BYTE, 0, {0, 127, 128, 255}, {0, 127, 127, 127}},
    {D::FormatShort, CAST_UBYTE, 0, {-32768, -1, 255, 256, 32767}, {0, 0, 255, 255, 255}},
    {D::FormatShort, CAST_BYTE, 0, {-32768, -129, -128, 127, 128}, {-128, -128, -128, 127, 127}},
    {D::FormatShort, CAST_USHORT, 0, {-32768, -1, 32767}, {0, 0, 32767}},
    {D::FormatUShort, CAST_BYTE, 0, {0, 127, 128, 65535}, {0, 127, 127, 127}},
    {D::FormatUShort, CAST_SHORT, 0, {0, 32767, 32768, 65535}, {0, 32767, 32767, 32767}},
    {D::FormatByte, CAST_USHORT, 0, {-128, -1, 127}, {0, 0, 127}},
    {D::FormatFloat, CAST_UBYTE, 0, {-0.9, 0.9, 254.9, 255.9, 1e20}, {0, 0, 254, 255, 255}},
    {D::FormatFloat, CAST_BYTE, 0, {-1e20, -128.9, -1.9, 1.9, 127.9}, {-128, -128, -1, 1, 127}},
    {D::FormatFloat, CAST_USHORT, 0, {-1, 65535.9, 70000, 3.5}, {0, 65535, 65535, 3}},
    {D::FormatFloat, CAST_SHORT, 0, {-32768.9, -40000, 32767.9, -3.5}, {-32768, -32768, 32767, -3}},
    {D::FormatUShort, CAST_FLOAT, 1, {0, 65535}, {0, 65535}},
    // Mode 1 moves a range of the same or smaller width, or keeps it where it fits.
    {D::FormatByte, CAST_UBYTE, 1, {-128, 0, 127}, {0, 128, 255}},
    {D::FormatByte, CAST_USHORT, 1, {-128, 0, 127}, {32640, 32768, 32895}},
    {D::FormatShort, CAST_USHORT, 1, {-32768, 0, 32767}, {0, 32768, 65535}},
    {D::FormatUByte, CAST_BYTE, 1, {0, 128, 255}, {-128, 0, 127}},
    {D::FormatUByte, CAST_SHORT, 1, {0, 255}, {0, 255}},
    // Mode 1 stretches a wider one by its own range: (value - least) x 255 / (most - least), cut.
    {D::FormatUShort, CAST_UBYTE, 1, {1000, 1001, 1500, 2000}, {0, 0, 127, 255}},
    {D::FormatShort, CAST_UBYTE, 1, {-300, 0, 300}, {0, 127, 255}},
    {D::FormatShort, CAST_BYTE, 1, {-300, 0, 300}, {-128, -1, 127}},
    {D::FormatFloat, CAST_UBYTE, 1, {0.25, 0.5, 1.25}, {0, 63, 255}},
    {D::FormatFloat, CAST_SHORT, 1, {-1, 0, 1}, {-32768, -1, 32767}},
    {D::FormatUShort, CAST_UBYTE, 1, {77, 77}, {0, 0}},  // no range at all
    // Code 5 always converts, from mode 1 on stretched to 0 to 1.
    {D::FormatUByte, CAST_FLOAT_ALWAYS, 0, {3, 7}, {3, 7}},
    {D::FormatUByte, CAST_FLOAT_ALWAYS, 1, {10, 20, 30}, {0, 0.5, 1}},
    {D::FormatFloat, CAST_FLOAT_ALWAYS, 1, {-2, 0, 2}, {0, 0.5, 1}},
    {D::FormatFloat, CAST_FLOAT, 1, {-2, 0, 2}, {-2, 0, 2}},
};

}  // namespace

TEST(CastImage, ClipsMovesAndStretchesWhateverTheLevel) {
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        for (const Case& one : kCases) {
            const CTivImage source = rowOf(one.from, one.in);
            CTivImage destination;
            ASSERT_EQ(castImage(source.GetRecord(), destination.GetRecord(), one.code, one.mode), 0);
            EXPECT_EQ(valuesOf(destination), one.out)
                << D::GetFormatName(one.from) << " code " << one.code << " mode " << one.mode;
        }
    }
}

TEST(CastImage, NoNumberNeitherWidensTheRangeNorLeavesIt) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    CTivImage bytes, shorts;
    const CTivImage source = rowOf(D::FormatFloat, {nan, 0, nan, 10});
    ASSERT_EQ(castImage(source.GetRecord(), bytes.GetRecord(), CAST_UBYTE, 1), 0);
    EXPECT_EQ(valuesOf(bytes), (std::vector<double>{0, 0, 0, 255}));
    ASSERT_EQ(castImage(source.GetRecord(), shorts.GetRecord(), CAST_SHORT, 0), 0);
    EXPECT_EQ(valuesOf(shorts), (std::vector<double>{0, 0, 0, 10}));
}

TEST(CastImage, EveryWordIsStretchedAsByWholeDivision) {
    CTivImage source(256, 256, D::FormatUShort, nullptr, true);
    auto* words = static_cast<std::uint16_t*>(source.GetData());
    for (int i = 0; i < 65536; ++i) words[i] = static_cast<std::uint16_t>(std::max(i, 3));
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        CTivImage bytes(256, 256, D::FormatUByte, nullptr, true);
        ASSERT_TRUE(bytes.ConvertFormat(source, 1));
        for (int i = 0; i < 65536; ++i) {
            ASSERT_EQ(static_cast<const std::uint8_t*>(bytes.GetData())[i], (words[i] - 3) * 255 / 65532) << i;
        }
    }
}

TEST(CastImage, OnlyTheRoiCountsAndIsWritten) {
    CTivImage source = rowOf(D::FormatUShort, {0, 100, 110, 120, 65535});
    ASSERT_TRUE(source.SetRoi({1, 0, 3, 1}));
    CTivImage destination = rowOf(D::FormatUByte, {9, 9, 9, 9, 9});
    ASSERT_TRUE(destination.SetRoi({2, 0, 3, 1}));
    ASSERT_TRUE(destination.ConvertFormat(source, 1));
    EXPECT_EQ(valuesOf(destination), (std::vector<double>{9, 9, 0, 127, 255}));
    // The signed form of one width is taken over and relabelled.
    CTivImage relabelled = rowOf(D::FormatByte, {0, 0, 0});
    ASSERT_EQ(castImage(source.GetRecord(), relabelled.GetRecord(), CAST_UBYTE, 0), 0);
    EXPECT_EQ(relabelled.GetFormat(), D::FormatUByte);
    EXPECT_EQ(valuesOf(relabelled), (std::vector<double>{100, 110, 120}));
}

TEST(CastImage, InPlaceClosesUpAndRefusesToGrow) {
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        std::vector<double> values(300);
        for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<double>(i);
        CTivImage image = rowOf(D::FormatFloat, values);
        ASSERT_EQ(castImage(image.GetRecord(), image.GetRecord(), CAST_UBYTE, 0), 0);
        std::fill(values.begin() + 255, values.end(), 255);
        EXPECT_EQ(valuesOf(image), values);
        EXPECT_EQ(castImage(image.GetRecord(), image.GetRecord(), CAST_USHORT, 0), 1);
        EXPECT_EQ(LastError(), "castImage: conversion not supported");
        EXPECT_EQ(valuesOf(image), values);
    }
}

TEST(CastImage, BinaryBothWays) {
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        CTivImage gray(16, 2, D::FormatUByte, nullptr, true), binary(16, 2, D::FormatBinary, nullptr, true);
        for (int x = 0; x < 16; ++x) gray.SetData(x, 1, D::Int(10 * x));
        ASSERT_TRUE(binary.ConvertFormat(gray, 0));  // at or above 1
        EXPECT_EQ(static_cast<const std::uint8_t*>(binary.GetData())[0], 0);
        EXPECT_EQ(static_cast<const std::uint8_t*>(binary.GetData())[2], 0xFE);
        ASSERT_TRUE(binary.ConvertFormat(gray, 1));  // at or above (0 + 1 + 150) / 2 = 75
        EXPECT_EQ(static_cast<const std::uint8_t*>(binary.GetData())[3], 0xFF);
        EXPECT_EQ(static_cast<const std::uint8_t*>(binary.GetData())[2], 0x00);
        CTivImage bytes(16, 2, D::FormatByte, nullptr, true);
        ASSERT_TRUE(bytes.ConvertFormat(binary, 0));
        EXPECT_EQ(bytes.GetData(7, 1).AsInt(), 0);
        EXPECT_EQ(bytes.GetData(8, 1).AsInt(), 1);

        const CTivImage below = rowOf(D::FormatByte, {-128, -10, -9, 8, 0, 0, 0, 0});
        CTivImage selected(8, 1, D::FormatBinary, nullptr, true);
        ASSERT_TRUE(selected.ConvertFormat(below, 1));  // (-128 + 1 + 8) / 2 = -59
        EXPECT_EQ(static_cast<const std::uint8_t*>(selected.GetData())[0], 0xFE);
    }
}

TEST(CastImage, RefusalsSayWhy) {
    struct Refusal {
        D::Format from, to;
        int code, width;
        const char* text;
    };
    const Refusal refusals[] = {
        {D::FormatUByte, D::FormatUByte, 12, 8, "castImage: unknown result type code 12\n"},
        {D::FormatUByte, D::FormatNone, -1, 8, "castImage: unknown result type code -1\n"},
        {D::FormatInt, D::FormatUByte, 0, 8, "castImage: cannot process object type \"int32\"\n"},
        {D::FormatLab, D::FormatUByte, 0, 8, "castImage: cannot process object type \"LAB\"\n"},
        {D::FormatUShort, D::FormatBinary, 6, 8, "castImage: cannot process object type \"uint16\"\n"},
        {D::FormatUByte, D::FormatBinary, 6, 0, "castImage: cannot process object type \"Binary\"\n"},
        {D::FormatBinary, D::FormatUShort, 2, 8, "castImage: cannot process object type \"Binary\"\n"},
        {D::FormatBinary, D::FormatUByte, 0, 7, "castImage: cannot process object type \"Binary\"\n"},
        {D::FormatUByte, D::FormatUShort, 0, 8, "castImage: incompatible output image type: ushort\n"},
        {D::FormatUByte, D::FormatUShort, 2, 7, "castImage: output image size too small\n"},
        {D::FormatRgb, D::FormatFloat, 5, 8, "castImage: conversion not supported"},
        {D::FormatUByte, D::FormatRgb, 7, 8, "castImage: conversion not supported"},
    };
    for (const Refusal& one : refusals) {
        CTivImage source(8, 1, one.from, nullptr, true), destination;
        if (one.to != D::FormatNone) destination.Set(one.width, one.width ? 1 : 0, one.to, nullptr, true);
        if (one.width == 0) destination.GetRecord()->format = one.to;
        EXPECT_EQ(castImage(source.GetRecord(), destination.GetRecord(), one.code, 0), 1);
        EXPECT_EQ(LastError(), one.text);
    }
    CTivImage color(2, 1, D::FormatRgb, nullptr, true), copy;
    color.SetData(1, 0, D::Rgb(1, 2, 3));
    EXPECT_EQ(castImage(color.GetRecord(), copy.GetRecord(), CAST_RGB, 0), 0);
    EXPECT_EQ(copy.GetData(1, 0).AsRgb(), 0x010203u);
    EXPECT_EQ(castCode(D::FormatFloat), 4);
    EXPECT_EQ(castCode(D::FormatPoint), 11);
    EXPECT_EQ(castCode(D::FormatLab), -1);
}

TEST(CastRows, WideRowsEqualPlainOnesAtAnyLengthAndAddress) {
    if (!HasAvx2()) GTEST_SKIP() << "needs AVX2";
    const CastScale scale{-1000.0f, 255.0f, 33000.0f};
    for (const D::Format from : kNumeric) {
        for (const D::Format to : kNumeric) {
            for (const CastKind kind : {CastKind::Clip, CastKind::Offset, CastKind::Stretch}) {
                for (const std::size_t count : kRowLengths) {
                    const auto fromBytes = static_cast<std::size_t>(D::GetFormatSize(from));
                    const auto toBytes = static_cast<std::size_t>(D::GetFormatSize(to));
                    const std::size_t offset = from == D::FormatFloat && to == D::FormatUByte ? 4 : 1;
                    GuardedBytes in = RandomGuarded(count * fromBytes, offset, 13);
                    GuardedBytes plain(count * toBytes, 1), wide = plain;
                    GetCastRow(from, to, kind, false)(in.Data(), plain.Data(), count, scale);
                    GetCastRow(from, to, kind, true)(in.Data(), wide.Data(), count, scale);
                    EXPECT_EQ(plain.Content(), wide.Content()) << from << " " << to << " " << static_cast<int>(kind);
                    EXPECT_TRUE(plain.GuardsStand() && wide.GuardsStand());
                }
            }
        }
    }
    EXPECT_EQ(GetCastRow(D::FormatRgb, D::FormatUByte, CastKind::Clip, true), nullptr);
    EXPECT_EQ(GetCastRow(D::FormatUByte, D::FormatInt, CastKind::Clip, false), nullptr);
}

TEST(MapRange, ShiftsByTheHighestBitInUse) {
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        for (const auto& [most, shift] : {std::pair{255, 0}, {256, 1}, {4095, 4}, {4096, 5}, {65535, 8}, {0, 0}}) {
            const CTivImage source = rowOf(D::FormatUShort, {0, most / 2.0, static_cast<double>(most)});
            CTivImage destination;
            ASSERT_EQ(CTivUtilCastImage_16u8u_MapRange(source.GetRecord(), destination.GetRecord(), true), 0);
            EXPECT_EQ(valuesOf(destination), (std::vector<double>{0, static_cast<double>(most / 2 >> shift),
                                                                  static_cast<double>(most >> shift)}));
        }
    }
}

TEST(MapRange, TakesTheRoisSizeOrTheImagesWithTheRoi) {
    CTivImage source = rowOf(D::FormatUShort, {65535, 512, 1023, 65535});
    ASSERT_TRUE(source.SetRoi({1, 0, 2, 1}));
    CTivImage small, whole;
    ASSERT_EQ(CTivUtilCastImage_16u8u_MapRange(source.GetRecord(), small.GetRecord(), true), 0);
    EXPECT_EQ(valuesOf(small), (std::vector<double>{128, 255}));
    ASSERT_EQ(CTivUtilCastImage_16u8u_MapRange(source.GetRecord(), whole.GetRecord(), false), 0);
    EXPECT_EQ(valuesOf(whole), (std::vector<double>{0, 128, 255, 0}));
    EXPECT_EQ(whole.GetRoi(), (CTivRect{1, 0, 2, 1}));
    // Once more into what it made itself, and into one that is too small as a whole and stays as it was.
    source.SetData(1, 0, D::Int(1024));
    ASSERT_EQ(CTivUtilCastImage_16u8u_MapRange(source.GetRecord(), whole.GetRecord(), false), 0) << LastError();
    EXPECT_EQ(valuesOf(whole), (std::vector<double>{0, 128, 127, 0}));
    EXPECT_EQ(whole.GetRoi(), (CTivRect{1, 0, 2, 1}));
    EXPECT_EQ(CTivUtilCastImage_16u8u_MapRange(source.GetRecord(), small.GetRecord(), false), 1);
    EXPECT_EQ(small.GetRoi(), (CTivRect{0, 0, 2, 1}));
}

TEST(MapRange, RefusalsSayWhy) {
    const std::string name = "CTivUtilCastImage_16u8u_MapRange: ";
    CTivImage bytes = rowOf(D::FormatUByte, {1, 2}), words = rowOf(D::FormatUShort, {1, 2}),
              deep = rowOf(D::FormatUShort, {1, 999});
    EXPECT_EQ(CTivUtilCastImage_16u8u_MapRange(bytes.GetRecord(), bytes.GetRecord(), true), 1);
    EXPECT_EQ(LastError(), name + "cannot process object type \"uint8\"\n");
    EXPECT_EQ(CTivUtilCastImage_16u8u_MapRange(words.GetRecord(), nullptr, true), 0);
    for (CTivImage* image : {&words, &deep}) {
        EXPECT_EQ(CTivUtilCastImage_16u8u_MapRange(image->GetRecord(), image->GetRecord(), true), 1);
        EXPECT_EQ(LastError(), name + "consume operation is not allowed\n");
        EXPECT_EQ(CTivUtilCastImage_16u8u_MapRange(image->GetRecord(), rowOf(D::FormatUByte, {1}).GetRecord(), true),
                  1);
        EXPECT_EQ(LastError(), name + "failed in the CTivImageTryUseReservedMem\n");
    }
}
