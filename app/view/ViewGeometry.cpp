#include "app/view/ViewGeometry.h"

#include <algorithm>

namespace {

/// Where an extent of `size` stands on an axis of `client` pixels: centred if it fits, else all of it.
void place(std::int64_t size, int client, std::int32_t& low, std::int32_t& high) {
    low = size <= client ? static_cast<std::int32_t>((client - size) / 2) : 0;
    high = size <= client ? low + static_cast<std::int32_t>(size) : client;
}

std::int64_t scaled(int pixels, float zoom) { return static_cast<std::int64_t>(static_cast<float>(pixels) * zoom); }

int visible(int image, int client, float zoom) {
    return scaled(image, zoom) > client ? static_cast<int>(static_cast<float>(client) / zoom) : image;
}

int truncatedShare(int size, int whole, int offset) {
    return static_cast<int>(static_cast<float>(size) / static_cast<float>(whole) * static_cast<float>(offset));
}

int roundedShare(int size, int whole, int offset) {
    const float exact = static_cast<float>(size) / static_cast<float>(whole) * static_cast<float>(offset);
    return static_cast<int>(static_cast<double>(exact) + 0.5);
}

void clampAxis(std::int32_t& low, std::int32_t& high, int image) {
    if (low < 0) {
        high -= low;
        low = 0;
    }
    if (high >= image) {
        low -= high - image;
        high = image;
    }
}

}  // namespace

void ViewGeometry::Reset() {
    zoom_ = 1.0f;
    fit_ = Fit::None;
    source_ = destination_ = {};
    anchor_ = {};
    laidOut_ = dragging_ = false;
}

void ViewGeometry::Adapt(int clientWidth, int clientHeight, int imageWidth, int imageHeight) {
    clientWidth = std::max(clientWidth, 0);
    clientHeight = std::max(clientHeight, 0);
    imageWidth = std::max(imageWidth, 0);
    imageHeight = std::max(imageHeight, 0);
    if (laidOut_ && clientWidth == clientWidth_ && clientHeight == clientHeight_ && imageWidth == imageWidth_ &&
        imageHeight == imageHeight_) {
        return;
    }
    const bool isResized = laidOut_ && (clientWidth != clientWidth_ || clientHeight != clientHeight_);
    clientWidth_ = clientWidth;
    clientHeight_ = clientHeight;
    imageWidth_ = imageWidth;
    imageHeight_ = imageHeight;
    const bool hasSizes = clientWidth > 0 && clientHeight > 0 && imageWidth > 0 && imageHeight > 0;
    isResized&& hasSizes&& fit_ != Fit::None ? ApplyFit() : Layout();
}

void ViewGeometry::SetZoom(float zoom) {
    fit_ = Fit::None;
    ApplyZoom(zoom);
}

void ViewGeometry::ApplyZoom(float zoom) {
    // Written so that "no number" (an image without width in a window without width) is limited, too.
    zoom_ = zoom > kMinimumZoom ? std::min(zoom, kMaximumZoom) : kMinimumZoom;
    Layout();
}

void ViewGeometry::ResetScale() {
    fit_ = Fit::None;
    zoom_ = 1.0f;
    Layout();
}

void ViewGeometry::ApplyFit() {
    const float byWidth = static_cast<float>(clientWidth_) / static_cast<float>(imageWidth_);
    const float byHeight = static_cast<float>(clientHeight_) / static_cast<float>(imageHeight_);
    const float byBoth = std::min(byWidth, byHeight);
    ApplyZoom(fit_ == Fit::Width    ? byWidth
              : fit_ == Fit::Height ? byHeight
              : fit_ == Fit::Whole  ? std::min(byBoth, 1.0f)
                                    : byBoth);
}

void ViewGeometry::FitHeight() {
    fit_ = Fit::Height;
    ApplyFit();
}

void ViewGeometry::FitWidth() {
    fit_ = Fit::Width;
    ApplyFit();
}

void ViewGeometry::FitToWindow() {
    fit_ = Fit::Window;
    ApplyFit();
}

bool ViewGeometry::FitIfLarger() {
    const bool isLarger = imageWidth_ > clientWidth_ || imageHeight_ > clientHeight_;
    if (isLarger || zoom_ == 1.0f) fit_ = Fit::Whole;
    if (isLarger) ApplyFit();
    return isLarger;
}

void ViewGeometry::Layout() {
    laidOut_ = true;
    ViewPoint imageAnchor = anchor_;
    ClientToImage(anchor_, &imageAnchor);  // by the old rectangles
    place(scaled(imageWidth_, zoom_), clientWidth_, destination_.left, destination_.right);
    place(scaled(imageHeight_, zoom_), clientHeight_, destination_.top, destination_.bottom);
    const int width = visible(imageWidth_, clientWidth_, zoom_);
    const int height = visible(imageHeight_, clientHeight_, zoom_);
    source_ = ViewRect{0, 0, width, height};
    if (clientWidth_ < 1 || clientHeight_ < 1) return;
    const auto offset = [](int anchor, int client, int visibleSize) {
        return static_cast<int>(static_cast<float>(anchor) / static_cast<float>(client) *
                                static_cast<float>(visibleSize));
    };
    source_ = source_.Moved(imageAnchor.x - offset(anchor_.x, clientWidth_, width),
                            imageAnchor.y - offset(anchor_.y, clientHeight_, height));
    ClampSource();
}

void ViewGeometry::ClampSource() {
    clampAxis(source_.top, source_.bottom, imageHeight_);
    clampAxis(source_.left, source_.right, imageWidth_);
}

bool ViewGeometry::ClientToImage(ViewPoint in, ViewPoint* out) const {
    if (imageWidth_ < 1 || imageHeight_ < 1 || source_.IsEmpty() || destination_.IsEmpty()) return false;
    if (!destination_.Holds(in)) return false;
    const int x = source_.left + truncatedShare(source_.Width(), destination_.Width(), in.x - destination_.left);
    const int y = source_.top + truncatedShare(source_.Height(), destination_.Height(), in.y - destination_.top);
    *out = {std::clamp(x, 0, imageWidth_ - 1), std::clamp(y, 0, imageHeight_ - 1)};
    return true;
}

bool ViewGeometry::ImageToClient(ViewPoint in, ViewPoint* out) const {
    if (source_.IsEmpty() || destination_.IsEmpty() || !source_.Grown(1).Holds(in)) return false;
    *out = {destination_.left + roundedShare(destination_.Width(), source_.Width(), in.x - source_.left),
            destination_.top + roundedShare(destination_.Height(), source_.Height(), in.y - source_.top)};
    return true;
}

bool ViewGeometry::Wheel(ViewPoint point, bool zoomIn, bool fast) {
    if (!destination_.Covers(point)) return false;
    constexpr float kStep = 0.01f, kFastStep = 0.04f;
    const float step = fast ? kFastStep : kStep;
    anchor_ = point;
    SetZoom(zoomIn ? zoom_ + step : zoom_ - step);
    return true;
}

bool ViewGeometry::BeginDrag(ViewPoint point) {
    if (destination_.Width() < clientWidth_ && destination_.Height() < clientHeight_) return false;
    dragging_ = true;
    anchor_ = point;
    return true;
}

void ViewGeometry::DragTo(ViewPoint point) {
    ViewPoint from, to;
    // Over the background beside the image there is no image point to hold on to.
    const bool mapped = ClientToImage(anchor_, &from) && ClientToImage(point, &to);
    anchor_ = point;
    if (!mapped) return;
    if (from != to) fit_ = Fit::None;
    source_ = source_.Moved(from.x - to.x, from.y - to.y);
    ClampSource();
}

bool ViewGeometry::EndDrag() {
    if (!dragging_) return false;
    dragging_ = false;
    anchor_ = {};
    return true;
}

ViewRect ViewGeometry::DefaultRoi(int width, int height) {
    const auto fifteenSixteenths = [](int size) { return static_cast<int>(std::int64_t{15} * size / 16); };
    return {width / 16, height / 16, fifteenSixteenths(width), fifteenSixteenths(height)};
}

ViewRect ViewGeometry::DefaultTracker() const {
    const int dx = destination_.Width() / 50, dy = destination_.Height() / 50;
    return {destination_.left + dx, destination_.top + dy, destination_.right - dx, destination_.bottom - dy};
}

bool ViewGeometry::TrackerToRoi(const ViewRect& tracker, ViewRect* roi) const {
    const auto inside = [this](int x, int y) {
        return ViewPoint{std::clamp(x, destination_.left, destination_.right),
                         std::clamp(y, destination_.top, destination_.bottom)};
    };
    ViewPoint first, second;
    if (!ClientToImage(inside(tracker.left, tracker.top), &first)) return false;
    if (!ClientToImage(inside(tracker.right, tracker.bottom), &second)) return false;
    *roi = {first.x, first.y, second.x, second.y};
    return true;
}

bool ViewGeometry::RoiToTracker(const ViewRect& roi, ViewRect* tracker) const {
    ViewPoint first, second;
    if (!ImageToClient({roi.left, roi.top}, &first) || !ImageToClient({roi.right, roi.bottom}, &second)) return false;
    *tracker = {first.x, first.y, second.x, second.y};
    return true;
}

ViewRect ViewGeometry::NudgeRoi(const ViewRect& roi, int dx, int dy, bool resizes, int imageWidth, int imageHeight) {
    constexpr int kLeastSize = 2;
    const int lastX = std::max(imageWidth - 1, roi.right), lastY = std::max(imageHeight - 1, roi.bottom);
    if (resizes) {
        return {roi.left, roi.top, std::clamp(roi.right + dx, std::min(roi.left + kLeastSize, lastX), lastX),
                std::clamp(roi.bottom + dy, std::min(roi.top + kLeastSize, lastY), lastY)};
    }
    return roi.Moved(std::clamp(dx, std::min(-roi.left, 0), lastX - roi.right),
                     std::clamp(dy, std::min(-roi.top, 0), lastY - roi.bottom));
}
