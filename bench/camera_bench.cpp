// What becomes of a camera's frame, beside memcpy of the picture's bytes and beside the peer's plain and edge-aware
// interpolation, on one thread.

#include "bench/bench_support.h"

#ifdef TONEWRIGHT_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include "acquisition/zvn/ZvnCameraFormats.h"

namespace {

using D = CTivData;

CTivImage noise(int bits, const BenchSize& size) {
    return MakeBenchImage(D::FormatUByte, {"", (size.width * bits + 7) / 8, size.height});
}

void runUnpack(benchmark::State& state, const char* name, int bits, int deliveredBits, const BenchSize& size) {
    const ZvnCameraFormat& format = *FindZvnCameraFormat(std::string(name));
    const CTivImage sent = noise(bits, size);
    CTivImage picture = MakeBenchImage(D::FormatRgb, size);
    const NurImage& from = *sent.GetRecord();
    NurImage& to = *picture.GetRecord();
    const auto bytes = [](const NurImage& image, int rows) {
        return static_cast<std::size_t>(image.Pitch()) * static_cast<std::size_t>(rows);
    };
    const std::span source(reinterpret_cast<const std::byte*>(from.Row(0)), bytes(from, size.height));
    const std::span destination(reinterpret_cast<std::byte*>(to.Row(0)), bytes(to, size.height));
    const ZvnFrameFormat frame{size.width, size.height, GetZvnBufferFormat(format, deliveredBits)};
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(UnpackZvnFrame(format, deliveredBits, frame, source, 0, destination));
        benchmark::ClobberMemory();
    }
}

#ifdef TONEWRIGHT_HAS_OPENCV
void runPeer(benchmark::State& state, int code, const BenchSize& size) {
    cv::setNumThreads(1);
    const CTivImage sent = noise(8, size);
    const cv::Mat source(size.height, size.width, CV_8UC1, PeerPixels(sent));
    cv::Mat destination;
    for ([[maybe_unused]] auto _ : state) {
        cv::demosaicing(source, destination, code);
        benchmark::ClobberMemory();
    }
}
#endif

const bool kRegistered = [] {
    constexpr struct {
        const char* format;
        int bits;
        int deliveredBits;
    } rows[] = {{"BayerRG8", 8, 8},         {"BayerRG10p", 10, 8}, {"BayerRG12p", 12, 8},
                {"BayerRG12Packed", 12, 8}, {"BayerRG12", 16, 10}, {"RGB8", 24, 8}};
    for (const auto& row : rows) {
        const std::string name = std::string("BM_CameraFrame/") + row.format + "to" + std::to_string(row.deliveredBits);
        RegisterAtBothSizes(name, [row](benchmark::State& state, const BenchSize& size) {
            runUnpack(state, row.format, row.bits, row.deliveredBits, size);
        });
    }
    RegisterAtBothSizes("BM_CameraFrame/memcpy", [](benchmark::State& state, const BenchSize& size) {
        RunMemcpy(state, static_cast<std::size_t>(CTivImage::GetImageBytes(size.width, size.height, D::FormatRgb)));
    });
#ifdef TONEWRIGHT_HAS_OPENCV
    RegisterAtBothSizes("BM_CameraFrame/BayerRG8_OpenCV_plain", [](benchmark::State& state, const BenchSize& size) {
        runPeer(state, cv::COLOR_BayerBG2BGRA, size);
    });
    RegisterAtBothSizes("BM_CameraFrame/BayerRG8_OpenCV_edges", [](benchmark::State& state, const BenchSize& size) {
        runPeer(state, cv::COLOR_BayerBG2BGR_EA, size);
    });
#endif
    return true;
}();

}  // namespace
