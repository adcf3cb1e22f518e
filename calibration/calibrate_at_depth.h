#pragma once

#include "foundation/CTivData.h"

class CTivTonewrightDC;

namespace tonewright {

/// Calibrates, and makes the operator work at its raw colors' depth. By itself it takes their format over in automatic
/// saturation mode only, and then corrects no deep image in the other modes; so those run once more, automatically.
/// @return what Calibrate says
/// @throws const char* as Calibrate does
bool CalibrateAtDepth(CTivTonewrightDC& engine);

/// The operator's saturation for the format of its raw colors; an empty value without raw colors.
CTivData GetSaturationInForce(const CTivTonewrightDC& engine);

}  // namespace tonewright
