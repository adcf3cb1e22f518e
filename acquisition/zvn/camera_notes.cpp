#include <cmath>
#include <cstdio>

#include "acquisition/zvn/camera_notes_impl.h"

namespace {

struct Automatic {
    const char* feature;
    const char* what;
};
constexpr Automatic kAutomatics[] = {{"ExposureAuto", "the exposure time follows the picture"},
                                     {"GainAuto", "the gain follows the picture"},
                                     {"BalanceWhiteAuto", "the white balance follows the picture"}};
constexpr Automatic kSwitches[] = {{"ColorTransformationEnable", "the camera changes colors by a transform of its own"},
                                   {"LUTEnable", "the camera sends its values through a table"}};

ZvnNote note(const std::string& feature, const std::string& value, const std::string& what, const std::string& line) {
    return {feature, value, line,
            feature + " is " + value + ": " + what + ", so that a calibration does not hold; the line \"" + line +
                "\" in the configuration file turns it off"};
}

/// Runs a look at a feature, of which a camera that answers oddly has nothing to tell.
template <class Look>
void tryTo(Look look) {
    try {
        look();
    } catch (const ZvnFeatureFailure&) {
    }
}

void lookAtGamma(ZvnFeatures& features, std::vector<ZvnNote>& notes) {
    if (!features.Has("Gamma")) return;
    const bool hasSwitch = features.Has("GammaEnable");
    if (hasSwitch && !features.GetSwitch("GammaEnable")) return;
    const double gamma = features.GetNumber("Gamma");
    if (std::fabs(gamma - 1) < 1e-3) return;
    char value[32];
    std::snprintf(value, sizeof value, "%.4g", gamma);
    notes.push_back(note("Gamma", value, "the camera's values are not linear in the light",
                         hasSwitch ? "GammaEnable = false" : "Gamma = 1"));
}

}  // namespace

std::vector<ZvnNote> FindZvnNotes(ZvnFeatures& features) {
    std::vector<ZvnNote> notes;
    for (const auto& row : kAutomatics) {
        tryTo([&] {
            const auto& [feature, what] = row;
            if (!features.Has(feature)) return;
            const std::string value = features.GetChoice(feature);
            if (value != "Off") notes.push_back(note(feature, value, what, std::string(feature) + " = Off"));
        });
    }
    tryTo([&] { lookAtGamma(features, notes); });
    for (const auto& row : kSwitches) {
        tryTo([&] {
            const auto& [feature, what] = row;
            if (!features.Has(feature) || !features.GetSwitch(feature)) return;
            notes.push_back(note(feature, "true", what, std::string(feature) + " = false"));
        });
    }
    return notes;
}
