#include <cmath>
#include <fstream>

#include "calibration/ImplTonewrightDC_impl.h"
#include "calibration/coefficient_file.h"
#include "foundation/SafeFile.h"

using namespace tonewright;

namespace {

constexpr std::uint32_t kRgb10TopBits = 0xc0000000;

/// The integer part of a fraction of full scale; 0 for what no integer holds.
std::int64_t Scale(float fraction, float fullScale) {
    const float value = fraction * fullScale;
    return std::abs(value) < 9.0e18f ? static_cast<std::int64_t>(value) : 0;
}

}  // namespace

bool ImplTonewrightDC::Save(const std::string& path) const {
    SafeOutputFile file(path);
    if (!file.IsOpen()) return Refuse("CTivTonewrightDC::Save => cannot open file for saving");
    if (!WriteParameters(file.Stream(), parameters_)) return false;
    return file.Commit() || Refuse("CTivTonewrightDC::Save => cannot write file");
}

bool ImplTonewrightDC::Load(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return Refuse("CTivTonewrightDC::Load => cannot open file for loading");
    std::int32_t version = 0;
    if (!ReadParameters(file, parameters_, version)) return false;
    gammaTables_ = GetGammaTables(parameters_.gamma);
    return Calibrate();
}

bool ImplTonewrightDC::SaveXForm(const std::string& path, const CTivVector& coefficients, std::int32_t terms,
                                 bool withSaturation) const {
    if (!calibrated_) return Refuse("CTivTonewrightDC::SaveXForm => invalid calibration. Cannot be saved.");
    SafeOutputFile file(path);
    if (!file.IsOpen()) return Refuse("CTivTonewrightDC::SaveXForm => cannot open file for saving");
    CoefficientHead head;
    head.terms = terms;
    if (withSaturation) head.saturation = GetSaturationFractions();
    if (!WriteCoefficients(file.Stream(), head, coefficients)) return false;
    return file.Commit() || Refuse("CTivTonewrightDC::SaveXForm => cannot write file");
}

bool ImplTonewrightDC::LoadXForm(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return Refuse("CTivTonewrightDC::LoadXForm => cannot open file for loading");
    CoefficientHead head;
    head.terms = parameters_.terms;
    const bool isRead = ReadCoefficients(file, head, transform_);
    parameters_.terms = head.terms;
    if (isRead && head.saturation) SetSaturationFractions(*head.saturation);
    return isRead;
}

std::array<float, 3> ImplTonewrightDC::GetSaturationFractions() const {
    const auto fractions = [](std::uint32_t red, std::uint32_t green, std::uint32_t blue, double fullScale) {
        return std::array{static_cast<float>(red / fullScale), static_cast<float>(green / fullScale),
                          static_cast<float>(blue / fullScale)};
    };
    switch (parameters_.rawColors.GetFormat()) {
        case CTivData::FormatRgb: {
            const auto [blue, green, red, reserved] = parameters_.saturationRgb;
            return fractions(red, green, blue, 255.0);
        }
        case CTivData::FormatRgb10: {
            const std::uint32_t packed = parameters_.saturationRgb10;
            return fractions(packed >> 20 & 0x3ff, packed >> 10 & 0x3ff, packed & 0x3ff, 1023.0);
        }
        default: {
            const auto [blue, green, red, reserved] = parameters_.saturationRgb16;
            return fractions(red, green, blue, 65535.0);
        }
    }
}

void ImplTonewrightDC::SetSaturationFractions(const std::array<float, 3>& fractions) {
    // 10 and 16 bits keep only the low 8 bits of each channel: deliberate (C34), since Execute does not apply them.
    const auto lowByte = [&fractions](std::size_t channel, float fullScale) {
        return static_cast<std::uint8_t>(Scale(fractions[channel], fullScale));
    };
    switch (parameters_.rawColors.GetFormat()) {
        case CTivData::FormatRgb: {
            auto& value = parameters_.saturationRgb;
            value = {lowByte(2, 255.0f), lowByte(1, 255.0f), lowByte(0, 255.0f), value[3]};
            break;
        }
        case CTivData::FormatRgb10: {
            auto& value = parameters_.saturationRgb10;
            const std::uint32_t red = lowByte(0, 1023.0f), green = lowByte(1, 1023.0f), blue = lowByte(2, 1023.0f);
            value = (value & kRgb10TopBits) | red << 20 | green << 10 | blue;
            break;
        }
        default: {
            auto& value = parameters_.saturationRgb16;
            value = {lowByte(2, 65535.0f), lowByte(1, 65535.0f), lowByte(0, 65535.0f), value[3]};
            break;
        }
    }
}
