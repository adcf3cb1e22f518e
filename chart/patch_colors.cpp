#include "chart/patch_colors.h"

#include <algorithm>

namespace tonewright {

PatchColors ToPatchColors(std::span<const PatchMeasurement> patches, CTivData::Format format) {
    PatchColors result;
    const auto fullScale = static_cast<std::uint64_t>(GetChannelFullScale(format));
    if (fullScale == 0 || !result.colors.Set(static_cast<int>(patches.size()), format, nullptr, true)) return result;
    result.measured = true;
    const int bits = CTivData::GetBitsPerChannel(format);
    double brightest = 0;
    for (std::size_t i = 0; i < patches.size(); ++i) {
        std::uint64_t word = 0;
        double sum = 0;
        for (const double mean : patches[i].mean) {
            const std::uint64_t level = std::min(static_cast<std::uint64_t>(mean), fullScale);
            result.saturated |= level == fullScale;
            word = word << bits | level;
            sum += mean;
        }
        result.measured &= patches[i].pixels > 0;
        result.colors.SetData(static_cast<int>(i), {format, word});
        if (sum > brightest) {
            brightest = sum;
            result.brightest = static_cast<int>(i);
        }
    }
    return result;
}

}  // namespace tonewright
