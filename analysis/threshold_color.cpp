#include <array>
#include <cstring>
#include <vector>

#include "analysis/gray_element_impl.h"
#include "analysis/threshold.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "primitives/ctiv_ippi.h"

using namespace tonewright;

namespace {

using D = CTivData;
using Levels = std::array<std::uint8_t, 3>;

constexpr std::size_t kPixelBytes = 4;

bool isByteColor(D::Format format) {
    return nur_is_type(format, {D::FormatRgb, D::FormatHsv, D::FormatYuv, D::FormatLab});
}

Levels toLevels(const float levels[3]) {
    return {toElement<std::uint8_t>(levels[0]), toElement<std::uint8_t>(levels[1]), toElement<std::uint8_t>(levels[2])};
}

/// Makes the mask of one row after the other. The primitives see rows: three bytes a pixel, one in the mask.
class ColorMask {
public:
    ColorMask(int width, const float low[3], const float high[3], bool invert, bool single)
        : width_(width),
          low_(toLevels(low)),
          high_(single ? Levels{} : toLevels(high)),
          invert_(invert),
          single_(single),
          triples_(3 * static_cast<std::size_t>(width)),
          mask_(static_cast<std::size_t>(width)),
          second_(static_cast<std::size_t>(width)) {}

    /// @return false where a primitive refuses
    bool Make(const std::uint8_t* row) {
        for (std::size_t x = 0; x < mask_.size(); ++x) std::memcpy(&triples_[3 * x], row + kPixelBytes * x, 3);
        if (!Compare(low_, mask_, PrimitiveCompare::GreaterEqual)) return false;
        if (!single_) {
            if (!Compare(high_, second_, PrimitiveCompare::LessEqual)) return false;
            if (ctiv_ippiAnd_8u_C1IR(second_.data(), width_, mask_.data(), width_, width_, 1) != 0) return false;
        }
        return !invert_ || ctiv_ippiNot_8u_C1IR(mask_.data(), width_, width_, 1) == 0;
    }
    const std::uint8_t* Row() const { return mask_.data(); }

private:
    bool Compare(const Levels& levels, std::vector<std::uint8_t>& mask, PrimitiveCompare compare) {
        return ctiv_ippiCompareC_8u_C3R(triples_.data(), 3 * std::int64_t{width_}, levels.data(), mask.data(), width_,
                                        width_, 1, compare) == 0;
    }

    int width_;
    Levels low_, high_;
    bool invert_, single_;
    std::vector<std::uint8_t> triples_, mask_, second_;
};

bool binThresh(const NurImage& source, NurImage& destination, ColorMask& mask) {
    const int width = source.roi.width;
    for (int y = 0; y < source.roi.height; ++y) {
        std::uint8_t* out = destination.RoiRow(y);
        if (!mask.Make(source.RoiRow(y))) return false;
        std::memset(out, 0, static_cast<std::size_t>(width));
        if (ctiv_ippiSet_8u_C1MR(255, out, width, width, 1, mask.Row(), width) != 0) return false;
    }
    return true;
}

// Source and destination may be the same.
bool semiThresh(const NurImage& source, NurImage& destination, ColorMask& mask) {
    const int width = source.roi.width;
    const auto rowBytes = kPixelBytes * static_cast<std::size_t>(width);
    std::vector<std::uint8_t> spread(rowBytes);
    for (int y = 0; y < source.roi.height; ++y) {
        const std::uint8_t* row = source.RoiRow(y);
        std::uint8_t* out = destination.RoiRow(y);
        const auto pitch = static_cast<std::int64_t>(rowBytes);
        if (!mask.Make(row)) return false;
        if (ctiv_ippiDup_8u_C1C4R(mask.Row(), width, spread.data(), pitch, width, 1) != 0) return false;
        std::memmove(out, row, rowBytes);
        if (ctiv_ippiAnd_8u_C1IR(spread.data(), pitch, out, pitch, static_cast<int>(pitch), 1) != 0) return false;
    }
    return true;
}

}  // namespace

int thresh_color(const NurImage* source, NurImage* destination, const float low[3], const float high[3], bool invert,
                 bool single, bool binary) {
    if (!isByteColor(source->format)) {
        return nur_report(1, NUR_REPORT_TYPE, "thresh_color", nur_display_name(source->format));
    }
    if (!destination) return 0;
    const int refused = nur_output_image(destination, binary ? D::FormatUByte : source->format, source->roi.width,
                                         source->roi.height, "thresh_color");
    if (refused) return refused;
    if (!source->data || source->roi.width <= 0) return 0;
    ColorMask mask(source->roi.width, low, high, invert, single);
    if (binary) {
        return binThresh(*source, *destination, mask) ? 0 : nur_refuse("thresh_color: fail in binThresh");
    }
    return semiThresh(*source, *destination, mask) ? 0 : nur_refuse("thresh_color: fail in semiThresh");
}

int tonewright::thresh_color_consume(NurImage* image, const float low[3], const float high[3], bool invert, bool single,
                                     bool binary) {
    if (!isByteColor(image->format)) {
        return nur_report(1, NUR_REPORT_TYPE, "thresh_color", nur_display_name(image->format));
    }
    if (binary) return nur_refuse("thresh_color_consume: cannot consume. Input type different from output");
    if (!image->data || image->roi.width <= 0) return 0;
    ColorMask mask(image->roi.width, low, high, invert, single);
    return semiThresh(*image, *image, mask) ? 0 : nur_refuse("thresh_color_consume: fail in semiThreshConsume");
}
