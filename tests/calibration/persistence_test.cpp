#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <limits>
#include <sstream>

#include "calibration/coefficient_file.h"
#include "calibration/parameter_file.h"
#include "tests/calibration/calibration_support.h"

using namespace tonewright;

namespace {

constexpr auto kRgb = CTivData::FormatRgb;
constexpr auto kRgb10 = CTivData::FormatRgb10;
constexpr auto kRgb16 = CTivData::FormatRgb16;
constexpr const char* kParameterName = "CTivTonewrightDC";

class Persistence : public CalibrationFiles {};

struct Fields {
    std::int32_t version = 7600, mode = 0, saturationMode = 1, illuminant = 3, terms = 4;
    float gamma = 1.0f;
    std::array<float, 4> white = {1, 2, 3, 4};
};

FileBytes ParameterHead(const Fields& f, std::string name = kParameterName) {
    FileBytes bytes;
    bytes.Name(std::move(name)).Add(f.version, f.mode, f.saturationMode, f.illuminant, f.terms, f.gamma, f.white);
    bytes.Add(std::uint32_t{0x44030201});
    if (f.version > 6100) bytes.Add(std::uint32_t{0x80100803});
    if (f.version > 7300) bytes.Add(std::uint64_t{0x0004000300020001});
    return bytes;
}

std::string ParameterBytes(const Fields& fields, const CTivVector& raw) {
    return ParameterHead(fields).Vector(raw).Vector(0, -1).Vector(0, -1).Bytes();
}

CTivTonewrightDC Calibrated(CTivData::Format format, int terms) {
    CTivTonewrightDC engine;
    engine.SetXformSize(terms);
    engine.SetRawColors(RandomColors(24, format, 1));
    EXPECT_TRUE(engine.Calibrate());
    return engine;
}

bool IsSameBits(const CTivVector& one, const CTivVector& other) {
    return one.GetSize() == other.GetSize() &&
           std::memcmp(one.GetDataPointer(), other.GetDataPointer(),
                       static_cast<std::size_t>(one.GetSize()) * sizeof(float)) == 0;
}

/// Runs in a process of its own, under a limit on the size of files, and gives back its exit status.
int InChild(std::size_t fileLimit, const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{fileLimit, fileLimit};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::_exit(body() ? 1 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Megabytes that loading takes beyond what the process holds.
long LoadingMegabytes(const std::string& path, bool isParameters) {
    CTivTonewrightDC engine;
    rusage before{}, after{};
    ::getrusage(RUSAGE_SELF, &before);
    isParameters ? engine.Load(path) : engine.LoadXForm(path);
    ::getrusage(RUSAGE_SELF, &after);
    return (after.ru_maxrss - before.ru_maxrss) / 1024;
}

}  // namespace

TEST_F(Persistence, ParameterFileIsLaidOutFieldByField) {
    CTivTonewrightDC engine = Calibrated(kRgb, 4);
    engine.SetSaturationMode(1);
    engine.SetGamma(1.0f);
    engine.SetIlluminantValue({1, 2, 3, 4});
    engine.SetSaturationValueEx({kRgb, 0x44030201});
    engine.SetSaturationValueEx({kRgb10, 0x80100803});
    engine.SetSaturationValueEx({kRgb16, 0x0004000300020001});
    ASSERT_TRUE(engine.Save(Path("a.twkp")));
    EXPECT_TRUE(Get("a.twkp") == ParameterBytes({}, RandomColors(24, kRgb, 1)));
    EXPECT_EQ(Get("a.twkp").size(), 88u + 44 + 96 + 44 + 44);  // an empty list is a head and no data
}

TEST_F(Persistence, LoadedParametersReproduceTheTransformToTheBit) {
    for (const auto format : {kRgb, kRgb10, kRgb16}) {
        for (const int terms : {4, 7, 10}) {
            for (const int way : {0, 1, 2}) {  // predefined, user defined, relative
                CTivTonewrightDC engine, loaded;
                engine.SetXformSize(terms);
                engine.SetGamma(0.6f);
                engine.SetRawColors(RandomColors(24, format, 1));
                engine.SetReferenceColors(RandomColors(24, format, 2));
                engine.SetIlluminant(way == 1 ? -1 : 5);
                engine.SetCalibrationMode(way == 2);
                engine.SetIlluminantValue({0.9f, 0.8f, 0.7f, 0});
                std::vector<std::array<float, 4>> values;
                for (int i = 0; i < 24; ++i) values.push_back({0.01f * static_cast<float>(i), 0.5f, 0.3f, 0});
                engine.SetSpectrumValues(FloatQuads(values));
                ASSERT_TRUE(engine.Calibrate());
                ASSERT_TRUE(engine.Save(Path("Wei\xc3\x9f.twkp")));
                ASSERT_TRUE(loaded.Load(Path("Wei\xc3\x9f.twkp")));
                EXPECT_TRUE(IsSameBits(*engine.GetTransform(), *loaded.GetTransform())) << format << terms << way;
                EXPECT_EQ(loaded.GetCalibratedFormat(), format);
                ASSERT_TRUE(loaded.Save(Path("again.twkp")));
                EXPECT_TRUE(Get("again.twkp") == Get("Wei\xc3\x9f.twkp"));
                if (format != kRgb) continue;
                CTivImage image(64, 1, kRgb, nullptr, true), one, other;
                for (int x = 0; x < 64; ++x)
                    image.SetData(x, 0, CTivData::Rgb(static_cast<std::uint8_t>(4 * x), 9, 99));
                ASSERT_TRUE(engine.Execute(image, one) && loaded.Execute(image, other));
                for (int x = 0; x < 64; ++x) EXPECT_EQ(one.GetData(x, 0).AsRgb(), other.GetData(x, 0).AsRgb());
            }
        }
    }
}

TEST_F(Persistence, OlderVersionsLackTheDeeperSaturations) {
    for (const int version : {0, 6100, 6101, 7300, 7301, 7600, 9999}) {
        const CTivVector raw = RandomColors(24, kRgb, 1);
        const std::string bytes = ParameterBytes({.version = version}, raw);
        EXPECT_EQ(bytes.find("CTivVector"), version <= 6100 ? 76u : version <= 7300 ? 80u : 88u);
        CTivTonewrightDC engine;
        engine.SetSaturationValueEx({kRgb10, 1});
        engine.SetSaturationValueEx({kRgb16, 2});
        ASSERT_TRUE(engine.Load(Put("a.twkp", bytes))) << version << LastError();
        EXPECT_EQ(engine.GetSaturationRgb().GetPayload(), 0x44030201u);
        EXPECT_EQ(engine.GetSaturationRgb10().GetPayload(), version > 6100 ? 0x80100803u : 1u);
        EXPECT_EQ(engine.GetSaturationRgb16().GetPayload(), version > 7300 ? 0x0004000300020001u : 2u);
        EXPECT_EQ(engine.GetXformSize(), 4);
        EXPECT_EQ(engine.GetSaturationMode(), 1);
        EXPECT_EQ(engine.GetGamma(), 1.0f);
        EXPECT_EQ(engine.GetIlluminantValue()[3], 4.0f);
        EXPECT_EQ(engine.GetRawColors()->GetData(23).AsRgb(), raw.GetData(23).AsRgb());
    }
}

TEST_F(Persistence, CoefficientFileOfFourTermsHas132Bytes) {
    CTivTonewrightDC engine = Calibrated(kRgb, 4);
    ASSERT_TRUE(engine.SaveXForm(Path("a.ccor"), false));
    const std::vector<float> c = Floats(*engine.GetTransform());
    EXPECT_EQ(Get("a.ccor").size(), 132u);
    EXPECT_TRUE(Get("a.ccor") == CoefficientBytes(4, c));
    engine.SetSaturationValue(0xff3300);
    ASSERT_TRUE(engine.SaveXForm(Path("b.ccor"), true));
    const std::string fractions = FileBytes().Add(1.0f, 0.2f, 0.0f).Bytes();
    EXPECT_TRUE(Get("b.ccor") == CoefficientBytes(4, c, 7301) + fractions);
}

TEST_F(Persistence, SaturationFractionsKeepEightBitsAlone) {
    const std::uint64_t rgb10 = 0xc0000000 | 1023u << 20 | 300u << 10 | 7;
    const std::uint64_t rgb16 = 0xbeef000000000000 | std::uint64_t{65535} << 32 | 0x1234u << 16 | 0xff;
    struct Case {
        CTivData saved, loaded;
    };
    // Whole channels come back for 8 bits, their low bytes for 10 and 16.
    const Case cases[] = {
        {{kRgb, 0x55fe0103}, {kRgb, 0x55fe0103}},
        {{kRgb10, rgb10}, {kRgb10, 0xc0000000 | 255u << 20 | (300u & 255) << 10 | 7}},
        {{kRgb16, rgb16}, {kRgb16, 0xbeef000000000000 | std::uint64_t{255} << 32 | 0x34u << 16 | 255}}};
    for (const auto& [saved, expected] : cases) {
        CTivTonewrightDC engine = Calibrated(saved.GetFormat(), 7);
        engine.SetSaturationValueEx(saved);
        ASSERT_TRUE(engine.SaveXForm(Path("a.ccor"), true));
        ASSERT_TRUE(engine.LoadXForm(Path("a.ccor")));
        for (const CTivData& now :
             {engine.GetSaturationRgb(), engine.GetSaturationRgb10(), engine.GetSaturationRgb16()}) {
            if (now.GetFormat() != expected.GetFormat()) continue;
            EXPECT_EQ(now.GetPayload(), expected.GetPayload());
        }
    }
    // An operator without raw colors takes them as 16-bit ones; what is no number is 0.
    CTivTonewrightDC fresh;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::string odd =
        CoefficientBytes(4, std::vector<float>(12), 7301) + FileBytes().Add(nan, 1e30f, 0.5f).Bytes();
    ASSERT_TRUE(fresh.LoadXForm(Put("odd.ccor", odd)));
    EXPECT_EQ(fresh.GetSaturationRgb16().GetPayload(), 32767u & 255);
}

TEST_F(Persistence, LoadingCoefficientsLeavesTheOperatorUncalibrated) {
    std::vector<float> c(30, 0.25f);
    CTivTonewrightDC engine;
    engine.SetXformSize(4);
    ASSERT_TRUE(engine.LoadXForm(Put("a.ccor", CoefficientBytes(10, c, 1234) + "no saturation, whatever follows")));
    EXPECT_EQ(engine.GetXformSize(), 10);
    EXPECT_EQ(Floats(*engine.GetTransform()), c);
    EXPECT_EQ(engine.GetFitMatrix()->GetColumns(), 4);
    EXPECT_FALSE(engine.IsCalibrated());
    EXPECT_FALSE(engine.SaveXForm(Path("b.ccor"), false));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::SaveXForm => invalid calibration. Cannot be saved.");
    EXPECT_FALSE(std::filesystem::exists(Path("b.ccor")));
    CTivImage image(4, 4, kRgb, nullptr, true), corrected;
    EXPECT_TRUE(engine.Execute(image, corrected));
}

TEST_F(Persistence, ForeignNamesAreRefusedAndBytesBehindTheNameAreNot) {
    const CTivVector raw = RandomColors(24, kRgb, 1);
    const std::string stray = std::string(kParameterName) + '\0' + "stray bytes";
    CTivTonewrightDC engine;
    EXPECT_TRUE(engine.Load(Put("a.twkp", ParameterHead({}, stray).Vector(raw).Vector(0, -1).Vector(0, -1).Bytes())));
    std::string coefficients = CoefficientBytes(4, std::vector<float>(12));
    coefficients[30] = 'x';
    EXPECT_TRUE(engine.LoadXForm(Put("a.ccor", coefficients)));

    CTivTonewrightDC fresh;
    EXPECT_FALSE(fresh.Load(Path("a.ccor")));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::ReadFile => incompatible file");
    EXPECT_FALSE(fresh.LoadXForm(Path("a.twkp")));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::LoadXForm => file header is not compatible");
    EXPECT_FALSE(fresh.Load(Path("none")));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::Load => cannot open file for loading");
    EXPECT_FALSE(fresh.LoadXForm(Path("none")));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::LoadXForm => cannot open file for loading");
    EXPECT_EQ(fresh.GetXformSize(), 10);
    EXPECT_FALSE(engine.Save(Path("no folder/a")));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::Save => cannot open file for saving");
    EXPECT_FALSE(engine.SaveXForm(Path("no folder/a"), true));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::SaveXForm => cannot open file for saving");
}

TEST_F(Persistence, BrokenParameterFilesKeepWhatCameBefore) {
    const std::string whole = ParameterBytes({}, RandomColors(24, kRgb, 1));
    const std::size_t sizeAt = ParameterHead({}).Bytes().size() + 36;  // of the raw colors
    for (std::size_t length = 0; length < whole.size(); ++length) {
        CTivTonewrightDC engine;
        // Of the last head only the version must arrive: what is missing then reads as an empty list.
        EXPECT_EQ(engine.Load(Put("a.twkp", whole.substr(0, length))), length >= whole.size() - 11) << length;
        if (length >= whole.size() - 11) continue;
        const bool isNamed = length >= std::string(kParameterName).size();
        const bool lacksFormat = length > sizeAt && length <= sizeAt + 4;  // 24 elements of no size
        EXPECT_EQ(LastError(), lacksFormat ? "CTivVector::ReadFile => failed to reallocate"
                               : isNamed   ? "CTivVector::ReadFile => incompatible file"
                                           : "CTivTonewrightDC::ReadFile => incompatible file");
        EXPECT_EQ(engine.GetXformSize(), !isNamed ? 10 : length > 48 ? 4 : 0) << length;
    }
    const std::string head = ParameterHead({.mode = 1}).Bytes();
    CTivTonewrightDC engine;
    EXPECT_FALSE(engine.Load(Put("a.twkp", head + FileBytes().Vector(0, -1).Vector(0, -1).Vector(0, -1).Bytes())));
    EXPECT_EQ(LastError(),
              "CTivTonewrightDC::Calibrate => vector of raw colors is empty. Use SetRawColors prior to Calibrate.");
    EXPECT_EQ(engine.GetCalibrationMode(), 1);
}

TEST_F(Persistence, HostileCountsAreAnsweredWithinTheFilesMeans) {
    const CTivVector raw = RandomColors(24, kRgb, 1);
    const std::string twkp = ParameterHead({.mode = 1}).Vector(raw).Vector(0, -1).Bytes();
    for (const std::int32_t count : {0, -1, 0x7fffffff}) {
        for (const std::int32_t format : {17, 19, 33, 36, 39, 37, 28, -1, -2, 44, 0x7fffffff}) {
            const std::string record = FileBytes().Vector(count, format, "few bytes").Bytes();
            const std::string reference = Put("a.twkp", twkp + record);
            const std::string colors = Put("b.twkp", ParameterHead({}).Bytes() + record);
            const std::string ccor =
                Put("a.ccor", FileBytes().Name("CTivTonewrightDC_XForm").Add(7301, count).Bytes() + record);
            EXPECT_LT(LoadingMegabytes(reference, true), 64) << count << " of " << format;
            EXPECT_LT(LoadingMegabytes(colors, true), 64) << count << " of " << format;
            EXPECT_LT(LoadingMegabytes(ccor, false), 64) << count << " of " << format;
        }
    }
}

TEST_F(Persistence, LengthsAreHeldAgainstTheHeads) {
    const auto parameters = [](const std::string& bytes) {
        std::istringstream stream(bytes);
        return CheckParameterLength(stream);
    };
    const auto coefficients = [](const std::string& bytes) {
        std::istringstream stream(bytes);
        return CheckCoefficientLength(stream);
    };
    for (const int version : {6100, 6101, 7300, 7600}) {
        const std::string whole = ParameterBytes({.version = version}, RandomColors(24, kRgb16, 1));
        EXPECT_EQ(parameters(whole), "");
        EXPECT_EQ(parameters(whole + "more"), "");
        for (std::size_t length = 16; length < whole.size(); ++length) {
            EXPECT_NE(parameters(whole.substr(0, length)), "") << version << " " << length;
        }
    }
    const std::string with = CoefficientBytes(7, std::vector<float>(21), 7301) + std::string(12, 0);
    for (std::size_t length = 22; length <= with.size(); ++length) {
        EXPECT_EQ(coefficients(with.substr(0, length)).empty(), length == with.size()) << length;
    }
    EXPECT_EQ(coefficients(CoefficientBytes(7, std::vector<float>(21))), "");
    EXPECT_NE(coefficients(FileBytes().Name("CTivTonewrightDC_XForm").Add(7300, 4).Vector(0x7fffffff, 39, "x").Bytes()),
              "");
    EXPECT_EQ(parameters("something else"), "");
    EXPECT_EQ(coefficients(""), "");
}

TEST_F(Persistence, SaveOnAFullDiskLeavesTheEarlierFile) {
    CTivTonewrightDC engine = Calibrated(kRgb, 10);
    Put("a.twkp", "earlier");
    Put("a.ccor", "earlier");
    EXPECT_EQ(InChild(100, [&] { return engine.Save(Path("a.twkp")); }), 0);
    EXPECT_EQ(InChild(100, [&] { return engine.SaveXForm(Path("a.ccor"), true); }), 0);
    EXPECT_EQ(Get("a.twkp"), "earlier");
    EXPECT_EQ(Get("a.ccor"), "earlier");
    EXPECT_FALSE(engine.Save("/dev/full"));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::Save => cannot write file");
    EXPECT_FALSE(engine.SaveXForm("/dev/full", false));
    EXPECT_EQ(LastError(), "CTivTonewrightDC::SaveXForm => cannot write file");
    EXPECT_TRUE(engine.Save(Path("a.twkp")));
    EXPECT_TRUE(engine.SaveXForm(Path("a.ccor"), true));
    EXPECT_NE(Get("a.twkp"), "earlier");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 2);
}

TEST_F(Persistence, ColorsThatAreNotFiniteThrowPlainText) {
    // Only a file can bring such colors.
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<std::array<float, 4>> colors(24, {0.1f, 0.2f, 0.3f, 0});
    for (std::size_t i = 0; i < 24; ++i) colors[i][i % 3] += 0.01f * static_cast<float>(i);
    colors[7] = {nan, nan, nan, nan};
    Put("a.twkp", ParameterBytes({}, FloatQuads(colors)));
    CTivTonewrightDC engine;
    try {
        engine.Load(Path("a.twkp"));
        FAIL() << "nothing was thrown";
    } catch (const char* text) {
        EXPECT_STREQ(text, "no convergence in 30 svdcmp iterations");
    }
}
