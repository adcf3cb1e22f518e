#include "acquisition/zvn/color_features.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <sstream>

#include "calibration/coefficient_file.h"

namespace {

constexpr const char* kEnable = "ColorTransformationEnable";
constexpr const char* kSelector = "ColorTransformationSelector";
constexpr const char* kValueSelector = "ColorTransformationValueSelector";
constexpr const char* kValue = "ColorTransformationValue";
constexpr const char* kOwnSelection = "RGBtoRGB";

// In the order of a matrix.
constexpr const char* kEntries[] = {"Offset0", "Gain00", "Gain01",  "Gain02", "Offset1", "Gain10",
                                    "Gain11",  "Gain12", "Offset2", "Gain20", "Gain21",  "Gain22"};
constexpr std::size_t kCount = std::size(kEntries);
// Steps that a camera may have without saying so.
constexpr double kLongestGainStep = 1.0 / 16;
constexpr double kLongestOffsetStep = 4;  // counts
constexpr bool isOffset(std::size_t i) { return i % 4 == 0; }

using Values = std::array<double, kCount>;  // as the camera counts them

std::string toText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.7g", value);
    return text;
}

/// The features with the right ones selected; what was selected before comes back at the end.
class Selection {
public:
    explicit Selection(ZvnFeatures& features) : features_(features) {
        earlierValue_ = features.GetChoice(kValueSelector);
        if (features.Has(kSelector)) {
            earlier_ = features.GetChoice(kSelector);
            if (earlier_ != kOwnSelection) features.SetChoice(kSelector, kOwnSelection);
        }
        known_ = features.GetEntries(kValueSelector);
    }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
    ~Selection() {
        try {
            features_.SetChoice(kValueSelector, earlierValue_);
            if (!earlier_.empty() && earlier_ != kOwnSelection) features_.SetChoice(kSelector, earlier_);
        } catch (const ZvnFeatureFailure&) {  // it changes nothing but which value the next one sees first
        }
    }

    bool Has(std::size_t i) const { return std::ranges::find(known_, kEntries[i]) != known_.end(); }

    double Get(std::size_t i) const {
        if (!Has(i)) return 0;
        features_.SetChoice(kValueSelector, kEntries[i]);
        return features_.GetNumber(kValue);
    }
    Values GetAll() const {
        Values values;
        for (std::size_t i = 0; i < kCount; ++i) values[i] = Get(i);
        return values;
    }

    /// Says before anything is written what the camera does not take.
    void Require(std::size_t i, double value) const {
        if (!std::isfinite(value)) throw ZvnFeatureFailure(std::string(kEntries[i]) + " would be no number");
        if (!Has(i)) {
            if (value == 0) return;
            throw ZvnFeatureFailure(std::string("the camera has no ") + kEntries[i] + ", which would be " +
                                    toText(value));
        }
        features_.SetChoice(kValueSelector, kEntries[i]);
        const ZvnFeatures::Range range = features_.GetRange(kValue);
        if (value >= range.min && value <= range.max) return;
        throw ZvnFeatureFailure(std::string(kEntries[i]) + " would be " + toText(value) + ", outside the camera's " +
                                toText(range.min) + " to " + toText(range.max));
    }

    void SetAll(const Values& values) const {
        for (std::size_t i = 0; i < kCount; ++i) {
            if (!Has(i)) continue;
            features_.SetChoice(kValueSelector, kEntries[i]);
            features_.SetNumber(kValue, values[i]);
        }
        for (std::size_t i = 0; i < kCount; ++i) {
            if (Has(i)) Compare(i, values[i]);
        }
    }

    void Switch(bool on) const {
        features_.SetSwitch(kEnable, on);
        if (features_.GetSwitch(kEnable) == on) return;
        throw ZvnFeatureFailure(std::string(kEnable) + " stays " + (on ? "off" : "on"));
    }

private:
    void Compare(std::size_t i, double wanted) const {
        const double value = Get(i);
        const double noise = std::fabs(wanted) * std::numeric_limits<float>::epsilon();
        if (std::fabs(value - wanted) <= noise) return;
        const ZvnFeatures::Range range = features_.GetRange(kValue);
        const double step = range.step > 0 ? range.step : FindStep(value, wanted, range, isOffset(i));
        if (std::fabs(value - wanted) <= step * (1 + 1e-6) + noise) return;
        throw ZvnFeatureFailure(std::string(kEntries[i]) + " was set to " + toText(wanted) + " and reads " +
                                toText(value));
    }

    /// Asks a camera that rounds without saying its step for the next value that it holds beyond the wanted one.
    /// @return how far that is, 0 where none is near: then the camera does not follow what is written
    double FindStep(double value, double wanted, const ZvnFeatures::Range& range, bool offset) const {
        const double most = offset ? kLongestOffsetStep : kLongestGainStep;
        double step = 0;
        for (double reach = 2 * (wanted - value); step == 0 && std::fabs(reach) <= 2 * most; reach *= 2) {
            features_.SetNumber(kValue, std::clamp(value + reach, range.min, range.max));
            step = std::fabs(features_.GetNumber(kValue) - value);
        }
        features_.SetNumber(kValue, wanted);
        return step <= most && features_.GetNumber(kValue) == value ? step : 0;
    }

    ZvnFeatures& features_;
    std::string earlier_;
    std::string earlierValue_;
    std::vector<std::string> known_;
};

/// @return what has become of the earlier transform
std::string putBack(const Selection& selection, const Values& earlier, bool wasOn) {
    try {
        selection.Switch(false);
        selection.SetAll(earlier);
        selection.Switch(wasOn);
        return "the earlier coefficients are back";
    } catch (const ZvnFeatureFailure&) {
        return "the earlier coefficients could not be put back; unless the camera has kept them, its color "
               "transformation "
               "is off: send again";
    }
}

}  // namespace

bool HasZvnColorFeatures(ZvnFeatures& features) {
    if (!features.Has(kEnable) || !features.Has(kValueSelector) || !features.Has(kValue)) return false;
    if (features.Has(kSelector)) {
        const auto selections = features.GetEntries(kSelector);
        if (std::ranges::find(selections, kOwnSelection) == selections.end()) return false;
    }
    const auto entries = features.GetEntries(kValueSelector);
    for (std::size_t i = 0; i < kCount; ++i) {
        if (!isOffset(i) && std::ranges::find(entries, kEntries[i]) == entries.end()) return false;
    }
    return true;
}

ZvnColorMatrix ReadZvnColorFeatures(ZvnFeatures& features, double fullScale) {
    const Values values = Selection(features).GetAll();
    ZvnColorMatrix matrix;
    for (std::size_t i = 0; i < kCount; ++i) {
        matrix[i] = static_cast<float>(isOffset(i) ? values[i] / fullScale : values[i]);
    }
    return matrix;
}

void WriteZvnColorFeatures(ZvnFeatures& features, double fullScale, const ZvnColorMatrix& matrix) {
    const Selection selection(features);
    Values values;
    for (std::size_t i = 0; i < kCount; ++i) {
        values[i] = static_cast<double>(matrix[i]) * (isOffset(i) ? fullScale : 1.0);
        selection.Require(i, values[i]);
    }
    const bool wasOn = features.GetSwitch(kEnable);
    const Values earlier = selection.GetAll();
    try {
        selection.Switch(false);
        selection.SetAll(values);
        selection.Switch(true);
    } catch (const ZvnFeatureFailure& failure) {
        throw ZvnFeatureFailure(failure.what() + std::string("; ") + putBack(selection, earlier, wasOn));
    }
}

std::vector<char> MakeZvnCoefficients(const ZvnColorMatrix& matrix) {
    CTivVector transform(static_cast<std::int32_t>(kCount), CTivData::FormatFloat, nullptr, true);
    std::memcpy(transform.GetDataPointer(), matrix.data(), sizeof matrix);
    std::ostringstream stream;
    WriteCoefficients(stream, {kCoefficientVersion, 4, std::nullopt}, transform);
    const std::string bytes = stream.str();
    return {bytes.begin(), bytes.end()};
}

std::string ReadZvnCoefficients(std::span<const char> content, ZvnColorMatrix& matrix) {
    std::istringstream stream(std::string(content.begin(), content.end()));
    const std::string tooShort = CheckCoefficientLength(stream);
    if (!tooShort.empty()) return tooShort;
    stream.clear();
    stream.seekg(0);
    CoefficientHead head;
    CTivVector transform;
    if (!ReadCoefficients(stream, head, transform)) return "this is no coefficient file";
    const auto size = static_cast<std::int32_t>(kCount);
    if (head.terms != 4 || transform.GetFormat() != CTivData::FormatFloat || transform.GetSize() != size) {
        return "the camera's features take coefficients of 4 terms";
    }
    std::memcpy(matrix.data(), transform.GetDataPointer(), sizeof matrix);
    return {};
}
