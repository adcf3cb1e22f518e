#include <algorithm>
#include <functional>

#include "calibration/ImplTonewrightDC_impl.h"
#include "foundation/nur_image.h"
#include "primitives/polynomial.h"
#include "primitives/twist.h"

using namespace tonewright;

namespace {

constexpr std::int64_t kRgbBytes = 4;
constexpr std::int64_t kStripPixels = 16384;  // source and destination of a strip stay in the second cache

bool Overlap(const NurImage& one, const NurImage& other) {
    const auto begin = [](const NurImage& image) { return static_cast<const std::uint8_t*>(image.data); };
    const auto end = [&begin](const NurImage& image) { return begin(image) + image.Pitch() * image.height; };
    return std::less<>()(begin(one), end(other)) && std::less<>()(begin(other), end(one));
}

/// Pixels from the ROI's first to the image's last, with what lies between the ROI's rows.
std::int64_t PixelsFromRoi(const NurImage& image) {
    return (std::int64_t{image.height} - image.roi.y) * image.width - image.roi.x;
}

}  // namespace

bool ImplTonewrightDC::Execute(const CTivImage& source, CTivImage& destination, const Coefficients& coefficients,
                               std::vector<std::uint8_t>& untouched) const {
    const bool isRgb10 = calibratedFormat_ == CTivData::FormatRgb10;
    const bool isRgb16 = calibratedFormat_ == CTivData::FormatRgb16;
    const CTivData::Format format = isRgb10 || isRgb16 ? calibratedFormat_ : CTivData::FormatRgb;
    if (source.GetFormat() != format) {
        return Refuse(std::string("CTivTonewrightDC::Execute => source data format must be ") +
                      (isRgb10   ? "RGB10"
                       : isRgb16 ? "RGB16"
                                 : "RGB") +
                      " as calibration image format");
    }
    const CTivRect roi = source.GetRoi();
    if (destination.IsAllocated()) {
        if (destination.GetFormat() != format) {
            return Refuse("CTivTonewrightDC::Execute => destination data format must be the same as source's");
        }
        const CTivRect room = destination.GetRoi();
        if (room.width < roi.width || room.height < roi.height) {
            return Refuse("CTivTonewrightDC::Execute => destination ROI must be at least as large as source's");
        }
    } else if (!destination.Set(roi.width, roi.height, format, nullptr, false)) {
        return false;
    }
    const CTivVector& values = coefficients.transform;
    if (!values.IsAllocated()) {
        return Refuse(
            "CTivTonewrightDC::Execute => no transformation matrix. Use Calibrate or SetXForm to provide one.");
    }
    if (values.GetSize() != 3 * std::int64_t{coefficients.terms}) {
        return Refuse(
            "CTivTonewrightDC::Execute => Actual transformation vector and Actual XformSize parameter are not the "
            "same");
    }
    if (values.GetFormat() != CTivData::FormatFloat) {
        return Refuse("CTivTonewrightDC::Execute => transformation vector must contain float elements");
    }
    if (roi.width <= 0 || roi.height <= 0 || !source.IsAllocated() || !destination.IsAllocated()) return true;
    const NurImage& from = *source.GetRecord();
    NurImage& to = *destination.GetRecord();
    if (isRgb10) return RunPolynomial<PixelRgb10>(from, to, coefficients, gammaTables_->rgb10);
    if (isRgb16) return RunPolynomial<PixelRgb16>(from, to, coefficients, gammaTables_->rgb16);
    if (coefficients.terms != 4) return RunPolynomial<PixelRgb>(from, to, coefficients, gammaTables_->rgb);
    return RunTwist(from, to, coefficients.colorTwist, untouched);
}

template <class Pixel>
bool ImplTonewrightDC::RunPolynomial(const NurImage& source, NurImage& destination, const Coefficients& coefficients,
                                     const GammaTable<Pixel>& table) const {
    constexpr auto bytes = static_cast<std::int64_t>(Pixel::bytes);
    const auto row = GetPolynomialRow<Pixel>(coefficients.terms, GetRowForm());
    const auto* values = static_cast<const float*>(coefficients.transform.GetDataPointer());
    const std::uint8_t* from = source.RoiRow(0);
    std::uint8_t* to = destination.RoiRow(0);
    const std::int64_t width = source.roi.width;
    const std::int64_t sourceStep = source.width * bytes;
    // Past the ROI's right edge, from where the source's width has led: a wider ROI shears, deliberately (C29).
    const std::int64_t destinationStep = (width + destination.width - destination.roi.width) * bytes;
    // Images that share memory but not place are taken pixel by pixel, as the order of a plain loop has it.
    const bool isSamePlace = from == to && sourceStep == destinationStep;
    const std::int64_t stretch = isSamePlace || !Overlap(source, destination) ? width : 1;
    for (std::int32_t y = 0; y < source.roi.height; ++y) {
        for (std::int64_t x = 0; x < width; x += stretch) {
            row(from + x * bytes, to + x * bytes, static_cast<std::size_t>(stretch), values, table);
        }
        from += sourceStep;
        to += destinationStep;
    }
    return true;
}

/// The fast path: a color twist on samples of 0 to 255, table, saturation. Samples and offset are not scaled as in the
/// polynomial paths, negative results clip and rounding is to nearest: all deliberate (C30).
bool ImplTonewrightDC::RunTwist(const NurImage& source, NurImage& destination, const std::array<float, 12>& colorTwist,
                                std::vector<std::uint8_t>& untouched) const {
    const std::uint8_t* const from = source.RoiRow(0);
    std::uint8_t* const to = destination.RoiRow(0);
    const std::int64_t width = source.roi.width;
    const std::int64_t height = source.roi.height;
    // Table and saturation step from row to row with each other's skip: deliberately (C31) crossed. With images of
    // unequal width the steps leave the ROIs, and rows end where one of the two images does.
    const std::int64_t sourceStep = width + destination.width - destination.roi.width;
    const std::int64_t destinationStep = source.width;
    const std::int64_t sourcePixels = PixelsFromRoi(source);
    const std::int64_t destinationPixels = PixelsFromRoi(destination);

    const bool isShared = Overlap(source, destination);
    const bool isInPlace = isShared && from == to && source.width == destination.width;
    const bool isCrossed = sourceStep != source.width || destinationStep != destination.width;
    const std::int64_t strip =
        isCrossed || (isShared && !isInPlace) ? height : std::max<std::int64_t>(1, kStripPixels / source.width);
    for (std::int64_t top = 0; top < height; top += strip) {
        const std::int64_t rows = std::min(strip, height - top);
        const std::uint8_t* before = from + top * source.Pitch();
        std::uint8_t* const after = to + top * destination.Pitch();
        if (isShared) {  // the saturation test must see the pixels as they were
            const std::int64_t pixels = isCrossed ? sourcePixels : (rows - 1) * source.width + width;
            untouched.assign(before, before + pixels * kRgbBytes);
            before = untouched.data();
        }
        const int status =
            isInPlace ? ctiv_ippiColorTwist32f_8u_AC4IR(after, destination.Pitch(), static_cast<int>(width),
                                                        static_cast<int>(rows), colorTwist)
                      : ctiv_ippiColorTwist32f_8u_AC4R(before, source.Pitch(), after, destination.Pitch(),
                                                       static_cast<int>(width), static_cast<int>(rows), colorTwist);
        if (status != 0) return Refuse("CTivTonewrightDC::Execute => failed applying color transformation");
        const EncodeRow encode = GetEncodeRow(GetRowForm());
        for (std::int64_t y = 0; y < rows; ++y) {
            const std::int64_t count = std::min(
                {width, sourcePixels - (top + y) * sourceStep, destinationPixels - (top + y) * destinationStep});
            if (count <= 0) break;
            encode(before + y * sourceStep * kRgbBytes, after + y * destinationStep * kRgbBytes,
                   static_cast<std::size_t>(count), gammaTables_->rgb, parameters_.saturationRgb);
        }
    }
    return true;
}
