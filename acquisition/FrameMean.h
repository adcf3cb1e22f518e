#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/CTivImage.h"

namespace tonewright {

inline constexpr int kMostAveraged = 10'000;

/// What is done to a picture beside averaging. Empty images: nothing.
struct FrameCorrection {
    CTivImage dark;  ///< taken without light: subtracted, down to 0
    CTivImage flat;  ///< of an even surface: each pixel is divided by its channel there over that channel's mean; a
                     ///< channel that is 0 there stays as it is

    bool IsEmpty() const { return !dark.IsAllocated() && !flat.IsAllocated(); }
};

/// Averages frames of gray (8 and 16 bits) or color (8, 10 and 16 bits a channel). Numbers are rounded once, at the
/// end, half to even.
class FrameMean {
public:
    /// @return why not: another format or size than the first one's, or a format without an average; empty if it is
    std::string Add(const CTivImage& frame);
    /// @return why a correction does not fit the frames, empty if it does
    std::string Check(const FrameCorrection& correction) const;
    /// The picture; frames were added and the correction fits.
    CTivImage Make(const FrameCorrection& correction) const;

private:
    CTivData::Format format_ = CTivData::FormatNone;
    int width_ = 0;
    int height_ = 0;
    std::uint32_t count_ = 0;
    std::vector<std::uint32_t> sums_;  // by pixel and channel, in the image's own order
};

}  // namespace tonewright
