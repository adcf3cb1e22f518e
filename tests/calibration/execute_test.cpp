#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "foundation/nur_image.h"
#include "primitives/acceleration.h"
#include "tests/calibration/calibration_support.h"

using namespace tonewright;

namespace {

constexpr auto kRgb = CTivData::FormatRgb;
constexpr auto kRgb10 = CTivData::FormatRgb10;
constexpr auto kRgb16 = CTivData::FormatRgb16;

int Bits(CTivData::Format format) { return format == kRgb ? 8 : format == kRgb10 ? 10 : 16; }

/// An operator that serves `format`: calibrated against random colors, so that its transform leaves the range here and
/// there.
CTivTonewrightDC Calibrated(CTivData::Format format, int terms, unsigned seed = 1) {
    CTivTonewrightDC engine;
    engine.SetCalibrationMode(1);
    engine.SetXformSize(terms);
    engine.SetRawColors(RandomColors(24, format, seed));
    engine.SetReferenceColors(RandomColors(24, format, seed + 1));
    EXPECT_TRUE(engine.Calibrate());
    return engine;
}

CTivImage RandomImage(int width, int height, CTivData::Format format, unsigned seed) {
    CTivImage image(width, height, format, nullptr, true);
    std::mt19937 random(seed);
    NurImage& record = *image.GetRecord();
    for (std::int64_t i = 0; i < record.Pitch() * height; ++i) {
        // A third of the bytes at either end of the scale.
        record.Row(0)[i] = static_cast<std::uint8_t>(random() % 3 == 0 ? random() % 2 * 255 : random());
    }
    return image;
}

std::string Pixels(const CTivImage& image) {
    const NurImage& record = *image.GetRecord();
    return {static_cast<const char*>(record.data), static_cast<std::size_t>(record.Pitch() * record.height)};
}

/// The whole of Execute once more as loops over single pixels, from the definition.
class Reference {
public:
    Reference(const CTivTonewrightDC& engine, int terms, std::vector<float> c)
        : bits_(Bits(engine.GetCalibratedFormat())),
          fullScale_((1u << bits_) - 1),
          terms_(terms),
          c_(std::move(c)),
          limits_(engine.GetSaturationRgb().AsRgb()) {
        const std::uint32_t size = fullScale_ + 1;
        for (std::uint32_t i = 0; i < size; ++i) {
            const float base = static_cast<float>(i) * (1.0f / static_cast<float>(size));
            const auto power = static_cast<float>(std::pow(double{base}, double{engine.GetGamma()}));
            const float entry = power * static_cast<float>(fullScale_);
            const bool isTooLarge = entry > static_cast<float>(fullScale_);
            table_.push_back(isTooLarge ? fullScale_ : entry > 0 ? static_cast<std::uint32_t>(entry) : 0);
        }
    }

    void Run(const CTivImage& source, CTivImage& destination) const {
        const NurImage& from = *source.GetRecord();
        NurImage& to = *destination.GetRecord();
        bits_ == 16 ? Run(from, to, from.RoiRow<std::uint64_t>(0), to.RoiRow<std::uint64_t>(0))
                    : Run(from, to, from.RoiRow<std::uint32_t>(0), to.RoiRow<std::uint32_t>(0));
    }

private:
    template <class Word>
    void Run(const NurImage& from, NurImage& to, const Word* source, Word* destination) const {
        const int sourceSkip = from.width - from.roi.width, destinationSkip = to.width - to.roi.width;
        if (bits_ == 8 && terms_ == 4) {
            const std::vector<Word> before(source,
                                           static_cast<const Word*>(from.Row<Word>(0)) + from.width * from.height);
            for (int y = 0; y < from.roi.height; ++y) {
                for (int x = 0; x < from.roi.width; ++x) {
                    Word& pixel = destination[y * to.width + x];
                    pixel = (pixel & 0xff000000) | Twist(before[static_cast<std::size_t>(y * from.width + x)]);
                }
            }
            for (std::ptrdiff_t y = 0, s = 0, d = 0; y < from.roi.height; ++y, s += destinationSkip, d += sourceSkip) {
                for (int x = 0; x < from.roi.width; ++x, ++s, ++d) {
                    destination[d] = Encode(destination[d], before[static_cast<std::size_t>(s)]);
                }
            }
            return;
        }
        for (int y = 0; y < from.roi.height; ++y, source += sourceSkip, destination += destinationSkip) {
            for (int x = 0; x < from.roi.width; ++x) *destination++ = Polynomial(*source++);
        }
    }

    template <class Word>
    std::uint32_t Channel(Word pixel, int k) const {  // 0 red, 1 green, 2 blue
        return static_cast<std::uint32_t>(pixel >> (bits_ * (2 - k))) & fullScale_;
    }

    template <class Word>
    Word Polynomial(Word pixel) const {
        const float full = static_cast<float>(fullScale_);
        const float r = static_cast<float>(Channel(pixel, 0)) / full;
        const float g = static_cast<float>(Channel(pixel, 1)) / full;
        const float b = static_cast<float>(Channel(pixel, 2)) / full;
        Word result = 0;
        for (int row = 0; row < 3; ++row) {
            const float* c = c_.data() + row * terms_;
            float v = 0;
            if (terms_ == 4 || terms_ == 7 || terms_ == 10) v = ((r * c[1] + c[0]) + g * c[2]) + b * c[3];
            if (terms_ == 7) v = ((v + r * c[4] * r) + g * c[5] * g) + b * c[6] * b;
            if (terms_ == 10) {
                v = ((v + r * c[4] * r) + r * c[5] * g) + r * c[6] * b;
                v = ((v + g * c[7] * g) + g * c[8] * b) + b * c[9] * b;
            }
            const float a = std::fabs(v * full);
            const float limited = a < full ? a : full;
            const auto index = static_cast<std::size_t>(std::ceil(static_cast<double>(limited)));
            result = static_cast<Word>(result | static_cast<Word>(table_[index]) << (bits_ * (2 - row)));
        }
        return result;
    }

    std::uint32_t Twist(std::uint64_t pixel) const {
        std::uint32_t result = 0;
        for (int row = 0; row < 3; ++row) {  // blue, green, red
            const auto weight = [&](int i) { return c_[static_cast<std::size_t>(11 - 4 * row - i)]; };
            const auto b = static_cast<float>(Channel(pixel, 2)), g = static_cast<float>(Channel(pixel, 1));
            const float v =
                ((weight(0) * b + weight(1) * g) + weight(2) * static_cast<float>(Channel(pixel, 0))) + weight(3);
            const float rounded = std::nearbyint(v);
            result |= (rounded >= 255 ? 255u : rounded > 0 ? static_cast<std::uint32_t>(rounded) : 0u) << (8 * row);
        }
        return result;
    }

    std::uint32_t Encode(std::uint64_t twisted, std::uint64_t source) const {
        std::uint32_t result = 0;
        for (int k = 0; k < 3; ++k) {
            const bool isSaturated = Channel(source, k) >= Channel(limits_, k);
            result |= (isSaturated ? 255u : table_[Channel(twisted, k)]) << (8 * (2 - k));
        }
        return result;
    }

    int bits_;
    std::uint32_t fullScale_;
    int terms_;
    std::vector<float> c_;
    std::uint32_t limits_;
    std::vector<std::uint32_t> table_;
};

/// Both sides on copies of the same images; whole destinations are compared, what lies outside the ROI included.
void ExpectLikeReference(CTivTonewrightDC& engine, int terms, const std::vector<float>& c, const CTivImage& source,
                         const CTivImage& destination) {
    CTivImage ours(destination), expected(destination);
    ASSERT_TRUE(engine.Execute(source, ours)) << LastError();
    Reference(engine, terms, c).Run(source, expected);
    EXPECT_TRUE(Pixels(ours) == Pixels(expected));
}

struct Level {
    explicit Level(int level) { ctiv_SetAccelerationLevel(level); }
    ~Level() { ctiv_SetAccelerationLevel(1); }
};

class Execute : public CalibrationFiles {};

}  // namespace

TEST_F(Execute, EqualsLoopsOverPixelsForEveryFormatTermCountRegionAndGamma) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> draw(-0.5f, 0.9f);
    for (const auto format : {kRgb, kRgb10, kRgb16}) {
        const CTivImage whole = RandomImage(613, 11, format, 1);
        CTivImage part(whole), partOfOther = RandomImage(650, 13, format, 2), sheared = RandomImage(613, 40, format, 3);
        part.SetRoi({17, 2, 571, 8});
        partOfOther.SetRoi({40, 5, 571, 8});
        sheared.SetRoi({0, 1, 601, 39});  // wider than the source's region
        for (const int terms : {4, 7, 10, 5}) {
            for (const float gamma : {0.45f, 1.0f, 2.2f, -0.5f, 0.0f, std::numeric_limits<float>::quiet_NaN()}) {
                CTivTonewrightDC engine = Calibrated(format, terms);
                engine.SetGamma(gamma);
                std::vector<float> c(static_cast<std::size_t>(3 * terms));
                for (float& value : c) value = draw(random);
                if (format == kRgb && terms == 4) {
                    c = Floats(*engine.GetTransform());  // the twist comes from Calibrate alone
                } else {
                    ASSERT_TRUE(engine.LoadXForm(Put("x.ccor", CoefficientBytes(terms, c))));
                }
                for (const int level : {0, 1, 2}) {
                    if (level == 0 && format == kRgb && terms == 4) continue;
                    const Level guard(level);
                    SCOPED_TRACE(testing::Message() << format << " " << terms << " " << gamma << " " << level);
                    ExpectLikeReference(engine, terms, c, whole, RandomImage(613, 11, format, 4));
                    ExpectLikeReference(engine, terms, c, part, partOfOther);
                    ExpectLikeReference(engine, terms, c, part, sheared);
                    CTivImage created, inPlace(part), expected(part);
                    ASSERT_TRUE(engine.Execute(part, created));
                    EXPECT_EQ(created.GetWidth(), 571);
                    EXPECT_EQ(created.GetHeight(), 8);
                    ASSERT_TRUE(engine.Execute(inPlace, inPlace));
                    Reference(engine, terms, c).Run(expected, expected);
                    EXPECT_TRUE(Pixels(inPlace) == Pixels(expected));
                    if (format == kRgb && terms == 4) continue;  // its rows end early in a narrower image
                    for (int y = 0; y < 8; ++y) {
                        EXPECT_EQ(std::memcmp(created.GetRecord()->Row(y), expected.GetRecord()->RoiRow(y),
                                              static_cast<std::size_t>(created.GetRecord()->Pitch())),
                                  0);
                    }
                }
            }
        }
    }
}

TEST_F(Execute, ImagesThatShareMemoryAtAnotherPlaceGoPixelByPixel) {
    for (const auto format : {kRgb, kRgb16}) {
        for (const int terms : {4, 10}) {
            CTivTonewrightDC engine = Calibrated(format, terms);
            const std::vector<float> c = Floats(*engine.GetTransform());
            CTivImage ours = RandomImage(40, 30, format, 5), expected(ours);
            for (const bool isReference : {true, false}) {
                CTivImage& memory = isReference ? expected : ours;
                CTivImage from(40, 30, format, memory.GetData(), false), to(40, 30, format, memory.GetData(), false);
                from.SetRoi({0, 0, 33, 20});
                to.SetRoi({3, 1, 33, 20});
                isReference ? Reference(engine, terms, c).Run(from, to) : void(engine.Execute(from, to));
            }
            EXPECT_TRUE(Pixels(ours) == Pixels(expected)) << format << " " << terms;
        }
    }
}

TEST_F(Execute, CrossedRowStepsStayInsideBothImages) {
    // In the narrower image only the first rows meet their table; the later ones keep the twisted pixels.
    CTivTonewrightDC engine = Calibrated(kRgb, 4);
    CTivImage source = RandomImage(100, 50, kRgb, 6), copy(source);
    source.SetRoi({90, 40, 10, 10});
    CTivImage created;
    ASSERT_TRUE(engine.Execute(source, created));
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) EXPECT_EQ(created.GetData(x, y).AsRgb() >> 24, 0u);
    }
    CTivImage wide = RandomImage(3000, 3, kRgb, 7);
    CTivImage narrow = RandomImage(10, 3, kRgb, 8);
    wide.SetRoi({0, 0, 10, 3});
    EXPECT_TRUE(engine.Execute(narrow, wide));
    EXPECT_TRUE(engine.Execute(wide, narrow));
    EXPECT_TRUE(Pixels(source) == Pixels(copy));
}

TEST_F(Execute, SaturatedSamplesReachFullScaleInTheFastPathAlone) {
    // The unit transform: the offset 0, each channel itself.
    CTivTonewrightDC engine;
    engine.SetCalibrationMode(1);
    engine.SetSaturationMode(2);
    const CTivVector colors = RandomColors(24, kRgb, 9);
    engine.SetRawColors(colors);
    engine.SetReferenceColors(colors);
    CTivImage image(3, 1, kRgb, nullptr, true), fast, slow;
    image.SetData(0, 0, CTivData::Rgb(255, 255, 255));
    image.SetData(1, 0, CTivData::Rgb(254, 0, 255));
    image.SetData(2, 0, {kRgb, 0xff000000});
    engine.SetXformSize(4);
    ASSERT_TRUE(engine.Calibrate() && engine.Execute(image, fast));
    engine.SetXformSize(10);
    ASSERT_TRUE(engine.Calibrate() && engine.Execute(image, slow));
    EXPECT_EQ(fast.GetData(0, 0).GetPayload(), 0xffffffu);
    EXPECT_EQ(slow.GetData(0, 0).GetPayload(), 0xfefefeu);  // the table ends in 254
    // 254: trunc((254 / 256) ^ 0.45 x 255) = trunc(254.10).
    EXPECT_EQ(fast.GetData(1, 0).GetPayload(), 0xfe00ffu);
    EXPECT_EQ(fast.GetData(2, 0).GetPayload(), 0u);
}

TEST_F(Execute, NegativeResultsMirrorAndWhatIsNoNumberIsFullScale) {
    for (const int terms : {7, 10}) {
        CTivTonewrightDC engine;
        engine.SetGamma(1);
        std::vector<float> c(static_cast<std::size_t>(3 * terms));
        c[0] = 0.1f;
        c[static_cast<std::size_t>(terms)] = -0.1f;
        c[static_cast<std::size_t>(2 * terms)] = std::numeric_limits<float>::quiet_NaN();
        ASSERT_TRUE(engine.LoadXForm(Put("x.ccor", CoefficientBytes(terms, c))));
        CTivImage image(1, 1, kRgb, nullptr, true), corrected;
        ASSERT_TRUE(engine.Execute(image, corrected));
        // 25.5 goes up to 26, and entry 26 of a linear table is trunc(26 / 256 x 255) = 25; the last one is 254.
        EXPECT_EQ(corrected.GetData(0, 0).GetPayload(), 25u << 16 | 25u << 8 | 254u);
    }
}

TEST_F(Execute, RefusesInItsOwnWordsAndLeavesTheDestination) {
    const auto expectRefusal = [](CTivTonewrightDC& engine, const CTivImage& source, CTivImage& destination,
                                  const std::string& text) {
        const std::string before = destination.IsAllocated() ? Pixels(destination) : "";
        EXPECT_FALSE(engine.Execute(source, destination));
        EXPECT_EQ(LastError(), "CTivTonewrightDC::Execute => " + text);
        EXPECT_TRUE(before.empty() || Pixels(destination) == before);
    };
    const CTivImage rgb = RandomImage(8, 6, kRgb, 1), rgb10 = RandomImage(8, 6, kRgb10, 1), nothing;
    CTivImage destination = RandomImage(8, 6, kRgb, 2), small = RandomImage(7, 6, kRgb, 2), deep(rgb10), empty;

    CTivTonewrightDC fresh;
    const std::string must = "source data format must be ";
    expectRefusal(fresh, rgb10, destination, must + "RGB as calibration image format");
    expectRefusal(fresh, nothing, destination, must + "RGB as calibration image format");
    CTivTonewrightDC of10 = Calibrated(kRgb10, 4), of16 = Calibrated(kRgb16, 4);
    expectRefusal(of10, rgb, destination, must + "RGB10 as calibration image format");
    expectRefusal(of16, rgb, destination, must + "RGB16 as calibration image format");
    expectRefusal(fresh, rgb, deep, "destination data format must be the same as source's");
    expectRefusal(fresh, rgb, small, "destination ROI must be at least as large as source's");
    expectRefusal(fresh, rgb, empty, "no transformation matrix. Use Calibrate or SetXForm to provide one.");
    EXPECT_EQ(empty.GetWidth(), 8);  // created all the same
    const std::string sizes = "Actual transformation vector and Actual XformSize parameter are not the same";
    CTivTonewrightDC engine = Calibrated(kRgb, 10);
    for (const int terms : {4, -10, 0x7fffffff}) {
        engine.SetXformSize(terms);
        expectRefusal(engine, rgb, destination, sizes);
    }
    const std::string integers =
        FileBytes().Name("CTivTonewrightDC_XForm").Add(7300, 4).Vector(12, 8, std::string(48, 1)).Bytes();
    ASSERT_TRUE(engine.LoadXForm(Put("i.ccor", integers)));
    expectRefusal(engine, rgb, destination, "transformation vector must contain float elements");
    const Level guard(0);
    CTivTonewrightDC four = Calibrated(kRgb, 4);
    expectRefusal(four, rgb, destination, "failed applying color transformation");
}

TEST_F(Execute, RegionsWithoutPixelsAreDoneAtOnce) {
    CTivTonewrightDC engine = Calibrated(kRgb, 4);
    CTivImage source = RandomImage(8, 6, kRgb, 1), destination = RandomImage(8, 6, kRgb, 2);
    ASSERT_TRUE(source.SetRoi({1, 1, 5, 0}));
    const std::string before = Pixels(destination);
    for (const int level : {1, 0}) {
        const Level guard(level);
        EXPECT_TRUE(engine.Execute(source, destination));
        EXPECT_EQ(Pixels(destination), before);
        CTivImage empty;
        EXPECT_TRUE(engine.Execute(source, empty));
    }
}
