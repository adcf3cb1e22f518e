#pragma once

class CTivTonewrightDC;

/// The one calibration operator of the process. It is there before main begins and goes after main has ended. Main
/// thread only.
CTivTonewrightDC& GetEngine();
