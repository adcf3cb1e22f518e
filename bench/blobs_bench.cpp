// Otsu's level and blobs with their boxes and centres, beside the peer's same steps on as many threads: an even chart
// and some 50,000 small blobs. "NewObject" makes the operator anew for each image, as a detection does; else it is
// kept.

#include "bench/bench_support.h"

#ifdef TONEWRIGHT_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include <cmath>

#include "analysis/CTivBlob.h"
#include "analysis/adaptive_threshold.h"
#include "primitives/acceleration.h"

using namespace tonewright;

namespace {

struct Picture {
    const char* name;
    int columns, rows;  // of blobs, each on half of its cell both ways
};
constexpr Picture kPictures[] = {{"24Patches", 6, 4}, {"50000Small", 300, 167}};

CTivImage draw(const Picture& picture, const BenchSize& size) {
    CTivImage image(size.width, size.height, CTivData::FormatUByte, nullptr, true);
    std::mt19937 random(20240613);
    const double cellWidth = static_cast<double>(size.width) / picture.columns;
    const double cellHeight = static_cast<double>(size.height) / picture.rows;
    const auto isInside = [](int at, double cell) { return std::fmod(at, cell) < cell / 2; };
    for (int y = 0; y < size.height; ++y) {
        std::uint8_t* row = image.GetRecord()->Row(y);
        for (int x = 0; x < size.width; ++x) {
            row[x] = static_cast<std::uint8_t>((isInside(x, cellWidth) && isInside(y, cellHeight) ? 180 : 30) +
                                               random() % 32);
        }
    }
    return image;
}

void runBlobs(benchmark::State& state, const Picture& picture, int threads, bool keepObject, const BenchSize& size) {
    CTivImage image = draw(picture, size);
    ctiv_SetNumThreads(threads);
    CTivBlob kept(1024, 1024);
    if (!kept.Execute(image)) state.SkipWithError("not executed");
    state.counters["blobs"] = kept.GetNumBlobs();
    for ([[maybe_unused]] auto _ : state) {
        if (keepObject) {
            benchmark::DoNotOptimize(kept.Execute(image));
        } else {
            CTivBlob blob(1024, 1024);
            benchmark::DoNotOptimize(blob.Execute(image));
        }
    }
    ctiv_SetNumThreads(1);
}

void runOtsu(benchmark::State& state, const BenchSize& size) {
    const CTivImage image = draw(kPictures[0], size);
    float level = 0;
    for ([[maybe_unused]] auto _ : state) {
        findOtsuLevel(image.GetRecord(), &level);
        benchmark::DoNotOptimize(level);
    }
}

void runSort(benchmark::State& state) {
    CTivImage image = draw(kPictures[1], kBenchSizes[0]);
    CTivBlob blob(1024, 1024);
    if (!blob.Execute(image)) state.SkipWithError("not executed");
    for ([[maybe_unused]] auto _ : state) {
        blob.SortByFeature(BlobCenterY, kBlobAscending);
        blob.SortByFeature(BlobCenterX, kBlobAscending);
    }
}

#ifdef TONEWRIGHT_HAS_OPENCV
void runPeer(benchmark::State& state, const Picture& picture, int threads, const BenchSize& size) {
    const CTivImage image = draw(picture, size);
    const cv::Mat gray(size.height, size.width, CV_8UC1, PeerPixels(image));
    cv::Mat binary, labels, boxes, centres;
    cv::setNumThreads(threads);
    for ([[maybe_unused]] auto _ : state) {
        cv::threshold(gray, binary, 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU);
        state.counters["blobs"] = cv::connectedComponentsWithStats(binary, labels, boxes, centres) - 1;
        benchmark::DoNotOptimize(boxes.data);
    }
    cv::setNumThreads(1);
}
#endif

const bool kRegistered = [] {
    for (const Picture& picture : kPictures) {
        for (const int threads : {1, 2}) {
            const std::string name =
                std::string("BM_Blobs/") + picture.name + "/" + std::to_string(threads) + "Threads";
            RegisterAtBothSizes(name, [=](benchmark::State& state, const BenchSize& size) {
                runBlobs(state, picture, threads, true, size);
            });
            RegisterAtBothSizes(name + "/NewObject", [=](benchmark::State& state, const BenchSize& size) {
                runBlobs(state, picture, threads, false, size);
            });
#ifdef TONEWRIGHT_HAS_OPENCV
            RegisterAtBothSizes(name + "/OpenCV", [=](benchmark::State& state, const BenchSize& size) {
                runPeer(state, picture, threads, size);
            });
#endif
        }
        RegisterAtBothSizes(
            std::string("BM_Blobs/") + picture.name + "/memcpy", [](benchmark::State& state, const BenchSize& size) {
                RunMemcpy(state, static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
            });
    }
    RegisterAtBothSizes("BM_OtsuLevel", runOtsu);
    benchmark::RegisterBenchmark("BM_SortBlobs/50000ByRowThenColumn", runSort)->Unit(benchmark::kMillisecond);
    return true;
}();

}  // namespace
