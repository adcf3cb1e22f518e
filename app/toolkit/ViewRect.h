#pragma once

#include <cstdint>

/// A point in pixels: of a window's client area or of an image.
struct ViewPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;

    bool operator==(const ViewPoint&) const = default;
};

/// A rectangle in pixels by its edges. It covers the pixels from left to right - 1 and from top to bottom - 1.
struct ViewRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    constexpr std::int32_t Width() const { return right - left; }
    constexpr std::int32_t Height() const { return bottom - top; }
    constexpr bool IsEmpty() const { return right <= left || bottom <= top; }
    /// Whether the pixel at a point belongs to the rectangle.
    constexpr bool Covers(ViewPoint p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
    /// Whether a point lies in the rectangle or on one of its four edges.
    constexpr bool Holds(ViewPoint p) const { return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom; }
    constexpr ViewRect Grown(std::int32_t by) const { return {left - by, top - by, right + by, bottom + by}; }
    constexpr ViewRect Moved(std::int32_t dx, std::int32_t dy) const {
        return {left + dx, top + dy, right + dx, bottom + dy};
    }

    bool operator==(const ViewRect&) const = default;
};
