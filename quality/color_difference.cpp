#include "quality/color_difference.h"

#include <cmath>
#include <numbers>

namespace tonewright {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

double labCurve(double t) {
    constexpr double threshold = 216.0 / 24389.0;
    constexpr double slope = 24389.0 / 27.0;
    return t > threshold ? std::cbrt(t) : (slope * t + 16.0) / 116.0;
}

/// sqrt(c^7 / (c^7 + 25^7)): how far a chroma lies in the saturated range.
double chromaShare(double chroma) {
    const double seventh = std::pow(chroma, 7.0);
    return std::sqrt(seventh / (seventh + 6103515625.0));
}

/// Degrees in 0 to 360; 0 for a gray.
double hueAngle(double a, double b) {
    if (a == 0.0 && b == 0.0) return 0.0;
    const double angle = std::atan2(b, a) / kDegree;
    return angle < 0.0 ? angle + 360.0 : angle;
}

struct Hues {
    double difference;  ///< second - first on the shorter way round, degrees
    double mean;        ///< degrees
};

Hues compareHues(double first, double second, bool anyGray) {
    if (anyGray) return {0.0, first + second};
    const double difference = second - first;
    const double sum = first + second;
    if (std::abs(difference) <= 180.0) return {difference, sum / 2.0};
    return {difference > 0.0 ? difference - 360.0 : difference + 360.0,
            sum < 360.0 ? (sum + 360.0) / 2.0 : (sum - 360.0) / 2.0};
}

}  // namespace

Lab XyzToLab(const Xyz& color, const Xyz& white) {
    const double x = labCurve(color[0] / white[0]);
    const double y = labCurve(color[1] / white[1]);
    const double z = labCurve(color[2] / white[2]);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

double DeltaE76(const Lab& first, const Lab& second) {
    return std::hypot(first[0] - second[0], first[1] - second[1], first[2] - second[2]);
}

DeltaParts CompareParts(const Lab& first, const Lab& second) {
    // a* is stretched for colors near gray.
    const double plainChroma = (std::hypot(first[1], first[2]) + std::hypot(second[1], second[2])) / 2.0;
    const double stretch = 1.0 + 0.5 * (1.0 - chromaShare(plainChroma));
    const double a1 = first[1] * stretch, a2 = second[1] * stretch;
    const double chroma1 = std::hypot(a1, first[2]), chroma2 = std::hypot(a2, second[2]);

    const Hues hues = compareHues(hueAngle(a1, first[2]), hueAngle(a2, second[2]), chroma1 * chroma2 == 0.0);
    const double deltaL = second[0] - first[0];
    const double deltaC = chroma2 - chroma1;
    const double deltaH = 2.0 * std::sqrt(chroma1 * chroma2) * std::sin(hues.difference / 2.0 * kDegree);

    const double meanL = (first[0] + second[0]) / 2.0;
    const double meanC = (chroma1 + chroma2) / 2.0;
    const double hueWeight =
        1.0 - 0.17 * std::cos((hues.mean - 30.0) * kDegree) + 0.24 * std::cos(2.0 * hues.mean * kDegree) +
        0.32 * std::cos((3.0 * hues.mean + 6.0) * kDegree) - 0.20 * std::cos((4.0 * hues.mean - 63.0) * kDegree);
    const double fromMiddle = (meanL - 50.0) * (meanL - 50.0);
    const double scaleL = 1.0 + 0.015 * fromMiddle / std::sqrt(20.0 + fromMiddle);
    const double scaleC = 1.0 + 0.045 * meanC;
    const double scaleH = 1.0 + 0.015 * meanC * hueWeight;

    // In the blue region hue and chroma differences work on each other.
    const double fromBlue = (hues.mean - 275.0) / 25.0;
    const double rotation = -2.0 * chromaShare(meanC) * std::sin(60.0 * std::exp(-fromBlue * fromBlue) * kDegree);

    return {deltaL / scaleL, deltaC / scaleC, deltaH / scaleH, rotation};
}

double DeltaE2000(const Lab& first, const Lab& second) {
    const auto [l, c, h, rotation] = CompareParts(first, second);
    return std::sqrt(l * l + c * c + h * h + rotation * c * h);
}

}  // namespace tonewright
