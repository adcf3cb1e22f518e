#include <algorithm>
#include <filesystem>
#include <fstream>

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

void PutU32(std::string& bytes, std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

/// A bitmap of 8 bits in run lengths as a photograph has them: a pair of bytes for one to three pixels.
void WriteRunLengths(const std::string& path, const BenchSize& size) {
    constexpr std::uint32_t pixelsAt = 54 + 4 * 256;
    std::string bytes(pixelsAt, '\0');
    bytes.replace(0, 2, "BM");
    PutU32(bytes, 10, pixelsAt);
    PutU32(bytes, 14, 40);
    PutU32(bytes, 18, static_cast<std::uint32_t>(size.width));
    PutU32(bytes, 22, static_cast<std::uint32_t>(size.height));
    PutU32(bytes, 26, 8 << 16 | 1);  // bits, planes
    PutU32(bytes, 30, 1);            // run lengths
    for (std::uint32_t i = 0; i < 256; ++i) PutU32(bytes, 54 + 4 * i, i << 16 | (255 - i) << 8 | i / 2);
    std::mt19937 random(7);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width;) {
            const int count = std::min(static_cast<int>(random() % 3) + 1, size.width - x);
            bytes += static_cast<char>(count);
            bytes += static_cast<char>(random());
            x += count;
        }
        bytes.append(2, '\0');
    }
    bytes += std::string("\0\1", 2);
    std::ofstream(path, std::ios::binary) << bytes;
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

void RegisterRunLengths() {
    RegisterAtBothSizes("BM_LoadBmpRunLength", [](benchmark::State& state, const BenchSize& size) {
        const std::string path = FileOf("_runs.bmp", size);
        WriteRunLengths(path, size);
        RunLoad(state, size, path);
    });
#ifdef TONEWRIGHT_HAS_OPENCV
    RegisterAtBothSizes("BM_LoadBmpRunLength/OpenCV", [](benchmark::State& state, const BenchSize& size) {
        const std::string path = FileOf("_runs.bmp", size);
        WriteRunLengths(path, size);
        for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(cv::imread(path).data);
        CountPixels(state, size);
        std::filesystem::remove(path);
    });
#endif
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
    RegisterRunLengths();
#ifdef TONEWRIGHT_HAS_OPENCV
    RegisterPeer("Bmp", ".bmp");
    RegisterPeer("Tiff", ".tif");
    RegisterPngs();
#endif
    return true;
}();

}  // namespace
