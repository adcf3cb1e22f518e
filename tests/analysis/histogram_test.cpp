#include "analysis/histogram.h"

#include <map>

#include "foundation/CTivImage.h"
#include "primitives/acceleration.h"
#include "tests/support/library.h"
#include "tests/support/row_buffers.h"

using D = CTivData;

namespace {

// A result that is freed with the test.
struct Result : NurVector {
    ~Result() {
        if (data) nur_vector_free(this);
    }
    D::Point At(int bin) const { return static_cast<const D::Point*>(data)[bin]; }
};

}  // namespace

TEST(Histogram, CountsEachValueOfTheRoiWhateverFormatAndLevel) {
    struct Row {
        D::Format format;
        int low, high;
    };
    constexpr Row kRows[] = {{D::FormatUByte, 0, 255},
                             {D::FormatByte, -128, 127},
                             {D::FormatUShort, 0, 65535},
                             {D::FormatShort, -32768, 32767}};
    for (const int level : {0, 1, 2}) {
        ctiv_SetAccelerationLevel(level);
        for (const Row& row : kRows) {
            CTivImage image(60, 50, row.format, nullptr, true);
            const Bytes random = RandomBytes(static_cast<std::size_t>(60 * 50 * D::GetFormatSize(row.format)), 17);
            std::copy(random.begin(), random.end(), static_cast<std::uint8_t*>(image.GetData()));
            ASSERT_TRUE(image.SetRoi({3, 4, 41, 37}));
            std::map<int, int> expected;
            for (int y = 4; y < 41; ++y) {
                for (int x = 3; x < 44; ++x) ++expected[image.GetData(x, y).AsInt()];
            }
            Result result;
            ASSERT_EQ(histogramInt(image.GetRecord(), &result, false, row.high - row.low + 1, row.low, row.high), 0);
            for (int value = row.low; value <= row.high; ++value) {
                ASSERT_EQ(result.At(value - row.low).x, value);
                const auto found = expected.find(value);
                ASSERT_EQ(result.At(value - row.low).y, found == expected.end() ? 0 : found->second) << value;
            }
        }
    }
}

TEST(Histogram, WideBinsLeaveOutWhatLiesOutsideAndAddUp) {
    for (const int level : {0, 1}) {
        ctiv_SetAccelerationLevel(level);
        for (const D::Format format : {D::FormatUByte, D::FormatByte, D::FormatShort, D::FormatUShort}) {
            CTivImage image(8, 1, format, nullptr, true);
            const int values[8] = {9, 10, 14, 15, 19, 20, 29, 30};
            for (int x = 0; x < 8; ++x) image.SetData(x, 0, D::Int(values[x]));
            Result result;
            ASSERT_EQ(histogramInt(image.GetRecord(), &result, false, 4, 10, 29), 0);
            const std::pair<int, int> expected[4] = {{10, 2}, {15, 2}, {20, 1}, {25, 1}};
            for (int bin = 0; bin < 4; ++bin) {
                EXPECT_EQ(result.At(bin).x, expected[bin].first);
                EXPECT_EQ(result.At(bin).y, expected[bin].second) << level << " " << format << " " << bin;
            }
            ASSERT_EQ(histogramInt(image.GetRecord(), &result, true, 2, 10, 29), 0);
            EXPECT_EQ(result.At(0).y, 4);
            EXPECT_EQ(result.At(1).x, 20);
            EXPECT_EQ(result.At(1).y, 6);
            EXPECT_EQ(result.At(3).y, 0);  // what a longer vector held before is cleared
        }
    }
}

TEST(Histogram, RefusalsSayWhy) {
    CTivImage gray(2, 2, D::FormatUByte, nullptr, true), color(2, 2, D::FormatLab, nullptr, true),
        real(2, 2, D::FormatFloat, nullptr, true);
    Result result;
    const auto refusal = [&](CTivImage& image, int bins, int low, int high) {
        EXPECT_EQ(histogramInt(image.GetRecord(), &result, false, bins, low, high), 1);
        return LastError();
    };
    EXPECT_EQ(refusal(gray, 100, 0, 255), "histogram: invalid number of bins, must be a divisor of 256\n");
    EXPECT_EQ(refusal(gray, 0, 0, 255), "histogram: invalid number of bins, must be greater than 0\n");
    EXPECT_EQ(refusal(gray, 0, 9, -3), "histogram: invalid value range 9..-3\n");
    EXPECT_EQ(refusal(color, 256, 0, 255), "histogram: not supported for color images\n");
    EXPECT_EQ(refusal(real, 256, 0, 255), "histogram: cannot process object type \"float32\"\n");
    EXPECT_EQ(result.data, nullptr);

    EXPECT_EQ(histogramInt(gray.GetRecord(), nullptr, false, 256, 0, 255), 0);
    EXPECT_EQ(histogramInt(gray.GetRecord(), nullptr, false, 100, 0, 255), 1);

    Result ints;
    ASSERT_EQ(nur_vector_alloc(&ints, D::FormatInt, 256), 0);
    EXPECT_EQ(histogramInt(gray.GetRecord(), &ints, false, 256, 0, 255), 1);
    EXPECT_EQ(LastError(), "histogramInt: incompatible output vector type: int\n");
    Result shortOne;
    ASSERT_EQ(nur_vector_alloc(&shortOne, D::FormatPoint, 255), 0);
    EXPECT_EQ(histogramInt(gray.GetRecord(), &shortOne, false, 256, 0, 255), 1);
    EXPECT_EQ(LastError(), "histogramInt: output vector size too small\n");
}
