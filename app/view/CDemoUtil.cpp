#include "app/view/CDemoUtil.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "app/view/CDemoDIB.h"
#include "app/view/nearest_stretch.h"
#include "foundation/nur_image.h"

namespace {

enum class Conversion {
    None,      // the bitmap takes the pixels as they are
    FitRange,  // to FormatUByte by least and greatest value, which only the whole image tells
    ToRgb      // pixel by pixel, so that what is on display is enough
};
struct Displayable {
    CTivData::Format format;
    Conversion conversion;
};
constexpr Displayable kDisplayable[] = {
    {CTivData::FormatByte, Conversion::FitRange},  {CTivData::FormatShort, Conversion::FitRange},
    {CTivData::FormatFloat, Conversion::FitRange}, {CTivData::FormatUByte, Conversion::None},
    {CTivData::FormatUShort, Conversion::None},    {CTivData::FormatRgb, Conversion::None},
    {CTivData::FormatBinary, Conversion::None},    {CTivData::FormatHsv, Conversion::ToRgb},
    {CTivData::FormatYuv, Conversion::ToRgb},      {CTivData::FormatLab, Conversion::ToRgb},
    {CTivData::FormatRgb10, Conversion::ToRgb},
};
const Displayable* findDisplayable(CTivData::Format format) {
    const auto* const row = std::ranges::find(kDisplayable, format, &Displayable::format);
    return row == std::end(kDisplayable) ? nullptr : row;
}
constexpr int kFitMode = 1, kScaleMode = 2;
constexpr const char* kBlitFailed = "CDemoUtil::DisplayImage => Error blitting bitmap to device";
constexpr const char* kStretchFailed = "CDemoUtil::DisplayImage => Error stretching bitmap to device";

/// Memory that outlasts a paint, since a window is painted again and again at one size.
struct Scratch {
    CTivImage converted;
    std::vector<std::uint8_t> picked;
    QImage stretched;
};
Scratch& scratch() {
    static Scratch memory;
    return memory;
}

ViewRect wholeOf(const CTivImage& image) { return {0, 0, image.GetWidth(), image.GetHeight()}; }

/// A second handle on an image's pixels.
CTivImage wrapped(CTivImage& image) {
    return CTivImage(image.GetWidth(), image.GetHeight(), image.GetFormat(), image.GetData(), false);
}

/// Converts a part of an image into the scratch image.
bool convert(CTivImage& image, const ViewRect& part, CTivData::Format format, int mode) {
    CTivImage& out = scratch().converted;
    if (out.GetFormat() != format || out.GetWidth() != part.Width() || out.GetHeight() != part.Height()) {
        if (!out.Set(part.Width(), part.Height(), format, nullptr, false)) return false;
    }
    return image.SetRoi({part.left, part.top, part.Width(), part.Height()}) && out.ConvertFormat(image, mode);
}

/// Leaves out the rows and columns that a smaller picture doesn't show, so that the work that follows is done on what
/// is seen alone, however large the image is.
void thinOut(CTivImage& image, ViewRect& part, int width, int height) {
    width = std::min(width, part.Width());
    height = std::min(height, part.Height());
    const bool fits = width == part.Width() && height == part.Height();
    if (fits || image.GetFormat() == CTivData::FormatBinary) return;
    std::vector<std::uint8_t>& memory = scratch().picked;
    const auto bytes = static_cast<std::size_t>(CTivImage::GetImageBytes(width, height, image.GetFormat()));
    if (memory.size() < bytes) memory.resize(bytes);
    PickPixels(*image.GetRecord(), NearestPlaces(part.left, part.Width(), width),
               NearestPlaces(part.top, part.Height(), height), memory.data());
    image.Set(width, height, image.GetFormat(), memory.data(), false);
    part = wholeOf(image);
}

/// The destination in device pixels, and back in the painter's own.
struct Target {
    ViewRect device;
    QRectF logical;
};
Target targetOf(const QPainter& painter, const ViewRect& destination) {
    const QRectF wanted(destination.left, destination.top, destination.Width(), destination.Height());
    const QTransform transform = painter.deviceTransform();
    const bool isUpright = transform.type() <= QTransform::TxScale && transform.m11() > 0 && transform.m22() > 0;
    const QRectF mapped = isUpright ? transform.mapRect(wanted) : wanted;
    const ViewRect device{qRound(mapped.left()), qRound(mapped.top()), qRound(mapped.right()), qRound(mapped.bottom())};
    const QRectF exact(device.left, device.top, device.Width(), device.Height());
    return {device, isUpright ? transform.inverted().mapRect(exact) : wanted};
}

ViewRect defaultDestination(const QPainter& painter, const ViewRect& source) {
    QRect rect;
    if (painter.device()->devType() == QInternal::Widget) {
        rect = static_cast<QWidget*>(painter.device())->rect();
    } else {
        rect = painter.hasClipping() ? painter.clipBoundingRect().toRect() : painter.window();
    }
    if (rect.isEmpty()) return {0, 0, source.Width(), source.Height()};
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

/// @return what there is to report, null if nothing
const char* draw(QPainter& painter, const CDemoDIB& bitmap, const ViewRect& part, const Target& target) {
    const QImage view = bitmap.View();
    const bool isSameSize = part.Width() == target.device.Width() && part.Height() == target.device.Height();
    if (view.isNull()) return isSameSize ? kBlitFailed : kStretchFailed;
    if (isSameSize) {
        painter.drawImage(target.logical, view, QRectF(part.left, part.top, part.Width(), part.Height()));
        return nullptr;
    }
    QImage& stretched = scratch().stretched;
    const QSize size(target.device.Width(), target.device.Height());
    if (stretched.size() != size) stretched = QImage(size, QImage::Format_RGB32);
    StretchNearest(view, part, &stretched);
    painter.drawImage(target.logical, stretched, QRectF(QPointF(0, 0), QSizeF(size)));
    return nullptr;
}

int truncated(double value) {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return static_cast<int>(std::clamp(value, -kMost, kMost));
}

struct Vector {
    double x, y;
};
Vector between(ViewPoint from, ViewPoint to) {
    return {static_cast<double>(to.x) - from.x, static_cast<double>(to.y) - from.y};
}
double crossProduct(Vector a, Vector b) { return a.x * b.y - a.y * b.x; }

/// Whether a point of a segment's line lies between its ends, by the parameter along the segment's longer axis.
bool isBetween(ViewPoint point, ViewPoint first, ViewPoint second) {
    const Vector whole = between(first, second), part = between(first, point);
    const double along = std::abs(whole.x) >= std::abs(whole.y) ? part.x / whole.x : part.y / whole.y;
    return along >= 0.0 && along <= 1.0;
}

}  // namespace

bool CDemoUtil::IsDisplayable(CTivData::Format format) { return findDisplayable(format); }

bool CDemoUtil::DisplayImage(CTivImage* image, QPainter* painter, const ViewRect* source, const ViewRect* destination,
                             int significantBits) {
    const Displayable* const how = findDisplayable(image->GetFormat());
    if (!how) return CTivManager::Refuse("CDemoUtil::DisplayImage => image format not supported");

    ViewRect part = wholeOf(*image);
    if (source) {
        part = {std::max(source->left, 0), std::max(source->top, 0), std::min(source->right, part.right),
                std::min(source->bottom, part.bottom)};
    }
    if (!painter || !painter->isActive()) {
        CTivManager::ReportError("%s", kBlitFailed);
        return true;
    }
    const Target target = targetOf(*painter, destination ? *destination : defaultDestination(*painter, part));
    if (!image->IsAllocated() || part.IsEmpty() || target.device.IsEmpty()) return true;

    CTivImage pixels = wrapped(*image);
    if (how->conversion == Conversion::FitRange) {
        if (!convert(pixels, wholeOf(pixels), CTivData::FormatUByte, kFitMode)) return false;
        pixels = wrapped(scratch().converted);
    }
    if (how->format == CTivData::FormatUShort && significantBits < 0) {
        significantBits = CDemoDIB::FindSignificantBits(pixels, part);
    }
    thinOut(pixels, part, target.device.Width(), target.device.Height());
    if (how->conversion == Conversion::ToRgb) {
        if (!convert(pixels, part, CTivData::FormatRgb, kScaleMode)) return false;
        pixels = wrapped(scratch().converted);
        part = wholeOf(pixels);
    }
    const char* failure = draw(*painter, CDemoDIB(&pixels, &part, significantBits), part, target);
    if (failure) CTivManager::ReportError("%s", failure);
    return true;
}

int CDemoUtil::IntersectSegments(ViewPoint a1, ViewPoint a2, ViewPoint b1, ViewPoint b2, ViewPoint* point) {
    constexpr double kParallel = 1e-12;
    const Vector a = between(a1, a2), b = between(b1, b2);
    const double cross = crossProduct(a, b);
    *point = {};
    if (std::abs(cross) < kParallel) return 0;
    const double along = crossProduct(between(a1, b1), b) / cross;
    *point = {truncated(a1.x + along * a.x), truncated(a1.y + along * a.y)};
    constexpr int kAnswers[2][2] = {{4, 2}, {1, 3}};
    return kAnswers[isBetween(*point, a1, a2)][isBetween(*point, b1, b2)];
}

bool CDemoUtil::ClipSegmentToRect(int x1, int y1, int x2, int y2, const ViewRect& rect, ViewPoint* outA,
                                  ViewPoint* outB, int* count) {
    *count = 0;
    const ViewRect grown = rect.Grown(1);
    const ViewPoint first{x1, y1}, second{x2, y2};
    if (grown.Holds(first) && grown.Holds(second)) return false;
    const ViewPoint topLeft{grown.left, grown.top}, topRight{grown.right, grown.top};
    const ViewPoint bottomLeft{grown.left, grown.bottom}, bottomRight{grown.right, grown.bottom};
    const ViewPoint edges[4][2] = {
        {topLeft, bottomLeft}, {topRight, bottomRight}, {topLeft, topRight}, {bottomLeft, bottomRight}};
    for (const auto& edge : edges) {
        ViewPoint crossing;
        if (IntersectSegments(first, second, edge[0], edge[1], &crossing) != 3) continue;
        *(*count == 0 ? outA : outB) = crossing;
        ++*count;
    }
    return *count > 0;
}
