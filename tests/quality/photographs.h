#pragma once

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "chart/PatchDetector.h"
#include "chart/PatchMeasurement.h"
#include "quality/measured_chart.h"
#include "tests/support/library.h"
#include "tests/support/places.h"

/// A photograph of the 24-patch chart and where the chart lies in it.
struct Photograph {
    const char* name;
    tonewright::ChartRoi roi;
    bool isLinear;
};

inline constexpr Photograph kPhotographs[] = {
    {"studio", {154, 100, 738, 506}, false}, {"shelf", {33, 41, 366, 267}, false},
    {"noisy", {44, 28, 736, 468}, false},    {"strobe", {152, 103, 418, 214}, false},
    {"frame", {15, 10, 745, 526}, false},    {"carpet", {34, 92, 709, 557}, false},
    {"rawcam", {0, 0, 600, 400}, true}};

inline CTivImage LoadPhotograph(const Photograph& photograph) {
    const std::string name = photograph.name;
    CTivImage image;
    EXPECT_TRUE(image.Load(
        name == "studio" ? sampleFile("Tonewright/Images/chart-coded.bmp") : testData("charts/" + name + ".png"), true))
        << LastError();
    return image;
}

/// Applies `change(channel)` of 0 to 255 to every channel of a FormatRgb image.
template <class Change>
void ChangeChannels(CTivImage& image, Change change) {
    std::array<std::uint8_t, 256> table;
    for (std::size_t i = 0; i < 256; ++i) {
        const double changed = std::round(change(static_cast<double>(i)));
        table[i] = static_cast<std::uint8_t>(std::clamp(changed, 0.0, 255.0));
    }
    auto* bytes = static_cast<std::uint8_t*>(image.GetData());
    const auto count = static_cast<std::size_t>(image.GetWidth()) * static_cast<std::size_t>(image.GetHeight());
    for (std::size_t i = 0; i < 4 * count; ++i) bytes[i] = i % 4 == 3 ? bytes[i] : table[bytes[i]];
}

/// What a linear camera would have given: the sRGB curve of a coded photograph undone (IEC 61966-2-1).
inline CTivImage LoadLinear(const Photograph& photograph) {
    CTivImage image = LoadPhotograph(photograph);
    if (photograph.isLinear) return image;
    ChangeChannels(image, [](double level) {
        const double v = level / 255.0;
        return 255.0 * (v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4));
    });
    return image;
}

/// The photograph in 16 bits; 8-bit levels times 257.
inline CTivImage ToSixteenBits(const CTivImage& image) {
    CTivImage deep(image.GetWidth(), image.GetHeight(), CTivData::FormatRgb16, nullptr, true);
    const auto* from = static_cast<const std::uint8_t*>(image.GetData());
    auto* to = static_cast<std::uint16_t*>(deep.GetData());
    const auto count = static_cast<std::size_t>(image.GetWidth()) * static_cast<std::size_t>(image.GetHeight());
    for (std::size_t i = 0; i < 4 * count; ++i) to[i] = static_cast<std::uint16_t>(i % 4 == 3 ? 0 : from[i] * 257);
    return deep;
}

/// A chart as the tool measures it.
struct ChartPicture {
    CTivImage image;
    tonewright::PatchDetector detector;
    tonewright::PatchColors colors;
    tonewright::MeasuredChart chart;
};

inline ChartPicture ReadPicture(CTivImage image, const tonewright::ChartRoi& roi) {
    ChartPicture picture;
    picture.image = std::move(image);
    const ChartSize size;
    EXPECT_TRUE(picture.detector.DetectPatches(picture.image, roi, size));
    picture.colors = picture.detector.GetRawColors(picture.image, roi, size, tonewright::PatchDepth::AsImage);
    picture.image.SetRoi({});
    picture.chart = MeasureGrid(picture.image, picture.detector, size, picture.colors.brightest);
    return picture;
}

inline CTivTonewrightDC Calibrated(const CTivVector& colors, int terms, int illuminant = 3) {
    CTivTonewrightDC engine;
    engine.SetXformSize(terms);
    engine.SetIlluminant(illuminant);
    EXPECT_TRUE(engine.SetRawColors(colors) && engine.Calibrate()) << LastError();
    return engine;
}
