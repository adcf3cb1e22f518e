#include "app/view/ViewGeometry.h"

#include <algorithm>
#include <cmath>

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
    m_zoom = 1.0f;
    m_fit = Fit::None;
    m_source = m_destination = {};
    m_anchor = {};
    m_laidOut = m_dragging = false;
}

void ViewGeometry::Adapt(int clientWidth, int clientHeight, int imageWidth, int imageHeight) {
    clientWidth = std::max(clientWidth, 0);
    clientHeight = std::max(clientHeight, 0);
    imageWidth = std::max(imageWidth, 0);
    imageHeight = std::max(imageHeight, 0);
    if (m_laidOut && clientWidth == m_clientWidth && clientHeight == m_clientHeight && imageWidth == m_imageWidth &&
        imageHeight == m_imageHeight) {
        return;
    }
    const bool isResized = m_laidOut && (clientWidth != m_clientWidth || clientHeight != m_clientHeight);
    m_clientWidth = clientWidth;
    m_clientHeight = clientHeight;
    m_imageWidth = imageWidth;
    m_imageHeight = imageHeight;
    const bool hasSizes = clientWidth > 0 && clientHeight > 0 && imageWidth > 0 && imageHeight > 0;
    isResized&& hasSizes&& m_fit != Fit::None ? ApplyFit() : Layout();
}

void ViewGeometry::SetZoom(float zoom) {
    m_fit = Fit::None;
    ApplyZoom(zoom);
}

void ViewGeometry::ApplyZoom(float zoom) {
    // Written so that "no number" (an image without width in a window without width) is limited, too.
    m_zoom = zoom > kMinimumZoom ? std::min(zoom, kMaximumZoom) : kMinimumZoom;
    Layout();
}

void ViewGeometry::ResetScale() {
    m_fit = Fit::None;
    m_zoom = 1.0f;
    Layout();
}

void ViewGeometry::ApplyFit() {
    const float byWidth = static_cast<float>(m_clientWidth) / static_cast<float>(m_imageWidth);
    const float byHeight = static_cast<float>(m_clientHeight) / static_cast<float>(m_imageHeight);
    const float byBoth = std::min(byWidth, byHeight);
    ApplyZoom(m_fit == Fit::Width    ? byWidth
              : m_fit == Fit::Height ? byHeight
              : m_fit == Fit::Whole  ? std::min(byBoth, 1.0f)
                                     : byBoth);
}

void ViewGeometry::FitHeight() {
    m_fit = Fit::Height;
    ApplyFit();
}

void ViewGeometry::FitWidth() {
    m_fit = Fit::Width;
    ApplyFit();
}

void ViewGeometry::FitToWindow() {
    m_fit = Fit::Window;
    ApplyFit();
}

bool ViewGeometry::FitIfLarger() {
    const bool isLarger = m_imageWidth > m_clientWidth || m_imageHeight > m_clientHeight;
    if (isLarger || m_zoom == 1.0f) m_fit = Fit::Whole;
    if (isLarger) ApplyFit();
    return isLarger;
}

ViewPlace ViewGeometry::GetPlace() const {
    const auto middle = [](int low, int high, int size) { return size > 0 ? (low + high) / 2.0 / size : 0.5; };
    return {m_zoom, middle(m_source.left, m_source.right, m_imageWidth),
            middle(m_source.top, m_source.bottom, m_imageHeight)};
}

void ViewGeometry::GoTo(const ViewPlace& place) {
    m_anchor = {};
    SetZoom(place.zoom);
    const auto low = [](double middle, int size, int part) {
        return static_cast<int>(std::lround(middle * size - part / 2.0));
    };
    m_source = m_source.Moved(low(place.x, m_imageWidth, m_source.Width()) - m_source.left,
                              low(place.y, m_imageHeight, m_source.Height()) - m_source.top);
    ClampSource();
}

void ViewGeometry::Layout() {
    m_laidOut = true;
    ViewPoint imageAnchor = m_anchor;
    ClientToImage(m_anchor, &imageAnchor);  // by the old rectangles
    place(scaled(m_imageWidth, m_zoom), m_clientWidth, m_destination.left, m_destination.right);
    place(scaled(m_imageHeight, m_zoom), m_clientHeight, m_destination.top, m_destination.bottom);
    const int width = visible(m_imageWidth, m_clientWidth, m_zoom);
    const int height = visible(m_imageHeight, m_clientHeight, m_zoom);
    m_source = ViewRect{0, 0, width, height};
    if (m_clientWidth < 1 || m_clientHeight < 1) return;
    const auto offset = [](int anchor, int client, int visibleSize) {
        return static_cast<int>(static_cast<float>(anchor) / static_cast<float>(client) *
                                static_cast<float>(visibleSize));
    };
    m_source = m_source.Moved(imageAnchor.x - offset(m_anchor.x, m_clientWidth, width),
                              imageAnchor.y - offset(m_anchor.y, m_clientHeight, height));
    ClampSource();
}

void ViewGeometry::ClampSource() {
    clampAxis(m_source.top, m_source.bottom, m_imageHeight);
    clampAxis(m_source.left, m_source.right, m_imageWidth);
}

bool ViewGeometry::ClientToImage(ViewPoint in, ViewPoint* out) const {
    if (m_imageWidth < 1 || m_imageHeight < 1 || m_source.IsEmpty() || m_destination.IsEmpty()) return false;
    if (!m_destination.Holds(in)) return false;
    const int x = m_source.left + truncatedShare(m_source.Width(), m_destination.Width(), in.x - m_destination.left);
    const int y = m_source.top + truncatedShare(m_source.Height(), m_destination.Height(), in.y - m_destination.top);
    *out = {std::clamp(x, 0, m_imageWidth - 1), std::clamp(y, 0, m_imageHeight - 1)};
    return true;
}

bool ViewGeometry::ImageToClient(ViewPoint in, ViewPoint* out) const {
    if (m_source.IsEmpty() || m_destination.IsEmpty() || !m_source.Grown(1).Holds(in)) return false;
    *out = {m_destination.left + roundedShare(m_destination.Width(), m_source.Width(), in.x - m_source.left),
            m_destination.top + roundedShare(m_destination.Height(), m_source.Height(), in.y - m_source.top)};
    return true;
}

bool ViewGeometry::Wheel(ViewPoint point, bool zoomIn, bool fast) {
    if (!m_destination.Covers(point)) return false;
    constexpr float kStep = 0.01f, kFastStep = 0.04f;
    const float step = fast ? kFastStep : kStep;
    m_anchor = point;
    SetZoom(zoomIn ? m_zoom + step : m_zoom - step);
    return true;
}

bool ViewGeometry::BeginDrag(ViewPoint point) {
    if (m_destination.Width() < m_clientWidth && m_destination.Height() < m_clientHeight) return false;
    m_dragging = true;
    m_anchor = point;
    return true;
}

void ViewGeometry::DragTo(ViewPoint point) {
    ViewPoint from, to;
    // Over the background beside the image there is no image point to hold on to.
    const bool mapped = ClientToImage(m_anchor, &from) && ClientToImage(point, &to);
    m_anchor = point;
    if (!mapped) return;
    if (from != to) m_fit = Fit::None;
    m_source = m_source.Moved(from.x - to.x, from.y - to.y);
    ClampSource();
}

bool ViewGeometry::EndDrag() {
    if (!m_dragging) return false;
    m_dragging = false;
    m_anchor = {};
    return true;
}

ViewRect ViewGeometry::DefaultRoi(int width, int height) {
    const auto fifteenSixteenths = [](int size) { return static_cast<int>(std::int64_t{15} * size / 16); };
    return {width / 16, height / 16, fifteenSixteenths(width), fifteenSixteenths(height)};
}

ViewRect ViewGeometry::DefaultTracker() const {
    const int dx = m_destination.Width() / 50, dy = m_destination.Height() / 50;
    return {m_destination.left + dx, m_destination.top + dy, m_destination.right - dx, m_destination.bottom - dy};
}

bool ViewGeometry::TrackerToRoi(const ViewRect& tracker, ViewRect* roi) const {
    const auto inside = [this](int x, int y) {
        return ViewPoint{std::clamp(x, m_destination.left, m_destination.right),
                         std::clamp(y, m_destination.top, m_destination.bottom)};
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
