#include "quality/findings.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/quality/photographs.h"

using namespace tonewright;

namespace {

/// The measurements of a camera that sees the chart as it should be, at 80 % of full scale for the white patch. The
/// channels are not pure: each sees a part of the others.
MeasuredChart cleanChart(CTivData::Format format = CTivData::FormatRgb) {
    MeasuredChart chart;
    chart.format = format;
    chart.foundRows = 4;
    chart.foundColumns = 6;
    chart.targets = GetChartTargets(3);
    for (int i = 0; i < 24; ++i) {
        chart.places.push_back({100.0 + 50 * (i % 6), 80.0 + 50 * (i / 6)});
        const auto [r, g, b] = ToLinearRgb(chart.targets[static_cast<std::size_t>(i)]);
        const double scale = 0.9 * GetChannelFullScale(format);
        PatchMeasurement patch;
        patch.mean = {scale * (0.7 * r + 0.2 * g + 0.1 * b), scale * (0.1 * r + 0.8 * g + 0.1 * b),
                      scale * (0.05 * r + 0.25 * g + 0.7 * b)};
        for (auto& mean : patch.mean) mean = std::max(mean, 0.0);
        patch.deviation = {0.005 * scale, 0.005 * scale, 0.005 * scale};
        patch.pixels = 400;
        chart.patches.push_back(patch);
    }
    return chart;
}

std::vector<std::string> codes(const std::vector<Finding>& findings) {
    std::vector<std::string> result;
    for (const Finding& finding : findings) result.emplace_back(finding.code);
    return result;
}

void scale(MeasuredChart& chart, std::size_t patch, double factor) {
    for (auto& mean : chart.patches[patch].mean) mean *= factor;
}

using Change = void (*)(MeasuredChart&);
struct Case {
    const char* code;  // "" for nothing to tell
    std::vector<int> patches;
    Change change;
};

double fullScale(const MeasuredChart& chart) { return GetChannelFullScale(chart.format); }

void reorder(MeasuredChart& chart, int (*source)(int)) {
    const auto patches = chart.patches;
    for (int i = 0; i < 24; ++i) {
        chart.patches[static_cast<std::size_t>(i)] = patches[static_cast<std::size_t>(source(i))];
    }
}

void slope(MeasuredChart& chart, double across, double down) {
    for (std::size_t i = 0; i < 24; ++i) {
        const double x = static_cast<double>(i % 6) / 5 - 0.5, y = static_cast<double>(i / 6) / 3 - 0.5;
        scale(chart, i, 1 + across * x + down * y);
    }
}

/// A screen's tone curve on every mean.
void encode(MeasuredChart& chart, double exponent) {
    for (PatchMeasurement& patch : chart.patches) {
        for (auto& mean : patch.mean) mean = fullScale(chart) * std::pow(mean / fullScale(chart), exponent);
    }
}

const Case kCases[] = {
    {"", {}, [](MeasuredChart&) {}},
    {"", {}, [](MeasuredChart& chart) { chart.patches[18].clipped = 0.01; }},
    {"clipped", {4, 19}, [](MeasuredChart& chart) { chart.patches[3].clipped = chart.patches[18].clipped = 0.011; }},
    {"dark",
     {19},
     [](MeasuredChart& chart) {
         for (std::size_t i = 0; i < 24; ++i) scale(chart, i, 0.38);
     }},
    {"",
     {},
     [](MeasuredChart& chart) {
         for (std::size_t i = 0; i < 24; ++i) scale(chart, i, 0.48);
     }},
    {"uneven", {}, [](MeasuredChart& chart) { slope(chart, 0.25, 0); }},
    {"uneven", {}, [](MeasuredChart& chart) { slope(chart, -0.05, -0.2); }},
    {"", {}, [](MeasuredChart& chart) { slope(chart, 0.1, -0.05); }},
    {"noisy", {2}, [](MeasuredChart& chart) { chart.patches[1].deviation[2] = 0.051 * fullScale(chart); }},
    {"noisy", {24}, [](MeasuredChart& chart) { chart.patches[23].deviation[0] = 0.021 * fullScale(chart); }},
    {"", {}, [](MeasuredChart& chart) { chart.patches[18].deviation[0] = 0.04 * fullScale(chart); }},
    {"mixed", {7}, [](MeasuredChart& chart) { chart.patches[6].isMixed = true; }},
    {"incomplete", {}, [](MeasuredChart& chart) { chart.foundColumns = 5; }},
    {"incomplete", {}, [](MeasuredChart& chart) { chart.foundRows = 3; }},
    {"incomplete",
     {},
     [](MeasuredChart& chart) {  // the second column was not seen, and those behind it stand one too far left
         chart.foundColumns = 5;
         reorder(chart, [](int i) { return i / 6 * 6 + (i % 6 == 0 ? 0 : std::min(i % 6 + 1, 5)); });
     }},
    {"orientation", {}, [](MeasuredChart& chart) { reorder(chart, [](int i) { return 23 - i; }); }},
    {"orientation", {}, [](MeasuredChart& chart) { reorder(chart, [](int i) { return i / 6 * 6 + 5 - i % 6; }); }},
    {"orientation",
     {},
     [](MeasuredChart& chart) {  // a glare on the first patch was taken for the white one
         for (auto& mean : chart.patches[0].mean) mean = 0.98 * fullScale(chart);
         reorder(chart, [](int i) { return 6 * (3 - i / 6) + i % 6; });
     }},
    {"orientation",
     {},
     [](MeasuredChart& chart) {
         chart.chart = {4, 6};
         chart.foundRows = 6;
         chart.foundColumns = 4;
         reorder(chart, [](int place) { return 6 * (3 - place % 4) + place / 4; });  // turned clockwise
     }},
    {"coded", {}, [](MeasuredChart& chart) { encode(chart, 0.45); }},
    {"", {}, [](MeasuredChart& chart) { encode(chart, 0.9); }},
    {"",
     {},
     [](MeasuredChart& chart) {  // red light: the channels differ widely, the order is the same
         for (PatchMeasurement& patch : chart.patches) {
             patch.mean[1] *= 0.5;
             patch.mean[2] *= 0.2;
         }
     }},
    {"",
     {},
     [](MeasuredChart& chart) {  // another make of chart: every color of its own within a fifth
         std::mt19937 random(11);
         for (std::size_t i = 0; i < 18; ++i) {
             for (auto& mean : chart.patches[i].mean) mean *= 0.8 + 0.4 * static_cast<double>(random() % 1000) / 1000;
         }
     }},
};

TEST(Findings, EachIsProvokedAloneAndSilentOtherwise) {
    for (const auto format : {CTivData::FormatRgb, CTivData::FormatRgb10, CTivData::FormatRgb16}) {
        for (const Case& one : kCases) {
            MeasuredChart chart = cleanChart(format);
            one.change(chart);
            const std::vector<Finding> findings = FindInPicture(chart);
            const auto index = &one - kCases;
            const std::vector<std::string> expected =
                *one.code ? std::vector<std::string>{one.code} : std::vector<std::string>{};
            ASSERT_EQ(codes(findings), expected) << "case " << index << ", format " << format;
            if (!findings.empty()) {
                EXPECT_EQ(findings.front().patches, one.patches) << index;
            }
        }
    }
}

TEST(Findings, TellWhatWasMeasured) {
    MeasuredChart coded = cleanChart(CTivData::FormatRgb16);
    encode(coded, 0.5);
    EXPECT_NEAR(EstimateExponent(coded).value_or(0), 0.5, 0.02);
    MeasuredChart lit = cleanChart(CTivData::FormatRgb16);
    slope(lit, -0.3, 0);
    const auto uneven = FindUneven(lit);
    ASSERT_TRUE(uneven);
    EXPECT_THAT(uneven->text, testing::HasSubstr("30 % from edge to edge"));
    EXPECT_THAT(uneven->text, testing::HasSubstr("brightest at the left"));
    MeasuredChart turned = cleanChart();
    reorder(turned, [](int i) { return 23 - i; });
    EXPECT_THAT(FindMisread(turned)->text, testing::HasSubstr("turned by 180 degrees"));
    const auto rowsReversed = [](int i) { return 6 * (3 - i / 6) + i % 6; };
    MeasuredChart glare = cleanChart();
    for (auto& mean : glare.patches[0].mean) mean = 0.98 * fullScale(glare);
    reorder(glare, rowsReversed);
    for (int row : {0, 1}) {  // the chart itself is upright
        for (int i = 6 * row; i < 6 * row + 6; ++i) {
            std::swap(glare.places[static_cast<std::size_t>(i)],
                      glare.places[static_cast<std::size_t>(rowsReversed(i))]);
        }
    }
    EXPECT_THAT(FindMisread(glare)->text, testing::HasSubstr("if the chart lies upright, with its white patch at the"));
    MeasuredChart clipped = cleanChart();
    for (const std::size_t i : {0u, 4u, 22u}) clipped.patches[i].clipped = 1;
    EXPECT_THAT(FindClipped(clipped)->text, testing::StartsWith("Patches 1, 5 and 23 are at full scale"));
    for (const std::size_t i : {1u, 6u, 7u, 8u, 23u}) clipped.patches[i].clipped = 1;
    EXPECT_THAT(FindClipped(clipped)->text, testing::StartsWith("Patches 1, 2, 5, 7 to 9, 23 and 24 are at full"));
    for (auto& patch : clipped.patches) patch.clipped = 1;
    EXPECT_THAT(FindClipped(clipped)->text, testing::StartsWith("Patches 1 to 24 are at full scale"));
}

TEST(Findings, WithoutTargetsOrPatchesNothingIsGuessed) {
    MeasuredChart unknown = cleanChart();
    unknown.targets.clear();
    encode(unknown, 0.45);
    slope(unknown, 0.5, 0);
    EXPECT_EQ(codes(FindInPicture(unknown)), std::vector<std::string>{});
    MeasuredChart unlit = cleanChart();
    for (Xyz& target : unlit.targets) target = {};
    EXPECT_EQ(codes(FindInPicture(unlit)), std::vector<std::string>{});
    EXPECT_EQ(codes(FindInPicture(MeasuredChart{{6, 4}, CTivData::FormatUByte, {}, {}, {}, 4, 6, {}})),
              std::vector<std::string>{});
}

TEST(Findings, ACalibrationThatIsNoneAndOneOfTooManyTerms) {
    CTivVector transform(12, CTivData::FormatFloat, nullptr, true);
    const auto set = [&](int index, float value) { transform.SetData(index, CTivData::Float(value)); };
    EXPECT_TRUE(FindSingular(transform)) << "all zeros";
    for (int row = 0; row < 3; ++row) {
        for (int column = 1; column < 4; ++column) set(4 * row + column, row + 1 == column ? 1.0f : -0.1f);
    }
    EXPECT_FALSE(FindSingular(transform)) << "an offset of 0 is none";
    set(7, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(FindSingular(transform).value().severity, Severity::Error);
    for (const int blue : {3, 7, 11}) set(blue, 0.0f);
    EXPECT_TRUE(FindSingular(transform)) << "blue has no part";

    CalibrationQuality quality;
    quality.delivered.deltaE00 = Summarize({2, 2});
    quality.unseen.deltaE00 = Summarize({3.3, 3.3});
    quality.candidates = {{4, 3, 3, 3.2}, {7, 2.5, 2.5, 3.25}, {10, 2, 2, 3.3}};
    ASSERT_TRUE(FindOverfit(quality, 10));
    EXPECT_THAT(FindOverfit(quality, 10)->text, testing::HasSubstr("with 4 terms"));
    EXPECT_FALSE(FindOverfit(quality, 4)) << "there are no fewer terms";
    quality.candidates[0].unseen = quality.candidates[1].unseen = 3.4;
    EXPECT_FALSE(FindOverfit(quality, 10)) << "fewer terms do no better";
    quality.unseen.deltaE00 = Summarize({3.1, 3.1});
    quality.candidates[0].unseen = 3.0;
    EXPECT_FALSE(FindOverfit(quality, 10)) << "1.55 times is not much";
}

}  // namespace
