// Finding a chart wherever it lies, on one thread, beside the peer's chart detector and memcpy of the picture's bytes.

#include "bench/bench_support.h"

#if defined(TONEWRIGHT_HAS_OPENCV) && __has_include(<opencv2/mcc.hpp>)
#define TONEWRIGHT_HAS_CHART_PEER
#include <opencv2/imgproc.hpp>
#include <opencv2/mcc.hpp>
#endif

#include <cmath>

#include "calibration/CalibrationTables.h"
#include "chart/ChartFinder.h"
#include "primitives/acceleration.h"

using namespace tonewright;

namespace {

/// A chart of 6 x 4 patches turned by 20 degrees, over half of the picture's width, on a card, with sensor noise.
CTivImage makeTurnedChart(const BenchSize& size) {
    const auto& tables = GetCalibrationTables();
    std::uint32_t colors[24][3];
    for (std::size_t i = 0; i < 24; ++i) {
        const auto& xyz = tables.ReferenceTable.at(3)[i];
        for (int c = 0; c < 3; ++c) {
            double light = 0;
            for (int k = 0; k < 3; ++k) {
                light += tables.XyzToRgbMatrix[c][k] * static_cast<double>(xyz[static_cast<std::size_t>(k)]);
            }
            colors[i][c] = static_cast<std::uint32_t>(240 * std::pow(std::clamp(light, 0.0, 1.0), 1 / 2.2));
        }
    }
    CTivImage image(size.width, size.height, CTivData::FormatRgb, nullptr, true);
    std::mt19937 random(20240613);
    const double step = size.width / 12.0, cosine = std::cos(0.35), sine = std::sin(0.35);
    for (int y = 0; y < size.height; ++y) {
        auto* row = image.GetRecord()->Row<std::uint32_t>(y);
        for (int x = 0; x < size.width; ++x) {
            const double dx = (x - size.width / 2.0) / step, dy = (y - size.height / 2.0) / step;
            const double u = cosine * dx + sine * dy + 2.5, v = cosine * dy - sine * dx + 1.5;
            const double column = std::round(u), line = std::round(v);
            const bool isOnCard = u > -0.8 && u < 5.8 && v > -0.8 && v < 3.8;
            const bool isOnPatch = column >= 0 && column <= 5 && line >= 0 && line <= 3 &&
                                   std::abs(u - column) < 0.42 && std::abs(v - line) < 0.42;
            const std::uint32_t ground[3] = {isOnCard ? 30u : 150u, isOnCard ? 30u : 140u, isOnCard ? 30u : 130u};
            const auto* color = isOnPatch ? colors[static_cast<int>(6 * line + column)] : ground;
            const std::uint32_t grain = random() % 8;
            row[x] = (color[0] + grain) << 16 | (color[1] + grain) << 8 | (color[2] + grain);
        }
    }
    return image;
}

void runFind(benchmark::State& state, const BenchSize& size) {
    const CTivImage image = makeTurnedChart(size);
    const ChartFinder finder;
    ctiv_SetNumThreads(1);
    for ([[maybe_unused]] auto _ : state) {
        if (!finder.Find(image).found) state.SkipWithError("no chart");
    }
}

#ifdef TONEWRIGHT_HAS_CHART_PEER
void runPeerFind(benchmark::State& state, const BenchSize& size) {
    const CTivImage image = makeTurnedChart(size);
    cv::Mat picture;
    cv::cvtColor(cv::Mat(size.height, size.width, CV_8UC4, PeerPixels(image)), picture, cv::COLOR_BGRA2BGR);
    cv::setNumThreads(1);
    const auto detector = cv::mcc::CCheckerDetector::create();
    for ([[maybe_unused]] auto _ : state) {
        if (!detector->process(picture, cv::mcc::MCC24, 1)) state.SkipWithError("no chart");
    }
    cv::setNumThreads(-1);
}
#endif

const bool kRegistered = [] {
    RegisterAtBothSizes("BM_FindChart/FormatRgb/1thread", runFind);
#ifdef TONEWRIGHT_HAS_CHART_PEER
    RegisterAtBothSizes("BM_FindChart/peer/1thread", runPeerFind);
#endif
    RegisterAtBothSizes("BM_FindChart/memcpy", [](benchmark::State& state, const BenchSize& size) {
        RunMemcpy(state, static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    });
    return true;
}();

}  // namespace
