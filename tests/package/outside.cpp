#include <cstdio>

#include "analysis/CTivBlob.h"
#include "calibration/CTivTonewrightDC.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivManager.h"

// Finds one bright square, fits a relative calibration and saves a picture: one call into each installed library.
int main(int argc, char** argv) {
    CTivManager::Initialize();
    CTivManager::SetErrorMode(ErrorModeNone);
    CTivImage image(16, 16, CTivData::FormatUByte, nullptr, true);
    for (int i = 0; i < 9; ++i) image.SetData(5 + i % 3, 5 + i / 3, CTivData::Int(200));
    CTivBlob blobs(16, 16);
    CTivVector colors(2, CTivData::FormatRgb, nullptr, true);
    colors.SetData(1, CTivData::Rgb(200, 100, 50));
    CTivTonewrightDC engine;
    engine.SetCalibrationMode(1);
    const bool done = argc == 2 && blobs.Execute(image) && blobs.GetNumBlobs() == 1 && blobs.GetBlobWidth(0) == 3 &&
                      engine.SetRawColors(colors) && engine.SetReferenceColors(colors) && engine.Calibrate() &&
                      image.Save(argv[1], 5) && image.Load(argv[1], true) && image.GetWidth() == 16;
    if (!done) std::printf("failed: %s\n", CTivManager::GetLastErrorString().c_str());
    return done ? 0 : 1;
}
