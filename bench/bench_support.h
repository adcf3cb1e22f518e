#pragma once

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "foundation/CTivImage.h"
#include "foundation/nur_image.h"

// What the benchmarks share: the two sizes, seeded images, and memcpy as the yardstick.

struct BenchSize {
    const char* name;
    int width;
    int height;
};
inline constexpr BenchSize kBenchSizes[] = {{"1080p", 1920, 1080}, {"4096x3000", 4096, 3000}};

/// The pixels for a matrix of the peer, which takes what it only reads as mutable, too.
inline void* PeerPixels(const CTivImage& image) { return const_cast<void*>(image.GetData()); }

/// An image of noise around slow gradients, so that neighbours are alike as in a photograph and no two runs differ.
/// Floats run from 0 to 1. Its memory has been touched.
inline CTivImage MakeBenchImage(CTivData::Format format, const BenchSize& size) {
    CTivImage image(size.width, size.height, format, nullptr, true);
    std::mt19937 random(20240611);
    NurImage& record = *image.GetRecord();
    const std::int64_t pitch = record.Pitch();
    for (int y = 0; y < size.height; ++y) {
        auto* row = record.Row(y);
        if (format == CTivData::FormatFloat) {
            for (int x = 0; x < size.width; ++x) {
                reinterpret_cast<float*>(row)[x] = static_cast<float>(random() >> 8) / 16777216.0f;
            }
            continue;
        }
        for (std::int64_t i = 0; i < pitch; ++i) {
            row[i] = static_cast<std::uint8_t>(y / 8 + (i & 3) * 50 + i / 32 + random() % 32);
        }
    }
    return image;
}

/// Copies as many bytes as `bytes`, in `bytes` long blocks that were touched before.
inline void RunMemcpy(benchmark::State& state, std::size_t bytes) {
    const std::vector<char> source(bytes, 'a');
    std::vector<char> destination(bytes, 'b');
    for ([[maybe_unused]] auto _ : state) {
        std::memcpy(destination.data(), source.data(), bytes);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

/// Registers `run(state, size)` as "name/<size's name>".
template <class Run>
void RegisterAt(const std::string& name, const BenchSize& size, Run run) {
    const auto bound = [run, size](benchmark::State& state) { run(state, size); };
    benchmark::RegisterBenchmark((name + "/" + size.name).c_str(), bound)->Unit(benchmark::kMillisecond);
}

/// The same as "name/1080p" and "name/4096x3000".
template <class Run>
void RegisterAtBothSizes(const std::string& name, Run run) {
    for (const BenchSize& size : kBenchSizes) RegisterAt(name, size, run);
}
