#include <algorithm>
#include <cstring>

#include "calibration/CalibrationTables.h"
#include "calibration/ImplTonewrightDC_impl.h"
#include "calibration/execute_transform.h"
#include "calibration/fit_transform.h"
#include "calibration/illuminants.h"

using namespace tonewright;

namespace {

constexpr const char* kNoReferenceColors =
    "CTivTonewrightDC::Calibrate => vector of reference colors is empty. Use SetReferenceColors prior to Calibrate.";
constexpr const char* kTooManyColors = "CTivTonewrightDC::Calibrate => too many colors.";

struct Channels {
    std::uint32_t red, green, blue;
    std::uint32_t Sum() const { return red + green + blue; }
};

/// The color of the greatest channel sum, of equals the first; (1, 1, 1) where none exceeds it.
template <class Word, int bits>
Channels FindBrightest(const CTivVector& colors) {
    constexpr Word fullScale = (1 << bits) - 1;
    const auto* data = static_cast<const std::byte*>(colors.GetDataPointer());
    Channels best{1, 1, 1};
    for (std::int32_t i = 0; i < colors.GetSize(); ++i) {
        Word word;
        std::memcpy(&word, data + static_cast<std::size_t>(i) * sizeof word, sizeof word);
        const auto channel = [word](int shift) { return static_cast<std::uint32_t>((word >> shift) & fullScale); };
        const Channels color{channel(2 * bits), channel(bits), channel(0)};
        if (color.Sum() > best.Sum()) best = color;
    }
    return best;
}

/// Scales a color so that its greatest channel touches full scale, in float32, cut to whole numbers.
Channels ScaleToFull(const Channels& color, std::uint32_t fullScale) {
    const auto scale = [fullScale](std::uint32_t channel, std::uint32_t greatest) {
        return static_cast<std::uint32_t>(static_cast<float>(channel) * static_cast<float>(fullScale) /
                                          static_cast<float>(greatest));
    };
    const auto [red, green, blue] = color;
    if (red > green && red > blue) return {fullScale, scale(green, red), scale(blue, red)};
    if (green <= blue) return {scale(red, blue), scale(green, blue), fullScale};
    return {scale(red, green), fullScale, scale(blue, green)};
}

/// The Bradford adaptation from a white to the chart's white patch under D65, which is not the D65 white point.
DoubleMatrix AdaptFrom(const std::array<float, 4>& white) {
    const CalibrationTables& tables = GetCalibrationTables();
    constexpr std::array<double, 3> destinationWhite = {0.837494, 0.884971, 0.924616};
    DoubleMatrix bradford(3, 3), inverse(3, 3), scale(3, 3);
    for (std::int32_t i = 0; i < 3; ++i) {
        double source = 0.0;
        double destination = 0.0;
        for (std::int32_t k = 0; k < 3; ++k) {
            bradford[i][k] = tables.BradfordMatrix[k][i];  // both are stored transposed
            inverse[i][k] = tables.BradfordInverse[k][i];
            source += bradford[i][k] * static_cast<double>(white[static_cast<std::size_t>(k)]);
            destination += bradford[i][k] * destinationWhite[static_cast<std::size_t>(k)];
        }
        scale[i][i] = destination / source;
    }
    return MultiplyInFloat(MultiplyInFloat(inverse, scale, 3), bradford, 3);
}

}  // namespace

bool ImplTonewrightDC::Calibrate() {
    if (!parameters_.rawColors.IsAllocated()) {
        return Refuse(
            "CTivTonewrightDC::Calibrate => vector of raw colors is empty. Use SetRawColors prior to Calibrate.");
    }
    // What no fit takes isn't looked through either: a file may declare a great many colors.
    if (parameters_.rawColors.GetSize() <= kMaxFitColors) UpdateSaturation();
    switch (parameters_.mode) {
        case 0:
            return CalibrateAbsolute();
        case 1:
            return CalibrateRelative();
        default:
            return Refuse("CTivTonewrightDC::Calibrate => Calibration mode unknown.");
    }
}

void ImplTonewrightDC::UpdateSaturation() {
    if (parameters_.saturationMode == 0) {
        // In this mode alone the format follows the raw colors, deliberately (C27).
        calibratedFormat_ = parameters_.rawColors.GetFormat();
        ComputeSaturation();
    } else if (parameters_.saturationMode == 2) {
        std::fill_n(parameters_.saturationRgb.begin(), 3, std::uint8_t{255});
        parameters_.saturationRgb10 |= 0x3fffffff;
        std::fill_n(parameters_.saturationRgb16.begin(), 3, std::uint16_t{65535});
    }
}

void ImplTonewrightDC::ComputeSaturation() {
    switch (parameters_.rawColors.GetFormat()) {
        case CTivData::FormatRgb: {
            const auto [r, g, b] = ScaleToFull(FindBrightest<std::uint32_t, 8>(parameters_.rawColors), 255);
            parameters_.saturationRgb = {static_cast<std::uint8_t>(b), static_cast<std::uint8_t>(g),
                                         static_cast<std::uint8_t>(r), 0};
            break;
        }
        case CTivData::FormatRgb10: {
            const auto [r, g, b] = ScaleToFull(FindBrightest<std::uint32_t, 10>(parameters_.rawColors), 1023);
            parameters_.saturationRgb10 = r << 20 | g << 10 | b;
            break;
        }
        case CTivData::FormatRgb16: {
            const auto [r, g, b] = ScaleToFull(FindBrightest<std::uint64_t, 16>(parameters_.rawColors), 65535);
            auto& value = parameters_.saturationRgb16;  // the reserved word stays, unlike in the other two
            value = {static_cast<std::uint16_t>(b), static_cast<std::uint16_t>(g), static_cast<std::uint16_t>(r),
                     value[3]};
            break;
        }
        default:
            break;
    }
}

bool ImplTonewrightDC::CalibrateAbsolute() {
    const std::int32_t count = parameters_.rawColors.GetSize();
    if (parameters_.illuminant == kUserIlluminant) {
        const CTivVector& spectrum = parameters_.spectrumValues;
        if (!spectrum.IsAllocated()) return Refuse(kNoReferenceColors);  // not the spectrum: deliberate (C28)
        if (spectrum.GetSize() != count) {
            return Refuse("CTivTonewrightDC::Calibrate => vectors of raw colors and spectrum must be the same size.");
        }
        if (count > kMaxFitColors) return Refuse(kTooManyColors);
        return FitAbsolute(NormaliseColors(spectrum), AdaptFrom(parameters_.illuminantValue));
    }
    const CalibrationTables& tables = GetCalibrationTables();
    const auto reference = tables.ReferenceTable.find(parameters_.illuminant);
    if (reference == tables.ReferenceTable.end() || static_cast<std::size_t>(count) != reference->second.size()) {
        return Refuse(
            "CTivTonewrightDC::Calibrate => size of raw vector must be egal to 24 with predefined illluminant.");
    }
    return FitAbsolute(reference->second, tables.AdaptationTable.at(GetAdaptationKey(parameters_.illuminant)));
}

bool ImplTonewrightDC::FitAbsolute(std::span<const NormalisedColor> targets, const DoubleMatrix& adaptation) {
    const auto fit = FitColors(NormaliseColors(parameters_.rawColors), targets, parameters_.terms);
    if (!fit) {
        calibrated_ = true;
        return true;
    }
    fitMatrix_ = *fit;
    adaptationMatrix_ = adaptation;
    return StoreTransform(ComposeTransform(fitMatrix_, adaptationMatrix_));
}

bool ImplTonewrightDC::CalibrateRelative() {
    const CTivVector& raw = parameters_.rawColors;
    const CTivVector& reference = parameters_.referenceColors;
    if (!reference.IsAllocated()) return Refuse(kNoReferenceColors);
    if (reference.GetSize() != raw.GetSize()) {
        return Refuse("CTivTonewrightDC::Calibrate => vectors of raw and reference colors must be the same size.");
    }
    if (reference.GetFormat() != raw.GetFormat()) {
        return Refuse("CTivTonewrightDC::Calibrate => vectors of raw and reference colors must be the same format.");
    }
    if (raw.GetSize() > kMaxFitColors) return Refuse(kTooManyColors);
    const auto fit = FitColors(NormaliseColors(raw), NormaliseColors(reference), parameters_.terms);
    if (!fit) {
        calibrated_ = true;
        return true;
    }
    return StoreTransform(*fit);
}

bool ImplTonewrightDC::StoreTransform(const DoubleMatrix& matrix) {
    if (!StoreRows(matrix, transform_)) return false;
    if (matrix.GetColumns() == 4) colorTwist_ = GetColorTwist(transform_);
    calibrated_ = true;
    return true;
}
