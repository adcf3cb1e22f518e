#pragma once

#include <span>

#include "calibration/color_fit.h"
#include "quality/delivery.h"

namespace tonewright {

/// Refines a transform so that the sum of CIEDE2000 differences of what is delivered becomes least, with a light pull
/// towards where it started, so that colors between the patches stay in order. Levenberg-Marquardt (K. Levenberg, 1944;
/// D. W. Marquardt, "An algorithm for least-squares estimation of nonlinear parameters", 1963) with weights that turn
/// the sum of squares into one of distances. Deterministic.
/// @param targets XYZ under D65, as many as `raw`
/// @param transform 3 x terms floats of the model's term count; not touched where nothing better is found
void RefineTransform(const DeliveryModel& model, std::span<const NormalisedColor> raw, std::span<const Xyz> targets,
                     CTivVector& transform);

}  // namespace tonewright
