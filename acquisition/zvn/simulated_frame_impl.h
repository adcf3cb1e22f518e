#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

#include "acquisition/zvn/ZvnBackend.h"
#include "foundation/CTivImage.h"

/// Draws a frame into memory that has exactly its bytes.
/// @param picture FormatRgb, stretched to the frame; empty for a ramp: red = x, green = y, blue = `number`, each modulo
///        256
/// @param noise largest deviation of a channel
/// A format outside the session's table leaves the memory alone.
void DrawSimulatedFrame(const ZvnFrameFormat& frame, const CTivImage& picture, std::uint32_t number, int noise,
                        std::minstd_rand& random, std::span<std::byte> destination);
