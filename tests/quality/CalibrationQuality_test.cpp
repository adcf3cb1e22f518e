#include "quality/CalibrationQuality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "calibration/execute_transform.h"
#include "quality/delivery.h"
#include "tests/quality/photographs.h"

using namespace tonewright;

namespace {

constexpr CTivData::Format kFormats[] = {CTivData::FormatRgb, CTivData::FormatRgb10, CTivData::FormatRgb16};

CTivData word(CTivData::Format format, const LinearRgb& color) {
    const double fullScale = GetChannelFullScale(format);
    std::uint64_t channel[3];
    for (std::size_t i = 0; i < 3; ++i) {
        channel[i] = static_cast<std::uint64_t>(std::lround(std::clamp(color[i], 0.0, 1.0) * fullScale));
    }
    const int bits = format == CTivData::FormatRgb16 ? 16 : format == CTivData::FormatRgb10 ? 10 : 8;
    return {format, channel[0] << 2 * bits | channel[1] << bits | channel[2]};
}

/// The chart under D65 through a camera whose channels see a part of each other.
CTivVector camera(CTivData::Format format) {
    CTivVector colors(24, format, nullptr, true);
    const std::vector<Xyz> targets = GetChartTargets(3);
    for (int i = 0; i < 24; ++i) {
        const auto [r, g, b] = ToLinearRgb(targets[static_cast<std::size_t>(i)]);
        colors.SetData(
            i, word(format, {0.5 * r + 0.3 * g + 0.1 * b, 0.2 * r + 0.6 * g + 0.1 * b, 0.1 * r + 0.2 * g + 0.5 * b}));
    }
    return colors;
}

TEST(Delivery, TheModelFollowsExecuteWithinItsSteps) {
    std::mt19937 random(5);
    for (const auto format : kFormats) {
        for (const int terms : {4, 7, 10}) {
            const CTivTonewrightDC engine = Calibrated(camera(format), terms);
            const CTivVector& transform = *engine.GetTransform();
            std::vector<double> numbers;
            for (int i = 0; i < transform.GetSize(); ++i)
                numbers.push_back(static_cast<double>(transform.GetData(i).AsFloat()));
            CTivVector raw(2000, format, nullptr, true);
            for (int i = 0; i < raw.GetSize(); ++i) {
                const auto draw = [&] { return static_cast<double>(random() % 10000) / 9999; };
                raw.SetData(i, word(format, {draw(), draw(), draw()}));
            }
            const auto delivered = Deliver(engine, transform, raw);
            ASSERT_EQ(delivered.size(), 2000u);
            const DeliveryModel model(engine, terms);
            // The sum moves by a step at most, the table by another and by the length that it takes for full scale, its
            // entry is cut by one; a step of the entry is 1 / 0.45 steps of linear light at most.
            const double tolerance = (2 + 1 / 0.45) / GetChannelFullScale(format);
            for (int i = 0; i < raw.GetSize(); ++i) {
                const LinearRgb expected = model.Deliver(numbers, ToFractions(raw.GetData(i)));
                for (std::size_t k = 0; k < 3; ++k) {
                    ASSERT_NEAR(delivered[static_cast<std::size_t>(i)][k], expected[k], tolerance)
                        << format << ", " << terms << " terms, color " << i;
                }
            }
        }
    }
}

TEST(CalibrationQuality, ALinearCameraIsUndoneAlsoForPatchesLeftOut) {
    for (const int terms : {4, 7, 10}) {
        const CTivTonewrightDC engine = Calibrated(camera(CTivData::FormatRgb16), terms);
        const auto quality = JudgeCalibration(engine, *engine.GetTransform(), {});
        ASSERT_EQ(quality.patches.size(), 24u);
        ASSERT_EQ(quality.candidates.size(), 3u);
        EXPECT_GT(quality.before.deltaE00.mean, 5.0);
        // Patch 18, cyan, has a red below 0, which no correction delivers.
        for (std::size_t i = 0; i < 24; ++i) {
            if (i == 17) continue;
            EXPECT_LT(quality.delivered.deltaE00.patches[i], 0.3) << terms << " terms, patch " << i + 1;
            EXPECT_LT(quality.unseen.deltaE00.patches[i], 0.5) << terms << " terms, patch " << i + 1;
        }
        EXPECT_EQ(quality.neutralPatches, (std::vector<int>{19, 20, 21, 22, 23, 24}));
        EXPECT_LT(quality.whiteChroma, 1.5);
        for (const TermsFigures& candidate : quality.candidates) {
            if (candidate.terms != terms) continue;
            EXPECT_DOUBLE_EQ(candidate.fitted, quality.fitted.deltaE00.mean);
            EXPECT_DOUBLE_EQ(candidate.delivered, quality.delivered.deltaE00.mean);
            EXPECT_DOUBLE_EQ(candidate.unseen, quality.unseen.deltaE00.mean);
        }
    }
}

TEST(CalibrationQuality, APatchLeftOutIsJudgedByTheOthers) {
    // One patch is measured wrongly: the fit of all bends towards it, the fit of the others shows the whole error.
    CTivVector colors = camera(CTivData::FormatRgb16);
    colors.SetData(21, word(CTivData::FormatRgb16, {0.9, 0.1, 0.1}));
    const CTivTonewrightDC engine = Calibrated(colors, 10);
    const auto quality = JudgeCalibration(engine, *engine.GetTransform(), {});
    EXPECT_GT(quality.unseen.deltaE00.patches[21], quality.delivered.deltaE00.patches[21] + 3);

    // By hand: the fit of the other 23 against a light of the user's own, which takes any count of patches.
    CTivVector others(23, CTivData::FormatRgb16, nullptr, true), values(23, CTivData::FormatColorFloat, nullptr, true);
    const std::vector<Xyz> targets = GetChartTargets(3);
    for (int i = 0, k = 0; i < 24; ++i) {
        if (i == 21) continue;
        const Xyz& xyz = targets[static_cast<std::size_t>(i)];
        const float value[4] = {static_cast<float>(xyz[0]), static_cast<float>(xyz[1]), static_cast<float>(xyz[2]), 0};
        others.SetData(k, colors.GetData(i));
        values.SetData(k++, CTivData::ColorFloat(value));
    }
    CTivTonewrightDC byHand;
    byHand.SetIlluminant(-1);
    byHand.SetIlluminantValue({0.837494f, 0.884971f, 0.924616f, 0});  // adapts to itself
    ASSERT_TRUE(byHand.SetRawColors(others) && byHand.SetSpectrumValues(values) && byHand.Calibrate()) << LastError();
    CTivImage picture(1, 1, CTivData::FormatRgb16, nullptr, true), corrected;
    picture.SetData(0, 0, colors.GetData(21));
    ASSERT_TRUE(byHand.Execute(picture, corrected));
    LinearRgb color = ToFractions(corrected.GetData(0, 0));
    for (double& channel : color) channel = std::pow(channel, 1 / 0.45);
    EXPECT_NEAR(quality.unseen.deltaE00.patches[21], DeltaE2000(ToLab(color), XyzToLab(targets[21])), 0.05);
}

TEST(CalibrationQuality, NoiseIsThatOfTheCorrectedPicture) {
    std::mt19937 random(3);
    std::normal_distribution<double> normal;
    for (const auto format : kFormats) {
        for (const int terms : {4, 10}) {
            CTivTonewrightDC engine = Calibrated(camera(format), terms);
            // Channels that share a part of their noise, as after demosaicing.
            CTivImage picture(300, 300, format, nullptr, true);
            for (int i = 0; i < 300 * 300; ++i) {
                const double shared = 0.01 * normal(random);
                const auto draw = [&](double mean) { return mean + shared + 0.02 * normal(random); };
                picture.SetData(i % 300, i / 300, word(format, {draw(0.4), draw(0.45), draw(0.3)}));
            }
            CTivImage corrected;
            ASSERT_TRUE(engine.Execute(picture, corrected));
            const PatchMeasurement before = MeasureArea(picture, {0, 0, 300, 300});
            const PatchMeasurement after = MeasureArea(corrected, {0, 0, 300, 300});
            const std::vector measurements = {before};
            const auto quality = JudgeCalibration(engine, *engine.GetTransform(), {nullptr, {}, measurements});
            ASSERT_EQ(quality.noise.size(), 1u);
            const double step = GetChannelFullScale(format) / 255.0;
            for (std::size_t k = 0; k < 3; ++k) {
                EXPECT_NEAR(quality.noise[0].after[k], after.deviation[k] / step, 0.06 * after.deviation[k] / step)
                    << format << ", " << terms;
                // The gamma curve's slope at the mean, by hand.
                const double mean = before.mean[k] / GetChannelFullScale(format);
                const double slope = 0.45 * std::pow(mean, 0.45 - 1);
                EXPECT_NEAR(quality.noise[0].before[k], slope * before.deviation[k] / step, 0.1);
            }
        }
    }
}

TEST(CalibrationQuality, ThePictureIsMeasuredBehindTheToneCurve) {
    // Without a change of color and with gamma 0.5, pixels of 0 and of full scale in turn stay so. Their mean is half
    // of full scale, a quarter in linear light, and not the half that their mean before the correction is.
    CTivTonewrightDC engine = Calibrated(camera(CTivData::FormatRgb), 4);
    engine.SetGamma(0.5f);
    CTivVector unchanged(12, CTivData::FormatFloat, nullptr, true);
    for (const int entry : {1, 6, 11}) unchanged.SetData(entry, CTivData::Float(1));
    CTivImage picture(8, 3, CTivData::FormatRgb, nullptr, true);
    for (int x = 0; x < 8; ++x) {
        picture.SetData(x, 1, x % 2 ? CTivData::Rgb(255, 255, 255) : CTivData::Rgb(0, 0, 0));
        picture.SetData(x, 2, CTivData::Rgb(64, 64, 64));  // outside of the areas
    }
    const std::vector<SamplingArea> areas = {{{0, 1, 4}, {4, 1, 2}}, {{1, 1, 1}}};
    const auto delivered = DeliverPicture(engine, unchanged, picture, areas);
    ASSERT_EQ(delivered.size(), 2u);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(delivered[0][k], 0.25, 1e-9);
        EXPECT_NEAR(delivered[1][k], 1, 1e-9);
    }
    EXPECT_TRUE(DeliverPicture(engine, unchanged, picture, std::vector<SamplingArea>(1)).empty());
    EXPECT_TRUE(
        DeliverPicture(engine, unchanged, CTivImage(8, 3, CTivData::FormatRgb16, nullptr, true), areas).empty());
}

TEST(CalibrationQuality, AnotherFigureOfThePictureIsToldWithItsReason) {
    const auto of = [](double mean) { return ChartDifferences{Summarize({mean}), Summarize({mean})}; };
    EXPECT_EQ(TellPicture(of(4), {}), "");
    EXPECT_EQ(TellPicture(of(4), {of(4.3), 4.2}), "");
    EXPECT_EQ(TellPicture(of(4), {of(std::nan("")), 4.2}), "") << "no cause is made up for what is no number";
    EXPECT_EQ(TellPicture(of(4), {of(5.1), 4.2}),
              "In the corrected picture: mean 5.1, since limits and tone curve bend the mean of noisy pixels");
    EXPECT_EQ(TellPicture(of(4), {of(3.4), 3.5}),
              "In the corrected picture: mean 3.4, since single colors are cut to whole levels, of which dark patches "
              "have few");
}

TEST(CalibrationQuality, TheWeakOffsetOfFourTermsIsGivenUp) {
    const CTivTonewrightDC engine = Calibrated(camera(CTivData::FormatRgb), 4);
    const auto refined = FitCalibration(engine, FitMethod::Perceptual, 4);
    ASSERT_TRUE(refined);
    for (const int row : {0, 1, 2}) EXPECT_EQ(refined->GetData(4 * row).AsFloat(), 0.0f);
    const CTivTonewrightDC deep = Calibrated(camera(CTivData::FormatRgb16), 4);
    EXPECT_NE(FitCalibration(deep, FitMethod::Perceptual, 4)->GetData(0).AsFloat(), 0.0f);
}

TEST(CalibrationQuality, WhatDoesNotBelongTogetherIsNotJudged) {
    CTivTonewrightDC engine = Calibrated(camera(CTivData::FormatRgb), 4);
    const CTivVector transform = *engine.GetTransform();
    EXPECT_TRUE(JudgeCalibration(CTivTonewrightDC(), transform, {}).patches.empty());
    EXPECT_TRUE(JudgeCalibration(engine, CTivVector(5, CTivData::FormatFloat, nullptr, true), {}).patches.empty());
    engine.SetIlluminant(-1);  // without values
    EXPECT_TRUE(JudgeCalibration(engine, transform, {}).patches.empty());
    EXPECT_FALSE(FitCalibration(engine, FitMethod::Perceptual, 4));
    EXPECT_EQ(ChooseTerms({}), 0);
    EXPECT_EQ(ChooseTerms(std::vector<TermsFigures>{{4, 0, 0, 3.0}, {7, 0, 0, 2.5}, {10, 0, 0, 2.5}}), 7);
}

TEST(CalibrationQuality, NumbersThatAreNoneDoNotHang) {
    CTivTonewrightDC engine;
    engine.SetIlluminant(-1);
    engine.SetIlluminantValue({0, 0, 0, 0});
    engine.SetXformSize(10);
    CTivVector values(24, CTivData::FormatColorFloat, nullptr, true);
    ASSERT_TRUE(engine.SetRawColors(camera(CTivData::FormatRgb)) && engine.SetSpectrumValues(values));
    ASSERT_TRUE(engine.Calibrate());
    const auto quality = JudgeCalibration(engine, *engine.GetTransform(), {}, FitMethod::Perceptual);
    EXPECT_FALSE(std::isfinite(quality.fitted.deltaE00.mean));
    EXPECT_TRUE(FindSingular(*engine.GetTransform()));
}

}  // namespace
