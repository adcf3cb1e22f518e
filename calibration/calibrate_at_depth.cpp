#include "calibration/calibrate_at_depth.h"

#include "calibration/CTivTonewrightDC.h"

namespace tonewright {

bool CalibrateAtDepth(CTivTonewrightDC& engine) {
    const int mode = engine.GetSaturationMode();
    const CTivVector* raw = engine.GetRawColors();
    const bool isDeep = raw && (raw->GetFormat() == CTivData::FormatRgb10 || raw->GetFormat() == CTivData::FormatRgb16);
    if (mode != 0 && isDeep) {
        const CTivData saturation = GetSaturationInForce(engine);
        engine.SetSaturationMode(0);
        const bool done = engine.Calibrate();
        engine.SetSaturationMode(mode);
        engine.SetSaturationValueEx(saturation);
        if (!done) return false;
    }
    return engine.Calibrate();
}

CTivData GetSaturationInForce(const CTivTonewrightDC& engine) {
    const CTivVector* raw = engine.GetRawColors();
    if (!raw) return {};
    switch (raw->GetFormat()) {
        case CTivData::FormatRgb10:
            return engine.GetSaturationRgb10();
        case CTivData::FormatRgb16:
            return engine.GetSaturationRgb16();
        default:
            return engine.GetSaturationRgb();
    }
}

}  // namespace tonewright
