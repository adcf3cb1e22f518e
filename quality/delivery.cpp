#include "quality/delivery.h"

#include <algorithm>
#include <cmath>

#include "calibration/execute_transform.h"
#include "chart/PatchMeasurement.h"

namespace tonewright {

LinearRgb ToFractions(const CTivData& color) {
    const int fullScale = GetChannelFullScale(color.GetFormat());
    if (fullScale == 0) return {};
    const int bits = fullScale == 255 ? 8 : fullScale == 1023 ? 10 : 16;
    const auto channel = [&](int shift) {
        return static_cast<double>(color.GetPayload() >> shift & static_cast<std::uint64_t>(fullScale)) / fullScale;
    };
    return {channel(2 * bits), channel(bits), channel(0)};
}

namespace {

template <class Word, int bits>
LinearRgb meanOf(const CTivImage& row) {
    constexpr std::uint64_t fullScale = (std::uint64_t{1} << bits) - 1;
    const auto* words = static_cast<const Word*>(row.GetData());
    const auto count = static_cast<std::size_t>(row.GetWidth());
    std::array<std::uint64_t, 3> sums{};
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < 3; ++k) sums[k] += words[i] >> (2 - k) * bits & fullScale;
    }
    LinearRgb mean{};
    for (std::size_t k = 0; k < 3; ++k) {
        mean[k] = static_cast<double>(sums[k]) / static_cast<double>(count) / static_cast<double>(fullScale);
    }
    return mean;
}

/// The mean of an image of one row, of full scale.
LinearRgb meanOf(const CTivImage& row) {
    if (row.GetFormat() == CTivData::FormatRgb) return meanOf<std::uint32_t, 8>(row);
    if (row.GetFormat() == CTivData::FormatRgb10) return meanOf<std::uint32_t, 10>(row);
    return row.GetFormat() == CTivData::FormatRgb16 ? meanOf<std::uint64_t, 16>(row) : LinearRgb();
}

}  // namespace

std::vector<LinearRgb> Deliver(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivVector& raw) {
    const int count = raw.GetSize();
    if (count < 1 || raw.GetFormat() != settings.GetCalibratedFormat()) return {};
    CTivImage source(count, 1, raw.GetFormat(), const_cast<void*>(raw.GetDataPointer()), false);
    CTivImage delivered;
    if (!ExecuteTransform(settings, transform, source, delivered)) return {};
    const double exponent = 1.0 / static_cast<double>(settings.GetGamma());
    std::vector<LinearRgb> colors;
    for (int i = 0; i < count; ++i) {
        LinearRgb color = ToFractions(delivered.GetData(i, 0));
        for (double& channel : color) channel = std::pow(channel, exponent);
        colors.push_back(color);
    }
    return colors;
}

std::vector<LinearRgb> DeliverPicture(const CTivTonewrightDC& settings, const CTivVector& transform,
                                      const CTivImage& image, std::span<const SamplingArea> areas) {
    if (image.GetFormat() != settings.GetCalibratedFormat()) return {};
    const double exponent = 1.0 / static_cast<double>(settings.GetGamma());
    std::vector<std::byte> pixels;
    std::vector<LinearRgb> colors;
    for (const SamplingArea& area : areas) {
        const int count = TakePixels(image, area, pixels);
        if (count < 1) return {};
        const CTivImage source(count, 1, image.GetFormat(), pixels.data(), false);
        CTivImage corrected;
        if (!ExecuteTransform(settings, transform, source, corrected)) return {};
        LinearRgb color = meanOf(corrected);
        for (double& channel : color) channel = std::pow(channel, exponent);
        colors.push_back(color);
    }
    return colors;
}

DeliveryModel::DeliveryModel(const CTivTonewrightDC& settings, int terms)
    : terms_(terms), isTwist_(terms == 4 && settings.GetCalibratedFormat() == CTivData::FormatRgb) {
    saturation_ = ToFractions(settings.GetSaturationRgb());
}

LinearRgb DeliveryModel::Limit(const LinearRgb& value, const LinearRgb& raw) const {
    LinearRgb result;
    for (std::size_t i = 0; i < 3; ++i) {
        const bool isSaturated = isTwist_ && raw[i] >= saturation_[i];
        const double folded = isTwist_ ? std::max(value[i], 0.0) : std::abs(value[i]);
        result[i] = isSaturated ? 1.0 : std::min(folded, 1.0);
    }
    return result;
}

LinearRgb DeliveryModel::Deliver(std::span<const double> transform, const LinearRgb& raw) const {
    const std::array<double, 10> term = ToTerms(raw, terms_);
    const auto terms = static_cast<std::size_t>(terms_);
    LinearRgb value{};
    for (std::size_t row = 0; row < 3; ++row) {
        const auto coefficients = transform.subspan(row * terms, terms);
        value[row] = coefficients[0] * GetOffsetWeight();
        for (std::size_t k = 1; k < terms; ++k) value[row] += coefficients[k] * term[k];
    }
    return Limit(value, raw);
}

std::array<double, 10> ToTerms(const LinearRgb& raw, int terms) {
    const auto [r, g, b] = raw;
    if (terms == 7) return {1, r, g, b, r * r, g * g, b * b};
    return {1, r, g, b, r * r, r * g, r * b, g * g, g * b, b * b};
}

}  // namespace tonewright
