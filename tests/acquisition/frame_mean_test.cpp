#include "acquisition/FrameMean.h"

#include <gtest/gtest.h>

#include "tests/support/library.h"

using namespace tonewright;

namespace {

using D = CTivData;

/// Two pixels, each with these channels.
CTivImage image(D::Format format, std::uint64_t first, std::uint64_t second) {
    CTivImage made(2, 1, format, nullptr, true);
    made.SetData(0, 0, D(format, first));
    made.SetData(1, 0, D(format, second));
    return made;
}

std::uint64_t color(D::Format format, std::uint64_t red, std::uint64_t green, std::uint64_t blue) {
    const int bits = format == D::FormatRgb16 ? 16 : format == D::FormatRgb10 ? 10 : 8;
    return red << 2 * bits | green << bits | blue;
}

std::uint64_t at(const CTivImage& picture, int x) {
    const CTivData data = picture.GetData(x, 0);
    if (picture.GetFormat() == D::FormatRgb16) return data.AsRgb16();
    return picture.GetFormat() == D::FormatRgb10 ? data.AsRgb10() : data.AsRgb();
}

TEST(FrameMean, FramesAverageToTheNearestEvenAtEveryDepth) {
    for (D::Format format : {D::FormatRgb, D::FormatRgb10, D::FormatRgb16}) {
        const std::uint64_t full = format == D::FormatRgb ? 255 : format == D::FormatRgb10 ? 1023 : 65535;
        FrameMean mean;
        // (10 + 11) / 2 = 10.5 to 10, (full + full) / 2, (7 + 8) / 2 = 7.5 to 8.
        EXPECT_EQ(mean.Add(image(format, color(format, 10, full, 7), 0)), "");
        EXPECT_EQ(mean.Add(image(format, color(format, 11, full, 8), color(format, 4, 0, 1))), "");
        const CTivImage picture = mean.Make({});
        EXPECT_EQ(at(picture, 0), color(format, 10, full, 8));
        EXPECT_EQ(at(picture, 1), color(format, 2, 0, 0));
        EXPECT_NE(mean.Add(image(D::FormatUByte, 1, 2)), "");
    }
    FrameMean gray;
    EXPECT_EQ(gray.Add(image(D::FormatUShort, 4000, 65535)), "");
    EXPECT_EQ(gray.Add(image(D::FormatUShort, 4003, 65535)), "");
    EXPECT_EQ(gray.Add(image(D::FormatUShort, 4004, 65535)), "");
    EXPECT_EQ(gray.Make({}).GetData(0, 0).AsUShort(), 4002);  // 4002.33
    EXPECT_EQ(gray.Make({}).GetData(1, 0).AsUShort(), 65535);
    EXPECT_NE(FrameMean().Add(CTivImage(8, 1, D::FormatBinary, nullptr, true)), "");
}

TEST(FrameMean, DarkAndFlatWorkOnTheMeanChannelByChannel) {
    const D::Format format = D::FormatRgb;
    FrameMean mean;
    mean.Add(image(format, color(format, 100, 50, 20), color(format, 60, 200, 5)));
    mean.Add(image(format, color(format, 101, 50, 20), color(format, 60, 200, 5)));
    FrameCorrection correction;
    correction.dark = image(format, color(format, 10, 60, 0), color(format, 10, 0, 0));
    // Means of the field: red 150, green 100, blue 40 (of which the second pixel has none).
    correction.flat = image(format, color(format, 200, 100, 80), color(format, 100, 100, 0));
    ASSERT_EQ(mean.Check(correction), "");
    const CTivImage picture = mean.Make(correction);
    // (100.5 - 10) x 150 / 200 = 67.875; 50 - 60 stops at 0; 20 x 40 / 80. Then 50 x 150 / 100; 200; 5 as it is.
    EXPECT_EQ(at(picture, 0), color(format, 68, 0, 10));
    EXPECT_EQ(at(picture, 1), color(format, 75, 200, 5));
    correction.flat = image(format, color(format, 10, 100, 80), color(format, 100, 100, 80));
    EXPECT_EQ(at(mean.Make(correction), 0) >> 16, 255u);  // 90.5 x 55 / 10
    correction.flat = CTivImage(3, 1, format, nullptr, true);
    EXPECT_EQ(mean.Check(correction), "the flat field is FormatRgb of 3 x 1, the frames are FormatRgb of 2 x 1");
}

}  // namespace
