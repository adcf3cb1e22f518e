#include "analysis/stats.h"

#include "analysis/CTivBasic.h"
#include "primitives/acceleration.h"
#include "tests/support/library.h"
#include "tests/support/row_buffers.h"

using namespace tonewright;

using D = CTivData;

namespace {

struct Measured {
    float mean = -7, deviation = -7, min = -7, max = -7;
    StatsPointers Pointers() { return {&mean, &deviation, &min, &max}; }
};

void expectMeasured(const Measured& measured, double mean, double deviation, double least, double most) {
    EXPECT_FLOAT_EQ(measured.mean, static_cast<float>(mean));
    EXPECT_FLOAT_EQ(measured.deviation, static_cast<float>(deviation));
    EXPECT_EQ(measured.min, static_cast<float>(least));
    EXPECT_EQ(measured.max, static_cast<float>(most));
}

}  // namespace

TEST(Stats, MonochromeRoiWhateverFormatAndLevel) {
    for (const int level : {0, 1, 2}) {
        ctiv_SetAccelerationLevel(level);
        for (const D::Format format :
             {D::FormatUByte, D::FormatByte, D::FormatChar, D::FormatUShort, D::FormatShort, D::FormatFloat}) {
            CTivImage image(5, 3, format, nullptr, true);
            for (int i = 0; i < 15; ++i) image.SetData(i % 5, i / 5, D::Int(99));  // outside the ROI
            const int values[4] = {2, 4, 4, 10};
            for (int i = 0; i < 4; ++i) {
                if (format == D::FormatChar) {
                    static_cast<std::int8_t*>(image.GetData())[5 * (1 + i / 2) + 2 + i % 2] =
                        static_cast<std::int8_t>(values[i]);
                } else {
                    image.SetData(2 + i % 2, 1 + i / 2, D::Int(values[i]));
                }
            }
            ASSERT_TRUE(image.SetRoi({2, 1, 2, 2}));
            Measured measured;
            ASSERT_EQ(stats(image.GetRecord(), measured.Pointers()), 0);
            expectMeasured(measured, 5, 3, 2, 10);  // squares 136 / 4 - 25 = 9
        }
    }
}

TEST(Stats, NegativeValuesKeepTheirSign) {
    CTivImage shorts(2, 1, D::FormatShort, nullptr, true), bytes(2, 1, D::FormatByte, nullptr, true);
    for (CTivImage* image : {&shorts, &bytes}) {
        image->SetData(0, 0, D::Int(-100));
        image->SetData(1, 0, D::Int(-120));
        Measured measured;
        ASSERT_EQ(stats(image->GetRecord(), measured.Pointers()), 0);
        expectMeasured(measured, -110, 10, -120, -100);
    }
}

TEST(Stats, OnePixelAndFlatImagesDeviateByNothing) {
    CTivImage image(1920, 40, D::FormatUByte, nullptr, true);
    std::fill_n(static_cast<std::uint8_t*>(image.GetData()), 1920 * 40, std::uint8_t{201});
    Measured measured;
    ASSERT_EQ(stats(image.GetRecord(), measured.Pointers()), 0);
    expectMeasured(measured, 201, 0, 201, 201);
    image.SetData(7, 7, D::Int(3));
    ASSERT_TRUE(image.SetRoi({7, 7, 1, 1}));
    ASSERT_EQ(stats(image.GetRecord(), measured.Pointers()), 0);
    expectMeasured(measured, 3, 0, 3, 3);
}

TEST(Stats, ColorChannelsInMemoryOrderAndRedFirstFromTheOperator) {
    struct Row {
        D::Format format;
        std::uint64_t dark, light;
    };
    // First channel 10 and 30, second 40 and 60, third 70 and 110; the fourth is ignored.
    constexpr Row kRows[] = {{D::FormatRgb, 0xFF46280A, 0x006E3C1E},
                             {D::FormatHsv, 0x0046280A, 0x7F6E3C1E},
                             {D::FormatYuv, 0x0046280A, 0x7F6E3C1E},
                             {D::FormatLab, 0x0046280A, 0x7F6E3C1E},
                             {D::FormatRgb10, 0xC0000000u | 70 << 20 | 40 << 10 | 10, 110 << 20 | 60 << 10 | 30},
                             {D::FormatRgb16, 0xFFFF00460028000A, 0x0000006E003C001E}};
    for (const Row& row : kRows) {
        CTivImage image(9, 2, row.format, nullptr, true);
        for (int i = 0; i < 18; ++i) image.SetData(i % 9, i / 9, {row.format, i % 2 ? row.light : row.dark});
        Measured channels[3];
        ASSERT_EQ(
            stats(image.GetRecord(), {}, {channels[0].Pointers(), channels[1].Pointers(), channels[2].Pointers()}), 0);
        expectMeasured(channels[0], 20, 10, 10, 30);
        expectMeasured(channels[1], 50, 10, 40, 60);
        expectMeasured(channels[2], 90, 20, 70, 110);

        float mean[3], deviation[3], most[3];
        CTivBasic basic;
        ASSERT_TRUE(basic.Stats(image, mean, deviation, nullptr, most));
        EXPECT_EQ(mean[0], 90);
        EXPECT_EQ(mean[2], 20);
        EXPECT_EQ(deviation[0], 20);
        EXPECT_EQ(most[1], 60);
    }
}

TEST(Stats, VectorsOfEveryNumberFormat) {
    const float floats[3] = {1.5f, -2.5f, 4};
    const std::int32_t ints[3] = {-2147483647, 0, 2147483647};
    const std::uint32_t unsignedInts[2] = {4294967295u, 4294967293u};
    const double doubles[2] = {1e10, -1e10};
    const std::int32_t points[4] = {1000, 3, 2000, 5};  // the value at x
    const float realPoints[4] = {1000, 0.5f, 2000, 1.5f};
    struct Row {
        D::Format format;
        const void* data;
        int size;
        double mean, least, most;
    };
    const Row rows[] = {{D::FormatFloat, floats, 3, 1, -2.5, 4},
                        {D::FormatInt, ints, 3, 0, -2147483647.0, 2147483647.0},
                        {D::FormatUInt, unsignedInts, 2, 4294967294.0, 4294967293.0, 4294967295.0},
                        {D::FormatDouble, doubles, 2, 0, -1e10, 1e10},
                        {D::FormatPoint, points, 2, 4, 3, 5},
                        {D::FormatFPoint, realPoints, 2, 1, 0.5, 1.5}};
    for (const Row& row : rows) {
        const NurVector vector{row.format, const_cast<void*>(row.data), row.size};
        Measured measured;
        ASSERT_EQ(stats(&vector, measured.Pointers()), 0);
        EXPECT_FLOAT_EQ(measured.mean, static_cast<float>(row.mean)) << row.format;
        EXPECT_FLOAT_EQ(measured.min, static_cast<float>(row.least)) << row.format;
        EXPECT_FLOAT_EQ(measured.max, static_cast<float>(row.most)) << row.format;
    }
}

TEST(Stats, RefusalsSayWhyAndLeaveTheValues) {
    CTivImage gray(2, 2, D::FormatUByte, nullptr, true), color(2, 2, D::FormatRgb, nullptr, true),
        ints(2, 2, D::FormatInt, nullptr, true);
    Measured measured;
    const StatsPointers pointers = measured.Pointers();
    EXPECT_EQ(stats(gray.GetRecord(), {}, {StatsPointers{}, StatsPointers{}, pointers}), 1);
    EXPECT_EQ(LastError(), "stats: cannot get color stats on monochrome input\n");
    EXPECT_EQ(stats(color.GetRecord(), pointers), 1);
    EXPECT_EQ(LastError(), "stats: cannot get monochrome stats on color input\n");
    EXPECT_EQ(stats(ints.GetRecord(), pointers), 1);
    EXPECT_EQ(LastError(), "stats: cannot process object type \"int32\"\n");
    const NurVector empty{D::FormatInt, nullptr, 0};
    EXPECT_EQ(stats(&empty, {}), 1);
    EXPECT_EQ(LastError(), "stats: cannot process empty vector\n");
    ASSERT_TRUE(gray.SetRoi({1, 1, 1, 0}));
    EXPECT_EQ(stats(gray.GetRecord(), pointers), 1);
    EXPECT_EQ(stats(gray.GetRecord(), {}), 0);  // nothing asked for

    float mean[3] = {-7, -7, -7};
    CTivBasic basic;
    EXPECT_FALSE(basic.Stats(gray, mean, nullptr, nullptr, nullptr));
    EXPECT_EQ(LastError(), "stats: cannot get color stats on monochrome input\n");
    EXPECT_FALSE(basic.GetStats(CTivImage(), mean, nullptr, nullptr, nullptr));
    EXPECT_EQ(LastError(), "stats: cannot process object type \"unknown\"\n");
    EXPECT_EQ(mean[0], -7);
    EXPECT_EQ(measured.mean, -7);
}
