#include "python/number_arrays.h"

#include "chart/PatchMeasurement.h"

using namespace tonewright;

py::array ToColorArray(const CTivVector& colors) {
    const int fullScale = GetChannelFullScale(colors.GetFormat());
    const int bits = fullScale == 255 ? 8 : fullScale == 1023 ? 10 : 16;
    const auto channel = [&](py::ssize_t i) {
        const std::uint64_t color = colors.GetData(static_cast<int>(i / 3)).GetPayload();
        return color >> (2 - i % 3) * bits & static_cast<std::uint64_t>(fullScale);
    };
    if (bits == 8) return MakeArray<std::uint8_t>({colors.GetSize(), 3}, channel);
    return MakeArray<std::uint16_t>({colors.GetSize(), 3}, channel);
}
