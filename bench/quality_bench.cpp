// Judging a calibration of 24 colors (all three term counts, each patch left out once) and refining one, and measuring
// patches whole beside memcpy of the picture's bytes.

#include "bench/bench_support.h"
#include "calibration/calibrate_at_depth.h"
#include "chart/PatchMeasurement.h"
#include "quality/CalibrationQuality.h"
#include "quality/delivery.h"
#include "quality/findings.h"

using namespace tonewright;

namespace {

/// The chart under D65 through a camera whose channels see a part of each other, each patch a little off.
CTivTonewrightDC makeCalibration(int terms) {
    std::mt19937 random(20241124);
    CTivVector colors(24, CTivData::FormatRgb, nullptr, true);
    const std::vector<Xyz> targets = GetChartTargets(3);
    for (int i = 0; i < 24; ++i) {
        const auto [r, g, b] = ToLinearRgb(targets[static_cast<std::size_t>(i)]);
        const auto level = [&](double value) {
            return static_cast<std::uint8_t>(std::clamp(value * static_cast<double>(230 + random() % 20), 1.0, 255.0));
        };
        colors.SetData(i, CTivData::Rgb(level(0.5 * r + 0.3 * g + 0.1 * b), level(0.2 * r + 0.6 * g + 0.1 * b),
                                        level(0.1 * r + 0.2 * g + 0.5 * b)));
    }
    CTivTonewrightDC engine;
    engine.SetXformSize(terms);
    if (!engine.SetRawColors(colors)) return engine;
    engine.Calibrate();
    return engine;
}

void runJudge(benchmark::State& state, FitMethod method) {
    const CTivTonewrightDC engine = makeCalibration(4);
    for ([[maybe_unused]] auto _ : state) {
        const CalibrationQuality quality = JudgeCalibration(engine, *engine.GetTransform(), {}, method);
        if (quality.candidates.size() != 3) state.SkipWithError("not judged");
    }
}

void runRefine(benchmark::State& state, int terms) {
    const CTivTonewrightDC engine = makeCalibration(terms);
    for ([[maybe_unused]] auto _ : state) {
        if (!FitCalibration(engine, FitMethod::Perceptual, terms)) state.SkipWithError("not fitted");
    }
}

void runMeasure(benchmark::State& state, CTivData::Format format, const BenchSize& size) {
    const CTivImage image = MakeBenchImage(format, size);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(MeasureArea(image, {0, 0, size.width, size.height}));
    }
}

/// A chart that fills the picture: 24 areas of the inner half of a sixth by a quarter of it.
void runPicture(benchmark::State& state, CTivData::Format format, int terms, const BenchSize& size) {
    CTivTonewrightDC engine = makeCalibration(terms);
    const CTivVector transform = *engine.GetTransform();
    if (format != CTivData::FormatRgb &&
        (!engine.SetRawColors(CTivVector(24, format, nullptr, true)) || !CalibrateAtDepth(engine))) {
        state.SkipWithError("not calibrated");
    }
    const CTivImage image = MakeBenchImage(format, size);
    std::vector<SamplingArea> areas;
    const int width = size.width / 12, height = size.height / 8;
    for (int i = 0; i < 24; ++i) {
        SamplingArea& area = areas.emplace_back();
        for (int y = 0; y < height; ++y) {
            area.push_back({i % 6 * 2 * width + width / 2, i / 6 * 2 * height + height / 2 + y, width});
        }
    }
    for ([[maybe_unused]] auto _ : state) {
        if (DeliverPicture(engine, transform, image, areas).size() != 24) state.SkipWithError("not delivered");
    }
}

const bool kRegistered = [] {
    const auto add = [](const std::string& name, auto run) {
        benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMillisecond);
    };
    add("BM_JudgeCalibration/24colors", [](benchmark::State& state) { runJudge(state, FitMethod::LeastSquares); });
    add("BM_JudgeCalibration/24colors/perceptual",
        [](benchmark::State& state) { runJudge(state, FitMethod::Perceptual); });
    for (const int terms : {4, 7, 10}) {
        add("BM_RefineTransform/24colors/3x" + std::to_string(terms),
            [terms](benchmark::State& state) { runRefine(state, terms); });
    }
    for (const auto format : {CTivData::FormatRgb, CTivData::FormatRgb16}) {
        RegisterAtBothSizes(
            std::string("BM_MeasureArea/") + CTivData::GetFormatName(format),
            [format](benchmark::State& state, const BenchSize& size) { runMeasure(state, format, size); });
    }
    for (const auto format : {CTivData::FormatRgb, CTivData::FormatRgb16}) {
        for (const int terms : {4, 10}) {
            RegisterAtBothSizes(
                std::string("BM_DeliverPicture/") + CTivData::GetFormatName(format) + "/3x" + std::to_string(terms),
                [=](benchmark::State& state, const BenchSize& size) { runPicture(state, format, terms, size); });
        }
    }
    RegisterAtBothSizes("BM_MeasureArea/memcpy", [](benchmark::State& state, const BenchSize& size) {
        RunMemcpy(state, static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    });
    return true;
}();

}  // namespace
