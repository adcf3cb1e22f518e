#include "calibration/svd.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace tonewright {

namespace {

constexpr double kEpsilon = 2.220446049250313e-16;
constexpr int kMaxIterations = 30;

/// A plane rotation that turns (f, g) into (length, 0).
struct Rotation {
    double cosine = 1.0;
    double sine = 0.0;
    double length = 0.0;

    Rotation(double f, double g) : length(std::hypot(f, g)) {
        if (length == 0.0) return;
        cosine = f / length;
        sine = g / length;
    }
    void Apply(double& x, double& y) const {
        const double turned = cosine * x + sine * y;
        y = cosine * y - sine * x;
        x = turned;
    }
    void ApplyToColumns(DoubleMatrix& matrix, std::int32_t first, std::int32_t second) const {
        for (std::int32_t i = 0; i < matrix.GetRows(); ++i) Apply(matrix[i][first], matrix[i][second]);
    }
};

/// The entries of a column from a row downward, or of a row from a column to the right.
struct Stretch {
    DoubleMatrix& matrix;
    std::int32_t row, column;
    bool isColumn;

    std::int32_t Size() const { return isColumn ? matrix.GetRows() - row : matrix.GetColumns() - column; }
    double& operator[](std::int32_t i) const { return isColumn ? matrix[row + i][column] : matrix[row][column + i]; }
};

/// Replaces x by the vector v whose reflection I - 2 v v^T / (v^T v) takes x to (result, 0, 0, ...). The larger of the
/// two possible v is taken, so that nothing cancels. All zero where there is nothing to reflect.
double MakeReflection(const Stretch& x) {
    double norm = 0.0;
    for (std::int32_t i = 0; i < x.Size(); ++i) norm = std::hypot(norm, x[i]);
    if (norm == 0.0) return 0.0;
    const double result = x[0] < 0.0 ? norm : -norm;
    x[0] -= result;
    return result;
}

/// Reflects y by v.
void Reflect(const Stretch& v, const Stretch& y) {
    double lengthSquared = 0.0;
    double dot = 0.0;
    for (std::int32_t i = 0; i < v.Size(); ++i) {
        lengthSquared += v[i] * v[i];
        dot += v[i] * y[i];
    }
    if (lengthSquared == 0.0) return;
    const double factor = 2.0 * dot / lengthSquared;
    for (std::int32_t i = 0; i < v.Size(); ++i) y[i] -= factor * v[i];
}

std::int32_t CountNegatives(const DoubleMatrix& matrix, std::int32_t column) {
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < matrix.GetRows(); ++i) count += matrix[i][column] < 0.0;
    return count;
}

void NegateColumn(DoubleMatrix& matrix, std::int32_t column) {
    for (std::int32_t i = 0; i < matrix.GetRows(); ++i) matrix[i][column] = -matrix[i][column];
}

}  // namespace

Svd::Svd(const DoubleMatrix& a) {
    const std::int32_t rows = a.GetRows();
    const std::int32_t columns = a.GetColumns();
    // Rows of zeros make a low matrix square. They change neither W nor V, and their rows of U are dropped again.
    DoubleMatrix work(std::max(rows, columns), columns);
    for (std::int32_t i = 0; i < rows; ++i) std::copy_n(a[i], columns, work[i]);
    w_.resize(static_cast<std::size_t>(columns));
    e_.resize(static_cast<std::size_t>(columns));
    Reduce(work);
    Accumulate(work);
    Diagonalise();
    if (rows < columns) {
        DoubleMatrix top(rows, columns);
        for (std::int32_t i = 0; i < rows; ++i) std::copy_n(u_[i], columns, top[i]);
        u_ = std::move(top);
    }
    Sort();
    ChooseSigns();
    if (!w_.empty()) threshold_ = 0.5 * std::sqrt(rows + columns + 1.0) * w_[0] * kEpsilon;
}

// Reflections from the left clear each column under the diagonal, from the right each row beyond the first
// off-diagonal. Their vectors stay in the cleared places.
void Svd::Reduce(DoubleMatrix& a) {
    const std::int32_t columns = a.GetColumns();
    for (std::int32_t k = 0; k < columns; ++k) {
        const Stretch column{a, k, k, true};
        w_[static_cast<std::size_t>(k)] = MakeReflection(column);
        for (std::int32_t j = k + 1; j < columns; ++j) Reflect(column, {a, k, j, true});
        if (k + 1 == columns) break;
        const Stretch row{a, k, k + 1, false};
        e_[static_cast<std::size_t>(k + 1)] = MakeReflection(row);
        for (std::int32_t i = k + 1; i < a.GetRows(); ++i) Reflect(row, {a, i, k + 1, false});
    }
}

// The products of all reflections, built from the last backward, so that each one meets only what it can change.
void Svd::Accumulate(const DoubleMatrix& a) {
    DoubleMatrix vectors(a);
    const std::int32_t columns = a.GetColumns();
    u_.Reshape(a.GetRows(), columns);
    v_.Reshape(columns, columns);
    for (std::int32_t k = columns - 1; k >= 0; --k) {
        u_[k][k] = 1.0;
        v_[k][k] = 1.0;
        for (std::int32_t j = k; j < columns; ++j) Reflect({vectors, k, k, true}, {u_, k, j, true});
        for (std::int32_t j = k + 1; j < columns; ++j) Reflect({vectors, k, k + 1, false}, {v_, k + 1, j, true});
    }
}

void Svd::Diagonalise() {
    double scale = 0.0;
    for (std::size_t i = 0; i < w_.size(); ++i) scale = std::max(scale, std::abs(w_[i]) + std::abs(e_[i]));
    for (auto last = static_cast<std::int32_t>(w_.size()) - 1; last >= 0; --last) {
        std::int32_t first = last;
        for (int iteration = 1; !IsSplit(first, last, kEpsilon * scale); ++iteration) {
            if (iteration == kMaxIterations) throw "no convergence in 30 svdcmp iterations";
            Step(first, last);
        }
        double& value = w_[static_cast<std::size_t>(last)];
        if (value < 0.0) {
            value = -value;
            NegateColumn(v_, last);
        }
    }
}

/// Looks upward from `last` for where the matrix falls into two, and tells whether `last` stands alone.
/// @param first receives the first row of the block that ends at `last`
bool Svd::IsSplit(std::int32_t& first, std::int32_t last, double negligible) {
    for (first = last; first > 0; --first) {
        const auto k = static_cast<std::size_t>(first);
        if (std::abs(e_[k]) <= negligible) break;
        if (!(std::abs(w_[k - 1]) <= negligible)) continue;  // NaN goes on, and ends as no convergence
        // A zero on the diagonal: rotating its row with those below drives what stands right of it out of the block.
        double spill = std::exchange(e_[k], 0.0);
        for (std::int32_t i = first; i <= last; ++i) {
            const auto at = static_cast<std::size_t>(i);
            const Rotation turn(w_[at], spill);
            w_[at] = turn.length;
            turn.ApplyToColumns(u_, i, first - 1);
            if (i == last) break;
            spill = -turn.sine * e_[at + 1];
            e_[at + 1] *= turn.cosine;
        }
        break;
    }
    return first == last;
}

/// One QR step on rows first to last: the shift is the eigenvalue of the lower 2 x 2 of B^T B that lies nearer to its
/// corner; the bulge that the first rotation makes is chased down the diagonal by the others.
void Svd::Step(std::int32_t first, std::int32_t last) {
    const auto top = static_cast<std::size_t>(first);
    const auto end = static_cast<std::size_t>(last);
    const double x = w_[top];
    const double y = w_[end - 1];
    const double z = w_[end];
    const double g = end - 1 > top ? e_[end - 1] : 0.0;
    const double h = e_[end];
    const double delta = ((y - z) * (y + z) + (g - h) * (g + h)) / (2.0 * h * y);
    const double root = delta + std::copysign(std::hypot(delta, 1.0), delta);
    double f = ((x - z) * (x + z) + h * (y / root - h)) / x;
    double bulge = e_[top + 1];
    for (std::size_t k = top; k < end; ++k) {
        const auto column = static_cast<std::int32_t>(k);
        const Rotation right(f, bulge);
        if (k > top) e_[k] = right.length;
        f = w_[k];
        right.Apply(f, e_[k + 1]);
        bulge = right.sine * w_[k + 1];
        w_[k + 1] *= right.cosine;
        right.ApplyToColumns(v_, column, column + 1);

        const Rotation left(f, bulge);
        w_[k] = left.length;
        f = e_[k + 1];
        left.Apply(f, w_[k + 1]);
        if (k + 1 < end) {
            bulge = left.sine * e_[k + 2];
            e_[k + 2] *= left.cosine;
        }
        left.ApplyToColumns(u_, column, column + 1);
    }
    e_[end] = f;
}

/// Shell sort into descending order, with the increments 1, 4, 13, 40 and so on; the columns travel along.
void Svd::Sort() {
    const std::size_t count = w_.size();
    const auto exchange = [this](std::size_t i, std::size_t j) {
        std::swap(w_[i], w_[j]);
        for (DoubleMatrix* matrix : {&u_, &v_}) {
            for (std::int32_t row = 0; row < matrix->GetRows(); ++row) std::swap((*matrix)[row][i], (*matrix)[row][j]);
        }
    };
    std::size_t increment = 1;
    while (increment <= count) increment = 3 * increment + 1;
    while (increment > 1) {
        increment /= 3;
        for (std::size_t i = increment; i < count; ++i) {
            for (std::size_t j = i; j >= increment && w_[j - increment] < w_[j]; j -= increment) {
                exchange(j, j - increment);
            }
        }
    }
}

void Svd::ChooseSigns() {
    const std::int32_t half = (u_.GetRows() + v_.GetRows()) / 2;
    for (std::int32_t k = 0; k < v_.GetColumns(); ++k) {
        if (CountNegatives(u_, k) + CountNegatives(v_, k) <= half) continue;
        NegateColumn(u_, k);
        NegateColumn(v_, k);
    }
}

void Svd::Solve(std::span<const double> b, std::span<double> x) const {
    const std::int32_t columns = v_.GetColumns();
    if (b.size() != static_cast<std::size_t>(u_.GetRows()) || x.size() != static_cast<std::size_t>(columns)) {
        throw "SVD::solve bad sizes";
    }
    std::fill(x.begin(), x.end(), 0.0);
    for (std::int32_t j = 0; j < columns; ++j) {
        const double w = w_[static_cast<std::size_t>(j)];
        if (!(w > threshold_)) continue;
        double share = 0.0;
        for (std::int32_t i = 0; i < u_.GetRows(); ++i) share += u_[i][j] * b[static_cast<std::size_t>(i)];
        share /= w;
        for (std::int32_t i = 0; i < columns; ++i) x[static_cast<std::size_t>(i)] += v_[i][j] * share;
    }
}

}  // namespace tonewright
