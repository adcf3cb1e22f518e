// Statistics, histograms and format conversion, each beside the peer's and beside memcpy of the source's bytes. The
// peer runs on one thread, as ours does.

#include "bench/bench_support.h"

#ifdef TONEWRIGHT_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include "analysis/CTivBasic.h"
#include "analysis/histogram.h"
#include "analysis/stats.h"

namespace {

using D = CTivData;

void runStats(benchmark::State& state, D::Format format, const BenchSize& size) {
    CTivImage image = MakeBenchImage(format, size);
    float out[12];
    const StatsPointers pointers{out, out + 1, out + 2, out + 3};
    const bool color = D::IsColor(format);
    for ([[maybe_unused]] auto _ : state) {
        if (color) {
            CTivBasic().Stats(image, out, out + 3, out + 6, out + 9);
        } else {
            stats(image.GetRecord(), pointers);
        }
        benchmark::DoNotOptimize(out);
    }
}

void runHistogram(benchmark::State& state, const BenchSize& size) {
    const CTivImage image = MakeBenchImage(D::FormatUByte, size);
    NurVector bins;
    for ([[maybe_unused]] auto _ : state) {
        histogramInt(image.GetRecord(), &bins, false, 256, 0, 255);
        benchmark::DoNotOptimize(bins.data);
    }
    nur_vector_free(&bins);
}

#ifdef TONEWRIGHT_HAS_OPENCV
cv::Mat peerImage(const CTivImage& image, int type) {
    return cv::Mat(image.GetHeight(), image.GetWidth(), type, image.GetData());
}

void runPeerStats(benchmark::State& state, D::Format format, int type, const BenchSize& size) {
    const CTivImage image = MakeBenchImage(format, size);
    const cv::Mat mat = peerImage(image, type);
    cv::setNumThreads(1);
    std::vector<cv::Mat> planes;
    for ([[maybe_unused]] auto _ : state) {
        cv::Scalar mean, deviation;
        cv::meanStdDev(mat, mean, deviation);
        benchmark::DoNotOptimize(mean[0] + deviation[0]);
        double least = 0, most = 0;
        if (mat.channels() == 1) {
            cv::minMaxLoc(mat, &least, &most);
        } else {
            cv::split(mat, planes);  // the peer finds extremes in one channel at a time
            for (std::size_t c = 0; c < 3; ++c) cv::minMaxLoc(planes[c], &least, &most);
        }
        benchmark::DoNotOptimize(least + most);
    }
}

void runPeerHistogram(benchmark::State& state, const BenchSize& size) {
    const CTivImage image = MakeBenchImage(D::FormatUByte, size);
    const cv::Mat mat = peerImage(image, CV_8UC1);
    cv::setNumThreads(1);
    cv::Mat bins;
    for ([[maybe_unused]] auto _ : state) {
        const int count = 256, channel = 0;
        const float range[] = {0, 256};
        const float* ranges = range;
        cv::calcHist(&mat, 1, &channel, cv::Mat(), bins, 1, &count, &ranges);
        benchmark::DoNotOptimize(bins.data);
    }
}
#endif

struct StatsRow {
    const char* name;
    D::Format format;
    int peerType;
};
constexpr StatsRow kStats[] = {
    {"BM_StatsGray8", D::FormatUByte, 0}, {"BM_StatsGray16", D::FormatUShort, 2}, {"BM_StatsFloat", D::FormatFloat, 5},
    {"BM_StatsRgb", D::FormatRgb, 24},    {"BM_StatsRgb16", D::FormatRgb16, 26},
};

const bool kRegistered = [] {
    for (const StatsRow& row : kStats) {
        RegisterAtBothSizes(
            row.name, [row](benchmark::State& state, const BenchSize& size) { runStats(state, row.format, size); });
#ifdef TONEWRIGHT_HAS_OPENCV
        RegisterAtBothSizes(row.name + std::string("_OpenCV"), [row](benchmark::State& state, const BenchSize& size) {
            runPeerStats(state, row.format, row.peerType, size);
        });
#endif
    }
    RegisterAtBothSizes("BM_Histogram256", runHistogram);
#ifdef TONEWRIGHT_HAS_OPENCV
    RegisterAtBothSizes("BM_Histogram256_OpenCV", runPeerHistogram);
#endif
    return true;
}();

}  // namespace
