#pragma once

#include "acquisition/CTonewrightAcq.h"

/// Everything that the rules of the commands look at.
struct StudioState {
    int deviceKind = DeviceKindNone;
    bool hasCoefficientFile = false;
    int calibrationMode = 0;  ///< 0 absolute, 1 relative
    int illuminant = 0;       ///< an index of kCalibrationIlluminants
    int saturationMode = 0;   ///< 0 automatic, 1 manual, 2 none
    bool manualColors = false;

    bool rawHasImage = false;
    bool refHasImage = false;
    bool calibHasImage = false;
    bool rawSelected = false;
    bool refSelected = false;
    bool calibSelected = false;
    bool rawColorListEnabled = false;  ///< the pane's own flag

    bool logVisible = false;
    bool rawColorsVisible = false;
    bool spectrumVisible = false;
    bool refPaneVisible = false;
    bool calibPaneVisible = false;
    bool qualityVisible = false;
    bool comparing = false;
    bool hasReport = false;  ///< a preview was judged
    bool canVerify = false;  ///< a calibration was made
    bool canUndo = false;
    bool canRedo = false;
    int chrome = 0;  ///< how the window is dressed, a theme::Chrome
};
