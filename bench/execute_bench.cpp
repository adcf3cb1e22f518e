// Correcting an image and fitting a chart, beside what one would write with OpenCV, and beside memcpy.

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "calibration/CTivTonewrightDC.h"

#ifdef TONEWRIGHT_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

/// The last image asked for is kept, since drawing one takes longer than most of what is timed on it.
const CTivImage& BenchImage(CTivData::Format format, const BenchSize& size) {
    static CTivImage image;
    if (image.GetFormat() != format || image.GetWidth() != size.width) image = MakeBenchImage(format, size);
    return image;
}

CTivVector BenchColors(CTivData::Format format, unsigned seed) {
    std::mt19937 random(seed);
    CTivVector colors(24, format, nullptr, true);
    for (int i = 0; i < 24; ++i) {
        const auto draw = [&](unsigned fullScale) { return static_cast<std::uint16_t>(random() % fullScale); };
        switch (format) {
            case CTivData::FormatRgb10:
                colors.SetData(i, CTivData::Rgb10(draw(1023), draw(1023), draw(1023)));
                break;
            case CTivData::FormatRgb16:
                colors.SetData(i, CTivData::Rgb16(draw(65535), draw(65535), draw(65535)));
                break;
            default:
                colors.SetData(i, {format, random() & 0xffffff});
        }
    }
    return colors;
}

void Prepare(CTivTonewrightDC& engine, CTivData::Format format, int terms) {
    engine.SetXformSize(terms);
    engine.SetRawColors(BenchColors(format, 1));
    engine.Calibrate();
}

enum class Destination { Reused, InPlace, Fresh };

void RunExecute(benchmark::State& state, CTivData::Format format, int terms, Destination kind, const BenchSize& size) {
    CTivTonewrightDC engine;
    Prepare(engine, format, terms);
    CTivImage source = BenchImage(format, size);
    CTivImage destination(source);
    for ([[maybe_unused]] auto _ : state) {
        if (kind == Destination::Fresh) destination.Free();
        CTivImage& target = kind == Destination::InPlace ? source : destination;
        if (!engine.Execute(source, target)) state.SkipWithError(CTivManager::GetLastErrorString().c_str());
        benchmark::DoNotOptimize(target.GetData());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * size.width * size.height);
}

void RunCalibrate(benchmark::State& state, int terms) {
    CTivTonewrightDC engine;
    Prepare(engine, CTivData::FormatRgb, terms);
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(engine.Calibrate());
}

void RunSetGamma(benchmark::State& state) {
    CTivTonewrightDC engine;
    float gamma = 0.3f;
    for ([[maybe_unused]] auto _ : state) engine.SetGamma(gamma += 1e-4f);
}

#ifdef TONEWRIGHT_HAS_OPENCV

cv::Mat Wrap(const CTivImage& image, int type) {
    return {image.GetHeight(), image.GetWidth(), type, PeerPixels(image)};
}

cv::Mat Table() {
    cv::Mat table(1, 256, CV_8U);
    for (int i = 0; i < 256; ++i) table.at<std::uint8_t>(i) = static_cast<std::uint8_t>(255 - i);
    return table;
}

cv::Mat Weights(int rows, int columns) {
    cv::Mat weights(rows, columns, CV_32F);
    cv::randu(weights, -0.2, 0.6);
    return weights;
}

/// 3 x 4 on three channels, the reserved byte taken off and put back.
void RunOpenCvThreeChannels(benchmark::State& state, const BenchSize& size) {
    const CTivImage& image = BenchImage(CTivData::FormatRgb, size);
    const cv::Mat source = Wrap(image, CV_8UC4), weights = Weights(3, 4), table = Table();
    cv::Mat three, twisted, looked, destination;
    for ([[maybe_unused]] auto _ : state) {
        cv::cvtColor(source, three, cv::COLOR_BGRA2BGR);
        cv::transform(three, twisted, weights);
        cv::LUT(twisted, table, looked);
        cv::cvtColor(looked, destination, cv::COLOR_BGR2BGRA);
        benchmark::ClobberMemory();
    }
}

/// 4 x 5 on the four channels as they stand.
void RunOpenCvFourChannels(benchmark::State& state, const BenchSize& size) {
    const CTivImage& image = BenchImage(CTivData::FormatRgb, size);
    const cv::Mat source = Wrap(image, CV_8UC4), weights = Weights(4, 5), table = Table();
    cv::Mat twisted, destination;
    for ([[maybe_unused]] auto _ : state) {
        cv::transform(source, twisted, weights);
        cv::LUT(twisted, table, destination);
        benchmark::ClobberMemory();
    }
}

/// The 10 terms as float planes, strip by strip so that they stay in the cache, times the coefficients.
template <class Sample>
void RunOpenCvTerms(benchmark::State& state, const BenchSize& size) {
    constexpr bool isDeep = sizeof(Sample) == 2;
    constexpr double fullScale = isDeep ? 65535 : 255;
    const CTivImage& image = BenchImage(isDeep ? CTivData::FormatRgb16 : CTivData::FormatRgb, size);
    const int depth = isDeep ? CV_16U : CV_8U;
    const cv::Mat source = Wrap(image, CV_MAKETYPE(depth, 4)), weights = Weights(3, 10);
    cv::Mat destination(source.size(), source.type());
    std::vector<Sample> table(static_cast<std::size_t>(fullScale) + 1);
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<Sample>(fullScale) - static_cast<Sample>(i);
    constexpr int stripRows = 4;
    const int pixels = stripRows * size.width;
    cv::Mat terms(10, pixels, CV_32F), values, scaled, planes[4];
    terms.row(0).setTo(1);
    for ([[maybe_unused]] auto _ : state) {
        for (int y = 0; y < size.height; y += stripRows) {
            const int count = std::min(stripRows, size.height - y) * size.width;
            const cv::Mat strip = source.rowRange(y, std::min(y + stripRows, size.height)).reshape(4, 1);
            cv::split(strip, planes);
            const auto row = [&](int i) { return terms.row(i).colRange(0, count); };
            for (int i = 0; i < 3; ++i) {
                cv::Mat plane = row(1 + i);
                planes[2 - i].convertTo(plane, CV_32F, 1 / fullScale);
            }
            for (int i = 0, term = 4; i < 3; ++i) {
                for (int j = i; j < 3; ++j, ++term) {
                    cv::Mat product = row(term);
                    cv::multiply(row(1 + i), row(1 + j), product);
                }
            }
            cv::gemm(weights, terms.colRange(0, count), fullScale, cv::noArray(), 0, values);
            cv::absdiff(values, cv::Scalar(0), values);
            values.convertTo(scaled, depth);
            auto* out = destination.ptr<Sample>(y);
            const Sample *red = scaled.ptr<Sample>(0), *green = scaled.ptr<Sample>(1), *blue = scaled.ptr<Sample>(2);
            for (int i = 0; i < count; ++i, out += 4) {
                out[0] = table[blue[i]];
                out[1] = table[green[i]];
                out[2] = table[red[i]];
                out[3] = 0;
            }
        }
        benchmark::ClobberMemory();
    }
}

#endif

const bool kRegistered = [] {
    struct Row {
        const char* name;
        CTivData::Format format;
        std::size_t pixelBytes;
    };
    for (const auto& [name, format, pixelBytes] :
         {Row{"FormatRgb", CTivData::FormatRgb, 4}, Row{"FormatRgb10", CTivData::FormatRgb10, 4},
          Row{"FormatRgb16", CTivData::FormatRgb16, 8}}) {
        for (const int terms : {4, 7, 10}) {
            const std::string base = std::string("BM_Execute/") + name + "/3x" + std::to_string(terms);
            const auto add = [&, format = format, terms](const std::string& suffix, Destination kind) {
                RegisterAtBothSizes(base + suffix, [=](benchmark::State& state, const BenchSize& size) {
                    RunExecute(state, format, terms, kind, size);
                });
            };
            add("", Destination::Reused);
            if (format != CTivData::FormatRgb || terms == 7) continue;
            add("/in place", Destination::InPlace);
            add("/fresh destination", Destination::Fresh);
        }
        RegisterAtBothSizes(std::string("BM_Execute/") + name + "/memcpy",
                            [bytes = pixelBytes](benchmark::State& state, const BenchSize& size) {
                                RunMemcpy(state, bytes * static_cast<std::size_t>(size.width * size.height));
                            });
    }
#ifdef TONEWRIGHT_HAS_OPENCV
    cv::setNumThreads(1);
    RegisterAtBothSizes("BM_Execute/FormatRgb/3x4/OpenCV three channels", RunOpenCvThreeChannels);
    RegisterAtBothSizes("BM_Execute/FormatRgb/3x4/OpenCV four channels", RunOpenCvFourChannels);
    RegisterAtBothSizes("BM_Execute/FormatRgb/3x10/OpenCV gemm", RunOpenCvTerms<std::uint8_t>);
    RegisterAtBothSizes("BM_Execute/FormatRgb16/3x10/OpenCV gemm", RunOpenCvTerms<std::uint16_t>);
#endif
    for (const int terms : {4, 7, 10}) {
        benchmark::RegisterBenchmark(("BM_Calibrate/24 colors/3x" + std::to_string(terms)).c_str(),
                                     [terms](benchmark::State& state) { RunCalibrate(state, terms); })
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::RegisterBenchmark("BM_SetGamma", RunSetGamma)->Unit(benchmark::kMicrosecond);
    return true;
}();

}  // namespace
