#pragma once

#include <span>
#include <vector>

#include "calibration/CTivTonewrightDC.h"
#include "chart/SamplingArea.h"
#include "quality/color_spaces.h"

namespace tonewright {

/// The three channels of a FormatRgb, FormatRgb10 or FormatRgb16 value, of full scale; zeros for any other.
LinearRgb ToFractions(const CTivData& color);

// What a user gets for a raw color: not the bare polynomial, but what the operator's Execute makes of it, with its
// limits, gamma table and saturation.

/// Has the operator correct the colors as an image of one pixel each, and takes the result back to linear by
/// (value / full scale) ^ (1 / gamma).
/// @param transform in the place of the operator's own
/// @param raw in the operator's calibrated format
/// @return one a color; none where Execute would refuse
std::vector<LinearRgb> Deliver(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivVector& raw);

/// Has the operator correct the pixels of each area, and takes the mean of the corrected ones back to linear: what the
/// patches of the corrected picture measure. Nothing but the areas is corrected.
/// @param image in the operator's calibrated format
/// @return one an area; none where Execute would refuse or an area holds no pixel
std::vector<LinearRgb> DeliverPicture(const CTivTonewrightDC& settings, const CTivVector& transform,
                                      const CTivImage& image, std::span<const SamplingArea> areas);

/// Execute as a smooth function, without the steps of words and tables: for fitting, and for how noise passes through.
class DeliveryModel {
public:
    /// @param terms 4, 7 or 10
    DeliveryModel(const CTivTonewrightDC& settings, int terms);

    int GetTerms() const { return terms_; }
    /// The weight of a color's terms in the result: 1, but for the offset of 4 terms in FormatRgb, which acts at a
    /// 255th of its strength.
    double GetOffsetWeight() const { return isTwist_ ? 1.0 / 255.0 : 1.0; }

    /// What is delivered, linear, for a polynomial's three values (with the weakened offset in them).
    /// @param raw 0 to 1, for the saturation test of the path that has one
    LinearRgb Limit(const LinearRgb& value, const LinearRgb& raw) const;

    /// What is delivered for a raw color. @param transform 3 x terms, row by row
    LinearRgb Deliver(std::span<const double> transform, const LinearRgb& raw) const;

private:
    int terms_;
    bool isTwist_;            ///< FormatRgb with 4 terms: clips below 0, and has the saturation test
    LinearRgb saturation_{};  ///< of full scale
};

/// A color's terms in the order of the transform's row. @param raw 0 to 1
std::array<double, 10> ToTerms(const LinearRgb& raw, int terms);

}  // namespace tonewright
