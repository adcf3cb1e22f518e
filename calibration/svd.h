#pragma once

#include <span>
#include <vector>

#include "calibration/DoubleMatrix.h"

namespace tonewright {

/// Singular value decomposition A = U W V^T of a small dense matrix in double precision, and least squares by it.
///
/// Householder reduction to bidiagonal form, then implicitly shifted QR steps on that: G. Golub and W. Kahan,
/// "Calculating the singular values and pseudo-inverse of a matrix", SIAM J. Numer. Anal. 2 (1965), with the shift of
/// G. Golub and C. Reinsch, Numer. Math. 14 (1970).
class Svd {
public:
    /// @param a M x N; fewer rows than columns will do
    /// @throws const char* "no convergence in 30 svdcmp iterations" where a singular value has not converged in its
    ///         thirtieth iteration (as with entries that are not finite)
    explicit Svd(const DoubleMatrix& a);

    /// M x N; the columns of singular values above 0 are orthonormal.
    const DoubleMatrix& U() const { return u_; }
    /// N values in descending order, none negative.
    std::span<const double> W() const { return w_; }
    /// N x N, orthogonal. The sign of each pair of columns of U and V is the one that leaves at most half of their
    /// entries negative.
    const DoubleMatrix& V() const { return v_; }
    /// Singular values at or under it count as zero: 0.5 sqrt(M + N + 1) w[0] 2.220446049250313e-16.
    double GetThreshold() const { return threshold_; }

    /// Finds the x of least length that minimises |A x - b|.
    /// @param b M values @param x receives N values
    /// @throws const char* "SVD::solve bad sizes" where b or x has another size
    void Solve(std::span<const double> b, std::span<double> x) const;

private:
    void Reduce(DoubleMatrix& a);
    void Accumulate(const DoubleMatrix& a);
    void Diagonalise();
    bool IsSplit(std::int32_t& first, std::int32_t last, double negligible);
    void Step(std::int32_t first, std::int32_t last);
    void Sort();
    void ChooseSigns();

    DoubleMatrix u_;
    DoubleMatrix v_;
    std::vector<double> w_;  ///< diagonal of the bidiagonal matrix until it is done
    std::vector<double> e_;  ///< e_[i] stands above w_[i], right of w_[i - 1]; e_[0] is 0
    double threshold_ = 0.0;
};

}  // namespace tonewright
