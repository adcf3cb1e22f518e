#include "quality/fit_quality.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/CalibrationTables.h"
#include "tests/support/library.h"

using namespace tonewright;

namespace {

using Rgb = std::array<double, 3>;

/// The chart under D65 as a perfect linear camera sees it: the reference XYZ taken to linear RGB, in 16 bits. What
/// lies outside its range is cut off.
CTivVector perfectCamera() {
    const CalibrationTables& tables = GetCalibrationTables();
    CTivVector colors(24, CTivData::FormatRgb16, nullptr, true);
    for (int i = 0; i < 24; ++i) {
        const auto& xyz = tables.ReferenceTable.at(3)[static_cast<std::size_t>(i)];
        std::uint16_t word[3];
        for (int k = 0; k < 3; ++k) {
            double value = 0;
            for (int j = 0; j < 3; ++j)
                value += tables.XyzToRgbMatrix[k][j] * static_cast<double>(xyz[static_cast<std::size_t>(j)]);
            word[k] = static_cast<std::uint16_t>(std::lround(std::clamp(value, 0.0, 1.0) * 65535.0));
        }
        colors.SetData(i, CTivData::Rgb16(word[0], word[1], word[2]));
    }
    return colors;
}

/// The same colors through a matrix: a camera whose channels see a part of each other.
CTivVector mixed(const CTivVector& colors) {
    CTivVector result = colors;
    for (int i = 0; i < colors.GetSize(); ++i) {
        const std::uint64_t word = colors.GetData(i).AsRgb16();
        const auto r = static_cast<double>(word >> 32), g = static_cast<double>(word >> 16 & 0xFFFF),
                   b = static_cast<double>(word & 0xFFFF);
        result.SetData(i, CTivData::Rgb16(static_cast<std::uint16_t>(0.5 * r + 0.2 * g + 0.1 * b),
                                          static_cast<std::uint16_t>(0.1 * r + 0.6 * g + 0.2 * b),
                                          static_cast<std::uint16_t>(0.1 * r + 0.1 * g + 0.7 * b)));
    }
    return result;
}

TEST(Quality, APerfectCameraNeedsNoCalibration) {
    CTivTonewrightDC engine;
    engine.SetXformSize(4);
    ASSERT_TRUE(engine.SetRawColors(perfectCamera()) && engine.Calibrate()) << LastError();
    const FitQuality quality = JudgeFit(engine);
    ASSERT_EQ(quality.before.deltaE00.patches.size(), 24u);
    // Patch 18, cyan, lies outside the range of linear RGB; the others are as good as exact.
    for (std::size_t i = 0; i < 24; ++i) {
        if (i == 17) continue;
        EXPECT_LT(quality.before.deltaE00.patches[i], 0.05) << i + 1;
    }
    EXPECT_GT(quality.before.deltaE00.patches[17], 0.5);
    EXPECT_EQ(quality.before.deltaE76.max, quality.before.deltaE76.patches[17]);
    EXPECT_LT(quality.fitted.deltaE00.mean, 1.0);
}

TEST(Quality, ARelativeFitUndoesALinearMixture) {
    const CTivVector reference = perfectCamera();
    for (const int terms : {4, 7, 10}) {
        CTivTonewrightDC engine;
        engine.SetCalibrationMode(1);
        engine.SetXformSize(terms);
        ASSERT_TRUE(engine.SetRawColors(mixed(reference)) && engine.SetReferenceColors(reference));
        ASSERT_TRUE(engine.Calibrate()) << LastError();
        const FitQuality quality = JudgeFit(engine);
        EXPECT_LT(quality.fitted.deltaE00.max, 0.1) << terms;
        EXPECT_GT(quality.before.deltaE00.mean, 5.0) << terms;
    }
}

TEST(Quality, AUserLightIsAdaptedToD65) {
    // A light whose white is the destination's own: the adaptation is the identity, and the values are the targets.
    CTivTonewrightDC engine;
    engine.SetXformSize(4);
    engine.SetIlluminant(-1);
    engine.SetIlluminantValue({0.837494f, 0.884971f, 0.924616f, 0.0f});
    CTivVector values(24, CTivData::FormatColorFloat, nullptr, true);
    for (int i = 0; i < 24; ++i) {
        values.SetData(
            i, CTivData::ColorFloat(GetCalibrationTables().ReferenceTable.at(3)[static_cast<std::size_t>(i)].data()));
    }
    ASSERT_TRUE(engine.SetSpectrumValues(values) && engine.SetRawColors(perfectCamera()) && engine.Calibrate());
    EXPECT_LT(JudgeFit(engine).before.deltaE00.median, 0.05);
}

TEST(Quality, WithoutAFitThereIsNothingToJudge) {
    CTivTonewrightDC engine;
    EXPECT_TRUE(JudgeFit(engine).fitted.deltaE00.patches.empty());
}

TEST(Quality, SummaryOfOddAndEvenCounts) {
    const DifferenceSummary odd = Summarize({3, 1, 8});
    EXPECT_DOUBLE_EQ(odd.median, 3);
    EXPECT_DOUBLE_EQ(odd.mean, 4);
    EXPECT_DOUBLE_EQ(odd.max, 8);
    EXPECT_EQ(odd.patches, (std::vector<double>{3, 1, 8}));
    EXPECT_DOUBLE_EQ(Summarize({3, 1, 8, 4}).median, 3.5);
    EXPECT_DOUBLE_EQ(Summarize({}).median, 0);
    EXPECT_TRUE(std::isnan(Summarize({std::nan(""), 1}).max)) << "what is no number shows";
}

}  // namespace
