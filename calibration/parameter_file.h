#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "foundation/CTivVector.h"

namespace tonewright {

/// Every input of a calibration: what a parameter file (.twkp) holds.
struct CalibrationParameters {
    std::int32_t mode = 0;                           ///< 0 absolute, 1 relative
    std::int32_t saturationMode = 0;                 ///< 0 automatic, 1 manual, 2 none
    std::int32_t illuminant = 3;                     ///< an index of kCalibrationIlluminants: D65
    std::int32_t terms = 10;                         ///< per output channel: 4, 7 or 10
    float gamma = 0.45f;                             ///< exponent of the output tables
    std::array<float, 4> illuminantValue{};          ///< X, Y, Z of the user's white; the fourth is not read
    std::array<std::uint8_t, 4> saturationRgb{};     ///< blue, green, red, reserved
    std::uint32_t saturationRgb10 = 0;               ///< red in bits 20 to 29, green 10 to 19, blue 0 to 9
    std::array<std::uint16_t, 4> saturationRgb16{};  ///< blue, green, red, reserved
    CTivVector rawColors;                            ///< measured, FormatRgb, FormatRgb10 or FormatRgb16
    CTivVector spectrumValues;                       ///< the user's X, Y, Z, FormatColorFloat
    CTivVector referenceColors;                      ///< targets of the relative mode, formats as rawColors
};

inline constexpr std::int32_t kParameterFileVersion = 7600;
/// Versions above these hold the saturation of 10-bit and of 16-bit images.
inline constexpr std::int32_t kLastVersionWithoutRgb10 = 6100;
inline constexpr std::int32_t kLastVersionWithoutRgb16 = 7300;

/// Reads a parameter file field by field into `parameters`. Fields that its version lacks stay as they are; what a file
/// that breaks off does not give is zero.
/// @param version receives the file's, once its name is right
/// @return false, reported: "CTivTonewrightDC::ReadFile => incompatible file" for another name, with `parameters`
///         untouched; or the vector's own message where a record cannot be read, with what came before it replaced
bool ReadParameters(std::istream& stream, CalibrationParameters& parameters, std::int32_t& version);

/// Writes a file of the current version. @return false where a vector has no record to write; the stream's state is
/// the caller's to look at
bool WriteParameters(std::ostream& stream, const CalibrationParameters& parameters);

/// Holds a parameter file against the length that its own heads ask for, which loading does not.
/// @param stream can seek; read from its beginning
/// @return why it is too short, empty where it is long enough or no parameter file at all, which loading tells
std::string CheckParameterLength(std::istream& stream);

}  // namespace tonewright
