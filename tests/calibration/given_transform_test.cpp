#include <gtest/gtest.h>

#include "calibration/execute_transform.h"
#include "calibration/fit_transform.h"
#include "tests/calibration/calibration_support.h"

using namespace tonewright;

namespace {

using GivenTransform = CalibrationFiles;

/// An image of one row with random pixels.
CTivImage randomImage(CTivData::Format format) {
    const CTivVector colors = RandomColors(500, format, 99);
    CTivImage image(colors.GetSize(), 1, format, nullptr, true);
    for (int x = 0; x < colors.GetSize(); ++x) image.SetData(x, 0, colors.GetData(x));
    return image;
}

std::string bytes(const CTivImage& image) {
    return {static_cast<const char*>(image.GetData()),
            static_cast<std::size_t>(CTivImage::GetImageBytes(image.GetWidth(), image.GetHeight(), image.GetFormat()))};
}

CTivTonewrightDC calibrated(CTivData::Format format, int terms, int mode) {
    CTivTonewrightDC engine;
    engine.SetXformSize(terms);
    engine.SetCalibrationMode(mode);
    engine.SetIlluminant(0);
    EXPECT_TRUE(engine.SetRawColors(RandomColors(24, format, 3)));
    EXPECT_TRUE(engine.SetReferenceColors(RandomColors(24, format, 4)));
    EXPECT_TRUE(engine.Calibrate()) << LastError();
    return engine;
}

TEST_F(GivenTransform, FittedExecutedAndSavedAsTheOperatorDoesItself) {
    for (const auto format : {CTivData::FormatRgb, CTivData::FormatRgb10, CTivData::FormatRgb16}) {
        for (const int terms : {4, 7, 10}) {
            for (const int mode : {0, 1}) {
                CTivTonewrightDC engine = calibrated(format, terms, mode);
                const CalibrationTargets targets = GetTargets(engine);
                ASSERT_EQ(targets.colors.size(), 24u);
                const auto fit =
                    FitTransform(NormaliseColors(*engine.GetRawColors()), targets.colors, targets.adaptation, terms);
                ASSERT_TRUE(fit);
                EXPECT_EQ(Floats(*fit), Floats(*engine.GetTransform()));

                // An operator of other terms and no fit of its own lends format, gamma and saturation alone.
                CTivTonewrightDC other = calibrated(format, terms == 4 ? 10 : 4, mode);
                const CTivImage image = randomImage(format);
                CTivImage expected, seen;
                ASSERT_TRUE(engine.Execute(image, expected));
                ASSERT_TRUE(ExecuteTransform(other, *fit, image, seen)) << LastError();
                EXPECT_EQ(bytes(seen), bytes(expected)) << format << ", " << terms << " terms, mode " << mode;

                for (const bool withSaturation : {false, true}) {
                    ASSERT_TRUE(engine.SaveXForm(Path("own"), withSaturation));
                    ASSERT_TRUE(SaveTransform(other, *fit, Path("given"), withSaturation)) << LastError();
                    EXPECT_EQ(Get("given"), Get("own"));
                }
            }
        }
    }
}

TEST_F(GivenTransform, AFileOfFourTermsRunsWithItsOwnTwist) {
    CTivTonewrightDC engine = calibrated(CTivData::FormatRgb, 4, 0);
    engine.SetSaturationMode(2);
    ASSERT_TRUE(engine.Calibrate() && engine.SaveXForm(Path("four"), true));
    CTivTonewrightDC loaded;
    loaded.SetSaturationMode(2);
    loaded.SetRawColors(RandomColors(24, CTivData::FormatRgb, 8));
    ASSERT_TRUE(loaded.Calibrate() && loaded.LoadXForm(Path("four")));
    const CTivImage image = randomImage(CTivData::FormatRgb);
    CTivImage expected, seen;
    ASSERT_TRUE(engine.Execute(image, expected) && ExecuteTransform(loaded, *loaded.GetTransform(), image, seen));
    EXPECT_EQ(bytes(seen), bytes(expected));
}

TEST_F(GivenTransform, RefusesWhatIsNoTransform) {
    CTivTonewrightDC engine = calibrated(CTivData::FormatRgb, 4, 0);
    const CTivImage image = randomImage(CTivData::FormatRgb);
    CTivImage destination;
    EXPECT_FALSE(ExecuteTransform(engine, CTivVector(15, CTivData::FormatFloat, nullptr, true), image, destination));
    EXPECT_EQ(LastError(),
              "CTivTonewrightDC::Execute => Actual transformation vector and Actual XformSize parameter are not the "
              "same");
    EXPECT_FALSE(ExecuteTransform(engine, CTivVector(12, CTivData::FormatDouble, nullptr, true), image, destination));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::Execute => transformation vector must contain float elements");
    EXPECT_FALSE(SaveTransform(CTivTonewrightDC(), *engine.GetTransform(), Path("none"), false));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::SaveXForm => invalid calibration. Cannot be saved.");
}

}  // namespace
