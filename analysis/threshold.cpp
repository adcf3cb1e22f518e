#include "analysis/threshold.h"

#include <algorithm>
#include <vector>

#include "analysis/gray_element_impl.h"
#include "analysis/threshold_rows.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "primitives/acceleration.h"

using namespace tonewright;

namespace {

using D = CTivData;

constexpr const char* kName = "thresh";

bool isThreshable(D::Format format) {
    return nur_is_type(format,
                       {D::FormatChar, D::FormatUByte, D::FormatByte, D::FormatUShort, D::FormatShort, D::FormatFloat});
}

bool isEmpty(const NurImage& image) { return !image.data || image.roi.width <= 0 || image.roi.height <= 0; }

// What a pixel that is not selected becomes.
template <class T>
T lowestOf(const NurImage& image) {
    if constexpr (std::is_floating_point_v<T>) {
        T lowest = image.RoiRow<const T>(0)[0];
        for (int y = 0; y < image.roi.height; ++y) {
            const T* row = image.RoiRow<const T>(y);
            lowest = std::min(lowest, *std::min_element(row, row + image.roi.width));
        }
        return lowest;
    } else {
        return std::numeric_limits<T>::min();
    }
}

template <class In, class Out>
void runRows(const NurImage& source, NurImage& destination, ThresholdLevels<In> levels, int switches) {
    const auto row = GetThresholdRow<In, Out>(switches, ctiv_GetAccelerationLevel() != 0 && HasAvx2());
    auto width = static_cast<std::size_t>(source.roi.width);
    int height = source.roi.height;
    if (source.roi.width == source.width && source.width == destination.width) {  // no gaps: one long row
        width *= static_cast<std::size_t>(height);
        height = 1;
    }
    for (int y = 0; y < height; ++y) row(source.RoiRow<const In>(y), destination.RoiRow<Out>(y), width, levels);
}

// Eight answers a byte, pixel x in bit x AND 7; bits past the source's width stay.
template <class T>
void packRow(const T* source, std::uint8_t* destination, int width, int low, int high, bool invert, bool single) {
    for (int x = 0; x < width; ++x) {
        const int value = source[x];
        const bool selected = ((value >= low) && (single || value <= high)) != invert;
        const auto bit = static_cast<std::uint8_t>(1u << (x & 7));
        std::uint8_t& byte = destination[x >> 3];
        byte = static_cast<std::uint8_t>(selected ? byte | bit : byte & ~bit);
    }
}

int packBinary(const NurImage& source, NurImage& destination, float low, float high, bool invert, bool single,
               bool binary) {
    const bool served = binary && nur_is_type(source.format, {D::FormatUByte, D::FormatByte}) &&
                        destination.roi.width >= source.roi.width && destination.roi.height >= source.roi.height;
    if (!served) return nur_report(1, NUR_REPORT_TYPE, kName, nur_display_name(D::FormatBinary));
    if (isEmpty(source) || !destination.data) return 0;
    const int lowest = toElement<std::uint8_t>(low);  // 0 to 255 for signed pixels too, deliberately (C7)
    const int highest = toElement<std::uint8_t>(high);
    for (int y = 0; y < source.roi.height; ++y) {
        if (source.format == D::FormatByte) {
            packRow(source.RoiRow<const std::int8_t>(y), destination.RoiRow(y), source.roi.width, lowest, highest,
                    invert, single);
        } else {
            packRow(source.RoiRow(y), destination.RoiRow(y), source.roi.width, lowest, highest, invert, single);
        }
    }
    return 0;
}

void run(const NurImage& source, NurImage& destination, float low, float high, int switches) {
    withGrayElement(source.format, false, [&](auto zero) {
        using In = decltype(zero);
        const bool isBinary = (switches & kThresholdBinary) != 0;
        const ThresholdLevels<In> levels{toElement<In>(low), toElement<In>(high),
                                         isBinary ? In{} : lowestOf<In>(source)};
        if (!isBinary) {
            runRows<In, In>(source, destination, levels, switches);
        } else if (destination.format == D::FormatUShort) {
            runRows<In, std::uint16_t>(source, destination, levels, switches);
        } else {
            runRows<In, std::uint8_t>(source, destination, levels, switches);
        }
        return true;
    });
}

bool isLevelImage(D::Format format) {
    return nur_is_type(format, {D::FormatByte, D::FormatUByte, D::FormatShort, D::FormatUShort});
}

bool covers(const NurImage& levels, int width, int height) {
    return levels.data && levels.roi.width >= width && levels.roi.height >= height;
}

int checkLevelImages(const NurImage& source, const NurImage* destination, const NurImage* lowImage,
                     const NurImage* highImage, bool single) {
    if (!isLevelImage(source.format)) {
        return nur_report(1, NUR_REPORT_TYPE, "threshImages", nur_display_name(source.format));
    }
    if (!lowImage || lowImage->format != source.format) {
        return nur_refuse("threshImages: low threshold must be of same type as src");
    }
    if (!single && (!highImage || highImage->format != source.format)) {
        return nur_refuse("threshImages: high threshold must be of same type as src");
    }
    int width = source.roi.width;
    int height = source.roi.height;
    if (destination && destination->data) {
        width = std::min(width, destination->roi.width);
        height = std::min(height, destination->roi.height);
    }
    if (!covers(*lowImage, width, height)) return nur_refuse("threshImages: low threshold ROI too small");
    if (!single && !covers(*highImage, width, height)) return nur_refuse("threshImages: high threshold ROI too small");
    return 0;
}

template <class In, class Out>
void runLevelRows(const NurImage& source, NurImage& destination, const NurImage& lowImage, const NurImage& highImage,
                  int switches) {
    WithSwitches(switches, [&](auto fixed) {
        for (int y = 0; y < source.roi.height; ++y) {
            const In* pixels = source.RoiRow<const In>(y);
            const In* low = lowImage.RoiRow<const In>(y);
            const In* high = highImage.RoiRow<const In>(y);
            Out* out = destination.RoiRow<Out>(y);
            for (int x = 0; x < source.roi.width; ++x) {
                out[x] =
                    ThresholdPixel<Out, fixed>(pixels[x], pixels[x], low[x], high[x], std::numeric_limits<In>::min());
            }
        }
    });
}

void runLevelImages(const NurImage& source, NurImage& destination, const NurImage& lowImage, const NurImage& highImage,
                    int switches) {
    if (isEmpty(source)) return;
    withGrayElement(source.format, false, [&](auto zero) {
        using In = decltype(zero);
        if ((switches & kThresholdBinary) == 0) {
            runLevelRows<In, In>(source, destination, lowImage, highImage, switches);
        } else if (destination.format == D::FormatUShort) {
            runLevelRows<In, std::uint16_t>(source, destination, lowImage, highImage, switches);
        } else {
            runLevelRows<In, std::uint8_t>(source, destination, lowImage, highImage, switches);
        }
        return true;
    });
}

}  // namespace

int tonewright::prepareThresholdOutput(const NurImage& source, NurImage* destination, bool binary, const char* caller) {
    D::Format format = source.format;
    if (binary) {
        format = nur_is_type(destination->format, {D::FormatUShort, D::FormatShort}) ? D::FormatUShort : D::FormatUByte;
    }
    return nur_output_image(destination, format, source.roi.width, source.roi.height, caller);
}

int thresh(const NurImage* source, NurImage* destination, float low, float high, bool invert, bool single,
           bool binary) {
    const NurImage from = *source;  // as it was: preparing the output may relabel an image that is both
    if (!isThreshable(from.format)) return nur_report(1, NUR_REPORT_TYPE, kName, nur_display_name(from.format));
    if (!destination) return 0;
    if (destination->format == D::FormatBinary)
        return packBinary(from, *destination, low, high, invert, single, binary);
    if (const int refused = prepareThresholdOutput(from, destination, binary, kName)) return refused;
    if (!isEmpty(from)) run(from, *destination, low, high, ThresholdSwitches(invert, single, binary));
    return 0;
}

int tonewright::thresh_consume(NurImage* image, float low, float high, bool invert, bool single) {
    return thresh(image, image, low, high, invert, single, false);
}

int threshImages(const NurImage* source, NurImage* destination, const NurImage* lowImage, const NurImage* highImage,
                 bool invert, bool single, bool binary) {
    const NurImage from = *source;
    if (const int refused = checkLevelImages(from, destination, lowImage, highImage, single)) return refused;
    if (!destination) return 0;
    if (const int refused = prepareThresholdOutput(from, destination, binary, "threshImages")) return refused;
    runLevelImages(from, *destination, *lowImage, single ? *lowImage : *highImage,
                   ThresholdSwitches(invert, single, binary));
    return 0;
}

int tonewright::threshImages_consume(NurImage* image, const NurImage* lowImage, const NurImage* highImage, bool invert,
                                     bool single) {
    return threshImages(image, image, lowImage, highImage, invert, single, false);
}
