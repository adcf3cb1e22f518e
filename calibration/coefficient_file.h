#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "foundation/CTivVector.h"

namespace tonewright {

/// What a coefficient file (.ccor) says beside its transform of 3 x terms FormatFloat elements: the red row, the green
/// one, the blue one.
struct CoefficientHead {
    std::int32_t version = 0;
    std::int32_t terms = 0;                          ///< per output channel
    std::optional<std::array<float, 3>> saturation;  ///< red, green, blue as fractions of full scale
};

inline constexpr std::int32_t kCoefficientVersion = 7300;
/// The one version that has saturation behind the transform.
inline constexpr std::int32_t kCoefficientVersionWithSaturation = 7301;

/// Reads a coefficient file; what one that breaks off does not give is zero. The term count is taken as it stands,
/// whatever the number of elements, and so is any version.
/// @return false, reported: "CTivTonewrightDC::LoadXForm => file header is not compatible" for another name, with
///         nothing touched; or the vector's own message, with the head replaced
bool ReadCoefficients(std::istream& stream, CoefficientHead& head, CTivVector& transform);

/// Writes a file of the version that goes with `head.saturation` being there or not; `head.version` is not looked at.
/// @return false where the transform has no record to write; the stream's state is the caller's to look at
bool WriteCoefficients(std::ostream& stream, const CoefficientHead& head, const CTivVector& transform);

/// Holds a coefficient file against the length that its own heads ask for, which loading does not.
/// @param stream can seek; read from its beginning
/// @return why it is too short, empty where it is long enough or no coefficient file at all, which loading tells
std::string CheckCoefficientLength(std::istream& stream);

}  // namespace tonewright
