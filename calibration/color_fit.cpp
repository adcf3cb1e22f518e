#include "calibration/color_fit.h"

#include <algorithm>
#include <cstring>

#include "calibration/svd.h"

namespace tonewright {

namespace {

/// Reads an integer color by shifting its three channels out of one word.
template <class Word>
NormalisedColor FromWord(Word word, int redShift, int greenShift, int blueShift, Word fullScale) {
    const auto channel = [&](int shift) {
        return static_cast<float>((word >> shift) & fullScale) / static_cast<float>(fullScale);
    };
    return {channel(redShift), channel(greenShift), channel(blueShift), 0.0f};
}

NormalisedColor FromElement(const std::byte* element, CTivData::Format format) {
    const auto load = [element](auto value) {
        std::memcpy(&value, element, sizeof value);
        return value;
    };
    switch (format) {
        case CTivData::FormatRgb:
            return FromWord<std::uint32_t>(load(std::uint32_t{}), 16, 8, 0, 255);
        case CTivData::FormatRgb10:
            return FromWord<std::uint32_t>(load(std::uint32_t{}), 20, 10, 0, 1023);
        case CTivData::FormatRgb16:
            return FromWord<std::uint64_t>(load(std::uint64_t{}), 32, 16, 0, 65535);
        case CTivData::FormatColorFloat:
            return load(NormalisedColor{});
        default:
            return {};
    }
}

}  // namespace

std::vector<NormalisedColor> NormaliseColors(const CTivVector& colors) {
    const auto* data = static_cast<const std::byte*>(colors.GetDataPointer());
    if (!data) return {};
    const CTivData::Format format = colors.GetFormat();
    const auto step = static_cast<std::size_t>(CTivData::GetFormatSize(format));
    std::vector<NormalisedColor> normalised(static_cast<std::size_t>(std::max(colors.GetSize(), 0)));
    for (std::size_t i = 0; i < normalised.size(); ++i) normalised[i] = FromElement(data + i * step, format);
    return normalised;
}

std::array<double, 10> TermVector(const NormalisedColor& color, std::int32_t terms) {
    const auto [r, g, b, unused] = color;
    const auto widened = [](auto... values) { return std::array<double, 10>{static_cast<double>(values)...}; };
    switch (terms) {
        case 4:
            return widened(1.0f, r, g, b);
        case 7:
            return widened(1.0f, r, g, b, r * r, g * g, b * b);
        case 10:
            return widened(1.0f, r, g, b, r * r, r * g, r * b, g * g, g * b, b * b);
        default:
            return {};
    }
}

std::optional<DoubleMatrix> FitColors(std::span<const NormalisedColor> raw, std::span<const NormalisedColor> targets,
                                      std::int32_t terms) {
    if (!IsTermCount(terms)) return std::nullopt;
    DoubleMatrix design(static_cast<std::int32_t>(raw.size()), terms);
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const std::array<double, 10> row = TermVector(raw[i], terms);
        std::copy_n(row.begin(), terms, design[static_cast<std::int32_t>(i)]);
    }
    const Svd decomposition(design);
    DoubleMatrix coefficients(3, terms);
    std::vector<double> channel(targets.size());
    for (std::int32_t c = 0; c < 3; ++c) {
        std::transform(targets.begin(), targets.end(), channel.begin(),
                       [c](const NormalisedColor& target) { return target[static_cast<std::size_t>(c)]; });
        decomposition.Solve(channel, {coefficients[c], static_cast<std::size_t>(terms)});
    }
    return coefficients;
}

}  // namespace tonewright
