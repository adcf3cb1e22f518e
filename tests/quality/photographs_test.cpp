#include "tests/quality/photographs.h"

#include <gtest/gtest.h>

#include "quality/CalibrationQuality.h"
#include "quality/delivery.h"

using namespace tonewright;

// Real charts: what is claimed of a calibration, held against what the corrected picture measures.

namespace {

/// The mean CIEDE2000 of a corrected picture's patches: their area means, taken back to linear.
double measureCorrected(const ChartPicture& picture, CTivTonewrightDC& engine) {
    CTivImage corrected;
    EXPECT_TRUE(engine.Execute(picture.image, corrected)) << LastError();
    const auto patches = MeasureAreas(corrected, picture.chart.areas);
    double sum = 0;
    for (std::size_t i = 0; i < 24; ++i) {
        LinearRgb color{};
        for (std::size_t k = 0; k < 3; ++k) {
            color[k] = std::pow(patches[i].mean[k] / GetChannelFullScale(corrected.GetFormat()), 1 / 0.45);
        }
        sum += DeltaE2000(ToLab(color), XyzToLab(picture.chart.targets[i]));
    }
    return sum / 24;
}

// Where a pixel's spread or a second color bends the mean, no single color can tell it; a finding says so there.
bool hasPlainPatches(const MeasuredChart& chart) {
    return !FindNoisy(chart) && !FindMixed(chart) && !FindIncomplete(chart);
}

TEST(Photographs, DeliveredIsWhatTheCorrectedPictureMeasures) {
    int pictures = 0;
    for (const Photograph& photograph : kPhotographs) {
        for (const bool isDeep : {false, true}) {
            for (const bool isCoded : {false, true}) {
                CTivImage image = isCoded ? LoadPhotograph(photograph) : LoadLinear(photograph);
                const ChartPicture picture =
                    ReadPicture(isDeep ? ToSixteenBits(image) : std::move(image), photograph.roi);
                const bool isPlain = hasPlainPatches(picture.chart);
                // Raw colors are cut to whole levels, of which dark patches of a linear 8-bit picture have few.
                const double tolerance = isDeep || isCoded ? 0.31 : 0.5;
                pictures += isPlain ? 1 : 0;
                for (const int terms : {4, 7, 10}) {
                    CTivTonewrightDC engine = Calibrated(picture.colors.colors, terms);
                    const auto quality =
                        JudgeDelivery(engine, *engine.GetTransform(), picture.colors.colors, picture.chart.targets,
                                      {&picture.image, picture.chart.areas, picture.chart.patches});
                    const double corrected = measureCorrected(picture, engine);
                    const std::string name =
                        photograph.name + std::string(isDeep ? ", deep, " : ", ") + (isCoded ? "coded, " : "");
                    EXPECT_NEAR(quality.picture.delivered.deltaE00.mean, corrected, 1e-5) << name << terms;
                    if (isPlain) {
                        EXPECT_NEAR(quality.delivered.deltaE00.mean, corrected, tolerance) << name << terms;
                    }
                }
            }
        }
    }
    EXPECT_GE(pictures, 18);
}

TEST(Photographs, ThePerceptualFitDeliversLessDifferenceAlsoForPatchesLeftOut) {
    struct Row {
        int terms;
        double deliveredLimit, unseenLimit;  // of least squares, over the pictures
    };
    for (const Row& row : {Row{4, 0.80, 0.95}, Row{7, 0.92, 1.0}, Row{10, 0.92, 1.0}}) {
        double delivered[2] = {}, unseen[2] = {};
        for (const Photograph& photograph : kPhotographs) {
            const ChartPicture picture = ReadPicture(LoadLinear(photograph), photograph.roi);
            const CTivTonewrightDC engine = Calibrated(picture.colors.colors, row.terms);
            const auto refined = FitCalibration(engine, FitMethod::Perceptual, row.terms);
            ASSERT_TRUE(refined);
            const auto told = JudgeCalibration(engine, *engine.GetTransform(), {});
            const auto better = JudgeCalibration(engine, *refined, {}, FitMethod::Perceptual);
            EXPECT_LT(better.delivered.deltaE00.mean, told.delivered.deltaE00.mean) << photograph.name;
            delivered[0] += told.delivered.deltaE00.mean;
            delivered[1] += better.delivered.deltaE00.mean;
            unseen[0] += told.unseen.deltaE00.mean;
            unseen[1] += better.unseen.deltaE00.mean;
        }
        EXPECT_LE(delivered[1], row.deliveredLimit * delivered[0]) << row.terms << " terms";
        EXPECT_LE(unseen[1], row.unseenLimit * unseen[0]) << row.terms << " terms";
    }
}

TEST(Photographs, AToneCurveIsFoundAndALinearPictureIsLeftAlone) {
    for (const Photograph& photograph : kPhotographs) {
        const ChartPicture linear = ReadPicture(LoadLinear(photograph), photograph.roi);
        EXPECT_FALSE(FindCoded(linear.chart)) << photograph.name;
        const ChartPicture asIs = ReadPicture(LoadPhotograph(photograph), photograph.roi);
        EXPECT_EQ(FindCoded(asIs.chart).has_value(), !photograph.isLinear) << photograph.name;
        for (const MeasuredChart* chart : {&linear.chart, &asIs.chart}) {
            EXPECT_FALSE(FindMisread(*chart)) << photograph.name;
            EXPECT_FALSE(FindClipped(*chart)) << photograph.name;
            EXPECT_FALSE(FindIncomplete(*chart)) << photograph.name;
        }
    }
}

}  // namespace
