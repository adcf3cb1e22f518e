#include "analysis/threshold.h"

#include <array>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "analysis/CTivBasic.h"
#include "analysis/threshold_rows.h"
#include "foundation/CTivImage.h"
#include "primitives/acceleration.h"
#include "tests/support/library.h"
#include "tests/support/text_image.h"

using namespace tonewright;

namespace {

using D = CTivData;

CTivImage rowOf(D::Format format, std::initializer_list<float> values) {
    CTivImage image(static_cast<int>(values.size()), 1, format, nullptr, true);
    int x = 0;
    for (const float value : values) {
        image.SetData(x++, 0, format == D::FormatFloat ? D::Float(value) : D::Int(static_cast<int>(value)));
    }
    return image;
}

std::vector<float> valuesOf(const CTivImage& image) {
    std::vector<float> values;
    for (int y = 0; y < image.GetHeight(); ++y) {
        for (int x = 0; x < image.GetWidth(); ++x) {
            const D value = image.GetData(x, y);
            values.push_back(image.GetFormat() == D::FormatFloat ? value.AsFloat() : static_cast<float>(value.AsInt()));
        }
    }
    return values;
}

struct Switches {
    bool invert, single, binary;
};

std::vector<float> threshed(const CTivImage& source, float low, float high, Switches switches, CTivImage out = {}) {
    EXPECT_EQ(thresh(source.GetRecord(), out.GetRecord(), low, high, switches.invert, switches.single, switches.binary),
              0)
        << LastError();
    return valuesOf(out);
}

using Values = std::vector<float>;

TEST(Threshold, SelectsBetweenTheLevelsBothIncluded) {
    const CTivImage bytes = rowOf(D::FormatUByte, {0, 4, 5, 6, 7, 255});
    EXPECT_EQ(threshed(bytes, 5, 6, {false, false, true}), (Values{0, 0, 255, 255, 0, 0}));
    EXPECT_EQ(threshed(bytes, 5, 6, {true, false, true}), (Values{255, 255, 0, 0, 255, 255}));
    EXPECT_EQ(threshed(bytes, 5, 6, {false, true, true}), (Values{0, 0, 255, 255, 255, 255}));
    EXPECT_EQ(threshed(bytes, 5, 6, {true, true, false}), (Values{0, 4, 0, 0, 0, 0}));
    EXPECT_EQ(threshed(bytes, 6, 5, {false, false, true}), (Values{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(threshed(bytes, -5, 0, {false, true, true}), (Values{255, 255, 255, 255, 255, 255}));
    EXPECT_EQ(threshed(bytes, 5.9f, 0, {false, true, false}), (Values{0, 0, 5, 6, 7, 255}));
    EXPECT_EQ(threshed(bytes, 900, 0, {false, true, true}), (Values{0, 0, 0, 0, 0, 255}));
    EXPECT_EQ(threshed(bytes, std::numeric_limits<float>::quiet_NaN(), 0, {false, true, false}), valuesOf(bytes));
}

TEST(Threshold, EveryFormatHasItsLowestValueAndItsRange) {
    const Switches semi{false, false, false};
    EXPECT_EQ(threshed(rowOf(D::FormatByte, {-128, -3, 0, 127}), -3, 0, semi), (Values{-128, -3, 0, -128}));
    EXPECT_EQ(threshed(rowOf(D::FormatShort, {-9000, -3, 0, 9000}), -3, 0, semi), (Values{-32768, -3, 0, -32768}));
    EXPECT_EQ(threshed(rowOf(D::FormatUShort, {0, 300, 65535}), 300, 1e9f, semi), (Values{0, 300, 65535}));
    EXPECT_EQ(threshed(rowOf(D::FormatFloat, {0.5f, -2.5f, 0.25f, 3}), 0.25f, 0.5f, semi),
              (Values{0.5f, -2.5f, 0.25f, -2.5f}));
    const Switches mask{false, true, true};
    EXPECT_EQ(threshed(rowOf(D::FormatUShort, {299, 300}), 300.9f, 0, mask), (Values{0, 255}));
    EXPECT_EQ(threshed(rowOf(D::FormatFloat, {0.25f, 0.24f}), 0.25f, 0, mask), (Values{255, 0}));
    EXPECT_EQ(threshed(rowOf(D::FormatUByte, {1, 2}), 2, 0, mask, CTivImage(2, 1, D::FormatUShort, nullptr, true)),
              (Values{0, 65535}));
    EXPECT_EQ(threshed(rowOf(D::FormatByte, {-1, 2}), -1, 0, mask, CTivImage(2, 1, D::FormatShort, nullptr, true)),
              (Values{65535, 65535}));
}

TEST(Threshold, PacksEightAnswersAByte) {
    CTivImage source(11, 2, D::FormatUByte, nullptr, true);
    for (int x = 0; x < 11; ++x) source.SetData(x, 1, D::Int(x));
    CTivImage packed(16, 2, D::FormatBinary, nullptr, true);
    packed.SetData(13, 1, D::Int(1));
    const Values bits = threshed(source, 3, 9.5f, {false, false, true}, packed);
    EXPECT_EQ(bits, (Values{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  //
                            0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 1, 0, 0}));
}

TEST(Threshold, RegionsOfInterestAndGapsStayApart) {
    CTivImage source = fromText({"12345", "67899", "12345"});
    source.SetRoi({1, 1, 3, 2});
    CTivImage out(7, 4, D::FormatUByte, nullptr, true);
    out.SetRoi({4, 0, 3, 2});
    ASSERT_EQ(thresh(source.GetRecord(), out.GetRecord(), 4, 8, false, false, false), 0);
    EXPECT_EQ(out.GetData(4, 0).AsInt(), 7);
    EXPECT_EQ(out.GetData(6, 0).AsInt(), 0);
    EXPECT_EQ(out.GetData(6, 1).AsInt(), 4);
    EXPECT_EQ(out.GetData(0, 1).AsInt(), 0);
}

TEST(Threshold, RefusalsLeaveTheDestinationAlone) {
    const CTivImage bytes = rowOf(D::FormatUByte, {7, 8});
    const CTivImage color(2, 1, D::FormatRgb, nullptr, true);
    const CTivImage words(2, 1, D::FormatUShort, nullptr, true);
    struct Case {
        const CTivImage* source;
        D::Format format;
        int width;
        bool binary;
        std::string text;
    };
    for (const Case& row : {Case{&color, D::FormatUByte, 2, true, "thresh: cannot process object type \"RGB\"\n"},
                            {&words, D::FormatBinary, 8, true, "thresh: cannot process object type \"Binary\"\n"},
                            {&bytes, D::FormatBinary, 8, false, "thresh: cannot process object type \"Binary\"\n"},
                            {&bytes, D::FormatUByte, 1, false, "thresh: output image size too small\n"},
                            {&bytes, D::FormatUShort, 2, false, "thresh: incompatible output image type: "},
                            {&bytes, D::FormatFloat, 2, true, "thresh: incompatible output image type: "}}) {
        CTivImage out(row.width, 1, row.format, nullptr, true);
        ClearLastError();
        EXPECT_EQ(thresh(row.source->GetRecord(), out.GetRecord(), 0, 0, false, true, row.binary), 1);
        EXPECT_EQ(LastError().substr(0, row.text.size()), row.text);
        EXPECT_EQ(valuesOf(out)[0], 0);
    }
    EXPECT_EQ(thresh(bytes.GetRecord(), nullptr, 0, 0, false, true, true), 0);
    EXPECT_EQ(thresh(color.GetRecord(), nullptr, 0, 0, false, true, true), 1);
}

// All sixteen kernels for bytes, at lengths around the vector's and at odd addresses, with guards behind the end.
TEST(ThresholdRows, WideAndPlainKernelsAgree) {
    if (!HasAvx2()) GTEST_SKIP() << "this machine has no wide form";
    std::mt19937 random(3);
    std::vector<std::uint8_t> source(1100);
    for (std::uint8_t& byte : source) byte = static_cast<std::uint8_t>(random());
    for (int kernel = 0; kernel < 16; ++kernel) {
        for (const std::size_t count : {0u, 1u, 7u, 8u, 15u, 16u, 17u, 31u, 33u, 63u, 65u, 1000u}) {
            for (const std::size_t shift : {0u, 3u}) {
                std::vector<std::uint8_t> plain(1100, 0xAB), wide = plain;
                const auto run = [&](auto zero) {
                    using T = decltype(zero);
                    const auto* in = reinterpret_cast<const T*>(source.data() + shift);
                    const ThresholdLevels<T> levels{static_cast<T>(20), static_cast<T>(90),
                                                    std::numeric_limits<T>::min()};
                    GetThresholdRow<T, std::uint8_t>(kernel, false)(in, plain.data() + shift, count, levels);
                    GetThresholdRow<T, std::uint8_t>(kernel, true)(in, wide.data() + shift, count, levels);
                };
                kernel& kThresholdSigned ? run(std::int8_t{}) : run(std::uint8_t{});
                EXPECT_EQ(plain, wide) << kernel << " over " << count;
                EXPECT_EQ(wide[shift + count], 0xAB);
            }
        }
    }
}

TEST(ThresholdColor, AllThreeChannelsMustBeInside) {
    CTivImage image(4, 1, D::FormatRgb, nullptr, true);
    const std::array<D, 4> pixels = {D::Rgb(30, 20, 10), D::Rgb(30, 20, 11), D::Rgb(31, 20, 10), D::Rgb(0, 0, 0)};
    for (int x = 0; x < 4; ++x) image.SetData(x, 0, pixels[static_cast<std::size_t>(x)]);
    const float low[] = {10, 20, 30};  // blue, green, red
    const float high[] = {10, 20, 30};
    CTivImage mask;
    ASSERT_EQ(thresh_color(image.GetRecord(), mask.GetRecord(), low, high, false, false, true), 0);
    EXPECT_EQ(valuesOf(mask), (Values{255, 0, 0, 0}));
    ASSERT_EQ(thresh_color(image.GetRecord(), mask.GetRecord(), low, high, false, true, true), 0);
    EXPECT_EQ(valuesOf(mask), (Values{255, 255, 255, 0}));
    ASSERT_EQ(thresh_color(image.GetRecord(), mask.GetRecord(), low, high, true, false, true), 0);
    EXPECT_EQ(valuesOf(mask), (Values{0, 255, 255, 255}));
    CTivImage kept;
    ASSERT_EQ(thresh_color(image.GetRecord(), kept.GetRecord(), low, high, true, false, false), 0);
    EXPECT_EQ(kept.GetFormat(), D::FormatRgb);
    EXPECT_EQ(kept.GetData(0, 0).AsRgb(), 0u);
    EXPECT_EQ(kept.GetData(1, 0).AsRgb(), pixels[1].AsRgb());
    ASSERT_EQ(thresh_color_consume(image.GetRecord(), low, high, true, false, false), 0);
    EXPECT_EQ(valuesOf(image), valuesOf(kept));

    EXPECT_EQ(thresh_color_consume(image.GetRecord(), low, high, true, false, true), 1);
    EXPECT_EQ(LastError(), "thresh_color_consume: cannot consume. Input type different from output");
    EXPECT_EQ(thresh_color(mask.GetRecord(), nullptr, low, high, false, true, true), 1);
    EXPECT_EQ(LastError(), "thresh_color: cannot process object type \"uint8\"\n");
    ctiv_SetAccelerationLevel(0);
    EXPECT_EQ(thresh_color(image.GetRecord(), mask.GetRecord(), low, high, false, true, true), 1);
    EXPECT_EQ(LastError(), "thresh_color: fail in binThresh");
    EXPECT_EQ(thresh_color(image.GetRecord(), kept.GetRecord(), low, high, false, true, false), 1);
    EXPECT_EQ(LastError(), "thresh_color: fail in semiThresh");
    EXPECT_EQ(thresh_color_consume(image.GetRecord(), low, high, false, true, false), 1);
    EXPECT_EQ(LastError(), "thresh_color_consume: fail in semiThreshConsume");
    ctiv_SetAccelerationLevel(1);
}

TEST(ThresholdImages, EachPixelHasItsLevels) {
    for (const auto format : {D::FormatUByte, D::FormatByte, D::FormatUShort, D::FormatShort}) {
        const CTivImage source = rowOf(format, {5, 5, 5, 5});
        const CTivImage low = rowOf(format, {4, 5, 6, 0});
        const CTivImage high = rowOf(format, {5, 5, 9, 4});
        CTivImage mask, kept;
        ASSERT_EQ(
            threshImages(source.GetRecord(), mask.GetRecord(), low.GetRecord(), high.GetRecord(), false, false, true),
            0);
        EXPECT_EQ(valuesOf(mask), (Values{255, 255, 0, 0}));
        ASSERT_EQ(threshImages(source.GetRecord(), mask.GetRecord(), low.GetRecord(), nullptr, true, true, true), 0);
        EXPECT_EQ(valuesOf(mask), (Values{0, 0, 255, 0}));
        ASSERT_EQ(
            threshImages(source.GetRecord(), kept.GetRecord(), low.GetRecord(), high.GetRecord(), false, false, false),
            0);
        const float lowest = format == D::FormatByte ? -128 : format == D::FormatShort ? -32768 : 0;
        EXPECT_EQ(valuesOf(kept), (Values{5, 5, lowest, lowest}));
    }
}

TEST(ThresholdImages, ChecksComeInOrder) {
    const CTivImage source = fromText({"123", "123"});
    const CTivImage small = fromText({"1"});
    const CTivImage words(3, 2, D::FormatUShort, nullptr, true);
    const CTivImage floats(3, 2, D::FormatFloat, nullptr, true);
    CTivImage out;
    const auto refusal = [&](const CTivImage& from, const CTivImage* low, const CTivImage* high, bool single) {
        EXPECT_EQ(threshImages(from.GetRecord(), out.GetRecord(), low->GetRecord(), high ? high->GetRecord() : nullptr,
                               false, single, true),
                  1);
        return LastError();
    };
    EXPECT_EQ(refusal(floats, &floats, &floats, true), "threshImages: cannot process object type \"float32\"\n");
    EXPECT_EQ(refusal(source, &words, &words, false), "threshImages: low threshold must be of same type as src");
    EXPECT_EQ(refusal(source, &small, nullptr, false), "threshImages: high threshold must be of same type as src");
    EXPECT_EQ(refusal(source, &small, &small, false), "threshImages: low threshold ROI too small");
    EXPECT_EQ(refusal(source, &source, &small, false), "threshImages: high threshold ROI too small");
    EXPECT_FALSE(out.IsAllocated());
    EXPECT_EQ(threshImages(source.GetRecord(), nullptr, source.GetRecord(), nullptr, false, true, true), 0);
}

TEST(ThresholdOperator, WorksInPlaceWhereSourceAndDestinationAreOne) {
    CTivBasic basic;
    CTivImage image = rowOf(D::FormatUByte, {3, 5, 7});
    CTivImage out;
    ASSERT_TRUE(basic.Thresh(image, out, 5, 6, false, false, true));
    EXPECT_EQ(valuesOf(out), (Values{0, 255, 0}));
    ASSERT_TRUE(basic.Thresh(image, image, 5, 0, false, true, false));
    EXPECT_EQ(valuesOf(image), (Values{0, 5, 7}));
    ASSERT_TRUE(basic.ThreshImages(image, image, rowOf(D::FormatUByte, {0, 6, 6}), out, false, true, false));
    EXPECT_EQ(valuesOf(image), (Values{0, 0, 7}));

    CTivImage color(2, 1, D::FormatRgb, nullptr, true);
    color.SetData(0, 0, D::Rgb(200, 0, 0));
    color.SetData(1, 0, D::Rgb(0, 0, 200));
    const float low[] = {100, 0, 0};  // red first
    CTivImage mask;
    ASSERT_TRUE(basic.ThreshColor(color, mask, low, nullptr, false, true, true));
    EXPECT_EQ(valuesOf(mask), (Values{255, 0}));
    EXPECT_FALSE(basic.ThreshColor(color, color, low, nullptr, false, true, true));
    EXPECT_EQ(LastError(), "thresh_color_consume: cannot consume. Input type different from output");
    CTivImage words;
    EXPECT_FALSE(basic.ThreshImages(color, words, color, color, false, true, true));
    EXPECT_FALSE(words.IsAllocated());
}

}  // namespace
