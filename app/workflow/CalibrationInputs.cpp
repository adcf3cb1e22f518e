#include "app/workflow/CalibrationInputs.h"

#include <functional>
#include <string_view>

#include "app/workflow/WorkflowContext.h"
#include "calibration/illuminants.h"
#include "quality/chart_calibration.h"

using namespace tonewright;

namespace {

constexpr int kRelative = 1;

/// Where the patches of a picture are measured; without a picture the colors that a file brought.
std::size_t checksum(PictureView& view, const CTivVector* colors) {
    if (!view.Image().IsAllocated()) return colors ? Checksum(*colors) : 0;
    std::size_t sum = 0;
    if (!view.Detector()) return sum;
    for (const PatchOverlay& area : view.Detector()->GetOverlay()) {
        for (const int part : {area.x, area.y, area.width, area.height}) {
            sum = sum * 31 + static_cast<std::size_t>(part);
        }
    }
    return sum;
}

std::size_t valuesInForce(const UserValues& values) {
    std::size_t sum = Checksum(values.GetSpectrumValues());
    for (const float part : values.GetIlluminantValue()) sum = sum * 31 + std::hash<float>()(part);
    return sum;
}

}  // namespace

std::size_t Checksum(const CTivVector& vector) {
    if (!vector.IsAllocated()) return 0;
    const auto bytes = CTivData::GetByteCount(vector.GetFormat(), static_cast<std::uint64_t>(vector.GetSize()));
    return std::hash<std::string_view>()({static_cast<const char*>(vector.GetDataPointer()), bytes});
}

CalibrationInputs TakeInputs(const WorkflowContext& work) {
    const CTivTonewrightDC& engine = work.engine;
    CalibrationInputs now;
    now.pictures = work.pictures;
    now.mode = engine.GetCalibrationMode();
    now.illuminant = now.mode == kRelative ? 0 : engine.GetIlluminant();
    now.terms = engine.GetXformSize();
    if (engine.GetTransform()) now.transform = Checksum(*engine.GetTransform());
    now.gamma = engine.GetGamma();
    now.saturationMode = engine.GetSaturationMode();
    if (now.saturationMode == SaturationChoice::Manual) now.saturation = engine.GetSaturationRgb().AsRgb();
    now.manualColors = work.manualColors;
    const bool isRelative = now.mode == kRelative;
    if (now.manualColors) {
        now.colors = Checksum(work.lists.GetRawColors());
        if (isRelative) now.colors = now.colors * 31 + Checksum(work.lists.GetReferenceColors());
    } else {
        now.colors = checksum(work.raw, engine.GetRawColors());
        if (isRelative) now.colors = now.colors * 31 + checksum(work.reference, engine.GetReferenceColors());
    }
    if (!isRelative && now.illuminant == kUserIlluminant) now.values = valuesInForce(work.values);
    return now;
}

QString WhatDiffers(const CalibrationInputs& before, const CalibrationInputs& now) {
    if (before.pictures != now.pictures) return "another picture came";
    if (before.mode != now.mode) return "the calibration mode was changed";
    if (before.illuminant != now.illuminant) return "the illuminant was changed";
    if (before.terms != now.terms) return "the number of terms was changed";
    if (before.gamma != now.gamma) return "gamma was changed";
    if (before.saturationMode != now.saturationMode || before.saturation != now.saturation) {
        return "the saturation was changed";
    }
    if (before.manualColors != now.manualColors || before.colors != now.colors) return "the colors were changed";
    if (before.values != now.values) return "the user's values were changed";
    if (before.transform != now.transform) return "other coefficients were loaded";
    return {};
}

// A file holds no transform, and colors from wherever they are: lists that hold what a file brought change nothing, nor
// does a picture whose colors are not taken.
bool HaveOtherParameters(CalibrationInputs one, CalibrationInputs other) {
    one.transform = other.transform;
    if (other.manualColors) one.pictures = other.pictures;
    one.manualColors = other.manualColors;
    return !WhatDiffers(one, other).isEmpty();
}
