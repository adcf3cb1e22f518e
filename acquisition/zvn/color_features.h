#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "acquisition/zvn/ZvnFeatures.h"
#include "acquisition/zvn/color_journal.h"

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
/// fails, what was there before is put back; where that fails, too, the journal keeps it.
/// @param journal keeps what was there meanwhile. Where it still keeps something, that is what was there
/// @return what a person should know all the same, empty for nothing
/// @throw ZvnFeatureFailure, with nothing written for a number that is none, for one outside the camera's range, for an
///        offset where the camera takes none and while another program writes to the camera; the text of any other says
///        what has become of the earlier transform
[[nodiscard]] std::string WriteZvnColorFeatures(ZvnFeatures& features, double fullScale, const ZvnColorMatrix& matrix,
                                                ZvnColorJournal& journal);

/// What became of a transfer that was cut off.
struct ZvnColorRecovery {
    std::string text;    ///< for a person; empty where none was cut off
    bool isGood = true;  ///< the camera has one transform whole
};

/// Puts back what the journal keeps of a transfer that was cut off, switched on or off as it was. Nothing is written
/// where the camera has the earlier or the new transform whole, or one that came to it since; then, and once it is put
/// back, and where the record can't be used, the journal is dropped. Throws nothing.
ZvnColorRecovery RestoreZvnColorFeatures(ZvnFeatures& features, ZvnColorJournal& journal);

/// A coefficient file (.ccor) of a matrix, as the operator saves one.
std::vector<char> MakeZvnCoefficients(const ZvnColorMatrix& matrix);
/// @return why the bytes are no coefficient file of 4 terms, empty where they are
std::string ReadZvnCoefficients(std::span<const char> content, ZvnColorMatrix& matrix);
