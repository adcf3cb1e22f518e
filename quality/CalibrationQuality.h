#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calibration/CTivTonewrightDC.h"
#include "chart/SamplingArea.h"
#include "quality/color_spaces.h"
#include "quality/fit_quality.h"

namespace tonewright {

/// How a transform is found.
enum class FitMethod {
    LeastSquares,  ///< the operator's own
    Perceptual     ///< starts from it and minimises the mean CIEDE2000 of what is delivered
};

/// A picture of the chart, and where and what its patches measure.
struct ChartInPicture {
    const CTivImage* image = nullptr;  ///< null: there is none
    std::span<const SamplingArea> areas;
    std::span<const PatchMeasurement> measurements;  ///< as many; may be there without an image
};

/// One patch of a judged chart. Linear colors are 0 to 1 inside the range, L*a*b* is against D65.
struct JudgedPatch {
    LinearRgb measured{};   ///< the raw color, read as linear RGB
    LinearRgb target{};     ///< what it should be
    LinearRgb delivered{};  ///< what Execute makes of it
    Lab measuredLab{};
    Lab targetLab{};
    Lab deliveredLab{};
};

/// One term count beside the others: mean CIEDE2000 each.
struct TermsFigures {
    int terms = 0;
    double fitted = 0;     ///< of the bare matrix
    double delivered = 0;  ///< of what Execute gives
    double unseen = 0;     ///< of what Execute gives for patches that the fit did not see
};

/// How far a patch's pixels spread, as standard deviations of red, green and blue in 8-bit steps of the output.
struct PatchNoise {
    std::array<double, 3> before{};  ///< the raw picture, shown with the same gamma
    std::array<double, 3> after{};   ///< the corrected picture
};

/// What the corrected picture's own patches measure. Noise and the steps of pixels can set it apart from the figure of
/// single colors.
struct PictureQuality {
    ChartDifferences delivered;  ///< without patches where there is no picture
    /// Mean CIEDE2000 of the patches' uncut means, corrected without steps: noise lies beyond it, steps before it.
    double ofMeans = 0;
};

/// Everything that can be told of a calibration by the chart that it was made from.
struct CalibrationQuality {
    ChartDifferences delivered;  ///< what a user gets: the figure that comes first
    PictureQuality picture;      ///< the same, measured on the corrected picture
    ChartDifferences unseen;     ///< each patch by a fit of all the others, delivered likewise
    ChartDifferences fitted;     ///< the bare matrix
    ChartDifferences before;     ///< the raw colors read as linear RGB
    std::vector<JudgedPatch> patches;
    std::vector<TermsFigures> candidates;  ///< 4, 7 and 10 terms, as far as they can be fitted
    double whiteChroma = 0;                ///< mean CIE chroma of what is delivered for the neutral patches
    std::vector<int> neutralPatches;       ///< which those are, from 1
    std::vector<PatchNoise> noise;         ///< one a measurement
};

/// Judges a calibration. Deep colors need an operator that was calibrated at their depth.
/// @param calibrated an operator whose Calibrate succeeded with the colors and settings that it holds now
/// @param transform in the place of the operator's own
/// @param picture that the colors are from, for the noise and the figures of the corrected picture; may be empty
/// @param method how `transform` was found: patches left out are judged by fits of the same kind
/// @return without patches where the transform, the raw colors, their format and the targets do not belong together
CalibrationQuality JudgeCalibration(const CTivTonewrightDC& calibrated, const CTivVector& transform,
                                    const ChartInPicture& picture, FitMethod method = FitMethod::LeastSquares);

/// Where the corrected picture's own patches measure clearly better or worse than single colors: by how much and why,
/// in a sentence for a person; else empty.
std::string TellPicture(const ChartDifferences& delivered, const PictureQuality& picture);

/// A calibration judged on another picture of the chart.
struct VerifiedQuality {
    ChartDifferences delivered;
    PictureQuality picture;
    ChartDifferences before;
    std::vector<JudgedPatch> patches;
};

/// @param settings gamma, saturation and format of the correction
/// @param raw the other picture's colors, in the operator's calibrated format
/// @param targets XYZ under D65, as many
/// @param picture the other picture; may be empty
/// @return without patches where they do not belong together
VerifiedQuality JudgeDelivery(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivVector& raw,
                              std::span<const Xyz> targets, const ChartInPicture& picture);

/// Fits the operator's colors to its targets with any term count.
/// @return nothing where they do not belong together
/// @throws const char* as Calibrate does
std::optional<CTivVector> FitCalibration(const CTivTonewrightDC& calibrated, FitMethod method, int terms);

/// The one of the candidates that does best on patches left out, of equals the one of fewest terms; 0 for none.
int ChooseTerms(std::span<const TermsFigures> candidates);

}  // namespace tonewright
