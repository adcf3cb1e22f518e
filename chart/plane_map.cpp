#include <algorithm>
#include <cmath>

#include "chart/plane_map_impl.h"
#include "foundation/symmetric_solve.h"

namespace tonewright {

namespace {

/// Moves points to their mean and to a mean distance near 1.
struct Normalizer {
    double x = 0, y = 0, scale = 1;

    template <class Get>
    Normalizer(std::span<const PlacePair> pairs, Get get) {
        for (const PlacePair& pair : pairs) {
            x += get(pair).x;
            y += get(pair).y;
        }
        const double count = static_cast<double>(pairs.size());
        x /= count;
        y /= count;
        double spread = 0;
        for (const PlacePair& pair : pairs) spread += std::hypot(get(pair).x - x, get(pair).y - y);
        if (spread > 0) scale = count / spread;
    }
    ChartPoint operator()(const ChartPoint& p) const { return {(p.x - x) * scale, (p.y - y) * scale}; }
};

std::array<double, 9> product(const std::array<double, 9>& a, const std::array<double, 9>& b) {
    std::array<double, 9> c = {};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) c[3 * i + j] += a[3 * i + k] * b[3 * k + j];
        }
    }
    return c;
}

}  // namespace

ChartPoint PlaneMap::operator()(const ChartPoint& place) const {
    const double w = h[6] * place.x + h[7] * place.y + h[8];
    return {(h[0] * place.x + h[1] * place.y + h[2]) / w, (h[3] * place.x + h[4] * place.y + h[5]) / w};
}

PlaneMap PlaneMap::Enlarged(double factor) const {
    const double shift = (factor - 1) / 2;
    return {product({factor, 0, shift, 0, factor, shift, 0, 0, 1}, h)};
}

std::optional<PlaneMap> FitPlaneMap(std::span<const PlacePair> pairs) {
    if (pairs.size() < 4) return std::nullopt;
    const Normalizer from(pairs, [](const PlacePair& p) { return p.from; });
    const Normalizer to(pairs, [](const PlacePair& p) { return p.to; });
    std::array<double, 64> a = {};
    std::array<double, 8> b = {};
    for (const PlacePair& pair : pairs) {
        const ChartPoint s = from(pair.from), d = to(pair.to);
        const std::array<double, 8> rows[2] = {{s.x, s.y, 1, 0, 0, 0, -d.x * s.x, -d.x * s.y},
                                               {0, 0, 0, s.x, s.y, 1, -d.y * s.x, -d.y * s.y}};
        const double values[2] = {d.x, d.y};
        for (int r = 0; r < 2; ++r) {
            for (std::size_t i = 0; i < 8; ++i) {
                for (std::size_t j = 0; j < 8; ++j) a[8 * i + j] += pair.weight * rows[r][i] * rows[r][j];
                b[i] += pair.weight * rows[r][i] * values[r];
            }
        }
    }
    if (!SolveSymmetric(a, b)) return std::nullopt;
    const std::array<double, 9> inner = {b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7], 1};
    const std::array<double, 9> begin = {from.scale, 0, -from.x * from.scale, 0, from.scale, -from.y * from.scale, 0,
                                         0,          1};
    const std::array<double, 9> end = {1 / to.scale, 0, to.x, 0, 1 / to.scale, to.y, 0, 0, 1};
    return PlaneMap{product(end, product(inner, begin))};
}

}  // namespace tonewright
