#include "report/cube_table.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "report/markup_impl.h"

namespace tonewright {

namespace {

using markup::Fixed;

constexpr int kPoints = 33;
constexpr int kDecimals = 6;
constexpr double kNear = 1.5;  // 8-bit steps
constexpr int kProbes = 5000;  // colors at which the interpolation is held against the correction

using Color = std::array<double, 3>;

Color clipped(Color color) {
    for (double& channel : color) channel = std::isfinite(channel) ? std::clamp(channel, 0.0, 1.0) : 0.0;
    return color;
}

class Lattice {
public:
    explicit Lattice(const ColorFunction& correct) {
        points_.reserve(kPoints * kPoints * kPoints);
        for (int b = 0; b < kPoints; ++b) {
            for (int g = 0; g < kPoints; ++g) {
                for (int r = 0; r < kPoints; ++r) points_.push_back(clipped(correct({Place(r), Place(g), Place(b)})));
            }
        }
    }

    const std::vector<Color>& Points() const { return points_; }

    Color Interpolated(const Color& color) const {
        std::array<int, 3> low{};
        Color part{};
        for (std::size_t k = 0; k < 3; ++k) {
            const double place = color[k] * (kPoints - 1);
            low[k] = std::min(static_cast<int>(place), kPoints - 2);
            part[k] = place - low[k];
        }
        Color sum{};
        for (int corner = 0; corner < 8; ++corner) {
            double weight = 1;
            std::array<int, 3> at = low;
            for (std::size_t k = 0; k < 3; ++k) {
                const int high = corner >> k & 1;
                at[k] += high;
                weight *= high ? part[k] : 1 - part[k];
            }
            const Color& point = points_[static_cast<std::size_t>((at[2] * kPoints + at[1]) * kPoints + at[0])];
            for (std::size_t k = 0; k < 3; ++k) sum[k] += weight * point[k];
        }
        return sum;
    }

private:
    static double Place(int i) { return static_cast<double>(i) / (kPoints - 1); }

    std::vector<Color> points_;
};

/// How far the interpolated table lies from the correction, in 8-bit steps.
struct Strays {
    double mean = 0;
    double greatest = 0;
    double near = 0;  ///< share of the colors that stray by no more than kNear
};

Strays findStrays(const Lattice& lattice, const ColorFunction& correct) {
    // Steps of an additive sequence that fills the cube evenly: powers of the root of x^4 = x + 1, inverted.
    constexpr Color kStep = {0.8191725133961645, 0.6710436067037893, 0.5497004779019703};
    Strays strays;
    Color color = {0.5, 0.5, 0.5};
    for (int i = 0; i < kProbes; ++i) {
        for (std::size_t k = 0; k < 3; ++k) color[k] = std::fmod(color[k] + kStep[k], 1.0);
        const Color wanted = clipped(correct(color)), got = lattice.Interpolated(color);
        double worst = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double distance = std::abs(wanted[k] - got[k]) * 255;
            strays.mean += distance / (3 * kProbes);
            worst = std::max(worst, distance);
        }
        strays.greatest = std::max(strays.greatest, worst);
        strays.near += worst <= kNear ? 1.0 / kProbes : 0.0;
    }
    return strays;
}

}  // namespace

std::string CubeTable(const ColorFunction& correct, const std::string& title) {
    const Lattice lattice(correct);
    const Strays strays = findStrays(lattice, correct);
    std::string line = title;
    for (char& c : line) {
        if (c == '"' || static_cast<unsigned char>(c) < 0x20) c = ' ';
    }
    std::string text = "# Interpolated, this table strays from the correction by " + Fixed(strays.mean, 2) +
                       " 8-bit steps on average, by\n# no more than " + Fixed(kNear, 1) + " for " +
                       Fixed(100 * strays.near, 0) + " % of all colors, and by up to " + Fixed(strays.greatest, 1) +
                       " where gamma is steep: near black and\n# where a channel is cut off.\nTITLE \"" + line +
                       "\"\nLUT_3D_SIZE " + std::to_string(kPoints) +
                       "\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n";
    for (const Color& point : lattice.Points()) {
        text += Fixed(point[0], kDecimals) + " " + Fixed(point[1], kDecimals) + " " + Fixed(point[2], kDecimals) + "\n";
    }
    return text;
}

}  // namespace tonewright
