#include "calibration/coefficient_file.h"

#include "calibration/stream_fields_impl.h"
#include "foundation/CTivManager.h"
#include "foundation/record_length.h"

namespace tonewright {

namespace {
constexpr const char* kName = "CTivTonewrightDC_XForm";
constexpr std::uint64_t kHeadBytes = 40;
}  // namespace

bool ReadCoefficients(std::istream& stream, CoefficientHead& head, CTivVector& transform) {
    if (!ReadName(stream, kName))
        return CTivManager::Refuse("CTivTonewrightDC::LoadXForm => file header is not compatible");
    head.version = ReadField<std::int32_t>(stream);
    head.terms = ReadField<std::int32_t>(stream);
    head.saturation.reset();
    if (!transform.ReadFile(stream)) return false;
    if (head.version == kCoefficientVersionWithSaturation) head.saturation = ReadField<std::array<float, 3>>(stream);
    return true;
}

bool WriteCoefficients(std::ostream& stream, const CoefficientHead& head, const CTivVector& transform) {
    WriteName(stream, kName);
    WriteField(stream, head.saturation ? kCoefficientVersionWithSaturation : kCoefficientVersion);
    WriteField(stream, head.terms);
    if (!transform.WriteFile(stream)) return false;
    if (head.saturation) WriteField(stream, *head.saturation);
    return true;
}

std::string CheckCoefficientLength(std::istream& stream) {
    const std::uint64_t length = GetStreamLength(stream);
    if (!ReadName(stream, kName)) return {};
    const auto version = ReadField<std::int32_t>(stream);
    ReadField<std::int32_t>(stream);  // terms
    const std::uint64_t behind = version == kCoefficientVersionWithSaturation ? sizeof(float[3]) : 0;
    return CheckLength(stream, length, kHeadBytes, 1, behind);
}

}  // namespace tonewright
