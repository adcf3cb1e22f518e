#include <filesystem>

#include "bench/bench_support.h"
#include "imagefile/CTivImageFileFormat.h"

#ifdef TONEWRIGHT_HAS_OPENCV
#include <opencv2/imgcodecs.hpp>
#endif

// Loading and saving color images beside OpenCV, on a file system in memory so that no disk is measured. PNG is loaded
// only; its file is written by OpenCV. TIFF is uncompressed on both sides.

namespace {

std::string FileOf(const std::string& name, const BenchSize& size) {
    const bool hasSharedMemory = std::filesystem::is_directory("/dev/shm");
    const auto folder = hasSharedMemory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path();
    return (folder / ("tonewright_bench_" + std::to_string(size.width) + name)).string();
}

std::int64_t PixelsOf(const BenchSize& size) { return std::int64_t{size.width} * size.height; }

/// Pixels a second, whatever a pixel takes in the file.
void CountPixels(benchmark::State& state, const BenchSize& size) {
    state.SetItemsProcessed(PixelsOf(size) * state.iterations());
}

void RunLoad(benchmark::State& state, const BenchSize& size, const std::string& path) {
    for ([[maybe_unused]] auto _ : state) {
        CTivImage image;
        if (!image.Load(path, true)) state.SkipWithError(CTivManager::GetLastErrorString().c_str());
        benchmark::DoNotOptimize(image.GetData());
    }
    CountPixels(state, size);
    std::filesystem::remove(path);
}

void RunSave(benchmark::State& state, const BenchSize& size, const std::string& path, int fileFormat) {
    const CTivImage image = MakeBenchImage(CTivData::FormatRgb, size);
    for ([[maybe_unused]] auto _ : state) {
        if (!image.Save(path, fileFormat)) state.SkipWithError(CTivManager::GetLastErrorString().c_str());
    }
    CountPixels(state, size);
    std::filesystem::remove(path);
}

struct Kind {
    const char* name;
    const char* extension;
    int fileFormat;
};
constexpr Kind kKinds[] = {{"Bmp", ".bmp", ImageFileBmp}, {"Tiff", ".tif", ImageFileTiff}, {"Native", ".zvk", 0}};

void RegisterOurs(const Kind& kind) {
    RegisterAtBothSizes(std::string("BM_Load") + kind.name, [kind](benchmark::State& state, const BenchSize& size) {
        const std::string path = FileOf(kind.extension, size);
        MakeBenchImage(CTivData::FormatRgb, size).Save(path, kind.fileFormat);
        RunLoad(state, size, path);
    });
    RegisterAtBothSizes(std::string("BM_Save") + kind.name, [kind](benchmark::State& state, const BenchSize& size) {
        RunSave(state, size, FileOf(kind.extension, size), kind.fileFormat);
    });
}

#ifdef TONEWRIGHT_HAS_OPENCV
const std::vector<int> kPlainTiff{cv::IMWRITE_TIFF_COMPRESSION, 1};

cv::Mat MakePeerImage(const BenchSize& size) {
    const CTivImage image = MakeBenchImage(CTivData::FormatRgb, size);
    cv::Mat colors(size.height, size.width, CV_8UC3);
    const auto* pixels = static_cast<const std::uint8_t*>(image.GetData());
    for (std::int64_t i = 0; i < PixelsOf(size); ++i)
        std::copy(pixels + 4 * i, pixels + 4 * i + 3, colors.data + 3 * i);
    return colors;
}

void RegisterPeer(const std::string& name, const std::string& extension) {
    RegisterAtBothSizes("BM_Load" + name + "/OpenCV", [extension](benchmark::State& state, const BenchSize& size) {
        const std::string path = FileOf(extension, size);
        cv::imwrite(path, MakePeerImage(size), kPlainTiff);
        for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(cv::imread(path).data);
        CountPixels(state, size);
        std::filesystem::remove(path);
    });
    RegisterAtBothSizes("BM_Save" + name + "/OpenCV", [extension](benchmark::State& state, const BenchSize& size) {
        const std::string path = FileOf(extension, size);
        const cv::Mat image = MakePeerImage(size);
        for ([[maybe_unused]] auto _ : state) cv::imwrite(path, image, kPlainTiff);
        CountPixels(state, size);
        std::filesystem::remove(path);
    });
}

void RegisterPngs() {
    RegisterAtBothSizes("BM_LoadPng", [](benchmark::State& state, const BenchSize& size) {
        const std::string path = FileOf(".png", size);
        cv::imwrite(path, MakePeerImage(size));
        RunLoad(state, size, path);
    });
    RegisterAtBothSizes("BM_LoadPng/OpenCV", [](benchmark::State& state, const BenchSize& size) {
        const std::string path = FileOf(".png", size);
        cv::imwrite(path, MakePeerImage(size));
        for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(cv::imread(path).data);
        CountPixels(state, size);
        std::filesystem::remove(path);
    });
}
#endif

[[maybe_unused]] const bool kRegistered = [] {
    for (const Kind& kind : kKinds) RegisterOurs(kind);
#ifdef TONEWRIGHT_HAS_OPENCV
    RegisterPeer("Bmp", ".bmp");
    RegisterPeer("Tiff", ".tif");
    RegisterPngs();
#endif
    return true;
}();

}  // namespace
