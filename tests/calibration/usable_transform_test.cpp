#include "calibration/usable_transform.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/calibration/calibration_support.h"

using namespace tonewright;

namespace {

class UsableTransform : public CalibrationFiles {};

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST_F(UsableTransform, OnlyWhatCanBeACalibrationPasses) {
    const std::string noRed = "the red row of the transform has no weight: red would be the same for every color";
    const std::string noBlue = "the blue row of the transform has no weight: blue would be the same for every color";
    const std::string noNumber = "the green row of the transform has an entry that is no number";
    const std::string none = "there is no transform of 3 rows of 4, 7 or 10 terms";
    struct Case {
        const char* what;
        std::int32_t terms;
        std::vector<float> entries;
        std::string reason;
    };
    for (const Case& c : {
             Case{"identity", 4, {0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, ""},
             Case{"weight of either sign", 4, {0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1}, ""},
             Case{"one 8-bit step of weight", 4, {0, 1 / 255.0f, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, ""},
             Case{"squares alone", 7, {0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1}, ""},
             Case{"offsets alone", 4, {0.346f, 0, 0, 0, 0.3f, 0, 0, 0, 0.3f, 0, 0, 0}, noRed},
             Case{"what rounding leaves", 4, {0, 1, 0, 0, 0, 1, 0, 0, 0.9f, 1e-9f, -1e-9f, 0}, noBlue},
             Case{"not a number", 4, {0, 1, 0, 0, 0, 0, kNaN, 0, 0, 0, 0, 1}, noNumber},
             Case{"an infinite offset", 4, {0, 1, 0, 0, -kInfinity, 0, 1, 0, 0, 0, 0, 1}, noNumber},
             Case{"empty", 4, {}, none},
             Case{"rows of another length", 7, {0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, none},
             Case{"unknown terms", 1, {1, 1, 1}, none},
         }) {
        std::vector<float> entries = c.entries;
        const CTivVector transform(static_cast<int>(entries.size()), CTivData::FormatFloat, entries.data(), true);
        EXPECT_EQ(WhyUnusableTransform(transform, c.terms), c.reason) << c.what;
        if (entries.empty()) continue;
        const std::string path = Put("some.ccor", CoefficientBytes(c.terms, entries));
        EXPECT_EQ(WhyUnusableCoefficients(path), c.reason) << c.what;
    }
}

// What a calibration without a picture would send.
TEST_F(UsableTransform, TheFitOfBlackColorsIsRefused) {
    for (const int terms : {4, 7, 10}) {
        CTivTonewrightDC engine;
        engine.SetXformSize(terms);
        engine.SetRawColors(CTivVector(24, CTivData::FormatRgb, nullptr, true));
        ASSERT_TRUE(engine.Calibrate());
        EXPECT_NE(WhyUnusableTransform(*engine.GetTransform(), terms), "") << terms;
        engine.SetRawColors(RandomColors(24, CTivData::FormatRgb, 7));
        ASSERT_TRUE(engine.Calibrate());
        EXPECT_EQ(WhyUnusableTransform(*engine.GetTransform(), terms), "") << terms;
    }
}

TEST_F(UsableTransform, AFileIsJudgedByWhatItHolds) {
    EXPECT_EQ(WhyUnusableCoefficients(Path("missing.ccor")), "") << "sending it tells";
    EXPECT_EQ(WhyUnusableCoefficients(Put("text.ccor", "some words")), "the file holds no coefficients");
    const std::string whole = CoefficientBytes(4, {0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    EXPECT_NE(WhyUnusableCoefficients(Put("cut.ccor", whole.substr(0, whole.size() - 8))), "");
}

}  // namespace
