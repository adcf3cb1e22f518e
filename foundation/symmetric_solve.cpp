#include "foundation/symmetric_solve.h"

#include <cmath>
#include <cstddef>

namespace tonewright {

bool SolveSymmetric(std::span<double> a, std::span<double> b, double leastPivot) {
    const std::size_t n = b.size();
    for (std::size_t i = 0; i < n; ++i) {
        const double whole = a[i * n + i];
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = a[i * n + j];
            for (std::size_t k = 0; k < j; ++k) sum -= a[i * n + k] * a[j * n + k];
            if (i != j) {
                a[i * n + j] = sum / a[j * n + j];
            } else if (!(sum > leastPivot * whole)) {
                return false;
            } else {
                a[i * n + i] = std::sqrt(sum);
            }
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t k = 0; k < i; ++k) b[i] -= a[i * n + k] * b[k];
        b[i] /= a[i * n + i];
    }
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t k = i + 1; k < n; ++k) b[i] -= a[k * n + i] * b[k];
        b[i] /= a[i * n + i];
    }
    return true;
}

}  // namespace tonewright
