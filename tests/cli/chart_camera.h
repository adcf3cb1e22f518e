#pragma once

#include <algorithm>
#include <cmath>

#include "quality/findings.h"
#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"

/// The chart under D65 as a linear camera sees it whose channels see a part of each other, in levels of 0 to 255.
inline DrawnChart CameraChart() {
    DrawnChart chart;
    chart.surround = {4, 4, 4};
    const std::vector<tonewright::Xyz> targets = tonewright::GetChartTargets(3);
    for (std::size_t i = 0; i < 24; ++i) {
        const auto [r, g, b] = tonewright::ToLinearRgb(targets[i]);
        const auto level = [](double value) {
            return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
        };
        chart.colors[i] = {level(0.5 * r + 0.3 * g + 0.1 * b), level(0.2 * r + 0.6 * g + 0.1 * b),
                           level(0.1 * r + 0.2 * g + 0.5 * b)};
    }
    return chart;
}
