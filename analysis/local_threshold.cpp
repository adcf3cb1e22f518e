#include "analysis/local_threshold.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <vector>

#include "analysis/adaptive_threshold.h"
#include "analysis/gray_element_impl.h"
#include "analysis/stats.h"
#include "analysis/threshold.h"
#include "analysis/threshold_rows.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"

using namespace tonewright;

namespace {

using D = CTivData;

constexpr const char* kName = "localAdaptThresh";

// Half a window: `pixels` raised to 3 and to odd, the half limited to the ROI's side less one.
int halfWindow(int pixels, int side) { return std::min(std::max(pixels, 3) / 2, side - 1); }

struct LocalRules {
    int method = kLocalOffset;
    int halfWidth = 1, halfHeight = 1;
    double factor1 = 0, factor2 = 0, factor3 = 0;
    double reference = 0;  // the ROI's minimum or maximum
    int switches = 0;

    double Pixels() const { return (2.0 * halfWidth + 1) * (2.0 * halfHeight + 1); }
};

/// Sums over the window around each pixel of a row, kept up from row to row: a sum a column takes in the row that
/// enters the window and gives up the one that leaves, and a running total along the row does the same with columns.
template <class T>
class WindowSums {
public:
    using Sum = std::conditional_t<std::is_floating_point_v<T>, double, std::int64_t>;

    WindowSums(const NurImage& image, int halfWidth, int halfHeight, bool squared)
        : image_(image),
          halfWidth_(halfWidth),
          halfHeight_(halfHeight),
          squared_(squared),
          columns_(static_cast<std::size_t>(image.roi.width)),
          sums_(columns_.size()) {
        for (int y = -halfHeight - 1; y < halfHeight; ++y) AddRow(y, 1);  // the window of the row above the first
    }

    /// The sums of row y; rows are asked for in order.
    const std::vector<Sum>& Row(int y) {
        AddRow(y + halfHeight_, 1);
        AddRow(y - halfHeight_ - 1, -1);
        Sum total = 0;
        for (int x = -halfWidth_; x <= halfWidth_; ++x) total += Column(x);
        for (int x = 0; x < image_.roi.width; ++x) {
            sums_[static_cast<std::size_t>(x)] = total;
            total += Column(x + halfWidth_ + 1) - Column(x - halfWidth_);
        }
        return sums_;
    }

private:
    void AddRow(int y, int sign) {
        const T* row = image_.RoiRow<const T>(std::clamp(y, 0, image_.roi.height - 1));
        for (std::size_t x = 0; x < columns_.size(); ++x) {
            const auto value = static_cast<Sum>(row[x]);
            columns_[x] += static_cast<Sum>(sign) * (squared_ ? value * value : value);
        }
    }
    Sum Column(int x) const { return columns_[static_cast<std::size_t>(std::clamp(x, 0, image_.roi.width - 1))]; }

    const NurImage& image_;
    int halfWidth_, halfHeight_;
    bool squared_;
    std::vector<Sum> columns_, sums_;
};

// Half of the distance that the factors scale, at window scale: N times factor3 at least.
double spread(const LocalRules& rules, double sum, double squares) {
    const double pixels = rules.Pixels();
    double found = 0;
    if (rules.method == kLocalMinimum) found = sum - rules.reference * pixels;
    if (rules.method == kLocalMaximum) found = rules.reference * pixels - sum;
    if (rules.method == kLocalDeviation) found = std::sqrt(std::max(squares * pixels - sum * sum, 0.0));
    return std::max(pixels * rules.factor3, found);
}

// No division: a pixel is compared at window scale.
template <class T, class Out, int switches>
void thresholdWindows(const NurImage& source, NurImage& destination, const LocalRules& rules, T lowest) {
    const double pixels = rules.Pixels();
    WindowSums<T> sums(source, rules.halfWidth, rules.halfHeight, false);
    std::optional<WindowSums<T>> squares;
    if (rules.method == kLocalDeviation) squares.emplace(source, rules.halfWidth, rules.halfHeight, true);
    for (int y = 0; y < source.roi.height; ++y) {
        const T* row = source.RoiRow<const T>(y);
        Out* out = destination.RoiRow<Out>(y);
        const auto& sumRow = sums.Row(y);
        const auto& squareRow = squares ? squares->Row(y) : sumRow;
        for (std::size_t x = 0; x < sumRow.size(); ++x) {
            const auto sum = static_cast<double>(sumRow[x]);
            const double scale =
                rules.method == kLocalOffset ? pixels : spread(rules, sum, static_cast<double>(squareRow[x]));
            out[x] = ThresholdPixel<Out, switches>(row[x], static_cast<double>(row[x]) * pixels,
                                                   sum + rules.factor1 * scale, sum + rules.factor2 * scale, lowest);
        }
    }
}

void runWindows(const NurImage& source, NurImage& destination, const LocalRules& rules, float lowest) {
    withGrayElement(source.format, false, [&](auto zero) {
        using T = decltype(zero);
        const T otherwise = std::is_floating_point_v<T> ? static_cast<T>(lowest) : std::numeric_limits<T>::min();
        WithSwitches(rules.switches, [&](auto fixed) {
            using Out = std::conditional_t<(fixed & kThresholdBinary) != 0, std::uint8_t, T>;
            thresholdWindows<T, Out, fixed>(source, destination, rules, otherwise);
        });
        return true;
    });
}

// A tile that is flat says nothing of its own; there the whole ROI's level serves.
int thresholdTile(const NurImage& tile, NurImage out, float wholeLevel, bool invert, bool single, bool binary) {
    float least = 0;
    float most = 0;
    if (stats(&tile, {nullptr, nullptr, &least, &most}) != 0) {
        return nur_refuse("nur_localAdaptThresh: failed calculating image stats\n");
    }
    float level = wholeLevel;
    const bool found = least == most || findOtsuLevel(&tile, &level);
    if (!found || thresh(&tile, &out, level, level, invert, single, binary) != 0) {
        return nur_refuse("nur_localAdaptThresh: failed thresholding image\n");
    }
    return 0;
}

int thresholdTiles(const NurImage& source, NurImage& destination, int tileWidth, int tileHeight, bool invert,
                   bool single, bool binary) {
    float wholeLevel = 0;
    if (!findOtsuLevel(&source, &wholeLevel)) return nur_refuse("nur_localAdaptThresh: failed thresholding image\n");
    for (int y = 0; y < source.roi.height; y += tileHeight) {
        for (int x = 0; x < source.roi.width; x += tileWidth) {
            const int width = std::min(tileWidth, source.roi.width - x);
            const int height = std::min(tileHeight, source.roi.height - y);
            NurImage tile = source;
            NurImage out = destination;
            tile.roi = {source.roi.x + x, source.roi.y + y, width, height};
            out.roi = {destination.roi.x + x, destination.roi.y + y, width, height};
            if (const int refused = thresholdTile(tile, out, wholeLevel, invert, single, binary)) return refused;
        }
    }
    return 0;
}

int check(const NurImage& source, const NurImage* destination) {
    if (destination && (destination == &source || (source.data && destination->data == source.data))) {
        return nur_refuse("localAdaptThresh: destination image should be different than source image\n");
    }
    if (destination && destination->data &&
        (destination->roi.width != source.roi.width || destination->roi.height != source.roi.height)) {
        return nur_refuse("localAdaptThresh: input and output ROI must be the same size\n");
    }
    if (D::IsColor(source.format)) return nur_refuse("localAdaptThresh: not supported for color images\n");
    if (!nur_is_type(source.format, {D::FormatByte, D::FormatShort, D::FormatUByte, D::FormatUShort, D::FormatFloat})) {
        return nur_report(1, NUR_REPORT_TYPE, kName, nur_display_name(source.format));
    }
    return 0;
}

}  // namespace

int localAdaptThresh(const NurImage* source, NurImage* destination, int windowWidth, int windowHeight, int method,
                     float factor1, float factor2, float factor3, bool invert, bool single, bool binary) {
    if (const int refused = check(*source, destination)) return refused;
    if (method < kLocalOffset || method > kLocalTiles) return nur_refuse("localMeanThresh: method not implemented\n");
    if (!destination) return 0;
    const int width = source->roi.width;
    const int height = source->roi.height;
    const D::Format format = binary ? D::FormatUByte : source->format;
    if (const int refused = nur_output_image(destination, format, width, height, kName)) return refused;
    if (!source->data || width <= 0 || height <= 0) return 0;

    LocalRules rules;
    rules.method = method;
    rules.halfWidth = halfWindow(windowWidth, width);
    rules.halfHeight = halfWindow(windowHeight, height);
    if (method == kLocalTiles) {
        return thresholdTiles(*source, *destination, 2 * rules.halfWidth + 1, 2 * rules.halfHeight + 1, invert, single,
                              binary);
    }
    rules.factor1 = factor1, rules.factor2 = factor2, rules.factor3 = factor3;
    rules.switches = ThresholdSwitches(invert, single, binary);
    float least = 0;
    float most = 0;
    if (const int refused = stats(source, {nullptr, nullptr, &least, &most})) return refused;
    rules.reference = method == kLocalMaximum ? most : least;
    runWindows(*source, *destination, rules, least);
    return 0;
}

int localMeanThresh(const NurImage* source, NurImage* destination, int windowWidth, int windowHeight, float factor1,
                    float factor2, float factor3, bool invert, bool single, bool binary) {
    return localAdaptThresh(source, destination, windowWidth, windowHeight, kLocalDeviation, factor1, factor2, factor3,
                            invert, single, binary);
}
