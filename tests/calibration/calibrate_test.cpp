#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "calibration/color_fit.h"
#include "tests/calibration/calibration_support.h"

using namespace tonewright;

namespace {

constexpr auto kRgb = CTivData::FormatRgb;
constexpr auto kRgb10 = CTivData::FormatRgb10;
constexpr auto kRgb16 = CTivData::FormatRgb16;
constexpr std::array<float, 4> kChartWhiteD65 = {0.837494f, 0.884971f, 0.924616f, 0};

std::array<double, 3> Transform(const DoubleMatrix& matrix, const std::array<double, 3>& v) {
    std::array<double, 3> result{};
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k)
            result[static_cast<std::size_t>(i)] += matrix[i][k] * v[static_cast<std::size_t>(k)];
    }
    return result;
}

std::array<double, 3> Widen(const std::array<float, 4>& v) { return {v[0], v[1], v[2]}; }

/// What the getters of numbers answer.
std::vector<double> Numbers(const CTivTonewrightDC& e) {
    const auto payload = [](const CTivData& value) { return static_cast<double>(value.GetPayload()); };
    return {1.0 * e.GetCalibrationMode(),    1.0 * e.GetIlluminant(),
            1.0 * e.GetXformSize(),          e.GetGamma(),
            1.0 * e.GetSaturationMode(),     e.GetIlluminantValue()[2],
            payload(e.GetSaturationRgb()),   payload(e.GetSaturationRgb10()),
            payload(e.GetSaturationRgb16()), static_cast<double>(e.GetCalibratedFormat())};
}

struct InvalidEngine : CTivTonewrightDC {
    InvalidEngine() { Invalidate(); }
};

/// Calls every operation that answers bool.
std::vector<bool> CallAll(CTivTonewrightDC& engine, const std::string& path) {
    const CTivVector colors = RandomColors(24, kRgb, 1);
    CTivImage source(4, 4, kRgb, nullptr, true), destination;
    return {engine.Reset(),
            engine.SetCalibrationMode(1),
            engine.SetIlluminant(1),
            engine.SetIlluminantValue({1, 2, 3, 4}),
            engine.SetXformSize(4),
            engine.SetGamma(1),
            engine.SetSaturationMode(1),
            engine.SetSaturationValue(0),
            engine.SetSaturationValueEx(CTivData::Rgb(1, 2, 3)),
            engine.SetRawColors(colors),
            engine.SetReferenceColors(colors),
            engine.SetSpectrumValues(FloatQuads({{1, 1, 1, 1}})),
            engine.Calibrate(),
            engine.Execute(source, destination),
            engine.Save(path),
            engine.SaveXForm(path, false),
            engine.Load(path),
            engine.LoadXForm(path)};
}

}  // namespace

TEST(CalibrationTables, AdaptationsTakeEachIlluminantsWhitePatchToD65) {
    const CalibrationTables& tables = GetCalibrationTables();
    for (int illuminant = 0; illuminant <= 8; ++illuminant) {
        const auto& patches = tables.ReferenceTable.at(illuminant);
        ASSERT_EQ(patches.size(), 24u);
        for (const auto& patch : patches) EXPECT_LE(patch[1], patches[18][1]);
        const auto white = Transform(tables.AdaptationTable.at(GetAdaptationKey(illuminant)), Widen(patches[18]));
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(white[i], kChartWhiteD65[i], 0.01) << illuminant;
    }
    // Stored transposed, each is the other's inverse; the untransposed matrix has -0.1614 in its upper right corner.
    EXPECT_DOUBLE_EQ(tables.BradfordMatrix[2][0], -0.1614);
    for (int k = 0; k < 3; ++k) {
        const auto column = Transform(tables.BradfordInverse, {tables.BradfordMatrix[0][k], tables.BradfordMatrix[1][k],
                                                               tables.BradfordMatrix[2][k]});
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(column[static_cast<std::size_t>(i)], i == k, 1e-4);
    }
}

TEST(MultiplyInFloat, RoundsEachProductAndEachSum) {
    // 1 + 2^-30 has no place in float32, in a product or in the sum.
    DoubleMatrix left(1, 2), right(2, 1);
    left[0][0] = left[0][1] = 1;
    right[0][0] = 1 + 0x1p-30;
    right[1][0] = 0x1p-24;
    EXPECT_EQ(MultiplyInFloat(left, right, 3)[0][0], 1.0);
    EXPECT_EQ(MultiplyInFloat(DoubleMatrix(), right, 3)[2][0], 0.0);
}

TEST(NormaliseColors, PutsRedFirstAndGivesZerosForOtherFormats) {
    EXPECT_EQ(NormaliseColors(RgbColors({{255, 51, 0}}))[0], (NormalisedColor{1.0f, 0.2f, 0, 0}));
    for (const auto& [value, format] :
         {std::pair{CTivData::Rgb10(1023, 341, 0), kRgb10}, std::pair{CTivData::Rgb16(65535, 21845, 0), kRgb16}}) {
        CTivVector one(1, format, nullptr, true);
        one.SetData(0, value);
        EXPECT_EQ(NormaliseColors(one)[0], (NormalisedColor{1.0f, 1.0f / 3, 0, 0})) << format;
    }
    EXPECT_EQ(NormaliseColors(FloatQuads({{4, 3, 2, 1}}))[0], (NormalisedColor{4, 3, 2, 1}));
    EXPECT_EQ(NormaliseColors(CTivVector(2, CTivData::FormatDouble, nullptr, true)), std::vector<NormalisedColor>(2));
    EXPECT_TRUE(NormaliseColors(CTivVector()).empty());
}

TEST(TonewrightDC, ResetReturnsToTheDefaultsButKeepsTheIlluminantValue) {
    CTivTonewrightDC engine;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Numbers(engine), (std::vector<double>{0, 3, 10, 0.45f, 0, round == 0 ? 0.0 : 3.0, 0, 0, 0,
                                                        static_cast<double>(kRgb)}));
        EXPECT_FALSE(engine.IsCalibrated());
        EXPECT_EQ(engine.GetFitMatrix()->GetColumns(), 10);
        EXPECT_EQ(engine.GetAdaptationMatrix()->GetRows(), 0);
        for (const auto* vector :
             {engine.GetRawColors(), engine.GetReferenceColors(), engine.GetSpectrumValues(), engine.GetTransform()}) {
            EXPECT_FALSE(vector->IsAllocated());
        }
        engine.SetXformSize(4);
        EXPECT_EQ(engine.GetFitMatrix()->GetColumns(), 4);
        engine.SetXformSize(7);
        EXPECT_EQ(engine.GetFitMatrix()->GetColumns(), 4);  // 7 waits for Calibrate
        engine.SetIlluminantValue({1, 2, 3, 4});
        engine.SetGamma(1);
        engine.SetSaturationMode(2);
        engine.SetIlluminant(1);
        engine.SetRawColors(RandomColors(24, kRgb10, 1));
        engine.SetReferenceColors(RandomColors(24, kRgb10, 2));
        engine.SetSpectrumValues(FloatQuads({{1, 1, 1, 1}}));
        EXPECT_TRUE(engine.Calibrate());
        engine.SetCalibrationMode(1);
        EXPECT_TRUE(engine.Reset());
    }
}

TEST(TonewrightDC, InvalidAndEmptyObjectsRefuse) {
    InvalidEngine invalid;
    CTivTonewrightDC movedFrom;
    const CTivTonewrightDC taken(std::move(movedFrom));
    for (const bool isNull : {false, true}) {
        CTivTonewrightDC& engine = isNull ? movedFrom : invalid;
        ClearLastError();
        EXPECT_EQ(Numbers(engine), (std::vector<double>{0, 3, 0, isNull ? -1.0 : 0.0, 0, 0, 0, 0, 0, -1}));
        EXPECT_FALSE(engine.GetRawColors() || engine.GetSpectrumValues() || engine.GetReferenceColors());
        EXPECT_EQ(LastError(), "");
        const std::vector<bool> answers = CallAll(engine, "/nowhere/file");
        EXPECT_EQ(std::count(answers.begin(), answers.end(), true), 0);
        EXPECT_EQ(LastError(), isNull ? "" : "CTivTonewrightDC::Validate => CTivTonewrightDC object is invalid");
    }
}

TEST(TonewrightDC, SettersRefuseOtherFormatsAndKeepEarlierValues) {
    CTivTonewrightDC engine;
    engine.SetSpectrumValues(FloatQuads({{1, 2, 3, 4}}));
    EXPECT_FALSE(engine.SetSpectrumValues(RandomColors(24, kRgb, 1)));
    EXPECT_EQ(LastError(),
              "CTivTonewrightDC::SetSpectrumValues => Invalid data format. Vector must contain ColorFloat values.");
    EXPECT_EQ(engine.GetSpectrumValues()->GetSize(), 1);
    EXPECT_FALSE(engine.SetRawColors(FloatQuads({{1, 2, 3, 4}})));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::SetRawColors => Invalid data format. Vector must contain RGB values.");
    EXPECT_FALSE(engine.SetReferenceColors(CTivVector()));
    EXPECT_EQ(LastError(),
              "CTivTonewrightDC::SetReferenceColors => Invalid data format. Vector must contain RGB values.");
    EXPECT_FALSE(engine.SetSaturationValueEx(CTivData::Int(3)));
    EXPECT_EQ(LastError(),
              "CTivTonewrightDC::SetSaturationValueEx => Invalid format. Must be either RGB, RGB10 or RGB16.");
    for (const CTivData& value : {CTivData::Rgb(1, 2, 3), CTivData::Rgb10(4, 5, 6), CTivData::Rgb16(7, 8, 9)}) {
        EXPECT_TRUE(engine.SetSaturationValueEx(value));
    }
    EXPECT_TRUE(engine.SetSaturationValue(0x0a0b0c));
    EXPECT_EQ(engine.GetSaturationRgb().GetPayload(), 0x0a0b0cu);
    EXPECT_EQ(engine.GetSaturationRgb10().GetPayload(), 4u << 20 | 5u << 10 | 6u);
    EXPECT_EQ(engine.GetSaturationRgb16().GetPayload(), std::uint64_t{7} << 32 | 8u << 16 | 9u);
}

TEST(Calibrate, RefusalsInTheirOwnWords) {
    using Prepare = std::function<void(CTivTonewrightDC&)>;
    const auto raw = [](int count) {
        return [=](CTivTonewrightDC& e) { e.SetRawColors(RandomColors(count, kRgb, 1)); };
    };
    const auto user = [](int raws, int values) {
        return [=](CTivTonewrightDC& e) {
            e.SetIlluminant(-1);
            e.SetRawColors(RandomColors(raws, kRgb, 1));
            if (values) e.SetSpectrumValues(FloatQuads(std::vector<std::array<float, 4>>(values, {1, 1, 1, 1})));
        };
    };
    const auto relative = [](int raws, int references, CTivData::Format format) {
        return [=](CTivTonewrightDC& e) {
            e.SetCalibrationMode(1);
            e.SetRawColors(RandomColors(raws, kRgb, 1));
            if (references) e.SetReferenceColors(RandomColors(references, format, 2));
        };
    };
    const auto illuminant = [](int index) {
        return [=](CTivTonewrightDC& e) {
            e.SetIlluminant(index);
            e.SetRawColors(RandomColors(24, kRgb, 1));
        };
    };
    const auto mode = [](CTivTonewrightDC& e) {
        e.SetCalibrationMode(2);
        e.SetRawColors(RandomColors(24, kRgb, 1));
    };
    const std::string not24 = "size of raw vector must be egal to 24 with predefined illluminant.";
    const std::string noReference = "vector of reference colors is empty. Use SetReferenceColors prior to Calibrate.";
    const std::pair<Prepare, std::string> cases[] = {
        {[](CTivTonewrightDC&) {}, "vector of raw colors is empty. Use SetRawColors prior to Calibrate."},
        {raw(23), not24},
        {illuminant(9), not24},
        {illuminant(-2), not24},
        {user(24, 0), noReference},
        {user(24, 23), "vectors of raw colors and spectrum must be the same size."},
        {relative(24, 0, kRgb), noReference},
        {relative(24, 23, kRgb), "vectors of raw and reference colors must be the same size."},
        {relative(24, 24, kRgb10), "vectors of raw and reference colors must be the same format."},
        {relative(kMaxFitColors + 1, kMaxFitColors + 1, kRgb), "too many colors."},
        {mode, "Calibration mode unknown."},
    };
    for (const auto& [prepare, text] : cases) {
        CTivTonewrightDC engine;
        prepare(engine);
        EXPECT_FALSE(engine.Calibrate());
        EXPECT_EQ(LastError(), "CTivTonewrightDC::Calibrate => " + text);
        EXPECT_FALSE(engine.IsCalibrated());
    }
    CTivTonewrightDC engine;
    engine.SetRawColors(RandomColors(24, kRgb, 1));
    ASSERT_TRUE(engine.Calibrate());
    const std::vector<float> before = Floats(*engine.GetTransform());
    for (const std::int32_t terms : {5, 0, -1, 0x7fffffff}) {  // fits nothing, and says nothing
        engine.SetXformSize(terms);
        EXPECT_TRUE(engine.Calibrate());
    }
    engine.SetRawColors(RandomColors(23, kRgb, 1));
    EXPECT_FALSE(engine.Calibrate());
    EXPECT_TRUE(engine.IsCalibrated());
    EXPECT_EQ(Floats(*engine.GetTransform()), before);
}

TEST(Calibrate, AutomaticSaturationScalesTheBrightestColor) {
    struct Case {
        CTivVector colors;
        CTivData expected;
    };
    const auto wide = [](CTivData::Format format, std::uint16_t r, std::uint16_t g, std::uint16_t b) {
        CTivVector vector(2, format, nullptr, true);
        vector.SetData(1, format == kRgb10 ? CTivData::Rgb10(r, g, b) : CTivData::Rgb16(r, g, b));
        return vector;
    };
    const Case cases[] = {
        {RgbColors({{9, 9, 9}, {200, 100, 50}, {0, 0, 0}}), CTivData::Rgb(255, 127, 63)},  // 127.5, 63.75
        {RgbColors({{50, 200, 100}}), CTivData::Rgb(63, 255, 127)},
        {RgbColors({{50, 100, 200}}), CTivData::Rgb(63, 127, 255)},
        {RgbColors({{0, 0, 0}, {0, 0, 0}}), CTivData::Rgb(255, 255, 255)},
        {RgbColors({{100, 50, 50}, {50, 100, 50}}), CTivData::Rgb(255, 127, 127)},  // of equal sums the first
        {RgbColors({{10, 20, 20}}), CTivData::Rgb(127, 255, 255)},
        {RgbColors({{20, 20, 10}}), CTivData::Rgb(255, 255, 127)},
        {RgbColors({{20, 10, 20}}), CTivData::Rgb(255, 127, 255)},
        {RgbColors({{2, 1, 0}}), CTivData::Rgb(255, 255, 255)},           // a sum of 3 does not exceed 1, 1, 1
        {wide(kRgb10, 1000, 500, 250), CTivData::Rgb10(1023, 511, 255)},  // 511.5, 255.75
        {wide(kRgb16, 20000, 10000, 40000), CTivData::Rgb16(32767, 16383, 65535)},
    };
    for (const auto& [colors, expected] : cases) {
        CTivTonewrightDC engine;
        const CTivData untouched[] = {{kRgb, 0xee123456}, {kRgb10, 0xffffffff}, {kRgb16, 0x1234567812345678}};
        for (const CTivData& value : untouched) engine.SetSaturationValueEx(value);
        engine.SetRawColors(colors);
        EXPECT_FALSE(engine.Calibrate());  // not 24, but saturation comes first
        EXPECT_EQ(engine.GetCalibratedFormat(), colors.GetFormat());
        const CTivData values[] = {engine.GetSaturationRgb(), engine.GetSaturationRgb10(), engine.GetSaturationRgb16()};
        for (std::size_t i = 0; i < 3; ++i) {
            // The reserved byte and bits are cleared, the reserved word stays.
            const std::uint64_t kept = colors.GetFormat() == kRgb16 ? 0x1234000000000000 : 0;
            const bool isMatch = values[i].GetFormat() == colors.GetFormat();
            EXPECT_EQ(values[i].GetPayload(), isMatch ? expected.GetPayload() | kept : untouched[i].GetPayload());
        }
    }
}

TEST(Calibrate, OtherSaturationModesKeepTheCalibratedFormat) {
    CTivTonewrightDC engine;
    engine.SetRawColors(RandomColors(24, kRgb10, 1));
    engine.SetSaturationValueEx({kRgb, 0x77010203});
    engine.SetSaturationValueEx({kRgb10, 0x80000001});
    engine.SetSaturationValueEx({kRgb16, 0x0005000400030002});
    for (const int mode : {1, 3}) {
        engine.SetSaturationMode(mode);
        EXPECT_TRUE(engine.Calibrate());
        EXPECT_EQ(engine.GetSaturationRgb().GetPayload(), 0x77010203u);
    }
    engine.SetSaturationMode(2);
    EXPECT_TRUE(engine.Calibrate());
    EXPECT_EQ(engine.GetSaturationRgb().GetPayload(), 0x77ffffffu);
    EXPECT_EQ(engine.GetSaturationRgb10().GetPayload(), 0xbfffffffu);
    EXPECT_EQ(engine.GetSaturationRgb16().GetPayload(), 0x0005ffffffffffffu);
    EXPECT_EQ(engine.GetCalibratedFormat(), kRgb);
}

TEST(Calibrate, UserIlluminantComposesFitAdaptationAndOutputSpace) {
    // XYZ = 0.5 R, 0.25 G, B - 0.125: the fit is known, and the transform is the matrix to RGB times it, adapted.
    const CTivVector raw = RandomColors(23, kRgb16, 3);
    std::vector<std::array<float, 4>> xyz;
    for (const auto& [r, g, b, unused] : NormaliseColors(raw)) xyz.push_back({0.5f * r, 0.25f * g, b - 0.125f, 7});
    const double fit[3][4] = {{0, 0.5, 0, 0}, {0, 0, 0.25, 0}, {-0.125, 0, 0, 1}};
    CTivTonewrightDC engine;
    engine.SetXformSize(4);
    engine.SetIlluminant(-1);
    engine.SetRawColors(raw);
    engine.SetSpectrumValues(FloatQuads(xyz));
    const std::array<float, 4> warm = {0.975303f, 0.887382f, 0.304518f, 0};
    for (const auto& white : {kChartWhiteD65, warm}) {
        engine.SetIlluminantValue(white);
        ASSERT_TRUE(engine.Calibrate());
        const DoubleMatrix& adaptation = *engine.GetAdaptationMatrix();
        const auto adapted = Transform(adaptation, Widen(white));
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(adapted[i], kChartWhiteD65[i], 1e-4);
        // From the chart's own white nothing changes; from a warm one the table of illuminant A says what to expect.
        const DoubleMatrix& tabled = GetCalibrationTables().AdaptationTable.at(GetAdaptationKey(white == warm ? 0 : 3));
        const std::vector<float> transform = Floats(*engine.GetTransform());
        ASSERT_EQ(transform.size(), 12u);
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) EXPECT_NEAR(adaptation[i][j], tabled[i][j], 0.03);
            for (int j = 0; j < 4; ++j) {
                EXPECT_NEAR((*engine.GetFitMatrix())[i][j], fit[i][j], 1e-6);
                const auto column = Transform(GetCalibrationTables().XyzToRgbMatrix,
                                              Transform(adaptation, {fit[0][j], fit[1][j], fit[2][j]}));
                EXPECT_NEAR(transform[static_cast<std::size_t>(4 * i + j)], column[static_cast<std::size_t>(i)], 1e-5);
            }
        }
    }
    engine.SetIlluminantValue({});
    EXPECT_TRUE(engine.Calibrate());
    EXPECT_FALSE(std::isfinite(Floats(*engine.GetTransform())[0]));
}

TEST(Calibrate, PredefinedIlluminantsMapTheirOwnPatchesToD65Rgb) {
    // A camera that measures XYZ itself: red X, green Y, blue Z, each at half scale.
    for (const int illuminant : {0, 1, 2, 3, 4, 5, 6, 7, 8}) {
        const auto& patches = GetCalibrationTables().ReferenceTable.at(illuminant);
        CTivVector raw(24, kRgb16, nullptr, true);
        for (int i = 0; i < 24; ++i) {
            const auto word = [&](std::size_t k) {
                return static_cast<std::uint16_t>(patches[static_cast<std::size_t>(i)][k] * 32767.5f + 0.5f);
            };
            raw.SetData(i, CTivData::Rgb16(word(0), word(1), word(2)));
        }
        for (const int terms : {4, 7, 10}) {
            CTivTonewrightDC engine;
            engine.SetIlluminant(illuminant);
            engine.SetXformSize(terms);
            engine.SetRawColors(raw);
            ASSERT_TRUE(engine.Calibrate());
            EXPECT_TRUE(engine.IsCalibrated());
            const std::vector<float> c = Floats(*engine.GetTransform());
            // By hand: the matrix to RGB times the white patch's (0.837494, 0.884971, 0.924616) under D65.
            const double expected[3] = {0.8927, 0.8869, 0.8434};
            const auto white = TermVector(NormaliseColors(raw)[18], terms);
            for (int row = 0; row < 3; ++row) {
                double value = 0;
                for (int t = 0; t < terms; ++t) value += c[static_cast<std::size_t>(row * terms + t)] * white[t];
                EXPECT_NEAR(value, expected[row], 0.007) << illuminant << " " << terms << " " << row;
            }
        }
    }
}

TEST(Calibrate, RelativeModeStoresTheFitAsItStands) {
    const CTivVector raw = RandomColors(24, kRgb, 5);
    CTivVector swapped(24, kRgb, nullptr, true);
    for (int i = 0; i < 24; ++i) {
        const std::uint32_t v = raw.GetData(i).AsRgb();
        swapped.SetData(i, {kRgb, (v & 0xff) << 16 | (v & 0xff00) | v >> 16});
    }
    CTivTonewrightDC engine;
    engine.SetXformSize(4);
    engine.SetCalibrationMode(1);
    engine.SetRawColors(raw);
    engine.SetReferenceColors(swapped);
    ASSERT_TRUE(engine.Calibrate());
    const std::vector<float> c = Floats(*engine.GetTransform());
    const std::vector<float> exchange = {0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0};
    for (std::size_t i = 0; i < 12; ++i) EXPECT_NEAR(c[i], exchange[i], 1e-6);
    EXPECT_EQ(engine.GetAdaptationMatrix()->GetRows(), 0);
    EXPECT_EQ((*engine.GetFitMatrix())[0][3], 0.0);

    // Fewer colors than terms, and 24 of one color, fit all the same, and hit their targets.
    for (const int count : {3, 24}) {
        const CTivVector one = count == 3 ? RandomColors(3, kRgb, 6) : RgbColors({{10, 20, 30}});
        CTivVector many(count, kRgb, nullptr, true);
        for (int i = 0; i < count; ++i) many.SetData(i, one.GetData(count == 3 ? i : 0));
        engine.SetXformSize(10);
        engine.SetRawColors(many);
        engine.SetReferenceColors(many);
        ASSERT_TRUE(engine.Calibrate());
        const std::vector<float> fit = Floats(*engine.GetTransform());
        for (const auto& color : NormaliseColors(many)) {
            double red = 0;
            for (int t = 0; t < 10; ++t) red += fit[static_cast<std::size_t>(t)] * TermVector(color, 10)[t];
            EXPECT_NEAR(red, color[0], 1e-5);
        }
    }
}
