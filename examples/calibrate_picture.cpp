// Calibrates a camera from a picture of a chart of 24 patches, and writes what the device needs.
//   calibrate_picture chart.bmp camera.ccor
#include <cstdio>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/illuminants.h"
#include "chart/PatchDetector.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivManager.h"

namespace {

/// Whatever fails in the library answers false; the text waits until somebody asks.
int fail(const char* what) {
    std::fprintf(stderr, "%s: %s\n", what, CTivManager::GetLastErrorString().c_str());
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: calibrate_picture CHART.bmp CAMERA.ccor\n");
        return 2;
    }
    CTivManager::Initialize();                 // without it no refusal is told
    CTivManager::SetErrorMode(ErrorModeNone);  // texts are asked for, not shown

    CTivImage picture;
    if (!picture.Load(argv[1], true)) return fail(argv[1]);

    // The chart fills the picture but for a margin of a fiftieth.
    const int marginX = picture.GetWidth() / 50, marginY = picture.GetHeight() / 50;
    const tonewright::ChartRoi roi = {marginX, marginY, picture.GetWidth() - marginX, picture.GetHeight() - marginY};
    const ChartSize chart;  // 6 x 4 patches
    tonewright::PatchDetector detector;
    if (!detector.DetectPatches(picture, roi, chart)) return fail("no patch found");
    if (detector.GetFoundRows() != chart.Height || detector.GetFoundColumns() != chart.Width) {
        std::fprintf(stderr, "the chart was not found whole\n");
        return 1;
    }
    const tonewright::PatchColors measured = detector.GetRawColors(picture, roi, chart);

    CTivTonewrightDC engine;
    engine.SetIlluminant(tonewright::FindIlluminant("D65")->index);
    engine.SetXformSize(4);
    if (!engine.SetRawColors(measured.colors) || !engine.Calibrate()) return fail("cannot calibrate");
    if (!engine.SaveXForm(argv[2], false)) return fail(argv[2]);
    std::printf("%s: the transform of 4 terms from %s\n", argv[2], argv[1]);
    return 0;
}
