#include "calibration/execute_transform.h"

#include <algorithm>

#include "calibration/CTivTonewrightDC.h"
#include "calibration/ImplTonewrightDC_impl.h"

namespace tonewright {

bool ExecuteTransform(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivImage& source,
                      CTivImage& destination) {
    if (!settings.impl_ || !settings.Validate()) return false;
    const std::int32_t terms = transform.GetSize() / 3;
    std::vector<std::uint8_t> untouched;
    return settings.impl_->Execute(source, destination,
                                   {transform, IsTermCount(terms) ? terms : 0, GetColorTwist(transform)}, untouched);
}

bool SaveTransform(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivString& path,
                   bool withSaturation) {
    if (!settings.impl_ || !settings.Validate()) return false;
    return settings.impl_->SaveXForm(path.ToString(), transform, transform.GetSize() / 3, withSaturation);
}

std::array<float, 12> GetColorTwist(const CTivVector& transform) {
    std::array<float, 12> twist{};
    const auto* values = static_cast<const float*>(transform.GetDataPointer());
    if (!values || transform.GetSize() != 12 || transform.GetFormat() != CTivData::FormatFloat) return twist;
    std::reverse_copy(values, values + twist.size(), twist.begin());
    return twist;
}

}  // namespace tonewright
