#include "app/toolkit/RectTracker.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Hit = RectTracker::Hit;

/// What each place does: which edges a drag moves (-1 the left or upper, 1 the right or lower, 0 neither), and the
/// pointer that says so. Indexed by Hit.
struct Handle {
    int horizontal;
    int vertical;
    RectTracker::Cursor cursor;
};
constexpr std::array<Handle, RectTracker::kHandleCount> kHandles = {{
    {-1, -1, RectTracker::Cursor::FallingDiagonal},
    {0, -1, RectTracker::Cursor::Vertical},
    {1, -1, RectTracker::Cursor::RisingDiagonal},
    {1, 0, RectTracker::Cursor::Horizontal},
    {1, 1, RectTracker::Cursor::FallingDiagonal},
    {0, 1, RectTracker::Cursor::Vertical},
    {-1, 1, RectTracker::Cursor::RisingDiagonal},
    {-1, 0, RectTracker::Cursor::Horizontal},
}};
constexpr std::array kCornersFirst = {Hit::TopLeft, Hit::TopRight, Hit::BottomRight, Hit::BottomLeft,
                                      Hit::Top,     Hit::Right,    Hit::Bottom,      Hit::Left};

const Handle& handleOf(Hit hit) { return kHandles[static_cast<std::size_t>(hit)]; }

std::pair<int, int> handleSpan(int side, int low, int high) {
    constexpr int kSize = RectTracker::kHandleSize;
    const int begin = side < 0 ? low : side > 0 ? high - kSize : low + (high - low - kSize) / 2;
    return {begin, begin + kSize};
}

/// Moves the edge that a handle holds.
void dragEdge(int side, int by, int boundLow, int boundHigh, std::int32_t& low, std::int32_t& high) {
    constexpr int kLeast = RectTracker::kMinimumSize;
    if (side < 0) low = std::max(std::min(low + by, high - kLeast), std::min(boundLow, low));
    if (side > 0) high = std::min(std::max(high + by, low + kLeast), std::max(boundHigh, high));
}

/// @return the shift nearest to `by` that keeps low to high within the bounds, or where they are if that can't be
int limitedShift(int by, int boundLow, int boundHigh, int low, int high) {
    return std::clamp(by, std::min(boundLow - low, 0), std::max(boundHigh - high, 0));
}

}  // namespace

ViewRect RectTracker::HandleRect(Hit handle) const {
    const auto [left, right] = handleSpan(handleOf(handle).horizontal, m_rect.left, m_rect.right);
    const auto [top, bottom] = handleSpan(handleOf(handle).vertical, m_rect.top, m_rect.bottom);
    return {left, top, right, bottom};
}

RectTracker::Hit RectTracker::HitTest(ViewPoint point) const {
    if (m_rect.IsEmpty()) return Hit::Nothing;
    if (m_style & ResizeInside) {
        for (const Hit hit : kCornersFirst) {
            if (HandleRect(hit).Covers(point)) return hit;
        }
    }
    return m_rect.Covers(point) ? Hit::Middle : Hit::Nothing;
}

RectTracker::Cursor RectTracker::CursorFor(Hit hit) {
    if (hit == Hit::Nothing) return Cursor::Arrow;
    return hit == Hit::Middle ? Cursor::Move : handleOf(hit).cursor;
}

bool RectTracker::Begin(ViewPoint point) {
    m_hit = HitTest(point);
    m_pointAtBegin = point;
    m_rectAtBegin = m_rect;
    return IsFollowing();
}

void RectTracker::Follow(ViewPoint point, const ViewRect& bounds) {
    if (!IsFollowing()) return;
    const int dx = point.x - m_pointAtBegin.x, dy = point.y - m_pointAtBegin.y;
    m_rect = m_rectAtBegin;
    if (m_hit == Hit::Middle) {
        m_rect = m_rect.Moved(limitedShift(dx, bounds.left, bounds.right, m_rect.left, m_rect.right),
                              limitedShift(dy, bounds.top, bounds.bottom, m_rect.top, m_rect.bottom));
    } else {
        dragEdge(handleOf(m_hit).horizontal, dx, bounds.left, bounds.right, m_rect.left, m_rect.right);
        dragEdge(handleOf(m_hit).vertical, dy, bounds.top, bounds.bottom, m_rect.top, m_rect.bottom);
    }
}

bool RectTracker::End() {
    const bool changed = IsFollowing() && m_rect != m_rectAtBegin;
    m_hit = Hit::Nothing;
    return changed;
}

void RectTracker::Cancel() {
    if (IsFollowing()) m_rect = m_rectAtBegin;
    m_hit = Hit::Nothing;
}
