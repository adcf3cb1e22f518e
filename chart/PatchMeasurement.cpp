#include "chart/PatchMeasurement.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <span>

namespace tonewright {

namespace {

// When the levels of a channel are two colors. Noise, however strong, splits at its mean into halves that lie 2.7 of
// their deviations apart, an even slope at 3.5.
constexpr double kLeastSeparation = 4.5;  // of the two levels, in deviations within them
constexpr double kLeastGap = 0.02;        // between the two levels, of full scale
constexpr double kLeastRise = 0.08;       // between the two levels, of the lower one
constexpr double kLeastShare = 0.05;      // of the pixels on the rarer level

constexpr int kLevelBits = 12;  // deeper words are counted by their upper bits

struct Moments {
    double count = 0, sum = 0, squares = 0;
    double Mean() const { return sum / count; }
    double Variance() const { return std::max(0.0, squares / count - Mean() * Mean()); }
};

/// Splits the levels where the two sides differ most, by the method of Otsu, and looks at how far they lie apart.
bool hasTwoLevels(std::span<const std::uint32_t> counts) {
    Moments all;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double count = counts[i], level = static_cast<double>(i);
        all.count += count;
        all.sum += count * level;
        all.squares += count * level * level;
    }
    Moments below, low, high;
    double greatest = 0;
    for (std::size_t i = 0; i + 1 < counts.size(); ++i) {
        if (counts[i] == 0) continue;
        const double count = counts[i], level = static_cast<double>(i);
        below = {below.count + count, below.sum + count * level, below.squares + count * level * level};
        const Moments above = {all.count - below.count, all.sum - below.sum, all.squares - below.squares};
        if (above.count <= 0) break;
        const double gap = above.Mean() - below.Mean();
        const double between = below.count * above.count * gap * gap;
        if (between <= greatest) continue;
        greatest = between;
        low = below;
        high = above;
    }
    if (greatest <= 0) return false;
    const double gap = high.Mean() - low.Mean();
    const double rounding = 1.0 / 12.0;  // the variance that whole levels add
    const double within = std::sqrt((low.Variance() + high.Variance()) / 2 + rounding);
    return std::min(low.count, high.count) >= kLeastShare * all.count &&
           gap >= kLeastGap * static_cast<double>(counts.size()) && gap >= kLeastRise * low.Mean() &&
           gap >= kLeastSeparation * within;
}

}  // namespace

int GetChannelFullScale(CTivData::Format format) {
    switch (format) {
        case CTivData::FormatRgb:
            return 255;
        case CTivData::FormatRgb10:
            return 1023;
        case CTivData::FormatRgb16:
            return 65535;
        default:
            return 0;
    }
}

PatchAccumulator::PatchAccumulator(CTivData::Format format) : format_(format) {
    const int levels = std::min(GetChannelFullScale(format) + 1, 1 << kLevelBits);
    for (auto& counts : levelCounts_) counts.resize(static_cast<std::size_t>(levels));
}

template <class Word, int bits>
void PatchAccumulator::AddWords(const void* pixels, std::size_t count) {
    constexpr std::uint64_t fullScale = (std::uint64_t{1} << bits) - 1;
    constexpr int levelShift = std::max(0, bits - kLevelBits);
    const auto* bytes = static_cast<const std::uint8_t*>(pixels);
    for (std::size_t i = 0; i < count; ++i) {
        Word word;
        std::memcpy(&word, bytes + i * sizeof word, sizeof word);
        const std::uint64_t r = word >> 2 * bits & fullScale, g = word >> bits & fullScale, b = word & fullScale;
        sums_[0] += r;
        sums_[1] += g;
        sums_[2] += b;
        const std::uint64_t products[6] = {r * r, g * g, b * b, r * g, r * b, g * b};
        for (std::size_t k = 0; k < 6; ++k) products_[k] += products[k];
        clipped_ += r == fullScale || g == fullScale || b == fullScale;
        ++levelCounts_[0][r >> levelShift];
        ++levelCounts_[1][g >> levelShift];
        ++levelCounts_[2][b >> levelShift];
    }
    pixels_ += static_cast<std::int64_t>(count);
}

void PatchAccumulator::Add(const void* pixels, std::size_t count) {
    if (format_ == CTivData::FormatRgb) AddWords<std::uint32_t, 8>(pixels, count);
    if (format_ == CTivData::FormatRgb10) AddWords<std::uint32_t, 10>(pixels, count);
    if (format_ == CTivData::FormatRgb16) AddWords<std::uint64_t, 16>(pixels, count);
}

PatchMeasurement PatchAccumulator::Measure() const {
    PatchMeasurement result;
    if (pixels_ == 0) return result;
    const auto count = static_cast<double>(pixels_);
    for (std::size_t i = 0; i < 3; ++i) result.mean[i] = static_cast<double>(sums_[i]) / count;
    const auto covariance = [&](std::size_t product, std::size_t i, std::size_t k) {
        return static_cast<double>(products_[product]) / count - result.mean[i] * result.mean[k];
    };
    for (std::size_t i = 0; i < 3; ++i) result.deviation[i] = std::sqrt(std::max(0.0, covariance(i, i, i)));
    result.covariance = {covariance(3, 0, 1), covariance(4, 0, 2), covariance(5, 1, 2)};
    result.clipped = static_cast<double>(clipped_) / count;
    result.isMixed = std::any_of(levelCounts_.begin(), levelCounts_.end(), hasTwoLevels);
    result.pixels = pixels_;
    return result;
}

PatchMeasurement MeasureArea(const CTivImage& image, const CTivRect& area) {
    PatchAccumulator patch(image.GetFormat());
    const std::int64_t left = std::max(area.x, 0), top = std::max(area.y, 0);
    const std::int64_t right = std::min(std::int64_t{area.x} + area.width, std::int64_t{image.GetWidth()});
    const std::int64_t bottom = std::min(std::int64_t{area.y} + area.height, std::int64_t{image.GetHeight()});
    if (GetChannelFullScale(image.GetFormat()) == 0 || left >= right) return {};
    const auto* pixels = static_cast<const std::uint8_t*>(image.GetData());
    const std::int64_t rowBytes = CTivImage::GetRowBytes(image.GetWidth(), image.GetFormat());
    const std::int64_t pixelBytes = CTivData::GetFormatSize(image.GetFormat());
    for (std::int64_t y = top; y < bottom; ++y) {
        patch.Add(pixels + y * rowBytes + left * pixelBytes, static_cast<std::size_t>(right - left));
    }
    return patch.Measure();
}

}  // namespace tonewright
