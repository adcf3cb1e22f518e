#include "calibration/CTivTonewrightDC.h"

#include <bit>

#include "calibration/ImplTonewrightDC_impl.h"

CTivTonewrightDC::CTivTonewrightDC() : impl_(std::make_unique<ImplTonewrightDC>()) {}
CTivTonewrightDC::CTivTonewrightDC(CTivTonewrightDC&&) noexcept = default;
CTivTonewrightDC& CTivTonewrightDC::operator=(CTivTonewrightDC&&) noexcept = default;
CTivTonewrightDC::~CTivTonewrightDC() = default;

bool CTivTonewrightDC::IsValid() const { return impl_ && impl_->valid_; }

bool CTivTonewrightDC::Validate() const {
    if (!impl_) return false;
    return impl_->valid_ || Refuse("CTivTonewrightDC::Validate => CTivTonewrightDC object is invalid");
}

void CTivTonewrightDC::Invalidate() {
    if (impl_) impl_->valid_ = false;
}

bool CTivTonewrightDC::Reset() {
    if (!Validate()) return false;
    impl_->Reset();
    return true;
}

bool CTivTonewrightDC::SetCalibrationMode(std::int32_t mode) {
    if (!Validate()) return false;
    impl_->parameters_.mode = mode;
    return true;
}

bool CTivTonewrightDC::SetIlluminant(std::int32_t illuminant) {
    if (!Validate()) return false;
    impl_->parameters_.illuminant = illuminant;
    return true;
}

bool CTivTonewrightDC::SetIlluminantValue(const std::array<float, 4>& value) {
    if (!Validate()) return false;
    impl_->parameters_.illuminantValue = value;
    return true;
}

bool CTivTonewrightDC::SetXformSize(std::int32_t terms) {
    if (!Validate()) return false;
    impl_->SetXformSize(terms);
    return true;
}

bool CTivTonewrightDC::SetGamma(float gamma) {
    if (!Validate()) return false;
    impl_->SetGamma(gamma);
    return true;
}

bool CTivTonewrightDC::SetSaturationMode(std::int32_t mode) {
    if (!Validate()) return false;
    impl_->parameters_.saturationMode = mode;
    return true;
}

bool CTivTonewrightDC::SetSaturationValue(std::uint32_t rgb) {
    return SetSaturationValueEx({CTivData::FormatRgb, rgb});
}

bool CTivTonewrightDC::SetSaturationValueEx(const CTivData& value) { return Validate() && impl_->SetSaturation(value); }

namespace {

bool HoldsRgb(const CTivVector& colors) {
    const CTivData::Format format = colors.GetFormat();
    return format == CTivData::FormatRgb || format == CTivData::FormatRgb10 || format == CTivData::FormatRgb16;
}

}  // namespace

bool CTivTonewrightDC::SetRawColors(const CTivVector& colors) {
    if (!Validate()) return false;
    if (!HoldsRgb(colors)) {
        return Refuse("CTivTonewrightDC::SetRawColors => Invalid data format. Vector must contain RGB values.");
    }
    impl_->parameters_.rawColors = colors;
    return true;
}

bool CTivTonewrightDC::SetReferenceColors(const CTivVector& colors) {
    if (!Validate()) return false;
    if (!HoldsRgb(colors)) {
        return Refuse("CTivTonewrightDC::SetReferenceColors => Invalid data format. Vector must contain RGB values.");
    }
    impl_->parameters_.referenceColors = colors;
    return true;
}

bool CTivTonewrightDC::SetSpectrumValues(const CTivVector& values) {
    if (!Validate()) return false;
    if (values.GetFormat() != CTivData::FormatColorFloat) {
        return Refuse(
            "CTivTonewrightDC::SetSpectrumValues => Invalid data format. Vector must contain ColorFloat values.");
    }
    impl_->parameters_.spectrumValues = values;
    return true;
}

bool CTivTonewrightDC::Calibrate() { return Validate() && impl_->Calibrate(); }

bool CTivTonewrightDC::Execute(const CTivImage& source, CTivImage& destination) {
    return Validate() && impl_->Execute(source, destination);
}

bool CTivTonewrightDC::Save(const CTivString& path) const { return Validate() && impl_->Save(path.ToString()); }

bool CTivTonewrightDC::Load(const CTivString& path) { return Validate() && impl_->Load(path.ToString()); }

bool CTivTonewrightDC::SaveXForm(const CTivString& path, bool withSaturation) const {
    return Validate() && impl_->SaveXForm(path.ToString(), withSaturation);
}

bool CTivTonewrightDC::LoadXForm(const CTivString& path) { return Validate() && impl_->LoadXForm(path.ToString()); }

std::int32_t CTivTonewrightDC::GetCalibrationMode() const { return IsValid() ? impl_->parameters_.mode : 0; }

std::int32_t CTivTonewrightDC::GetIlluminant() const {
    constexpr std::int32_t d65 = 3;
    return IsValid() ? impl_->parameters_.illuminant : d65;
}

std::array<float, 4> CTivTonewrightDC::GetIlluminantValue() const {
    return IsValid() ? impl_->parameters_.illuminantValue : std::array<float, 4>{};
}

std::int32_t CTivTonewrightDC::GetXformSize() const { return IsValid() ? impl_->parameters_.terms : 0; }

float CTivTonewrightDC::GetGamma() const {
    if (!impl_) return -1.0f;
    return impl_->valid_ ? impl_->parameters_.gamma : 0.0f;
}

std::int32_t CTivTonewrightDC::GetSaturationMode() const { return IsValid() ? impl_->parameters_.saturationMode : 0; }

CTivData CTivTonewrightDC::GetSaturationRgb() const {
    if (!IsValid()) return {};
    const auto& value = impl_->parameters_.saturationRgb;
    return {CTivData::FormatRgb, std::bit_cast<std::uint32_t>(value)};
}

CTivData CTivTonewrightDC::GetSaturationRgb10() const {
    if (!IsValid()) return {};
    return {CTivData::FormatRgb10, impl_->parameters_.saturationRgb10};
}

CTivData CTivTonewrightDC::GetSaturationRgb16() const {
    if (!IsValid()) return {};
    return {CTivData::FormatRgb16, std::bit_cast<std::uint64_t>(impl_->parameters_.saturationRgb16)};
}

const CTivVector* CTivTonewrightDC::GetRawColors() const { return IsValid() ? &impl_->parameters_.rawColors : nullptr; }

const CTivVector* CTivTonewrightDC::GetReferenceColors() const {
    return IsValid() ? &impl_->parameters_.referenceColors : nullptr;
}

const CTivVector* CTivTonewrightDC::GetSpectrumValues() const {
    return IsValid() ? &impl_->parameters_.spectrumValues : nullptr;
}

bool CTivTonewrightDC::IsCalibrated() const { return IsValid() && impl_->calibrated_; }

CTivData::Format CTivTonewrightDC::GetCalibratedFormat() const {
    return IsValid() ? impl_->calibratedFormat_ : CTivData::FormatNone;
}

const CTivVector* CTivTonewrightDC::GetTransform() const { return IsValid() ? &impl_->transform_ : nullptr; }

const DoubleMatrix* CTivTonewrightDC::GetFitMatrix() const { return IsValid() ? &impl_->fitMatrix_ : nullptr; }

const DoubleMatrix* CTivTonewrightDC::GetAdaptationMatrix() const {
    return IsValid() ? &impl_->adaptationMatrix_ : nullptr;
}
