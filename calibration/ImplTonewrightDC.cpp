#include <bit>

#include "calibration/CalibrationTables.h"
#include "calibration/ImplTonewrightDC_impl.h"
#include "calibration/gamma_table.h"

ImplTonewrightDC::ImplTonewrightDC() : CTivAlgo("TonewrightDC") {
    GetCalibrationTables();
    Reset();
}

void ImplTonewrightDC::Reset() {
    const std::array<float, 4> kept = parameters.illuminantValue;
    parameters = {};
    parameters.illuminantValue = kept;
    transform.Free();
    FillGammaTables();
    fitMatrix.Reshape(3, parameters.terms);
    adaptationMatrix.Reshape(0, 0);
    calibrated = false;
    calibratedFormat = CTivData::FormatRgb;
}

void ImplTonewrightDC::SetXformSize(std::int32_t terms) {
    parameters.terms = terms;
    if (terms == 4 || terms == 10) fitMatrix.Reshape(3, terms);  // any other waits for Calibrate to replace the matrix
}

void ImplTonewrightDC::SetGamma(float gamma) {
    parameters.gamma = gamma;
    FillGammaTables();
}

void ImplTonewrightDC::FillGammaTables() {
    FillGammaTable(channelLut8_, parameters.gamma);
    FillGammaTable(channelLut10_, parameters.gamma);
    FillGammaTable(channelLut16_, parameters.gamma);
}

bool ImplTonewrightDC::SetSaturation(const CTivData& value) {
    switch (value.GetFormat()) {
        case CTivData::FormatRgb:
            parameters.saturationRgb = std::bit_cast<std::array<std::uint8_t, 4>>(value.AsRgb());
            return true;
        case CTivData::FormatRgb10:
            parameters.saturationRgb10 = value.AsRgb10();
            return true;
        case CTivData::FormatRgb16:
            parameters.saturationRgb16 = std::bit_cast<std::array<std::uint16_t, 4>>(value.AsRgb16());
            return true;
        default:
            return Refuse(
                "CTivTonewrightDC::SetSaturationValueEx => Invalid format. Must be either RGB, RGB10 or RGB16.");
    }
}
