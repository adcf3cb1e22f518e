#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "acquisition/zvn/ZvnFeatures.h"

// A transform of 4 terms in a camera's color transformation features: ColorTransformationEnable,
// ColorTransformationSelector (RGBtoRGB), ColorTransformationValueSelector (Gain00 to Gain22, row by row, and Offset0
// to Offset2) and ColorTransformationValue. Gains are the transform's own; an offset is one of full scale in the
// transform and one in counts of the camera's full scale in the feature.

/// Rows red, green, blue: an offset as a fraction of full scale, and the weights of red, green, blue.
using ZvnColorMatrix = std::array<float, 12>;

/// @return whether a camera has all that a transform needs: the features above, where it can be switched off
bool HasZvnColorFeatures(ZvnFeatures& features);

/// Reads the transform, in force or not. @param fullScale the greatest count of a channel
/// @throw ZvnFeatureFailure
ZvnColorMatrix ReadZvnColorFeatures(ZvnFeatures& features, double fullScale);

/// Writes a transform and puts it in force: switches the transformation off, writes, reads all back, and switches it
/// on, so that a camera that is lost in between never works with half of two transforms. What is read back may differ
/// by the feature's step, which a camera that rounds without saying it is asked for while it is off. Where anything
/// fails, what was there before is put back.
/// @throw ZvnFeatureFailure, with nothing written for a number that is none, for one outside the camera's range and for
///        an offset where the camera takes none; the text of any other says what has become of the earlier transform
void WriteZvnColorFeatures(ZvnFeatures& features, double fullScale, const ZvnColorMatrix& matrix);

/// A coefficient file (.ccor) of a matrix, as the operator saves one.
std::vector<char> MakeZvnCoefficients(const ZvnColorMatrix& matrix);
/// @return why the bytes are no coefficient file of 4 terms, empty where they are
std::string ReadZvnCoefficients(std::span<const char> content, ZvnColorMatrix& matrix);
