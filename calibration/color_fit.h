#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "calibration/DoubleMatrix.h"
#include "foundation/CTivVector.h"

namespace tonewright {

/// Red, green, blue in 0 to 1 (or X, Y, Z), and a fourth value.
using NormalisedColor = std::array<float, 4>;

/// The most colors that a fit takes: far beyond any chart, and what keeps a file from claiming the memory.
inline constexpr std::int32_t kMaxFitColors = 1 << 18;

/// The term counts that the transform knows: 1, r, g, b; then also r2, g2, b2; or also r2, rg, rb, g2, gb, b2.
constexpr bool IsTermCount(std::int32_t terms) { return terms == 4 || terms == 7 || terms == 10; }

/// Brings each element to float32: FormatRgb, FormatRgb10 and FormatRgb16 divided by their full scale, red first;
/// FormatColorFloat as it is; zeros for any other format.
std::vector<NormalisedColor> NormaliseColors(const CTivVector& colors);

/// The first `terms` (4, 7 or 10) of the polynomial's terms, products formed in float32; zeros beyond them and for any
/// other count.
std::array<double, 10> TermVector(const NormalisedColor& color, std::int32_t terms);

/// Least squares fit of the colors' terms to three targets by singular value decomposition, of minimum norm where the
/// colors leave it open.
/// @param targets as many as `raw`; the first three values of each count
/// @return 3 x terms coefficients, a row a target channel; nothing for another term count than 4, 7 or 10
/// @throws const char* as Svd does
std::optional<DoubleMatrix> FitColors(std::span<const NormalisedColor> raw, std::span<const NormalisedColor> targets,
                                      std::int32_t terms);

}  // namespace tonewright
