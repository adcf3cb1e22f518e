#include <bit>

#include "calibration/CalibrationTables.h"
#include "calibration/ImplTonewrightDC_impl.h"

using namespace tonewright;

ImplTonewrightDC::ImplTonewrightDC() : CTivAlgo("TonewrightDC") {
    GetCalibrationTables();
    Reset();
}

void ImplTonewrightDC::Reset() {
    const std::array<float, 4> kept = parameters_.illuminantValue;
    parameters_ = {};
    parameters_.illuminantValue = kept;
    transform_.Free();
    gammaTables_ = GetGammaTables(parameters_.gamma);
    fitMatrix_.Reshape(3, parameters_.terms);
    adaptationMatrix_.Reshape(0, 0);
    calibrated_ = false;
    calibratedFormat_ = CTivData::FormatRgb;
}

void ImplTonewrightDC::SetXformSize(std::int32_t terms) {
    parameters_.terms = terms;
    if (terms == 4 || terms == 10) fitMatrix_.Reshape(3, terms);  // any other waits for Calibrate to replace the matrix
}

void ImplTonewrightDC::SetGamma(float gamma) {
    parameters_.gamma = gamma;
    gammaTables_ = GetGammaTables(parameters_.gamma);
}

bool ImplTonewrightDC::SetSaturation(const CTivData& value) {
    switch (value.GetFormat()) {
        case CTivData::FormatRgb:
            parameters_.saturationRgb = std::bit_cast<std::array<std::uint8_t, 4>>(value.AsRgb());
            return true;
        case CTivData::FormatRgb10:
            parameters_.saturationRgb10 = value.AsRgb10();
            return true;
        case CTivData::FormatRgb16:
            parameters_.saturationRgb16 = std::bit_cast<std::array<std::uint16_t, 4>>(value.AsRgb16());
            return true;
        default:
            return Refuse(
                "CTivTonewrightDC::SetSaturationValueEx => Invalid format. Must be either RGB, RGB10 or RGB16.");
    }
}
