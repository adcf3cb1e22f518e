#pragma once

#include <cstdint>

/// Files count a byte's pixels from bit 7 down, images from bit 0 up.
inline std::uint8_t reversedBits(std::uint8_t byte) {
    return static_cast<std::uint8_t>(((byte * 0x0802u & 0x22110u) | (byte * 0x8020u & 0x88440u)) * 0x10101u >> 16);
}
