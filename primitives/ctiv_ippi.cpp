#include "primitives/ctiv_ippi.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <type_traits>
#include <vector>

#include "primitives/acceleration.h"
#include "primitives/convert_rows.h"
#include "primitives/statistics_rows.h"
#include "primitives/wide.h"

using namespace tonewright;

namespace {

constexpr std::int64_t kRowAlignment = 64;
constexpr std::int64_t kLeastSharedPixels = 1 << 19;  // a thread's part, so that waking it pays

std::atomic<int> primitiveThreads{1};

bool absentAtThisLevel() { return ctiv_GetAccelerationLevel() == 0; }

template <class T>
T* rowOf(T* image, std::int64_t pitch, int y) {
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(image) + pitch * y);
}

template <class T, class Work>
void forEachRow(T* image, std::int64_t pitch, int height, Work work) {
    for (int y = 0; y < height; ++y) work(rowOf(image, pitch, y), y);
}

void setEvenLevels(std::int32_t* levels, int levelCount, std::int32_t lower, std::int32_t upper) {
    const std::int64_t span = std::int64_t{upper} - lower;
    for (int k = 0; k < levelCount; ++k) {
        levels[k] = static_cast<std::int32_t>(lower + span * k / std::max(levelCount - 1, 1));
    }
}

// Counts one value a bin over the whole range of T, then gathers the values of each bin by its edges.
template <class T>
void gatherBins(const std::vector<std::uint32_t>& perValue, std::int32_t* counts, const std::int32_t* levels,
                int levelCount) {
    constexpr std::int32_t kLeast = std::numeric_limits<T>::min();
    const auto clipped = [&](std::int32_t edge) {
        return std::clamp<std::int64_t>(std::int64_t{edge} - kLeast, 0, static_cast<std::int64_t>(perValue.size()));
    };
    for (int k = 0; k + 1 < levelCount; ++k) {
        std::uint32_t count = 0;
        for (std::int64_t v = clipped(levels[k]); v < clipped(levels[k + 1]); ++v) {
            count += perValue[static_cast<std::size_t>(v)];
        }
        counts[k] = static_cast<std::int32_t>(count);
    }
}

// Counts in parts side by side where the image is large.
void countBytes(const std::uint8_t* source, std::int64_t pitch, int width, int height, std::uint32_t (&bins)[256]) {
    const std::int64_t pixels = std::int64_t{width} * height;
    const int parts = static_cast<int>(std::clamp<std::int64_t>(pixels / kLeastSharedPixels, 1, primitiveThreads));
    std::vector<ByteHistogram> histograms;
    histograms.reserve(static_cast<std::size_t>(parts));
    for (int part = 0; part < parts; ++part) histograms.emplace_back(static_cast<std::uint64_t>(pixels / parts));
#pragma omp parallel for num_threads(parts) schedule(static, 1) if (parts > 1)
    for (int part = 0; part < parts; ++part) {
        const auto rowAt = [&](int i) { return static_cast<int>(std::int64_t{height} * i / parts); };
        for (int y = rowAt(part); y < rowAt(part + 1); ++y) {
            histograms[static_cast<std::size_t>(part)].Add(rowOf(source, pitch, y), static_cast<std::size_t>(width));
        }
    }
    std::fill(std::begin(bins), std::end(bins), 0);
    for (const ByteHistogram& histogram : histograms) histogram.AddTo(bins);
}

template <class T>
void histogramEven(const T* source, std::int64_t pitch, int width, int height, int step, std::int32_t* counts,
                   std::int32_t* levels, int levelCount, std::int32_t lower, std::int32_t upper) {
    constexpr std::int32_t kLeast = std::numeric_limits<T>::min();
    std::vector<std::uint32_t> perValue(std::size_t{1} << (8 * sizeof(T)));
    forEachRow(source, pitch, height, [&](const T* row, int) {
        for (int x = 0; x < width; ++x) ++perValue[static_cast<std::size_t>(row[x * step] - kLeast)];
    });
    setEvenLevels(levels, levelCount, lower, upper);
    gatherBins<T>(perValue, counts, levels, levelCount);
}

Moments byteMoments(PixelKind kind, const void* source, std::int64_t pitch, int width, int height) {
    const SumsRow add = GetSumsRow(kind, RunsWide());
    ChannelSums sums;
    forEachRow(static_cast<const std::uint8_t*>(source), pitch, height,
               [&](const std::uint8_t* row, int) { add(row, static_cast<std::size_t>(width), &sums); });
    return MomentsOf(sums, kind, static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height));
}

void deliver(const Moments& moments, int width, int height, double* mean, double* deviation) {
    const double count = static_cast<double>(width) * height;
    *mean = moments.Mean(count);
    *deviation = moments.Deviation(count);
}

// Calls work(comparison), so that no pixel asks which one it is.
template <class Work>
void withComparison(PrimitiveCompare compare, Work work) {
    switch (compare) {
        case PrimitiveCompare::Less:
            return work(std::less<>());
        case PrimitiveCompare::LessEqual:
            return work(std::less_equal<>());
        case PrimitiveCompare::Equal:
            return work(std::equal_to<>());
        case PrimitiveCompare::GreaterEqual:
            return work(std::greater_equal<>());
        case PrimitiveCompare::Greater:
            return work(std::greater<>());
    }
}

void* allocateRows(std::int64_t rowBytes, int height, std::int64_t* pitch) {
    *pitch = (rowBytes + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    if (rowBytes <= 0 || height <= 0) return nullptr;
    return std::aligned_alloc(kRowAlignment, static_cast<std::size_t>(*pitch * height));
}

}  // namespace

int ctiv_ippSetNumThreads(int count) {
    primitiveThreads = std::max(count, 1);
    return 0;
}

int ctiv_ippiHistogramEven_8u_C1R(const std::uint8_t* source, std::int64_t pitch, int width, int height,
                                  std::int32_t* counts, std::int32_t* levels, int levelCount, std::int32_t lower,
                                  std::int32_t upper) {
    std::uint32_t bins[256];
    countBytes(source, pitch, width, height, bins);
    setEvenLevels(levels, levelCount, lower, upper);
    gatherBins<std::uint8_t>({std::begin(bins), std::end(bins)}, counts, levels, levelCount);
    return 0;
}

int ctiv_ippiHistogramEven_8u_C4R(const std::uint8_t* source, std::int64_t pitch, int width, int height,
                                  std::int32_t* counts[3], std::int32_t* levels[3], const int levelCount[3],
                                  const std::int32_t lower[3], const std::int32_t upper[3]) {
    for (int c = 0; c < 3; ++c) {
        histogramEven(source + c, pitch, width, height, 4, counts[c], levels[c], levelCount[c], lower[c], upper[c]);
    }
    return 0;
}

int ctiv_ippiHistogramEven_16u_C1R(const std::uint16_t* source, std::int64_t pitch, int width, int height,
                                   std::int32_t* counts, std::int32_t* levels, int levelCount, std::int32_t lower,
                                   std::int32_t upper) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    histogramEven(source, pitch, width, height, 1, counts, levels, levelCount, lower, upper);
    return 0;
}

int ctiv_ippiHistogramEven_16s_C1R(const std::int16_t* source, std::int64_t pitch, int width, int height,
                                   std::int32_t* counts, std::int32_t* levels, int levelCount, std::int32_t lower,
                                   std::int32_t upper) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    histogramEven(source, pitch, width, height, 1, counts, levels, levelCount, lower, upper);
    return 0;
}

int ctiv_ippiMean_StdDev_8u_C1R(const std::uint8_t* source, std::int64_t pitch, int width, int height, double* mean,
                                double* deviation) {
    deliver(byteMoments(PixelKind::Byte, source, pitch, width, height), width, height, mean, deviation);
    return 0;
}

int ctiv_ippiMean_StdDev_8s_C1R(const std::int8_t* source, std::int64_t pitch, int width, int height, double* mean,
                                double* deviation) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    deliver(byteMoments(PixelKind::SignedByte, source, pitch, width, height), width, height, mean, deviation);
    return 0;
}

int ctiv_ippiMean_StdDev_32f_C1R(const float* source, std::int64_t pitch, int width, int height, double* mean,
                                 double* deviation) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    Moments moments;
    forEachRow(source, pitch, height, [&](const float* row, int) {
        for (int x = 0; x < width; ++x) {
            const double value = row[x];
            moments.sum += value;
            moments.squares += value * value;
        }
    });
    deliver(moments, width, height, mean, deviation);
    return 0;
}

int ctiv_ippiMinMax_8u_C1R(const std::uint8_t* source, std::int64_t pitch, int width, int height, std::uint8_t* least,
                           std::uint8_t* most) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    const Moments moments = byteMoments(PixelKind::Byte, source, pitch, width, height);
    *least = static_cast<std::uint8_t>(moments.least);
    *most = static_cast<std::uint8_t>(moments.most);
    return 0;
}

int ctiv_ippiMinMax_32f_C1R(const float* source, std::int64_t pitch, int width, int height, float* least, float* most) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    const auto add = RunsWide() ? FloatRangeRowWide : FloatRangeRowPlain;
    *least = *most = source[0];
    forEachRow(source, pitch, height,
               [&](const float* row, int) { add(row, static_cast<std::size_t>(width), *least, *most); });
    return 0;
}

int ctiv_ippiRShiftC_16u_C1R(const std::uint16_t* source, std::int64_t sourcePitch, std::uint32_t shift,
                             std::uint16_t* destination, std::int64_t destinationPitch, int width, int height) {
    const auto work = RunsWide() ? ShiftRightRowWide : ShiftRightRowPlain;
    forEachRow(source, sourcePitch, height, [&](const std::uint16_t* row, int y) {
        work(row, rowOf(destination, destinationPitch, y), static_cast<std::size_t>(width), shift);
    });
    return 0;
}

int ctiv_ippiScale_16u8u_C1R(const std::uint16_t* source, std::int64_t sourcePitch, std::uint8_t* destination,
                             std::int64_t destinationPitch, int width, int height, std::uint16_t lower,
                             std::uint16_t upper) {
    const auto work = RunsWide() ? ScaleWordRowWide : ScaleWordRowPlain;
    forEachRow(source, sourcePitch, height, [&](const std::uint16_t* row, int y) {
        work(row, rowOf(destination, destinationPitch, y), static_cast<std::size_t>(width), lower, upper);
    });
    return 0;
}

std::uint8_t* ctiv_ippiMalloc_8u_C1(int width, int height, std::int64_t* pitch) {
    return static_cast<std::uint8_t*>(allocateRows(width, height, pitch));
}

std::uint16_t* ctiv_ippiMalloc_16u_C1(int width, int height, std::int64_t* pitch) {
    return static_cast<std::uint16_t*>(allocateRows(std::int64_t{width} * 2, height, pitch));
}

void ctiv_ippiFree(void* memory) { std::free(memory); }

int ctiv_ippiCompareC_8u_C3R(const std::uint8_t* source, std::int64_t sourcePitch, const std::uint8_t value[3],
                             std::uint8_t* mask, std::int64_t maskPitch, int width, int height,
                             PrimitiveCompare compare) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    withComparison(compare, [&](auto holds) {
        forEachRow(source, sourcePitch, height, [&](const std::uint8_t* row, int y) {
            std::uint8_t* out = rowOf(mask, maskPitch, y);
            for (int x = 0; x < width; ++x) {
                const std::uint8_t* pixel = row + 3 * x;
                const bool all = holds(pixel[0], value[0]) && holds(pixel[1], value[1]) && holds(pixel[2], value[2]);
                out[x] = all ? 255 : 0;
            }
        });
    });
    return 0;
}

int ctiv_ippiAnd_8u_C1IR(const std::uint8_t* source, std::int64_t sourcePitch, std::uint8_t* mask,
                         std::int64_t maskPitch, int width, int height) {
    forEachRow(source, sourcePitch, height, [&](const std::uint8_t* row, int y) {
        std::uint8_t* out = rowOf(mask, maskPitch, y);
        for (int x = 0; x < width; ++x) out[x] &= row[x];
    });
    return 0;
}

int ctiv_ippiNot_8u_C1IR(std::uint8_t* mask, std::int64_t maskPitch, int width, int height) {
    forEachRow(mask, maskPitch, height, [&](std::uint8_t* row, int) {
        for (int x = 0; x < width; ++x) row[x] = static_cast<std::uint8_t>(~row[x]);
    });
    return 0;
}

int ctiv_ippiSet_8u_C1MR(std::uint8_t value, std::uint8_t* destination, std::int64_t destinationPitch, int width,
                         int height, const std::uint8_t* mask, std::int64_t maskPitch) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    forEachRow(mask, maskPitch, height, [&](const std::uint8_t* row, int y) {
        std::uint8_t* out = rowOf(destination, destinationPitch, y);
        for (int x = 0; x < width; ++x) out[x] = row[x] ? value : out[x];
    });
    return 0;
}

int ctiv_ippiSet_8u_C3MR(const std::uint8_t value[3], std::uint8_t* destination, std::int64_t destinationPitch,
                         int width, int height, const std::uint8_t* mask, std::int64_t maskPitch) {
    if (absentAtThisLevel()) return kPrimitiveAbsent;
    forEachRow(mask, maskPitch, height, [&](const std::uint8_t* row, int y) {
        std::uint8_t* out = rowOf(destination, destinationPitch, y);
        for (int x = 0; x < width; ++x) {
            if (row[x]) std::copy(value, value + 3, out + 3 * x);
        }
    });
    return 0;
}

int ctiv_ippiDup_8u_C1C4R(const std::uint8_t* source, std::int64_t sourcePitch, std::uint8_t* destination,
                          std::int64_t destinationPitch, int width, int height) {
    forEachRow(source, sourcePitch, height, [&](const std::uint8_t* row, int y) {
        std::uint8_t* out = rowOf(destination, destinationPitch, y);
        for (int x = 0; x < width; ++x) std::fill(out + 4 * x, out + 4 * x + 4, row[x]);
    });
    return 0;
}
