#include "acquisition/zvn/color_features.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>

#include "calibration/coefficient_file.h"
#include "tests/acquisition/memory_camera.h"
#include "tests/support/library.h"

namespace {

std::string write(MemoryCamera& camera, const ZvnColorMatrix& matrix = kMatrix) {
    try {
        ZvnColorJournal journal("", "");
        EXPECT_EQ(WriteZvnColorFeatures(camera, 255, matrix, journal),
                  "nothing would have brought the camera's earlier coefficients back, had it been lost meanwhile: the "
                  "camera has no serial number");
        return "";
    } catch (const ZvnFeatureFailure& failure) {
        return failure.what();
    }
}

TEST(ColorFeatures, ATransformGoesInAndComesBackToTheBit) {
    MemoryCamera camera;
    camera.state.isOn = false;
    ASSERT_EQ(write(camera), "");
    EXPECT_TRUE(camera.state.isOn);
    EXPECT_EQ(camera.state.selector, "RGBtoYUV");
    EXPECT_EQ(camera.state.valueSelector, "Gain12");
    // Row by row: red's offset in counts, red's weights; the second row is green's.
    EXPECT_FLOAT_EQ(static_cast<float>(camera.state.values["Offset0"]), -3.1875f);
    EXPECT_EQ(camera.state.values["Gain02"], -0.125);
    EXPECT_EQ(camera.state.values["Gain10"], 0.1f);
    EXPECT_EQ(camera.state.values["Gain22"], 1.63f);
    EXPECT_EQ(ReadZvnColorFeatures(camera, 255), kMatrix);
}

TEST(ColorFeatures, WhatTheCameraCannotHoldIsRefusedBeforeAnythingIsWritten) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        std::size_t entry;
        float value;
        const char* text;
    } rows[] = {{5, nan, "Gain10 would be no number"},
                {6, 65, "Gain11 would be 65, outside the camera's -64 to 64"},
                {0, 0.5f, "Offset0 would be 127.5, outside the camera's -64 to 64"},
                {8, 0.125f, "the camera has no Offset2, which would be 31.875"}};
    for (const auto& row : rows) {
        MemoryCamera camera;
        if (row.entry == 8) camera.state.values.erase("Offset2");
        const MemoryCamera::State before = camera.state;
        ZvnColorMatrix matrix = kMatrix;
        matrix[row.entry] = row.value;
        EXPECT_EQ(write(camera, matrix), row.text);
        EXPECT_EQ(camera.state, before);
    }
    MemoryCamera camera;
    camera.state.values.erase("Offset2");  // which the transform does not need
    EXPECT_EQ(write(camera), "");
    camera.state.values.erase("Gain02");
    EXPECT_FALSE(HasZvnColorFeatures(camera));
}

TEST(ColorFeatures, ReadingBackAllowsTheFeaturesStepAndNoMore) {
    MemoryCamera camera;
    camera.step = 1 / 256.0;
    EXPECT_EQ(write(camera), "");
    EXPECT_NEAR(camera.state.values["Gain10"], 0.1, 1 / 256.0);
    for (const double step : {1 / 256.0, 1 / 16.0, 1 / 8.0}) {  // steps up to a sixteenth need not be told
        MemoryCamera silent;
        silent.step = step;
        silent.saysStep = false;
        const bool isTaken = step <= 1 / 16.0;
        const double before = silent.state.values["Gain10"];
        EXPECT_EQ(write(silent).empty(), isTaken) << step;
        EXPECT_EQ(silent.state.values["Gain10"], isTaken ? std::floor(0.1 / step) * step : before);
    }
    MemoryCamera clipping;
    clipping.most = 1.4375;  // below the 1.5 of Gain00
    EXPECT_THAT(write(clipping), testing::StartsWith("Gain00 was set to 1.5 and reads 1.4375; "));
    camera.takesNumbers = false;
    const MemoryCamera::State before = camera.state;
    ZvnColorMatrix other = kMatrix;
    other[5] = 0.2f;
    EXPECT_THAT(write(camera, other), testing::StartsWith("Gain10 was set to 0.2 and reads 0.09765625; "));
    EXPECT_EQ(camera.state, before);
}

TEST(ColorFeatures, AFailureAtAnyCallPutsTheEarlierStateBack) {
    MemoryCamera whole;
    ASSERT_EQ(write(whole), "");
    int refused = 0;
    for (int call = 0; call < whole.calls; ++call) {
        MemoryCamera camera;
        const MemoryCamera::State before = camera.state;
        camera.failAt = call;
        const std::string text = write(camera);
        if (text.empty()) {  // only what was selected did not come back
            EXPECT_EQ(camera.state.values, whole.state.values);
            EXPECT_TRUE(camera.state.isOn);
            continue;
        }
        ++refused;
        EXPECT_EQ(camera.state.values, before.values) << call;
        EXPECT_EQ(camera.state.isOn, before.isOn) << call;
        EXPECT_THAT(text, testing::StartsWith("the camera does not answer"));
    }
    EXPECT_GE(refused, whole.calls - 2);
}

TEST(ColorFeatures, ACameraThatEndsAtAnyCallNeverWorksWithHalfOfTwoTransforms) {
    MemoryCamera whole;
    ASSERT_EQ(write(whole), "");
    int off = 0;
    for (int call = 0; call < whole.calls; ++call) {
        MemoryCamera camera;
        const auto before = camera.state.values;
        camera.failAt = call;
        camera.isEnd = true;
        const std::string text = write(camera);
        off += camera.state.isOn ? 0 : 1;
        const auto& values = camera.state.values;
        EXPECT_TRUE(!camera.state.isOn || values == before || values == whole.state.values) << call;
        if (values != before && values != whole.state.values) {
            EXPECT_THAT(text, testing::HasSubstr("could not be put back")) << call;
        }
    }
    EXPECT_GT(off, 12);  // most of the way it is off
}

TEST(ColorFeatures, ACoefficientFileOfFourTermsIsTheMatrixAndNoOtherIs) {
    const std::vector<char> bytes = MakeZvnCoefficients(kMatrix);
    ASSERT_EQ(bytes.size(), 132u);
    ZvnColorMatrix matrix{};
    EXPECT_EQ(ReadZvnCoefficients(bytes, matrix), "");
    EXPECT_EQ(matrix, kMatrix);
    float first = 0;
    std::memcpy(&first, &bytes[84], sizeof first);  // behind two heads of 40 and 44 bytes
    EXPECT_EQ(first, kMatrix[0]);
    std::vector<char> seven = bytes;
    seven[36] = 7;
    EXPECT_EQ(ReadZvnCoefficients(seven, matrix), "the camera's features take coefficients of 4 terms");
    EXPECT_NE(ReadZvnCoefficients(std::span(bytes).first(131), matrix), "");
    std::vector<char> other = bytes;
    other[0] = 'X';
    EXPECT_EQ(ReadZvnCoefficients(other, matrix), "this is no coefficient file");
    EXPECT_EQ(matrix, kMatrix);
}

}  // namespace
