#pragma once

#include <array>

#include "foundation/CTivImage.h"
#include "foundation/CTivString.h"
#include "foundation/CTivVector.h"

class CTivTonewrightDC;

namespace tonewright {

// A transform that the operator did not fit itself (a refined one, one that left a patch out, one from a file), put to
// the same use as its own. The operator stays as it is.

/// Applies a transform with the operator's calibrated format, gamma and saturation, exactly as Execute would apply its
/// own, and with the color twist that belongs to it. Several threads may share one operator for this.
/// @param transform 3 x 4, 3 x 7 or 3 x 10 FormatFloat, a row each for red, green and blue
/// @param source, destination as for Execute
/// @return as Execute, with its texts
bool ExecuteTransform(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivImage& source,
                      CTivImage& destination);

/// Writes a transform to a coefficient file (.ccor) as SaveXForm writes the operator's own.
/// @param withSaturation also the operator's saturation of the raw colors' format
/// @return as SaveXForm, with its texts
bool SaveTransform(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivString& path,
                   bool withSaturation);

/// What the 4-term path of FormatRgb images runs with: the transform reversed, so that its rows are blue, green, red of
/// blue, green, red and offset. The offset keeps its unit.
/// @return zeros for a transform that is not 3 x 4 FormatFloat
std::array<float, 12> GetColorTwist(const CTivVector& transform);

}  // namespace tonewright
