#include "quality/verification.h"

#include <utility>

namespace tonewright {

Verification VerifyOn(const ChartReading& reading, const std::string& path, const CTivTonewrightDC& settings,
                      const CTivVector& transform, const std::vector<Xyz>& targets, bool isAbsolute) {
    const CTivVector& raw = reading.colors.colors;
    if (static_cast<int>(targets.size()) != raw.GetSize()) {
        throw WorkFailure(path + ": the chart has " + std::to_string(raw.GetSize()) + " patches, the calibration " +
                          std::to_string(targets.size()));
    }
    if (raw.GetFormat() != settings.GetCalibratedFormat()) {
        throw WorkFailure(path + ": the calibration was made for another depth of pixels");
    }
    Verification verification;
    verification.quality = JudgeDelivery(settings, transform, raw, targets, InPicture(reading));
    if (verification.quality.patches.empty()) throw WorkFailure(path + ": the calibration cannot be executed");
    MeasuredChart measured = reading.measured;
    if (isAbsolute) measured.targets = targets;
    verification.findings = FindInPicture(measured);
    if (auto singular = FindSingular(transform)) verification.findings.push_back(std::move(*singular));
    return verification;
}

}  // namespace tonewright
