#include "analysis/adaptive_threshold.h"

#include <cmath>
#include <random>
#include <string>

#include "analysis/local_threshold.h"
#include "foundation/CTivImage.h"
#include "tests/support/library.h"
#include "tests/support/text_image.h"

using namespace tonewright;

namespace {

using D = CTivData;

CTivImage twoClasses(D::Format format, int lower, int upper) {
    CTivImage image(10, 10, format, nullptr, true);
    for (int i = 0; i < 100; ++i) image.SetData(i % 10, i / 10, D::Int(i % 2 ? upper : lower));
    return image;
}

float otsu(const CTivImage& image) {
    float level = -1;
    EXPECT_TRUE(findOtsuLevel(image.GetRecord(), &level));
    return level;
}

TEST(Otsu, TwoClassesPartJustAboveTheLower) {
    EXPECT_EQ(otsu(twoClasses(D::FormatUByte, 0, 255)), 1);
    EXPECT_EQ(otsu(twoClasses(D::FormatUByte, 60, 200)), 61);
    EXPECT_EQ(otsu(twoClasses(D::FormatByte, -60, 100)), -59);
    EXPECT_EQ(otsu(twoClasses(D::FormatUShort, 1000, 50000)), 1001);
    EXPECT_EQ(otsu(twoClasses(D::FormatShort, -20000, 20000)), -19999);
}

TEST(Otsu, AFlatImageOfZeroSelectsNothingAndOfAHigherValueEverything) {
    EXPECT_EQ(otsu(twoClasses(D::FormatUByte, 0, 0)), 1);
    EXPECT_EQ(otsu(twoClasses(D::FormatUByte, 100, 100)), 1);
    EXPECT_EQ(otsu(twoClasses(D::FormatByte, 5, 5)), -127);
    EXPECT_EQ(otsu(twoClasses(D::FormatUShort, 9, 9)), 1);
    float level = 0;
    EXPECT_FALSE(findOtsuLevel(CTivImage(2, 2, D::FormatFloat, nullptr, true).GetRecord(), &level));
}

// The level maximises the variance between the classes, up to the offset of one in the lower mean, which moves it by
// little where the classes are wide.
TEST(Otsu, TheLevelOfNoisyClassesIsCloseToTheExactOne) {
    std::mt19937 random(1);
    std::normal_distribution<float> dark(70, 12), bright(170, 25);
    CTivImage image(100, 100, D::FormatUByte, nullptr, true);
    double counts[256] = {};
    for (int i = 0; i < 10000; ++i) {
        const float value = std::round(i % 10 < 7 ? dark(random) : bright(random));
        const int pixel = static_cast<int>(std::fmin(255, std::fmax(0, value)));
        image.SetData(i % 100, i / 100, D::Int(pixel));
        counts[pixel] += 1;
    }
    double best = -1;
    int exact = 0;
    for (int level = 1; level < 256; ++level) {
        double n0 = 0, s0 = 0, n1 = 0, s1 = 0;
        for (int v = 0; v < 256; ++v) (v < level ? n0 : n1) += counts[v], (v < level ? s0 : s1) += v * counts[v];
        const double between = n0 * n1 * std::pow(s0 / n0 - s1 / n1, 2);
        if (between > best) best = between, exact = level;
    }
    EXPECT_NEAR(otsu(image), exact, 3);
}

struct Found {
    float low = -99, high = -99;
    int answer = 0;
};

Found adapt(const CTivImage& image, int method, float lowFactor, float highFactor, bool single) {
    CTivImage out;
    Found found;
    found.answer = ctiv_adaptThresh(image.GetRecord(), out.GetRecord(), &found.low, &found.high, method, lowFactor,
                                    highFactor, false, single, true);
    return found;
}

TEST(AdaptiveThreshold, LevelsFollowTheStatistics) {
    const CTivImage image = twoClasses(D::FormatUByte, 100, 140);  // mean 120, deviation 20
    struct Case {
        int method;
        float low, high;
    };
    for (const auto& [method, low, high] :
         {Case{0, 110, 125}, {1, 120 - 200, 120 + 100}, {2, 120 - 200, 120 + 100}, {3, 120 - 200, 120 + 100}}) {
        const Found found = adapt(image, method, -10, 5, false);
        EXPECT_EQ(found.answer, 0);
        EXPECT_FLOAT_EQ(found.low, low);
        EXPECT_FLOAT_EQ(found.high, high);
    }
    EXPECT_EQ(adapt(image, 3, 0.5f, 9, true).high, 130);
    EXPECT_EQ(adapt(image, kAdaptiveOtsu, 0, 7, true).high, 101);
    EXPECT_EQ(adapt(twoClasses(D::FormatFloat, 1, 2), 0, 0.25f, 0, true).low, 1.75f);
}

TEST(AdaptiveThreshold, RefusalsNameTheirReason) {
    const CTivImage bytes = twoClasses(D::FormatUByte, 1, 2);
    const CTivImage floats = twoClasses(D::FormatFloat, 1, 2);
    const CTivImage color(2, 2, D::FormatRgb, nullptr, true);
    const CTivImage ints(2, 2, D::FormatInt, nullptr, true);
    struct Case {
        const CTivImage* image;
        int method;
        float lowFactor;
        bool single;
        std::string text;
    };
    for (const auto& [image, method, lowFactor, single, text] :
         {Case{&bytes, 4, 0, false, "ctiv_adaptThresh: Only Single level supported for Histogram\n"},
          {&bytes, 4, 0.5f, true, "ctiv_adaptThresh: low Factor must be set to zero for Histogram\n"},
          {&bytes, 5, 0, true, "ctiv_adaptThresh: invalid method\n"},
          {&bytes, -1, 0, true, "ctiv_adaptThresh: invalid method\n"},
          {&floats, 4, 0, true, "ctiv_adaptThresh: failed thresholding image\n"},
          {&color, 4, 0, true, "adaptThresh: not supported for color images\n"},
          {&ints, 4, 0, true, "adaptThresh: cannot process object type \"int32\"\n"}}) {
        EXPECT_EQ(adapt(*image, method, lowFactor, 0, single).answer, 1);
        EXPECT_EQ(LastError(), text);
    }
    CTivImage small(1, 1, D::FormatUByte, nullptr, true);
    EXPECT_EQ(ctiv_adaptThresh(bytes.GetRecord(), small.GetRecord(), nullptr, nullptr, 4, 0, 0, false, true, true), 1);
    EXPECT_EQ(LastError(), "ctiv_adaptThresh: failed thresholding image\n");
}

// The window's levels taken at each pixel anew, by division.
bool isSelected(const CTivImage& image, int x, int y, int window, int method, const float (&factor)[3], bool single) {
    const int width = image.GetWidth();
    const int height = image.GetHeight();
    const auto at = [&](int px, int py) {
        const D value = image.GetData(std::min(std::max(px, 0), width - 1), std::min(std::max(py, 0), height - 1));
        return image.GetFormat() == D::FormatFloat ? static_cast<double>(value.AsFloat()) : value.AsInt();
    };
    double least = at(0, 0), most = at(0, 0), sum = 0, squares = 0, count = 0;
    for (int py = 0; py < height; ++py) {
        for (int px = 0; px < width; ++px) least = std::min(least, at(px, py)), most = std::max(most, at(px, py));
    }
    const int halfWidth = std::min(std::max(window, 3) / 2, width - 1);
    const int halfHeight = std::min(std::max(window, 3) / 2, height - 1);
    for (int dy = -halfHeight; dy <= halfHeight; ++dy) {
        for (int dx = -halfWidth; dx <= halfWidth; ++dx) {
            const double value = at(x + dx, y + dy);
            sum += value, squares += value * value, count += 1;
        }
    }
    const double mean = sum / count;
    const double distance[] = {1, mean - least, most - mean, std::sqrt(std::max(squares / count - mean * mean, 0.0))};
    const double a = method == 0 ? 1 : std::max<double>(factor[2], distance[method]);
    const double value = at(x, y);
    constexpr double tie = 1e-9;
    return value >= mean + factor[0] * a - tie && (single || value <= mean + factor[1] * a + tie);
}

TEST(LocalThreshold, EachPixelIsComparedWithItsWindow) {
    std::mt19937 random(9);
    const float factor[3] = {0.13f, 1.17f, 2.01f};
    for (const auto format : {D::FormatUByte, D::FormatByte, D::FormatUShort, D::FormatShort, D::FormatFloat}) {
        CTivImage image(17, 12, format, nullptr, true);
        for (int i = 0; i < 17 * 12; ++i) {
            const int value = static_cast<int>(random() % 100);
            image.SetData(i % 17, i / 17,
                          format == D::FormatFloat ? D::Float(static_cast<float>(value)) : D::Int(value));
        }
        for (int method = kLocalOffset; method <= kLocalDeviation; ++method) {
            for (const int window : {1, 3, 4, 5, 99}) {
                for (const bool single : {true, false}) {
                    CTivImage mask, kept;
                    const auto run = [&](CTivImage& out, bool invert, bool binary) {
                        return localAdaptThresh(image.GetRecord(), out.GetRecord(), window, window, method, factor[0],
                                                factor[1], factor[2], invert, single, binary);
                    };
                    ASSERT_EQ(run(mask, false, true), 0);
                    ASSERT_EQ(run(kept, true, false), 0);
                    ASSERT_EQ(mask.GetFormat(), D::FormatUByte);
                    for (int i = 0; i < 17 * 12; ++i) {
                        const bool selected = isSelected(image, i % 17, i / 17, window, method, factor, single);
                        ASSERT_EQ(mask.GetData(i % 17, i / 17).AsInt(), selected ? 255 : 0)
                            << "method " << method << " window " << window << " at " << i;
                        if (!selected) {
                            ASSERT_EQ(kept.GetData(i % 17, i / 17).GetPayload(),
                                      image.GetData(i % 17, i / 17).GetPayload());
                        }
                    }
                }
            }
        }
    }
}

TEST(LocalThreshold, TilesHaveLevelsOfTheirOwn) {
    // On the left the classes are 10 and 60, on the right 110 and 250: no level of the whole image parts both.
    CTivImage image(10, 5, D::FormatUByte, nullptr, true);
    for (int i = 0; i < 50; ++i) {
        const bool bright = (i % 10 + i / 10) % 2 != 0;
        image.SetData(i % 10, i / 10, D::Int(i % 10 < 5 ? (bright ? 60 : 10) : (bright ? 250 : 110)));
    }
    CTivImage mask;
    ASSERT_EQ(localAdaptThresh(image.GetRecord(), mask.GetRecord(), 5, 5, kLocalTiles, 0, 0, 0, false, true, true), 0);
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(mask.GetData(i % 10, i / 10).AsInt(), (i % 10 + i / 10) % 2 != 0 ? 255 : 0);
    }
}

TEST(LocalThreshold, RefusalsNameTheirReason) {
    CTivImage bytes = fromText({"123", "456"});
    CTivImage small(2, 2, D::FormatUByte, nullptr, true);
    CTivImage none;
    const CTivImage color(3, 2, D::FormatRgb, nullptr, true);
    const CTivImage floats(3, 2, D::FormatFloat, nullptr, true);
    const auto refusal = [](const CTivImage& source, CTivImage& out, int method) {
        EXPECT_EQ(localAdaptThresh(source.GetRecord(), out.GetRecord(), 3, 3, method, 0, 0, 0, false, true, true), 1);
        return LastError();
    };
    EXPECT_EQ(refusal(bytes, bytes, 0), "localAdaptThresh: destination image should be different than source image\n");
    EXPECT_EQ(refusal(bytes, small, 0), "localAdaptThresh: input and output ROI must be the same size\n");
    EXPECT_EQ(refusal(color, none, 0), "localAdaptThresh: not supported for color images\n");
    EXPECT_EQ(refusal(bytes, none, 5), "localMeanThresh: method not implemented\n");
    EXPECT_EQ(refusal(floats, none, kLocalTiles), "nur_localAdaptThresh: failed thresholding image\n");
}

}  // namespace
