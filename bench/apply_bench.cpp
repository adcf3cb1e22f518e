#include <filesystem>

#include "bench/bench_support.h"
#include "calibration/CTivTonewrightDC.h"
#include "calibration/execute_transform.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/bmp_strips.h"

#ifdef TONEWRIGHT_HAS_OPENCV
#include <cmath>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#endif

using namespace tonewright;

// One picture from file to file, as the batch tool's `apply` has it for each: read, four terms, gamma, write. Beside it
// the loop that a user of OpenCV would write, which keeps no earlier file and lets nothing reach the disk. On a file
// system in memory.

namespace {

constexpr double kGamma = 0.45;

std::string PlaceOf(const char* name, const BenchSize& size) {
    const bool hasSharedMemory = std::filesystem::is_directory("/dev/shm");
    const auto folder = hasSharedMemory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path();
    return (folder / ("tonewright_bench_" + std::to_string(size.width) + name)).string();
}

/// Runs `correct(from, to)`, and counts pixels.
template <class Correct>
void Run(benchmark::State& state, const BenchSize& size, Correct correct) {
    const std::string from = PlaceOf("_apply.bmp", size), to = PlaceOf("_applied.bmp", size);
    MakeBenchImage(CTivData::FormatRgb, size).Save(from, ImageFileBmp);
    for ([[maybe_unused]] auto _ : state) correct(from, to);
    state.SetItemsProcessed(std::int64_t{size.width} * size.height * state.iterations());
    std::filesystem::remove(from);
    std::filesystem::remove(to);
}

[[maybe_unused]] const bool kRegistered = [] {
    RegisterAtBothSizes("BM_ApplyBmp", [](benchmark::State& state, const BenchSize& size) {
        CTivVector transform(12, CTivData::FormatFloat, nullptr, true);
        const float rows[] = {1.6f, -0.4f, -0.1f, 2, -0.2f, 1.5f, -0.2f, 2, 0.02f, -0.4f, 1.5f, 2};
        for (int i = 0; i < 12; ++i) transform.SetData(i, CTivData::Float(rows[i]));
        CTivTonewrightDC engine;
        engine.SetGamma(static_cast<float>(kGamma));
        engine.SetSaturationValueEx(CTivData::Rgb(255, 255, 255));
        Run(state, size, [&](const std::string& from, const std::string& to) {
            const bool isDone = RewriteBitmap(from, to, [&](const CTivImage& strip, CTivImage& changed) {
                return ExecuteTransform(engine, transform, strip, changed);
            });
            if (!isDone) state.SkipWithError("not corrected");
        });
    });
#ifdef TONEWRIGHT_HAS_OPENCV
    RegisterAtBothSizes("BM_ApplyBmp/OpenCV", [](benchmark::State& state, const BenchSize& size) {
        const cv::Mat matrix =
            (cv::Mat_<float>(3, 4) << 1.5f, -0.4f, 0.02f, 2, -0.2f, 1.5f, -0.2f, 2, -0.1f, -0.4f, 1.6f, 2);
        cv::Mat table(1, 256, CV_8U);
        for (int i = 0; i < 256; ++i) {
            table.at<std::uint8_t>(i) = cv::saturate_cast<std::uint8_t>(255 * std::pow(i / 255.0, kGamma));
        }
        cv::Mat mixed, corrected;  // kept, since fresh ones take as long again
        Run(state, size, [&](const std::string& from, const std::string& to) {
            cv::transform(cv::imread(from), mixed, matrix);
            cv::LUT(mixed, table, corrected);
            cv::imwrite(to, corrected);
        });
    });
#endif
    return true;
}();

}  // namespace
