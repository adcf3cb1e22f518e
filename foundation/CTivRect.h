#pragma once

#include <cstdint>

/// A rectangle in pixels: corner and size. All zero means "the whole image" wherever a region of interest is asked for.
struct CTivRect {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const CTivRect&) const = default;
};
