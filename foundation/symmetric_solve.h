#pragma once

#include <span>

namespace tonewright {

/// Solves A x = b for a symmetric positive definite A by Cholesky's method, in place.
/// @param a row-major N x N, of which the lower triangle is read; overwritten
/// @param b N values, overwritten by x
/// @param leastPivot the part of each diagonal element that must be left of it when its turn comes: below that A counts
///                   as singular
/// @return false where A is not positive definite; `a` and `b` then hold nothing of use
bool SolveSymmetric(std::span<double> a, std::span<double> b, double leastPivot = 1e-12);

}  // namespace tonewright
