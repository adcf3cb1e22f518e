#pragma once

#include <cstdint>
#include <vector>

/// A matrix of doubles: one row-major block, reachable by row. A value type; 0 x 0 is the empty matrix.
class DoubleMatrix {
public:
    DoubleMatrix() = default;
    /// Zeros. A negative count counts as 0.
    DoubleMatrix(std::int32_t rows, std::int32_t columns);
    DoubleMatrix(const DoubleMatrix& other);
    DoubleMatrix(DoubleMatrix&& other) noexcept;
    /// Between matrices of equal shape the block stays where it is and pointers into it stay good; of unequal shape it
    /// is allocated anew.
    DoubleMatrix& operator=(const DoubleMatrix& other);
    DoubleMatrix& operator=(DoubleMatrix&& other) noexcept;
    ~DoubleMatrix() = default;

    /// Takes a new shape and zeros; 0, 0 releases the memory.
    void Reshape(std::int32_t rows, std::int32_t columns);

    std::int32_t GetRows() const { return static_cast<std::int32_t>(rows_.size()); }
    std::int32_t GetColumns() const { return columns_; }
    double* operator[](std::int32_t row) { return rows_[static_cast<std::size_t>(row)]; }
    const double* operator[](std::int32_t row) const { return rows_[static_cast<std::size_t>(row)]; }

private:
    std::int32_t columns_ = 0;
    std::vector<double> block_;
    std::vector<double*> rows_;
};

namespace tonewright {

/// left x right, where each element's sum is carried in float32: every product of two doubles is rounded to float32 and
/// added to a float32 sum that starts at 0, in ascending order of the inner index. The inner index runs over left's
/// columns, so that a 0 x 0 left side, with `rows` given, gives zeros.
/// @param rows of the result; rows that `left` lacks are zeros
DoubleMatrix MultiplyInFloat(const DoubleMatrix& left, const DoubleMatrix& right, std::int32_t rows);

}  // namespace tonewright
