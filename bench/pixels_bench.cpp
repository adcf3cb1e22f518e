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
#include "foundation/cast_image.h"
#include "foundation/format_rows.h"

using namespace tonewright;

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

void runConvert(benchmark::State& state, D::Format from, D::Format to, int mode, const BenchSize& size) {
    const CTivImage source = MakeBenchImage(from, size);
    CTivImage destination = MakeBenchImage(to, size);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(destination.ConvertFormat(source, mode));
        benchmark::ClobberMemory();
    }
}

/// The exact kernel for every pixel, as the plain form has it: what the guesses of the wide form save.
void runExactly(benchmark::State& state, D::Format from, D::Format to, const BenchSize& size) {
    const CTivImage source = MakeBenchImage(from, size);
    CTivImage destination = MakeBenchImage(to, size);
    for (const FormatConversion& row : GetFormatConversions()) {
        if (row.source != from || row.destination != to) continue;
        const auto pixels = static_cast<std::size_t>(std::int64_t{size.width} * size.height);
        for ([[maybe_unused]] auto _ : state) {
            row.plain(source.GetRecord()->Row(0), destination.GetRecord()->Row(0), pixels, 0);
            benchmark::ClobberMemory();
        }
    }
}

void runMapRange(benchmark::State& state, const BenchSize& size) {
    const CTivImage source = MakeBenchImage(D::FormatUShort, size);
    NurImage destination;
    for ([[maybe_unused]] auto _ : state) {
        CTivUtilCastImage_16u8u_MapRange(source.GetRecord(), &destination, true);
        benchmark::DoNotOptimize(destination.data);
    }
    nur_image_free(&destination);
}

#ifdef TONEWRIGHT_HAS_OPENCV
cv::Mat peerImage(const CTivImage& image, int type) {
    return cv::Mat(image.GetHeight(), image.GetWidth(), type, PeerPixels(image));
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

void runPeerColor(benchmark::State& state, D::Format from, int type, int code, const BenchSize& size) {
    const CTivImage source = MakeBenchImage(from, size);
    cv::Mat mat = peerImage(source, type);
    cv::Mat out;
    cv::setNumThreads(1);
    if (code == cv::COLOR_HSV2BGR_FULL || code == cv::COLOR_YUV2BGR || code == cv::COLOR_Lab2BGR) {
        cv::cvtColor(mat, mat, cv::COLOR_BGRA2BGR);  // three channels in, four out
    }
    const int channels = code == cv::COLOR_BGRA2GRAY ? 1 : mat.channels() == 4 ? 3 : 4;
    cv::cvtColor(mat, out, code, channels);  // the peer makes its tables at the first call
    for ([[maybe_unused]] auto _ : state) {
        cv::cvtColor(mat, out, code, channels);
        benchmark::DoNotOptimize(out.data);
    }
}

void runPeerNumbers(benchmark::State& state, D::Format from, int type, int to, double scale, const BenchSize& size) {
    const CTivImage source = MakeBenchImage(from, size);
    const cv::Mat mat = peerImage(source, type);
    cv::Mat out;
    cv::setNumThreads(1);
    for ([[maybe_unused]] auto _ : state) {
        double shift = 0;
        double factor = scale;
        if (scale == 0) {  // stretched by its own range
            double least = 0, most = 0;
            cv::minMaxLoc(mat, &least, &most);
            factor = 255 / (most - least);
            shift = -least * factor;
        }
        mat.convertTo(out, to, factor, shift);
        benchmark::DoNotOptimize(out.data);
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

struct ConvertRow {
    const char* name;
    D::Format from;
    D::Format to;
    int mode;
    int peerType = -1;
    int peerCode = -1;  // of cvtColor, or the depth of convertTo
    double peerScale = -1;
};
#ifndef TONEWRIGHT_HAS_OPENCV
namespace cv {
enum {
    COLOR_BGRA2GRAY,
    COLOR_GRAY2BGRA,
    COLOR_BGR2HSV_FULL,
    COLOR_BGR2YUV,
    COLOR_BGR2Lab,
    COLOR_HSV2BGR_FULL,
    COLOR_YUV2BGR,
    COLOR_Lab2BGR
};
}
#endif
constexpr ConvertRow kConvert[] = {
    {"BM_Gray", D::FormatRgb, D::FormatUByte, 0, 24, cv::COLOR_BGRA2GRAY},
    {"BM_GrayToRgb", D::FormatUByte, D::FormatRgb, 0, 0, cv::COLOR_GRAY2BGRA},
    {"BM_RgbToHsv", D::FormatRgb, D::FormatHsv, 0, 24, cv::COLOR_BGR2HSV_FULL},
    {"BM_RgbToYuv", D::FormatRgb, D::FormatYuv, 0, 24, cv::COLOR_BGR2YUV},
    {"BM_RgbToLab", D::FormatRgb, D::FormatLab, 0, 24, cv::COLOR_BGR2Lab},
    {"BM_HsvToRgb", D::FormatHsv, D::FormatRgb, 0, 24, cv::COLOR_HSV2BGR_FULL},
    {"BM_YuvToRgb", D::FormatYuv, D::FormatRgb, 0, 24, cv::COLOR_YUV2BGR},
    {"BM_LabToRgb", D::FormatLab, D::FormatRgb, 0, 24, cv::COLOR_Lab2BGR},
    {"BM_RgbToRgb10", D::FormatRgb, D::FormatRgb10, 2},
    {"BM_RgbToRgb16", D::FormatRgb, D::FormatRgb16, 2},
    {"BM_Rgb10ToRgb", D::FormatRgb10, D::FormatRgb, 2},
    {"BM_Rgb16ToRgb", D::FormatRgb16, D::FormatRgb, 2},
    {"BM_Rgb10ToGray", D::FormatRgb10, D::FormatUShort, 2},
    {"BM_Rgb16ToGray", D::FormatRgb16, D::FormatUShort, 0, 26, cv::COLOR_BGRA2GRAY},
    {"BM_Clip16To8", D::FormatUShort, D::FormatUByte, 0, 2, 0, 1},
    {"BM_ClipShortTo8", D::FormatShort, D::FormatUByte, 0, 3, 0, 1},
    {"BM_Fit16To8", D::FormatUShort, D::FormatUByte, 1, 2, 0, 0},
    {"BM_FitFloatTo8", D::FormatFloat, D::FormatUByte, 1, 5, 0, 0},
    {"BM_ClipFloatTo8", D::FormatFloat, D::FormatUByte, 0, 5, 0, 1},
    {"BM_8ToFloat", D::FormatUByte, D::FormatFloat, 0, 0, 5, 1},
    {"BM_8ToBinary", D::FormatUByte, D::FormatBinary, 0},
    {"BM_BinaryTo8", D::FormatBinary, D::FormatUByte, 0},
};

const bool kRegistered = [] {
    constexpr BenchSize kPatch{"patch48", 48, 48};  // what is measured of a chart's patch
    for (const StatsRow& row : kStats) {
        const auto ours = [row](benchmark::State& state, const BenchSize& size) { runStats(state, row.format, size); };
        RegisterAtBothSizes(row.name, ours);
        RegisterAt(row.name, kPatch, ours);
#ifdef TONEWRIGHT_HAS_OPENCV
        const auto peers = [row](benchmark::State& state, const BenchSize& size) {
            runPeerStats(state, row.format, row.peerType, size);
        };
        RegisterAtBothSizes(row.name + std::string("_OpenCV"), peers);
        RegisterAt(row.name + std::string("_OpenCV"), kPatch, peers);
#endif
    }
    for (const ConvertRow& row : kConvert) {
        RegisterAtBothSizes(row.name, [row](benchmark::State& state, const BenchSize& size) {
            runConvert(state, row.from, row.to, row.mode, size);
        });
#ifdef TONEWRIGHT_HAS_OPENCV
        if (row.peerType < 0) continue;
        RegisterAtBothSizes(row.name + std::string("_OpenCV"), [row](benchmark::State& state, const BenchSize& size) {
            if (row.peerScale >= 0) {
                runPeerNumbers(state, row.from, row.peerType, row.peerCode, row.peerScale, size);
            } else {
                runPeerColor(state, row.from, row.peerType, row.peerCode, size);
            }
        });
#endif
    }
    for (const auto& [name, to] : {std::pair{"BM_RgbToHsv/Exact", D::FormatHsv}, {"BM_RgbToLab/Exact", D::FormatLab}}) {
        RegisterAtBothSizes(name, [to = to](benchmark::State& state, const BenchSize& size) {
            runExactly(state, D::FormatRgb, to, size);
        });
    }
    RegisterAtBothSizes("BM_MapRange16To8", runMapRange);
    RegisterAtBothSizes("BM_CopyOfRgb_memcpy", [](benchmark::State& state, const BenchSize& size) {
        RunMemcpy(state, static_cast<std::size_t>(CTivImage::GetImageBytes(size.width, size.height, D::FormatRgb)));
    });
    RegisterAtBothSizes("BM_Histogram256", runHistogram);
#ifdef TONEWRIGHT_HAS_OPENCV
    RegisterAtBothSizes("BM_Histogram256_OpenCV", runPeerHistogram);
#endif
    return true;
}();

}  // namespace
