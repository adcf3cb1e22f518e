#include "acquisition/zvn/color_features.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <sstream>

#include "calibration/coefficient_file.h"

using namespace tonewright;

namespace {

constexpr const char* kEnable = "ColorTransformationEnable";
constexpr const char* kSelector = "ColorTransformationSelector";
constexpr const char* kValueSelector = "ColorTransformationValueSelector";
constexpr const char* kValue = "ColorTransformationValue";
constexpr const char* kOwnSelection = "RGBtoRGB";

constexpr const auto& kEntries = kZvnColorValueNames;
constexpr std::size_t kCount = kEntries.size();
// Steps that a camera may have without saying so.
constexpr double kLongestGainStep = 1.0 / 16;
constexpr double kLongestOffsetStep = 4;  // counts
constexpr bool isOffset(std::size_t i) { return i % 4 == 0; }

using Values = ZvnColorValues;
constexpr const char* kCutOff = "an earlier transfer of coefficients to this camera was cut off; ";

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

    double GetStep(std::size_t i) const {
        features_.SetChoice(kValueSelector, kEntries[i]);
        return features_.GetRange(kValue).step;
    }

    bool IsOn() const { return features_.GetSwitch(kEnable); }
    void Switch(bool on) const {
        features_.SetSwitch(kEnable, on);
        if (IsOn() == on) return;
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

/// Writes a transform while it is off. @throw ZvnFeatureFailure
void putIn(const Selection& selection, const Values& values, bool on) {
    selection.Switch(false);
    selection.SetAll(values);
    selection.Switch(on);
}

/// @return what has become of the earlier transform
std::string putBack(const Selection& selection, const Values& earlier, bool wasOn, ZvnColorJournal& journal) {
    try {
        putIn(selection, earlier, wasOn);
        journal.Drop();
        return "the earlier coefficients are back";
    } catch (const ZvnFeatureFailure&) {
        const std::string text =
            "the earlier coefficients could not be put back; unless the camera has kept them, its color transformation "
            "is off: ";
        return text + (journal.IsPending() ? "opening the camera again puts them back" : "send again");
    }
}

/// Whether a value may be what is left of writing `wanted`: a camera's step beside it, or as far as finding the step
/// goes.
bool isNear(double value, double wanted, std::size_t i, double step) {
    const double reach = std::max(step, 3 * (isOffset(i) ? kLongestOffsetStep : kLongestGainStep));
    return std::fabs(value - wanted) <= reach;
}

enum class Left { Earlier, Next, Between, Other };

/// What a transfer that was cut off has left in the camera.
Left judgeLeft(const Selection& selection, const ZvnColorRecord& record) {
    const Values now = selection.GetAll();
    bool isEarlier = true, isNext = true, isOurs = true;
    for (std::size_t i = 0; i < kCount; ++i) {
        if (!selection.Has(i)) continue;
        const double step = selection.GetStep(i);
        const bool nearNext = isNear(now[i], record.next[i], i, step);
        isEarlier = isEarlier && now[i] == record.earlier[i];
        isNext = isNext && nearNext;
        isOurs = isOurs && (nearNext || isNear(now[i], record.earlier[i], i, step));
    }
    if (isEarlier && (selection.IsOn() || !record.wasOn)) return Left::Earlier;
    if (isNext && selection.IsOn()) return Left::Next;  // what is on was compared before
    return isOurs ? Left::Between : Left::Other;
}

ZvnColorRecovery restore(const Selection& selection, const ZvnColorRecord& record) {
    const std::string cutOff = kCutOff;
    switch (judgeLeft(selection, record)) {
        case Left::Earlier:
            return {cutOff + "it has kept those from before"};
        case Left::Next:
            return {cutOff + "it has the new ones"};
        case Left::Other:
            return {cutOff + "others came to it since, and stay"};
        case Left::Between:
            break;
    }
    for (std::size_t i = 0; i < kCount; ++i) selection.Require(i, record.earlier[i]);
    putIn(selection, record.earlier, record.wasOn);
    return {cutOff + "those from before are back" + (record.wasOn ? "" : ", switched off as they were")};
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

std::string WriteZvnColorFeatures(ZvnFeatures& features, double fullScale, const ZvnColorMatrix& matrix,
                                  ZvnColorJournal& journal) {
    if (!journal.Lock()) throw ZvnFeatureFailure("another program is writing coefficients to the camera");
    const Selection selection(features);
    ZvnColorRecord record;
    for (std::size_t i = 0; i < kCount; ++i) {
        record.next[i] = static_cast<double>(matrix[i]) * (isOffset(i) ? fullScale : 1.0);
        selection.Require(i, record.next[i]);
    }
    record.wasOn = selection.IsOn();
    record.earlier = selection.GetAll();
    std::string wrong;
    if (const auto pending = journal.Read(wrong)) {
        record.earlier = pending->earlier;
        record.wasOn = pending->wasOn;
    }
    const std::string unkept = journal.Keep(record);
    try {
        putIn(selection, record.next, true);
    } catch (const ZvnFeatureFailure& failure) {
        throw ZvnFeatureFailure(failure.what() + std::string("; ") +
                                putBack(selection, record.earlier, record.wasOn, journal));
    }
    journal.Drop();
    return unkept.empty()
               ? ""
               : "nothing would have brought the camera's earlier coefficients back, had it been lost meanwhile: " +
                     unkept;
}

ZvnColorRecovery RestoreZvnColorFeatures(ZvnFeatures& features, ZvnColorJournal& journal) {
    if (!journal.IsPending()) return {};
    if (!journal.Lock()) return {"another program is writing coefficients to the camera"};
    std::string wrong;
    const auto record = journal.Read(wrong);
    if (!record && wrong.empty()) return {};  // another program has ended its transfer meanwhile
    ZvnColorRecovery recovery;
    if (!record) {
        recovery = {kCutOff + ("what is to be put back cannot be used: " + wrong), false};
    } else {
        try {
            recovery = restore(Selection(features), *record);
        } catch (const ZvnFeatureFailure& failure) {
            return {kCutOff + ("those from before could not be put back: " + std::string(failure.what())) +
                        "; opening the camera again tries again, and sending others ends it",
                    false};
        }
    }
    journal.Drop();
    return recovery;
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
