#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "calibration/CalibrationTables.h"
#include "chart/FoundChart.h"
#include "foundation/CTivImage.h"

/// The chart of 6 x 4 patches as a pinhole camera sees it on a table: turned, tilted, badly lit. Steps between patches
/// are 1, places (column, row); the chart's middle is looked at.
struct StagedChart {
    using Color = std::array<double, 3>;  // red, green, blue, 0 to 1, as light

    int width = 640, height = 480;
    double step = 70;                             // pixels between patches, where the chart lies flat
    double side = 0.84;                           // of a patch, in steps
    double rotation = 0, tilt = 0, tiltAxis = 0;  // degrees
    bool isMirrored = false;
    double offsetX = 0, offsetY = 0;  // of the chart's middle from the picture's, pixels
    double lens = 0;                  // radial distortion: share at the picture's corner
    double exponent = 2.2;            // light to values
    Color cast = {1, 1, 1};
    double falloff = 0;  // of the light, from the left edge to the right one
    double noise = 0;    // levels of 255, standard deviation
    double blur = 0;     // pixels, standard deviation
    Color card = {0.012, 0.012, 0.012};
    std::vector<Color> colors = ReferenceColors();
    std::vector<int> covered;  // patches under a finger

    /// What the patches look like under D65, in linear light.
    static std::vector<Color> ReferenceColors() {
        std::vector<Color> colors;
        const auto& tables = tonewright::GetCalibrationTables();
        for (const auto& xyz : tables.ReferenceTable.at(3)) {
            Color color = {};
            for (int i = 0; i < 3; ++i) {
                for (int k = 0; k < 3; ++k) {
                    color[static_cast<std::size_t>(i)] +=
                        tables.XyzToRgbMatrix[i][k] * static_cast<double>(xyz[static_cast<std::size_t>(k)]);
                }
                color[static_cast<std::size_t>(i)] = std::clamp(color[static_cast<std::size_t>(i)], 0.0, 1.0);
            }
            colors.push_back(color);
        }
        return colors;
    }

    /// Where a place of the chart lies in the picture.
    tonewright::ChartPoint At(double column, double row) const {
        const Axes axes = MakeAxes();
        const double x = (column - 2.5) * (isMirrored ? -1 : 1), y = row - 1.5;
        const double z = kFar + axes.x[2] * x + axes.y[2] * y;
        const double px = kFar * step * (axes.x[0] * x + axes.y[0] * y) / z;
        const double py = kFar * step * (axes.x[1] * x + axes.y[1] * y) / z;
        double qx = px, qy = py;
        for (int i = 0; i < 30; ++i) {
            const double grown = 1 + Bend(qx, qy);
            qx = px / grown;
            qy = py / grown;
        }
        return {qx + MiddleX(), qy + MiddleY()};
    }

    CTivImage Draw(CTivData::Format format = CTivData::FormatRgb) const {
        std::vector<Color> pixels = Render();
        if (blur > 0) Blur(pixels);
        const int bits = format == CTivData::FormatRgb16 ? 16 : format == CTivData::FormatRgb10 ? 10 : 8;
        const double full = (1 << bits) - 1;
        std::mt19937 random(7);
        std::normal_distribution<double> grain(0, std::max(noise, 1e-9));
        CTivImage image(width, height, format, nullptr, true);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                std::uint64_t word = 0;
                for (std::size_t c = 0; c < 3; ++c) {
                    const double light =
                        pixels[static_cast<std::size_t>(y * width + x)][c] * cast[c] * (1 - falloff * x / width);
                    const double value = std::pow(std::clamp(light, 0.0, 1.0), 1 / exponent) + grain(random) / 255;
                    word = word << bits | static_cast<std::uint64_t>(std::lround(std::clamp(value, 0.0, 1.0) * full));
                }
                image.SetData(x, y, {format, word});
            }
        }
        return image;
    }

private:
    static constexpr double kFar = 14;  // steps from the camera to the chart's middle
    struct Axes {
        std::array<double, 3> x, y, normal;  // of the chart, as the camera sees them
    };

    double MiddleX() const { return (width - 1) / 2.0 + offsetX; }
    double MiddleY() const { return (height - 1) / 2.0 + offsetY; }
    double Bend(double x, double y) const {
        return lens * (x * x + y * y) * 4 / (double(width) * width + double(height) * height);
    }

    Axes MakeAxes() const {
        const double turn = rotation * M_PI / 180, lean = tilt * M_PI / 180, about = tiltAxis * M_PI / 180;
        // A rotation about an axis in the plane (Rodrigues), after one in the plane.
        const auto place = [&](double x, double y) {
            const double u = std::cos(turn) * x - std::sin(turn) * y, v = std::sin(turn) * x + std::cos(turn) * y;
            const double along = u * std::cos(about) + v * std::sin(about);
            const double across = -u * std::sin(about) + v * std::cos(about);
            return std::array<double, 3>{along * std::cos(about) - across * std::cos(lean) * std::sin(about),
                                         along * std::sin(about) + across * std::cos(lean) * std::cos(about),
                                         across * std::sin(lean)};
        };
        const auto x = place(1, 0), y = place(0, 1);
        return {x, y, {x[1] * y[2] - x[2] * y[1], x[2] * y[0] - x[0] * y[2], x[0] * y[1] - x[1] * y[0]}};
    }

    Color ColorAt(double px, double py, const Axes& axes) const {
        const double grown = (1 + Bend(px, py)) / (kFar * step);
        const std::array<double, 3> ray = {px * grown, py * grown, 1};
        const double t =
            kFar * axes.normal[2] / (axes.normal[0] * ray[0] + axes.normal[1] * ray[1] + axes.normal[2] * ray[2]);
        double x = 0, y = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double off = t * ray[i] - (i == 2 ? kFar : 0);
            x += off * axes.x[i];
            y += off * axes.y[i];
        }
        const double column = (isMirrored ? -x : x) + 2.5, row = y + 1.5;
        if (column < -0.8 || column > 5.8 || row < -0.8 || row > 3.8) return {0.3, 0.33, 0.3};  // the table
        const double nearColumn = std::round(column), nearRow = std::round(row);
        const bool isOn = nearColumn >= 0 && nearColumn <= 5 && nearRow >= 0 && nearRow <= 3 &&
                          std::abs(column - nearColumn) < side / 2 && std::abs(row - nearRow) < side / 2;
        if (!isOn) return card;
        const int index = static_cast<int>(nearRow) * 6 + static_cast<int>(nearColumn);
        if (std::find(covered.begin(), covered.end(), index) != covered.end()) return {0.45, 0.25, 0.2};
        return colors[static_cast<std::size_t>(index)];
    }

    std::vector<Color> Render() const {
        constexpr int kFine = 3;  // samples of a pixel in each direction
        const Axes axes = MakeAxes();
        std::vector<Color> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                Color& pixel = pixels[static_cast<std::size_t>(y * width + x)];
                for (int i = 0; i < kFine * kFine; ++i) {
                    const double px = x + (i % kFine + 0.5) / kFine - 0.5 - MiddleX();
                    const double py = y + (i / kFine + 0.5) / kFine - 0.5 - MiddleY();
                    const Color sample = ColorAt(px, py, axes);
                    for (std::size_t c = 0; c < 3; ++c) pixel[c] += sample[c] / (kFine * kFine);
                }
            }
        }
        return pixels;
    }

    void Blur(std::vector<Color>& pixels) const {
        const int reach = static_cast<int>(3 * blur) + 1;
        for (const bool isAcross : {true, false}) {
            const std::vector<Color> sharp = pixels;
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    Color sum = {};
                    double weights = 0;
                    for (int d = -reach; d <= reach; ++d) {
                        const int sx = std::clamp(isAcross ? x + d : x, 0, width - 1),
                                  sy = std::clamp(isAcross ? y : y + d, 0, height - 1);
                        const double weight = std::exp(-d * d / (2 * blur * blur));
                        weights += weight;
                        for (std::size_t c = 0; c < 3; ++c)
                            sum[c] += weight * sharp[static_cast<std::size_t>(sy * width + sx)][c];
                    }
                    for (std::size_t c = 0; c < 3; ++c)
                        pixels[static_cast<std::size_t>(y * width + x)][c] = sum[c] / weights;
                }
            }
        }
    }
};
