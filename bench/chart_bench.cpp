// Finding and measuring a chart, beside the same steps of the peer (gray, Otsu's level, components with their boxes, on
// one thread and on all of its own) and beside memcpy of the picture's bytes.

#include "bench/bench_support.h"

#ifdef TONEWRIGHT_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include "chart/PatchDetector.h"

using namespace tonewright;

namespace {

/// A chart that fills the picture, with sensor noise.
CTivImage makeChart(CTivData::Format format, const BenchSize& size) {
    CTivImage image(size.width, size.height, format, nullptr, true);
    std::mt19937 random(20240612);
    const int cellWidth = size.width / 6, cellHeight = size.height / 4;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const int column = std::min(x / cellWidth, 5), row = std::min(y / cellHeight, 3);
            const int dx = x - column * cellWidth, dy = y - row * cellHeight;
            const bool isOnPatch =
                dx > cellWidth / 10 && dx < cellWidth * 9 / 10 && dy > cellHeight / 10 && dy < cellHeight * 9 / 10;
            const unsigned noise = random() % 16;
            const unsigned level = noise + (isOnPatch ? 120u + static_cast<unsigned>(5 * (column + row)) : 20u);
            const CTivData word =
                format == CTivData::FormatRgb16
                    ? CTivData::Rgb16(static_cast<std::uint16_t>(level << 8), static_cast<std::uint16_t>(level << 8),
                                      static_cast<std::uint16_t>((level + 10) << 8))
                    : CTivData::Rgb(static_cast<std::uint8_t>(level), static_cast<std::uint8_t>(level),
                                    static_cast<std::uint8_t>(level + 10));
            image.SetData(x, y, word);
        }
    }
    return image;
}

void runDetect(benchmark::State& state, CTivData::Format format, const BenchSize& size) {
    CTivImage image = makeChart(format, size);
    const ChartRoi roi = {0, 0, size.width, size.height};
    PatchDetector detector;
    for ([[maybe_unused]] auto _ : state) {
        if (!detector.DetectPatches(image, roi, {}) || detector.GetBlobCount() != 24) state.SkipWithError("no chart");
    }
}

void runMeasure(benchmark::State& state, const BenchSize& size) {
    CTivImage image = makeChart(CTivData::FormatRgb, size);
    const ChartRoi roi = {0, 0, size.width, size.height};
    PatchDetector detector;
    detector.DetectPatches(image, roi, {});
    for ([[maybe_unused]] auto _ : state) {
        if (!detector.GetRawColors(image, roi, {}).measured) state.SkipWithError("not measured");
    }
}

#ifdef TONEWRIGHT_HAS_OPENCV
void runPeerDetect(benchmark::State& state, int threads, const BenchSize& size) {
    const CTivImage image = makeChart(CTivData::FormatRgb, size);
    const cv::Mat picture(size.height, size.width, CV_8UC4, PeerPixels(image));
    cv::setNumThreads(threads);
    for ([[maybe_unused]] auto _ : state) {
        cv::Mat gray, binary, labels, boxes, centres;
        cv::cvtColor(picture, gray, cv::COLOR_BGRA2GRAY);
        cv::threshold(gray, binary, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU);
        benchmark::DoNotOptimize(cv::connectedComponentsWithStats(binary, labels, boxes, centres));
    }
    cv::setNumThreads(-1);
}
#endif

const bool kRegistered = [] {
    for (const auto format : {CTivData::FormatRgb, CTivData::FormatRgb16}) {
        RegisterAtBothSizes(
            std::string("BM_DetectPatches/") + CTivData::GetFormatName(format),
            [format](benchmark::State& state, const BenchSize& size) { runDetect(state, format, size); });
    }
    RegisterAtBothSizes("BM_GetRawColors/FormatRgb", runMeasure);
#ifdef TONEWRIGHT_HAS_OPENCV
    for (const int threads : {1, -1}) {
        const char* name = threads == 1 ? "BM_DetectPatches/peer/1thread" : "BM_DetectPatches/peer/allthreads";
        RegisterAtBothSizes(
            name, [threads](benchmark::State& state, const BenchSize& size) { runPeerDetect(state, threads, size); });
    }
#endif
    RegisterAtBothSizes("BM_DetectPatches/memcpy", [](benchmark::State& state, const BenchSize& size) {
        RunMemcpy(state, static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    });
    return true;
}();

}  // namespace
