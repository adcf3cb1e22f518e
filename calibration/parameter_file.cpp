#include "calibration/parameter_file.h"

#include "calibration/stream_fields_impl.h"
#include "foundation/CTivManager.h"
#include "foundation/record_length.h"

namespace tonewright {

namespace {

constexpr const char* kName = "CTivTonewrightDC";

constexpr bool HasRgb10(std::int32_t version) { return version > kLastVersionWithoutRgb10; }
constexpr bool HasRgb16(std::int32_t version) { return version > kLastVersionWithoutRgb16; }

}  // namespace

bool ReadParameters(std::istream& stream, CalibrationParameters& parameters, std::int32_t& version) {
    if (!ReadName(stream, kName)) return CTivManager::Refuse("CTivTonewrightDC::ReadFile => incompatible file");
    const auto read = [&stream]<class T>(T& field) { field = ReadField<T>(stream); };
    read(version);
    // Not in the order of the operator's own fields, deliberately (C33).
    read(parameters.mode);
    read(parameters.saturationMode);
    read(parameters.illuminant);
    read(parameters.terms);
    read(parameters.gamma);
    read(parameters.illuminantValue);
    read(parameters.saturationRgb);
    if (HasRgb10(version)) read(parameters.saturationRgb10);
    if (HasRgb16(version)) read(parameters.saturationRgb16);
    return parameters.rawColors.ReadFile(stream) && parameters.spectrumValues.ReadFile(stream) &&
           parameters.referenceColors.ReadFile(stream);
}

bool WriteParameters(std::ostream& stream, const CalibrationParameters& parameters) {
    WriteName(stream, kName);
    WriteField(stream, kParameterFileVersion);
    WriteField(stream, parameters.mode);
    WriteField(stream, parameters.saturationMode);
    WriteField(stream, parameters.illuminant);
    WriteField(stream, parameters.terms);
    WriteField(stream, parameters.gamma);
    WriteField(stream, parameters.illuminantValue);
    WriteField(stream, parameters.saturationRgb);
    WriteField(stream, parameters.saturationRgb10);
    WriteField(stream, parameters.saturationRgb16);
    return parameters.rawColors.WriteFile(stream) && parameters.spectrumValues.WriteFile(stream) &&
           parameters.referenceColors.WriteFile(stream);
}

std::string CheckParameterLength(std::istream& stream) {
    constexpr std::uint64_t oldestHeadBytes = 76;
    const std::uint64_t length = GetStreamLength(stream);
    if (!ReadName(stream, kName)) return {};
    const auto version = ReadField<std::int32_t>(stream);
    const std::uint64_t before = oldestHeadBytes +
                                 (HasRgb10(version) ? sizeof(CalibrationParameters::saturationRgb10) : 0) +
                                 (HasRgb16(version) ? sizeof(CalibrationParameters::saturationRgb16) : 0);
    return CheckLength(stream, length, before, 3, 0);
}

}  // namespace tonewright
