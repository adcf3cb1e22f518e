#include "calibration/DoubleMatrix.h"

#include <algorithm>
#include <utility>

using namespace tonewright;

DoubleMatrix::DoubleMatrix(std::int32_t rows, std::int32_t columns) { Reshape(rows, columns); }

DoubleMatrix::DoubleMatrix(const DoubleMatrix& other) { *this = other; }

DoubleMatrix::DoubleMatrix(DoubleMatrix&& other) noexcept { *this = std::move(other); }

DoubleMatrix& DoubleMatrix::operator=(const DoubleMatrix& other) {
    if (GetRows() != other.GetRows() || columns_ != other.columns_) Reshape(other.GetRows(), other.columns_);
    std::copy(other.block_.begin(), other.block_.end(), block_.begin());
    return *this;
}

DoubleMatrix& DoubleMatrix::operator=(DoubleMatrix&& other) noexcept {
    columns_ = std::exchange(other.columns_, 0);
    block_ = std::exchange(other.block_, {});
    rows_ = std::exchange(other.rows_, {});
    return *this;
}

void DoubleMatrix::Reshape(std::int32_t rows, std::int32_t columns) {
    const auto rowCount = static_cast<std::size_t>(std::max(rows, 0));
    columns_ = std::max(columns, 0);
    const auto columnCount = static_cast<std::size_t>(columns_);
    block_ = std::vector<double>(rowCount * columnCount);
    rows_ = std::vector<double*>(rowCount);
    for (std::size_t i = 0; i < rowCount; ++i) rows_[i] = block_.data() + i * columnCount;
}

namespace tonewright {

DoubleMatrix MultiplyInFloat(const DoubleMatrix& left, const DoubleMatrix& right, std::int32_t rows) {
    DoubleMatrix product(rows, right.GetColumns());
    for (std::int32_t i = 0; i < std::min(rows, left.GetRows()); ++i) {
        for (std::int32_t j = 0; j < right.GetColumns(); ++j) {
            float sum = 0.0f;
            for (std::int32_t k = 0; k < left.GetColumns(); ++k) sum += static_cast<float>(left[i][k] * right[k][j]);
            product[i][j] = static_cast<double>(sum);
        }
    }
    return product;
}

}  // namespace tonewright
